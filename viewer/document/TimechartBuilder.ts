import type {Damage} from './damage';
import type {Entry, Timechart} from './timechart';
import {grown} from './grown';
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

/** Gathers the entries of a timechart document; the points of all of them share their columns. */
export class TimechartBuilder {
  private readonly ranges: Range[] = [];
  private exact: Map<number, bigint>|null = null;
  private count = 0;
  private first = 0;
  private times = new Float64Array(1 << 12);
  private values = new Float64Array(1 << 12);
  private textCount = 0;
  private firstText = 0;
  private names = new Uint32Array(1 << 8);
  private details = new Uint32Array(1 << 8);
  private readonly strings: string[] = [];
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
    return { kind: 'timechart', name: this.name, entries, strings: this.strings, damage };
  }

  private string(text: string): number {
    let index = this.stringIndex.get(text);
    if (index === undefined) {
      index = this.strings.push(shownName(text)) - 1;
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
