/**
 * The bytes of a document, wherever they are: a file, or an element of the page; gzip is unpacked on the
 * way.
 */

import type {Source} from './messages';
import type {Supply} from './Reader';

/** The first piece is small, so that a first picture comes early. */
const firstPiece = 1 << 20;
const laterPieces = 4 << 20;
/** Unpacked bytes come in small pieces; they are gathered up to this size. */
const gathered = 1 << 20;
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
export async function open(source: Source): Promise<Supplied> {
  const raw = source.file !== undefined ? piecesOfFile(source.file) : piecesOfBase64(source.base64 ?? '');
  const progress: Progress = { bytes: 0, total: source.file?.size ?? source.base64?.length ?? 0 };
  const counted: Supply = async () => {
    const piece = await raw();
    if (piece !== null) progress.bytes += source.file !== undefined ? piece.length : (piece.length / 3) * 4;
    return piece;
  };
  const first = await counted();
  const rest = startingWith(first, counted);
  const packed = first !== null && first[0] === 0x1f && first[1] === 0x8b;
  return { supply: packed ? unpacked(rest) : rest, progress };
}

function startingWith(first: Uint8Array|null, rest: Supply): Supply {
  let pending: Uint8Array|null = first;
  return async () => {
    if (pending === null) return rest();
    const piece = pending;
    pending = null;
    return piece;
  };
}

/** Slices of the file; the next one is on its way while one is read. */
function piecesOfFile(file: Blob): Supply {
  let at = 0;
  const slice = () => {
    const end = Math.min(file.size, at + (at === 0 ? firstPiece : laterPieces));
    const piece = at < end ? file.slice(at, end).arrayBuffer() : null;
    at = end;
    return piece;
  };
  let next = slice();
  return async () => {
    const piece = await next;
    if (piece === null) return null;
    next = slice();
    return new Uint8Array(piece);
  };
}

function piecesOfBase64(text: string): Supply {
  let at = 0;
  // Four characters encode whole bytes.
  const length = firstPiece;
  return async () => {
    if (at >= text.length) return null;
    const binary = atob(text.slice(at, at + length));
    at += length;
    const piece = new Uint8Array(binary.length);
    for (let i = 0; i < binary.length; ++i) piece[i] = binary.charCodeAt(i);
    return piece;
  };
}

function unpacked(packed: Supply): Supply {
  let piece: Uint8Array|null = new Uint8Array(0);
  const stream = new ReadableStream<Uint8Array>({
    async pull(controller) {
      if (piece !== null && piece.length === 0) {
        piece = await packed();
        // An error discards what was unpacked and not yet read. The empty piece is taken only after all was
        // read.
        if (piece === null) controller.enqueue(new Uint8Array(0));
      }
      if (piece === null) return controller.close();
      controller.enqueue(piece.subarray(0, packedPiece));
      piece = piece.subarray(packedPiece);
    },
  });
  const reader = stream.pipeThrough(new DecompressionStream('gzip')).getReader();
  let ended = false;
  return async () => {
    const pieces: Uint8Array[] = [];
    let size = 0;
    while (!ended && size < gathered) {
      try {
        const result = await reader.read();
        if (result.done)
          ended = true;
        else {
          pieces.push(result.value);
          size += result.value.length;
        }
      } catch {
        // A cut or damaged archive: what could be unpacked is read, and is found to be cut off.
        ended = true;
      }
    }
    if (size === 0) return null;
    const joined = new Uint8Array(size);
    let at = 0;
    for (const piece of pieces) {
      joined.set(piece, at);
      at += piece.length;
    }
    return joined;
  };
}
