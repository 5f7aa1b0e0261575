/** The bytes of a document, from a file; gzip is unpacked on the way. */

import type {Source} from './messages';
import type {Supply} from './Reader';

/**
 * Packed bytes go into the unpacking in pieces of this size: what one of them gave is lost if it holds
 * damage.
 */
const packedPiece = 1 << 15;

/** Bytes of the source that were taken, before they are unpacked. */
export interface Progress {
  bytes: number;
  readonly total: number;
}

export interface Supplied {
  readonly supply: Supply;
  readonly progress: Progress;
}

/** Returns a supply of the unpacked bytes. */
export async function open({file, base64 = ''}: Source): Promise<Supplied> {
  const blob = file ?? decoded(base64);
  const progress: Progress = { bytes: 0, total: blob.size };
  const reader = blob.stream().getReader({ mode: 'byob' });
  const raw: Supply = async (into) => {
    const { value } = await reader.read(into);
    progress.bytes += value!.length;
    return value!;
  };
  const [first, second] = new Uint8Array(await blob.slice(0, 2).arrayBuffer());
  return { supply: first === 0x1f && second === 0x8b ? unpacked(raw) : raw, progress };
}

function decoded(base64: string): Blob {
  const pieces: Uint8Array[] = [];
  // Four characters encode whole bytes.
  const length = 1 << 20;
  for (let at = 0; at < base64.length; at += length)
    pieces.push(Uint8Array.from(atob(base64.slice(at, at + length)), (c) => c.charCodeAt(0)));
  return new Blob(pieces);
}

function unpacked(packed: Supply): Supply {
  let ended = false;
  const stream = new ReadableStream<Uint8Array>({
    async pull(controller) {
      if (ended) return controller.close();
      const piece = await packed(new Uint8Array(packedPiece));
      ended = piece.length === 0;
      // An error discards what was unpacked and not yet read. The empty piece at the end is taken only after
      // all was read.
      controller.enqueue(piece);
    },
  });
  const reader = stream.pipeThrough(new DecompressionStream('gzip')).getReader();
  let rest = new Uint8Array(0);
  return async (into) => {
    // A cut or damaged archive: what could be unpacked is read, and is found to be cut off.
    if (rest.length === 0) rest = (await reader.read().catch(() => null))?.value ?? rest;
    const piece = rest.subarray(0, into.length);
    into.set(piece);
    rest = rest.subarray(piece.length);
    return into.subarray(0, piece.length);
  };
}
