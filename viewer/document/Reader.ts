import {DocumentError} from './damage';

/**
 * Thrown by a parser that ran past the available bytes; the unit is parsed again once there are more. An
 * Error has its place in the script, for which a debugger has the whole script parsed once more.
 */
const needMore = Symbol('more bytes are needed');

/** Zero bytes after the last byte: loops over digits and names stop there without checking for the end. */
const padding = 16;

/**
 * Supplies the bytes of a document piece by piece: fills some of `into`, whose memory it may move, and
 * returns what it filled; nothing at the document's end.
 */
export type Supply = (into: Uint8Array) => Promise<Uint8Array>;

const leastWindow = 1 << 20;

/**
 * The bytes of a document, of which a window is in memory. Parsers are plain functions over `bytes` from
 * `pos` on; a unit, such as a row, that is not complete in the window is parsed again from its start after
 * the window has moved.
 */
export class Reader {
  bytes = new Uint8Array(padding);
  pos = 0;
  /** Number of bytes in the window. */
  end = 0;
  /** Offset of the window in the document. */
  #base = 0;
  #ended = false;

  constructor(private readonly supply: Supply) {}

  /** Offset of the next byte in the document. */
  get offset(): number { return this.#base + this.pos; }

  /** Returns what `parse` returns, with as many bytes as it takes. */
  async unit<A extends unknown[], T>(parse: (reader: Reader, ...more: A) => T, ...more: A): Promise<T> {
    for (;;) {
      const start = this.pos;
      try {
        return parse(this, ...more);
      } catch (error) {
        if (error !== needMore) throw error;
        this.pos = start;
        await this.#refill();
      }
    }
  }

  /** Calls `parse` until it returns false: once a row, without a promise for each. */
  async rows(parse: () => boolean): Promise<void> {
    let start = this.pos;
    for (;;) {
      try {
        do start = this.pos;
        while (parse());
        return;
      } catch (error) {
        if (error !== needMore) throw error;
        this.pos = start;
        await this.#refill();
      }
    }
  }

  /** To be called at the end of the window: asks for more, or fails at the end of the document. */
  runOut(): never {
    if (this.#ended) throw new DocumentError(this.#base + this.end, 'the document is cut off');
    throw needMore;
  }

  fail(reason: string): never { throw new DocumentError(this.offset, reason); }

  /** Moves the window so that it starts at `pos` and holds at least twice the bytes that were not enough. */
  async #refill(): Promise<void> {
    const kept = this.end - this.pos;
    let window = this.bytes;
    if (window.length < 2 * kept + leastWindow) {
      window = new Uint8Array(4 * kept + leastWindow);
      window.set(this.bytes.subarray(this.pos, this.end));
    } else
      window.copyWithin(0, this.pos, this.end);
    let size = kept;
    do {
      const piece = await this.supply(window.subarray(size, -padding));
      window = new Uint8Array(piece.buffer);
      size += piece.length;
      this.#ended = piece.length === 0;
    } while (!this.#ended && size < 2 * kept);
    window.fill(0, size, size + padding);
    this.bytes = window;
    this.#base += this.pos;
    this.pos = 0;
    this.end = size;
  }
}
