/** The Worker's side: reads one document and posts it. */

import {DocumentError} from './damage';
import {LayoutFile} from './layoutFile';
import {DocumentReading} from './readDocument';

import type {FromWorker, Source, ToWorker, ZelDocument} from './messages';
import {open} from './supply';

/** Milliseconds until the first picture of a document, and how much longer each next one waits. */
const firstPictureAfter = 30;
const slowing = 4;
/** Milliseconds between two messages of progress. */
const progressEvery = 100;

let cancelled = false;

const post = (message: FromWorker, transfer: Transferable[] = []) => postMessage(message, { transfer });

async function read(source: Source, layoutSource: Source|null): Promise<void> {
  const layout = layoutSource ? await readLayout(layoutSource) : null;
  const { supply, progress } = await open(source);
  const started = performance.now();
  let pictureAt = started + firstPictureAfter;
  let progressAt = started + progressEvery;
  let taken = 0;
  const reading = new DocumentReading(
      source.name,
      async (into) => {
        const now = performance.now();
        if (now >= Math.min(pictureAt, progressAt)) {
          const picture = now >= pictureAt ? reading.picture() : null;
          if (picture) pictureAt = now + (now - started) * (slowing - 1);
          post(
              { type: 'progress', bytes: progress.bytes, total: progress.total, picture },
              picture ? buffersOf(picture) : []);
          progressAt = now + progressEvery;
          // Bytes that wait already come without a turn of the event loop, in which the page's wish to stop
          // is heard.
          await new Promise((done) => setTimeout(done));
        }
        if (cancelled) throw new DocumentError(taken, 'reading was stopped');
        const piece = await supply(into);
        taken += piece.length;
        return piece;
      },
      layout,
  );
  const document = await reading.read();
  post({ type: 'document', document }, buffersOf(document));
}

async function readLayout(source: Source): Promise<LayoutFile> {
  const { supply } = await open(source);
  const pieces: Uint8Array[] = [];
  for (let piece; (piece = await supply(new Uint8Array(1 << 16))).length > 0;) pieces.push(piece);
  try {
    return LayoutFile.parse(await new Blob(pieces).text());
  } catch (error) {
    throw new Error(`${source.name}: no layout file: ${(error as Error).message}`);
  }
}

/** Returns the memory of all columns, which moves to the page instead of being copied. */
function buffersOf(document: ZelDocument): ArrayBuffer[] {
  const buffers = new Set<ArrayBufferLike>();
  const gather = (value: unknown) => {
    if (ArrayBuffer.isView(value)) buffers.add(value.buffer);
  };
  const tables =
      document.kind === 'profile' ? [document.places, document.samples, document.stacks] : document.entries;
  for (const table of tables) Object.values(table).forEach(gather);
  return [...buffers] as ArrayBuffer[];
}

/** Reads the document that the page asks for. */
export function serve(): void {
  onmessage = (event: MessageEvent<ToWorker>) => {
    const message = event.data;
    if (message.type === 'cancel')
      cancelled = true;
    else {
      read(message.source, message.layout)
          .catch((error: Error) => post({ type: 'failed', message: error.message }));
    }
  };
}
