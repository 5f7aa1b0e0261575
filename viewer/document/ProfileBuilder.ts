import {hexadecimal, toAddress, toBigInt} from './address';

import type {Damage} from './damage';
import type {LayoutFile} from './layoutFile';
import {PlaceKind, type Places, type Process, type Profile, type Thread} from './profile';
import {type Columns, cutKey, SampleColumns} from './SampleColumns';
import {shownName} from './text';

type Address = number|bigint;

export interface ProcessRow extends Process {
  readonly key: number;
}

export interface LibraryRow {
  readonly key: number;
  readonly process: number;
  readonly name: string;
}

export interface FileRow {
  readonly name: string;
  /** Pairs of a function's key and its line. */
  readonly lines: readonly(readonly[number, number])[];
}

export interface FunctionRow {
  readonly key: number;
  readonly name: string;
  readonly start: Address;
  readonly libraries: readonly number[];
}

/** Key of the kernel's process in every document. */
const kernelProcess = 1;
/** A stretch of addresses that no mapping covers: the process's name and the first address. */
const syntheticName = /^\{(.*)-([0-9a-f]{1,16})\}$/;
/** Samples of the picture of a document that is still being read. */
const pictureSamples = 20000;

/** Gathers the rows of a profile document and makes columns of them. */
export class ProfileBuilder {
  readonly processes: ProcessRow[] = [];
  readonly libraries: LibraryRow[] = [];
  readonly files: FileRow[] = [];
  readonly functions: FunctionRow[] = [];
  readonly samples: SampleColumns;

  constructor(
      private readonly name: string,
      private readonly layout: LayoutFile|null,
  ) {
    this.samples = new SampleColumns(layout?.depth ?? null);
  }

  /** Returns a small sample of the profile read so far, or null if there is none yet. */
  picture(): Profile|null {
    return this.samples.count > 0 ? this.#build(this.samples.sampled(pictureSamples), null) : null;
  }

  finish(damage: Damage|null): Profile { return this.#build(this.samples.finish(), damage); }

  #build({ samples, stacks, weight }: Columns, damage: Damage|null): Profile {
    const byKey = new Map(this.processes.map((row) => [row.key, row]));
    const threads = this.samples.threads.map((thread) => this.#thread(byKey, thread.process, thread.tid));
    return {
      kind: 'profile',
      name: this.name,
      processes: this.processes.map(({ pid, tid, name }) => ({ pid, tid, name: shownName(name) })),
      threads,
      files: this.files.map((file) => shownName(file.name)),
      places: this.#places(byKey, stacks.places),
      samples,
      stacks,
      weight,
      damage,
    };
  }

  #thread(byKey: ReadonlyMap<number, ProcessRow>, key: number, tid: number): Thread {
    const row = byKey.get(key);
    if (!row) return { process: -1, pid: 0, tid, name: `key ${key}` };
    const own =
        row.tid === tid ? row : this.processes.find((other) => other.pid === row.pid && other.tid === tid);
    return { process: this.processes.indexOf(row), pid: row.pid, tid, name: shownName((own ?? row).name) };
  }

  /**
   * Returns all places, and replaces each key in `references` by its place. Places have the same number in
   * every picture of a document, so that one which was chosen stays chosen.
   */
  #places(byKey: ReadonlyMap<number, ProcessRow>, references: Uint32Array): Places {
    const table = new PlaceTable();
    table.add(cutKey, 'cut off here: the callers are unknown', PlaceKind.Cut);
    const kernels = new Set<number>();
    for (const row of this.libraries) {
      const kernel = row.process === kernelProcess && row.name === 'kernel';
      if (kernel) kernels.add(row.key);
      const synthetic = syntheticName.test(row.name);
      const kind = synthetic ? PlaceKind.Synthetic : kernel ? PlaceKind.Kernel : PlaceKind.Unresolved;
      table.addLibrary(row.key, shownName(row.name), kind);
    }
    const lines = this.#lines();
    const processOf = new Map(this.libraries.map((row) => [row.key, byKey.get(row.process)]));
    for (const row of this.functions) {
      const synthetic = syntheticName.exec(row.name);
      const line = lines.get(row.key);
      if (synthetic) {
        const pid = processOf.get(row.libraries.find((key) => !kernels.has(key)) ?? -1)?.pid;
        const start = pid === undefined ? row.start : this.#original(pid, row.start);
        const { high, low } = toAddress(start);
        const name = start === row.start ? row.name : `{${synthetic[1]}-${hexadecimal(high, low)}}`;
        table.add(row.key, shownName(name), PlaceKind.Synthetic, undefined, line);
        continue;
      }
      const kernel = row.libraries.some((key) => kernels.has(key));
      const kind = kernel ? PlaceKind.Kernel : PlaceKind.User;
      table.add(row.key, shownName(row.name), kind, row.libraries[0], line);
    }
    for (let node = 1; node < references.length; ++node) references[node] = table.place(references[node]);
    return table.columns();
  }

  #lines(): Map<number, FileLine> {
    const lines = new Map<number, FileLine>();
    this.files.forEach((file, index) => {
      for (const [key, line] of file.lines) lines.set(key, { file: index, line });
    });
    return lines;
  }

  #original(pid: number, address: Address): Address {
    if (!this.layout) return address;
    const { high, low } = toAddress(address);
    return this.layout.original(pid, toBigInt(high, low));
  }
}

interface FileLine {
  readonly file: number;
  readonly line: number;
}

/** Numbers functions and libraries in one row. */
class PlaceTable {
  readonly #names: string[] = [];
  readonly #kinds: number[] = [];
  readonly #libraries: number[] = [];
  readonly #lines: (FileLine|undefined)[] = [];
  readonly #byKey = new Map<number, number>();
  readonly #byName = new Map<string, number>();

  /** Returns the place of a key; one that the document says nothing about becomes a place of its own. */
  place(key: number): number {
    return this.#byKey.get(key) ?? this.add(key, key === 0 ? 'unknown' : `key ${key}`, PlaceKind.Unresolved);
  }

  add(
      key: number,
      name: string,
      kind: PlaceKind,
      library = -1,
      line?: FileLine,
      ): number {
    const place = this.#names.push(name) - 1;
    this.#kinds.push(kind);
    this.#libraries.push(this.#byKey.get(library) ?? place);
    this.#lines.push(line);
    this.#byKey.set(key, place);
    return place;
  }

  /** A file that several processes map has a row for each in the document; here it is one place. */
  addLibrary(key: number, name: string, kind: PlaceKind): void {
    const known = this.#byName.get(name);
    if (known !== undefined) {
      this.#byKey.set(key, known);
      return;
    }
    this.#byName.set(name, this.#names.length);
    this.add(key, name, kind);
  }

  columns(): Places {
    return {
      count: this.#names.length,
      names: this.#names,
      kinds: Uint8Array.from(this.#kinds),
      libraries: Uint32Array.from(this.#libraries),
      files: Int32Array.from(this.#lines, (line) => line?.file ?? -1),
      lines: Uint32Array.from(this.#lines, (line) => line?.line ?? 0),
    };
  }
}
