import {type Column, grown, zeros} from './grown';
import {finishStacks, StackTable} from './StackTable';
import type {Samples, Stacks} from './profile';
import {timeOrder} from './timeOrder';

/**
 * Key of the node that stands for the callers which a document no longer holds; no key of a document is this
 * high.
 */
export const cutKey = 2 ** 32 - 1;

/** Entries of a back-trace that a document keeps unless its layout file says otherwise. */
const usualDepth = 15;

/** A thread as samples name it: key of a process and number of the thread. */
export interface ThreadKey {
  readonly process: number;
  readonly tid: number;
}

/** Samples and stacks as they come to be known, still by the document's keys. */
export class SampleColumns {
  count = 0;
  readonly threads: ThreadKey[] = [];
  /** Keys of the back-trace of the sample that is being read, innermost first. */
  frames = zeros(64);

  #times = new Float64Array(1 << 12);
  #cores = new Uint16Array(1 << 12);
  #sampleThreads = zeros(1 << 12);
  #nodes = zeros(1 << 12);
  #stacks = new StackTable();
  readonly #threadIndex = new Map<number, Map<number, number>>();
  /** The latest thread; most samples have the thread of one before them. */
  readonly #recent = zeros(256).fill(cutKey);
  #depth: number;
  #cutNode = 0;

  constructor(depth: number|null) { this.#depth = depth ?? usualDepth; }

  pushFrame(at: number, key: number): void {
    if (at === this.frames.length) this.frames = grown(this.frames, 2 * at);
    this.frames[at] = key;
  }

  /**
   * Adds a sample. `frames` holds its first `depth` entries; `entries` is how many the document has, markers
   * of contexts included; `own` says that the first one is the sample's own place, which `key` names.
   */
  add(
      key: number,
      time: number,
      core: number,
      process: number,
      tid: number,
      depth: number,
      entries: number,
      own: boolean,
      ): void {
    const root = entries >= this.#depth ? this.#cutRoot(entries) : 0;
    let frameCount = depth;
    if (!own) {
      this.pushFrame(frameCount++, 0);
      this.frames.copyWithin(1, 0, depth);
    }
    this.frames[0] = key;
    const node = this.#stacks.stack(root, this.frames, frameCount);

    const at = this.count;
    if (at === this.#times.length) this.#grow(2 * at);
    this.#times[at] = time;
    this.#cores[at] = core;
    this.#sampleThreads[at] = this.#thread(process, tid);
    this.#nodes[at] = node;
    this.count = at + 1;
  }

  /** Returns a picture of the samples so far: every n-th one, so that there are at most `most` of them. */
  sampled(most: number): Columns {
    const step = Math.max(1, Math.ceil(this.count / most));
    const count = Math.ceil(this.count / step);
    const pick = <T extends Column>(column: T): T => {
      const picked = new (column.constructor as new (length: number) => T)(count);
      for (let i = 0; i < count; ++i) picked[i] = column[i * step];
      return picked;
    };
    const samples = this.#columns(count, pick);
    const nodes = samples.stacks;
    const { kept, position } = this.#nodesAbove(nodes);
    const parents = kept.map((node) => position[this.#stacks.parents[node]]);
    const keys = kept.map((node) => this.#stacks.keys[node]);
    return this.#ordered(step, parents, keys, {...samples, stacks: nodes.map((node) => position[node]) });
  }

  /** Returns all columns, and releases what only the reading needs. */
  finish(): Columns {
    const { parents, keys } = this.#stacks.release();
    const { count } = this;
    const filled = <T extends Column>(column: T) => column.subarray(0, count) as T;
    return this.#ordered(1, parents, keys, this.#columns(count, filled));
  }

  /** Returns what `take` makes of each column. */
  #columns(count: number, take: <T extends Column>(column: T) => T): Samples {
    return {
      count,
      times: take(this.#times),
      cores: take(this.#cores),
      threads: take(this.#sampleThreads),
      stacks: take(this.#nodes)
    };
  }

  #ordered(weight: number, parents: Uint32Array, keys: Uint32Array, samples: Samples): Columns {
    const order = timeOrder(samples.times);
    if (order) {
      for (const column of [samples.times, samples.cores, samples.threads, samples.stacks]) {
        const before = column.slice();
        for (let i = 0; i < order.length; ++i) column[i] = before[order[i]];
      }
    }
    return { weight, samples, stacks: finishStacks(parents, keys, samples.stacks) };
  }

  /**
   * Returns the nodes and all their ancestors, ascending, and for each node its position among them.
   */
  #nodesAbove(nodes: Uint32Array): { kept: Uint32Array; position: Uint32Array } {
    const stacks = this.#stacks;
    const position = zeros(stacks.count);
    let count = 1;
    for (let node of nodes) {
      for (; node !== 0 && position[node] === 0; node = stacks.parents[node]) {
        position[node] = 1;
        ++count;
      }
    }
    const kept = zeros(count);
    for (let node = 1, next = 1; node < stacks.count; ++node) {
      if (position[node] === 0) continue;
      kept[next] = node;
      position[node] = next++;
    }
    return { kept, position };
  }

  /**
   * Returns the root of back-traces with `entries` entries, which is as many as the document keeps, or more.
   */
  #cutRoot(entries: number): number {
    if (entries > this.#depth) {
      // The document's depth is larger than known, so cut back-traces cannot be recognised.
      this.#depth = Infinity;
      if (this.#cutNode !== 0) this.#uncut();
      return 0;
    }
    if (this.#cutNode === 0) this.#cutNode = this.#stacks.child(0, cutKey);
    return this.#cutNode;
  }

  /** Moves the nodes below the root of cut back-traces to the root. */
  #uncut(): void {
    const stacks = this.#stacks;
    const cutNode = this.#cutNode;
    const merged = new StackTable();
    const moved = zeros(stacks.count);
    for (let node = 1; node < stacks.count; ++node) {
      if (node !== cutNode) moved[node] = merged.child(moved[stacks.parents[node]], stacks.keys[node]);
    }
    for (let i = 0; i < this.count; ++i) this.#nodes[i] = moved[this.#nodes[i]];
    this.#stacks = merged;
    this.#cutNode = 0;
  }

  #thread(process: number, tid: number): number {
    const slot = (tid ^ (process << 4)) & 255;
    const latest = this.#recent[slot];
    if (latest !== cutKey && this.threads[latest].tid === tid && this.threads[latest].process === process) {
      return latest;
    }
    let ofProcess = this.#threadIndex.get(process);
    if (!ofProcess) this.#threadIndex.set(process, (ofProcess = new Map()));
    let index = ofProcess.get(tid);
    if (index === undefined) {
      index = this.threads.push({ process, tid }) - 1;
      ofProcess.set(tid, index);
    }
    return (this.#recent[slot] = index);
  }

  #grow(capacity: number): void {
    this.#times = grown(this.#times, capacity);
    this.#cores = grown(this.#cores, capacity);
    this.#sampleThreads = grown(this.#sampleThreads, capacity);
    this.#nodes = grown(this.#nodes, capacity);
  }
}

/** What the samples of a document come to; `stacks.places` holds keys of the document. */
export interface Columns {
  readonly weight: number;
  readonly samples: Samples;
  readonly stacks: Stacks;
}
