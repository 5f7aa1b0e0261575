import {DocumentError, type Damage} from './damage';
import {Byte, accept, expect, peek, readLabel} from './json';
import type {LayoutFile} from './layoutFile';
import type {ZelDocument} from './messages';
import {ProfileBuilder} from './ProfileBuilder';
import {Reader, type Supply} from './Reader';
import {readProfile, readUnlabelledProfile} from './readProfile';
import {readTimechart} from './readTimechart';
import {TimechartBuilder} from './TimechartBuilder';

/** A document that is being read: either kind, known from its first label. */
export class DocumentReading {
  #builder: ProfileBuilder|TimechartBuilder|null = null;
  readonly #reader: Reader;

  constructor(
      private readonly name: string,
      supply: Supply,
      private readonly layout: LayoutFile|null = null,
  ) {
    this.#reader = new Reader(supply);
  }

  /**
   * Returns the part of a damaged document before the damage. Throws an Error with a clear line for a wrong
   * file.
   */
  async read(): Promise<ZelDocument> {
    let damage: Damage|null = null;
    try {
      await this.#readKnown();
    } catch (error) {
      if (!(error instanceof DocumentError)) throw error;
      if (!this.#builder) throw new Error(`${this.name}: ${error.message} at byte ${error.offset}`);
      damage = { offset: error.offset, reason: error.message };
    }
    return this.#builder!.finish(damage);
  }

  /**
   * Returns something to show while the rest is read, if there is anything new: a small sample of
   * the profile read so far, or the entries of a timechart that came since the last call. What read()
   * returns of a timechart then lacks those.
   */
  picture(): ZelDocument|null { return this.#builder?.picture() ?? null; }

  async #readKnown(): Promise<void> {
    const reader = this.#reader;
    await this.#refuseOthers();
    await reader.unit(expect, Byte.OpenObject);
    if (await reader.unit(accept, Byte.CloseObject)) {
      await readUnlabelledProfile(reader, this.#profileBuilder());
      return;
    }
    const label = await reader.unit(() => {
      const start = reader.pos;
      const first = readLabel(reader);
      reader.pos = start;
      return first;
    });
    if (label === 'entries') {
      const builder = new TimechartBuilder(this.name);
      this.#builder = builder;
      await readTimechart(reader, builder);
    } else if (label === 'Description') {
      await readProfile(reader, this.#profileBuilder());
    } else {
      throw this.#wrong(`its first label is "${label.slice(0, 40)}"`);
    }
    await this.#expectEnd();
  }

  #profileBuilder(): ProfileBuilder {
    const builder = new ProfileBuilder(this.name, this.layout);
    this.#builder = builder;
    return builder;
  }

  /** Fails with the right line for files that people take for documents. */
  async #refuseOthers(): Promise<void> {
    const reader = this.#reader;
    const first = await reader.unit(peek);
    if (first === Byte.OpenObject) return;
    const head =
        String.fromCharCode(...reader.bytes.subarray(reader.pos, Math.min(reader.end, reader.pos + 8)));
    if (/^PERF(ILE2|FILE)/.test(head)) {
      throw new Error(`${this.name}: a recording, not a document; zelkit convert makes one of it`);
    }
    if (first === Byte.OpenArray)
      throw this.#wrong('it starts with "[": a timechart without labels holds no points');
    throw this.#wrong('it does not start with "{"');
  }

  #wrong(why: string): Error { return new Error(`${this.name}: no document of zelconv: ${why}`); }

  async #expectEnd(): Promise<void> {
    const reader = this.#reader;
    let more = true;
    try {
      await reader.unit(peek);
    } catch {
      more = false;
    }
    if (more) reader.fail('something follows the end of the document');
  }
}
