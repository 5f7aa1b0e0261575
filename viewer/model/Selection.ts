import {zeros} from '../document/grown';
import type {Profile, Stacks} from '../document/profile';
import {everything, type Filter} from './filter';
import {pointsBefore} from './steps';
import type {Tree} from './tree';

/** The samples that a filter lets through, and what each node of the stacks weighs with them. */
export class Selection implements Tree {
  declare readonly places: Uint32Array;
  declare readonly parents: Uint32Array;
  declare readonly totals: Uint32Array;
  declare readonly bounds: Uint32Array;
  declare readonly childStart: Uint32Array;
  declare readonly childEnd: Uint32Array;
  declare readonly children: Uint32Array;
  /** Number of samples. */
  declare readonly count: number;
  #selfTimes: Uint32Array|null = null;

  constructor(
      readonly profile: Profile,
      readonly filter: Filter,
  ) {
    const { stacks } = profile;
    this.places = stacks.places;
    this.parents = stacks.parents;
    this.bounds = stacks.totals;
    this.childStart = stacks.firstChild;
    this.childEnd = stacks.firstChild.subarray(1);
    this.children = stacks.children;
    if (isEverything(filter)) {
      this.totals = stacks.totals;
    } else {
      this.totals = zeros(stacks.count);
      this.#countSamples(this.totals);
      sumUp(stacks, this.totals);
    }
    this.count = this.totals[0] ?? 0;
  }

  get isEverything(): boolean { return this.totals === this.bounds; }

  expand(): void {
    // All children are there from the start.
  }

  /** Samples of each node that were taken in the node's own place. */
  get selves(): Uint32Array {
    if (!this.#selfTimes) {
      const { parents } = this;
      const selves = this.totals.slice();
      for (let node = selves.length - 1; node > 0; --node) selves[parents[node]] -= this.totals[node];
      this.#selfTimes = selves;
    }
    return this.#selfTimes;
  }

  /** Calls `visit` with the index of each selected sample. */
  forEachSample(visit: (index: number) => void): void {
    const { profile, filter } = this;
    const { cores, threads, stacks } = profile.samples;
    const [first, end] = sampleRange(profile, filter.start, filter.end);
    const keptCores = filter.cores ? marked(filter.cores, 0x10000) : null;
    const keptThreads = filter.threads ? marked(filter.threads, profile.threads.length) : null;
    const keptNodes = filter.text === '' ? null : nodesWithText(profile, filter.text);
    for (let i = first; i < end; ++i) {
      if (keptCores && keptCores[cores[i]] === 0) continue;
      if (keptThreads && keptThreads[threads[i]] === 0) continue;
      if (keptNodes && keptNodes[stacks[i]] === 0) continue;
      visit(i);
    }
  }

  #countSamples(totals: Uint32Array): void {
    const { filter } = this;
    const { stacks } = this.profile.samples;
    if (filter.cores || filter.threads || filter.text !== '') {
      this.forEachSample((index) => totals[stacks[index]]++);
      return;
    }
    const [from, to] = sampleRange(this.profile, filter.start, filter.end);
    for (let i = from; i < to; ++i) totals[stacks[i]]++;
  }
}

export function isEverything(filter: Filter): boolean {
  const untimed = filter.start === everything.start && filter.end === everything.end;
  return untimed && !filter.cores && !filter.threads && filter.text === '';
}

/** Adds the weight of each node to its ancestors. */
export function sumUp(stacks: Pick<Stacks, 'parents'>, totals: Uint32Array): void {
  const { parents } = stacks;
  // A subtree without samples is skipped.
  for (let node = totals.length - 1; node > 0; --node)
    if (totals[node] !== 0) totals[parents[node]] += totals[node];
}

/** Returns the first sample at or after `start` and the first at or after `end`. */
export function sampleRange({samples}: Profile, start: number, end: number): [number, number] {
  const first = pointsBefore(samples.times, start);
  return [first, Math.max(first, pointsBefore(samples.times, end))];
}

function marked(members: ReadonlySet<number>, size: number): Uint8Array {
  const marks = new Uint8Array(size);
  for (const member of members) marks[member] = 1;
  return marks;
}

/**
 * Returns a mark for each place whose name contains the text; capital letters count only where the text has
 * some.
 */
export function placesWithText(profile: Profile, text: string): Uint8Array {
  const exact = text !== text.toLowerCase();
  return Uint8Array.from(
      profile.places.names, (name) => Number((exact ? name : name.toLowerCase()).includes(text)));
}

/** Returns a mark for each node whose stack, from the root down to it, has a place with the text. */
export function nodesWithText(profile: Profile, text: string): Uint8Array {
  const matches = placesWithText(profile, text);
  const { count, parents, places } = profile.stacks;
  const marks = new Uint8Array(count);
  for (let node = 1; node < count; ++node) marks[node] = marks[parents[node]] | matches[places[node]];
  return marks;
}
