/** Where moved mappings were on the device, see docs/layout-file.md. */

import {countUntil} from './search';

/** A mapping of one process; `start` and `end` have the process in the bits above the address. */
interface Mapping {
  readonly start: bigint;
  readonly end: bigint;
  /** What the device's addresses are above the document's. */
  readonly moved: bigint;
}

const inProcess = (pid: number, address: bigint) => (BigInt(pid) << 64n) + address;

export class LayoutFile {
  readonly #starts: readonly bigint[];

  private constructor(
      /** How many entries of a back-trace the document keeps, or null if the file does not say. */
      readonly depth: number|null,
      /** Ascending. */
      private readonly mappings: readonly Mapping[],
  ) {
    this.#starts = mappings.map((mapping) => mapping.start);
  }

  /** Returns the contents of a layout file; fails on a text that is none. */
  static parse(text: string): LayoutFile {
    const { 'mappings': rows, 'depth': depth } = JSON.parse(text) as Record<string, unknown>;
    if (!Array.isArray(rows)) throw new Error('it has no mappings');
    const mappings = rows.map((row: Record<string, string>): Mapping => {
      const from = BigInt(row['start']);
      const start = inProcess(Number(row['pid']), from);
      return { start, end: start + BigInt(row['size']), moved: BigInt(row['original']) - from };
    });
    mappings.sort((a, b) => (a.start < b.start ? -1 : 1));
    return new LayoutFile(typeof depth === 'number' ? depth : null, mappings);
  }

  /** Returns the device's address for one of the document. */
  original(pid: number, address: bigint): bigint {
    const at = inProcess(pid, address);
    const mapping = this.mappings[countUntil(this.#starts, at, true, 0, this.#starts.length) - 1];
    return mapping && at < mapping.end ? address + mapping.moved : address;
  }
}
