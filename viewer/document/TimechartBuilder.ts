import type {Damage} from './damage';
import type {Entry, Timechart} from './timechart';
import {grown, zeros} from './grown';
import {shownName} from './text';
import {timeOrder} from './timeOrder';

/** Everything of an entry but its points. */
export interface Head {
  id: string;
  name: string;
  treeId: string;
  type: string;
  class: string;
  show: number;
  tip: string;
  white: string;
  black: string;
}

/** Points for which columns have room when they are new. */
const usualPoints = 1 << 16;
const usualTexts = 1 << 10;

/**
 * Gathers the entries of a timechart document. Their columns are parts of larger ones: columns that are full
 * are left to the entries in them, and the one that is being read moves on to new ones.
 */
export class TimechartBuilder {
  #entries: Entry[] = [];
  #exact: Map<number, bigint>|null = null;
  /** The points of the entry that is being read are those from `first` to `count`. */
  #first = 0;
  #count = 0;
  #times = new Float64Array(0);
  #values = new Float64Array(0);
  #firstText = 0;
  #textCount = 0;
  #names = zeros(0);
  #details = zeros(0);
  #strings: string[] = [];
  readonly #stringIndex = new Map<string, number>();

  constructor(private readonly name: string) {}

  addPoint(time: number, value: number|bigint): void {
    if (this.#count === this.#times.length) this.#movePoints();
    const at = this.#count++;
    this.#times[at] = time;
    this.#values[at] = Number(value);
    if (typeof value === 'bigint') (this.#exact ??= new Map()).set(at - this.#first, value);
  }

  addTexts(name: string, details: string): void {
    if (this.#textCount === this.#names.length) this.#moveTexts();
    const at = this.#textCount++;
    this.#names[at] = this.#string(name);
    this.#details[at] = this.#string(details);
  }

  endEntry(head: Head): void {
    this.#entries.push(inOrder({
      ...head,
      name: shownName(head.name),
      tip: shownName(head.tip),
      times: this.#times.subarray(this.#first, this.#count),
      values: this.#values.subarray(this.#first, this.#count),
      names: this.#names.subarray(this.#firstText, this.#textCount),
      details: this.#details.subarray(this.#firstText, this.#textCount),
      exact: this.#exact,
    }));
    this.#first = this.#count;
    this.#firstText = this.#textCount;
    this.#exact = null;
  }

  /** Returns the entries that ended since the last part, or null if there are none. */
  picture(): Timechart|null { return this.#entries.length > 0 ? this.finish(null) : null; }

  /** Returns what no part has brought before. Its columns are given away: what follows starts new ones. */
  finish(damage: Damage|null): Timechart {
    const { name } = this;
    const entries = this.#entries;
    const strings = this.#strings;
    this.#entries = [];
    this.#strings = [];
    this.#movePoints();
    this.#moveTexts();
    return { kind: 'timechart', name, entries, strings, damage };
  }

  #movePoints(): void {
    const first = this.#first;
    const count = this.#count;
    const room = Math.max(usualPoints, 2 * (count - first));
    this.#times = grown(this.#times.subarray(first, count), room);
    this.#values = grown(this.#values.subarray(first, count), room);
    this.#count -= first;
    this.#first = 0;
  }

  #moveTexts(): void {
    const firstText = this.#firstText;
    const textCount = this.#textCount;
    const room = Math.max(usualTexts, 2 * (textCount - firstText));
    this.#names = grown(this.#names.subarray(firstText, textCount), room);
    this.#details = grown(this.#details.subarray(firstText, textCount), room);
    this.#textCount -= firstText;
    this.#firstText = 0;
  }

  #string(text: string): number {
    let index = this.#stringIndex.get(text);
    if (index === undefined) {
      index = this.#stringIndex.size;
      this.#strings.push(shownName(text));
      this.#stringIndex.set(text, index);
    }
    return index;
  }
}

/** Sorts an entry's points by time: the list of all markers is in the order of the trace. */
function inOrder(entry: Entry): Entry {
  const order = timeOrder(entry.times);
  if (order === null) return entry;
  for (const column of [entry.times, entry.values, entry.names, entry.details]) {
    if (column.length === order.length) column.set(Array.from(order, (from) => column[from]));
  }
  if (entry.exact === null) return entry;
  const exact = new Map<number, bigint>();
  order.forEach((from, to) => {
    const value = entry.exact!.get(from);
    if (value !== undefined) exact.set(to, value);
  });
  return {...entry, exact };
}
