import {toAddress} from './address';
import {anotherElement, peek, readValue, type Value} from './json';
import {NodeTable} from './NodeTable';
import type {Reader} from './Reader';
import {Row} from './Row';
import {cutKey, type SampleColumns, type ThreadKey} from './SampleColumns';

const nanosecondsPerSecond = 1e9;

/** Reads the samples of a packed document, docs/documents-in-the-page.md: blocks of columns. */
export class SampleBlocks {
  readonly #threads: ThreadKey[] = [];
  readonly #sites = new NodeTable();
  readonly #traces = new NodeTable();
  #time = 0;

  constructor(
      private readonly reader: Reader,
      private readonly samples: SampleColumns,
  ) {}

  /** Reads a block; returns whether another one follows. */
  read(): boolean {
    const { reader } = this;
    peek(reader);
    const start = reader.pos;
    const value = readValue(reader);
    const another = anotherElement(reader);
    this.#take(new Row(reader, start, 'blocks', value));
    return another;
  }

  #take(row: Row): void {
    const [threads, sites, traces, steps, ...columns] = row.values.map((value) => row.list(value));
    if (columns.length !== 4 || columns.some((column) => column.length !== steps.length)) row.fail();
    for (let i = 0; i < threads.length; i += 2)
      this.#threads.push({ process: row.whole(threads[i]), tid: row.whole(threads[i + 1]) });
    this.#takeNodes(row, sites, this.#sites);
    this.#takeNodes(row, traces, this.#traces);
    for (let i = 0; i < steps.length; ++i) {
      this.#time += row.number(steps[i]);
      const [core, thread, site, trace] = columns.map((column) => row.whole(column[i]));
      this.#add(row, core, thread, site, trace);
    }
  }

  /** Reads pairs: the distance to the parent's number, and the label. */
  #takeNodes(row: Row, pairs: readonly Value[], table: NodeTable): void {
    for (let i = 0; i < pairs.length; i += 2) {
      const back = row.whole(pairs[i]);
      if (back === 0 || back > table.count) row.fail();
      table.add(table.count - back, toAddress(row.address(pairs[i + 1])).low);
    }
  }

  #add(row: Row, core: number, thread: number, site: number, trace: number): void {
    const { samples } = this;
    const sites = this.#sites;
    const traces = this.#traces;
    if (core > 0xffff || thread >= this.#threads.length || site >= sites.count || trace >= traces.count)
      row.fail();
    const key = sites.keys[sites.parents[site]];
    let depth = 0;
    let node = trace;
    // The node below the root says how many entries the back-trace has, and whether the first is the sample's
    // own.
    for (; traces.parents[node] !== 0; node = traces.parents[node]) {
      if (traces.keys[node] === cutKey) row.fail();
      samples.pushFrame(depth++, traces.keys[node]);
    }
    const { process, tid } = this.#threads[thread];
    const entries = traces.keys[node] >>> 1;
    const own = (traces.keys[node] & 1) === 1 && depth > 0;
    const seconds = this.#time / nanosecondsPerSecond;
    samples.add(key, seconds, core, process, tid, depth, entries, own);
  }
}
