import type {Damage} from './damage';
import type {Entry, Timechart} from './timechart';
import {type Column, grown} from './grown';
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

interface Range {
  readonly head: Head;
  readonly first: number;
  readonly firstText: number;
  readonly exact: Map<number, bigint>|null;
}

/** Gathers the entries of a timechart document; the points of those of one part share their columns. */
export class TimechartBuilder {
  private ranges: Range[] = [];
  private exact: Map<number, bigint>|null = null;
  private count = 0;
  private first = 0;
  private times = new Float64Array(1 << 12);
  private values = new Float64Array(1 << 12);
  private textCount = 0;
  private firstText = 0;
  private names = new Uint32Array(1 << 8);
  private details = new Uint32Array(1 << 8);
  private strings: string[] = [];
  private readonly stringIndex = new Map<string, number>();

  constructor(private readonly name: string) {}

  get points(): number { return this.count; }

  addPoint(time: number, value: number|bigint): void {
    const at = this.count++;
    if (at === this.times.length) {
      this.times = grown(this.times, 2 * at);
      this.values = grown(this.values, 2 * at);
    }
    this.times[at] = time;
    this.values[at] = Number(value);
    if (typeof value === 'bigint') (this.exact ??= new Map()).set(at - this.first, value);
  }

  addTexts(name: string, details: string): void {
    const at = this.textCount++;
    if (at === this.names.length) {
      this.names = grown(this.names, 2 * at);
      this.details = grown(this.details, 2 * at);
    }
    this.names[at] = this.string(name);
    this.details[at] = this.string(details);
  }

  endEntry(head: Head): void {
    this.ranges.push({ head, first: this.first, firstText: this.firstText, exact: this.exact });
    this.first = this.count;
    this.firstText = this.textCount;
    this.exact = null;
  }

  /** Returns the entries that ended since the last part, or null if there are none. */
  picture(): Timechart|null { return this.ranges.length > 0 ? this.finish(null) : null; }

  /** Returns what no part has brought before. Its columns are given away: what follows starts new ones. */
  finish(damage: Damage|null): Timechart {
    const times = this.times.subarray(0, this.count);
    const values = this.values.subarray(0, this.count);
    const entries = this.ranges.map(({ head, first, firstText, exact }, index): Entry => {
      const next = this.ranges[index + 1];
      const end = next?.first ?? this.first;
      const endText = next?.firstText ?? this.firstText;
      return inOrder({
        ...head,
        name: shownName(head.name),
        tip: shownName(head.tip),
        times: times.subarray(first, end),
        values: values.subarray(first, end),
        names: this.names.subarray(firstText, endText),
        details: this.details.subarray(firstText, endText),
        exact,
      });
    });
    const part: Timechart = { kind: 'timechart', name: this.name, entries, strings: this.strings, damage };
    this.startPart();
    return part;
  }

  /** Takes the points of the entry that is being read along. */
  private startPart(): void {
    const moved = <T extends Column>(column: T, first: number, count: number): T =>
        grown(column.subarray(first, count) as T, count - first + (1 << 12));
    this.times = moved(this.times, this.first, this.count);
    this.values = moved(this.values, this.first, this.count);
    this.names = moved(this.names, this.firstText, this.textCount);
    this.details = moved(this.details, this.firstText, this.textCount);
    this.count -= this.first;
    this.textCount -= this.firstText;
    this.first = this.firstText = 0;
    this.ranges = [];
    this.strings = [];
  }

  private string(text: string): number {
    let index = this.stringIndex.get(text);
    if (index === undefined) {
      index = this.stringIndex.size;
      this.strings.push(shownName(text));
      this.stringIndex.set(text, index);
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
