import {toAddress} from './address';
import {anotherElement, peek, readValue, type Value} from './json';
import {NodeTable} from './NodeTable';
import type {Reader} from './Reader';
import {Row} from './Row';
import {cutKey, type SampleColumns, type ThreadKey} from './SampleColumns';

const nanosecondsPerSecond = 1e9;

/** Columns of a block, in their order. */
const enum Column {
  Threads,
  Sites,
  Traces,
  TimeSteps,
  Cores,
  Thread,
  Site,
  Trace
}

/** Reads the samples of a packed document, docs/documents-in-the-page.md: blocks of columns. */
export class SampleBlocks {
  private readonly threads: ThreadKey[] = [];
  private readonly sites = new NodeTable();
  private readonly traces = new NodeTable();
  private time = 0;

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
    this.take(new Row(reader, start, 'blocks', value));
    return another;
  }

  private take(row: Row): void {
    const threads = row.list(Column.Threads);
    for (let i = 0; i < threads.length; i += 2)
      this.threads.push({ process: row.checked(threads[i]), tid: row.checked(threads[i + 1]) });
    this.takeNodes(row, row.list(Column.Sites), this.sites);
    this.takeNodes(row, row.list(Column.Traces), this.traces);
    const steps = row.list(Column.TimeSteps);
    const columns =
        [Column.Cores, Column.Thread, Column.Site, Column.Trace].map((column) => row.list(column));
    if (columns.some((column) => column.length !== steps.length)) row.fail();
    for (let i = 0; i < steps.length; ++i) {
      const step = steps[i];
      if (typeof step !== 'number' && typeof step !== 'bigint') row.fail();
      this.time += Number(step);
      const [core, thread, site, trace] = columns.map((column) => row.checked(column[i]));
      this.add(row, core, thread, site, trace);
    }
  }

  /** Reads pairs: the distance to the parent's number, and the label. */
  private takeNodes(row: Row, pairs: readonly Value[], table: NodeTable): void {
    for (let i = 0; i < pairs.length; i += 2) {
      const back = row.checked(pairs[i]);
      if (back === 0 || back > table.count) row.fail();
      table.add(table.count - back, toAddress(row.checkedAddress(pairs[i + 1] ?? null)).low);
    }
  }

  private add(row: Row, core: number, thread: number, site: number, trace: number): void {
    const { sites, traces, samples } = this;
    if (core > 0xffff || thread >= this.threads.length || site >= sites.count || trace >= traces.count)
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
    const { process, tid } = this.threads[thread];
    const entries = traces.keys[node] >>> 1;
    const own = (traces.keys[node] & 1) === 1 && depth > 0;
    const seconds = this.time / nanosecondsPerSecond;
    samples.add(key, seconds, core, process, tid, depth, entries, own);
  }
}
