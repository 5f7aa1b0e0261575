import {countUntil} from '../document/search';
import type {Direction} from './axis';

/**
 * Returns how many of the ascending times are at or before `time`; those below index `from` are known to be.
 */
export const pointsUntil = (times: ArrayLike<number>, time: number, from = 0) =>
    countUntil(times, time, true, from, times.length);

/**
 * Returns how many of the ascending times are before `time`, which must be between `from` and `to`.
 */
export const pointsBefore = (times: ArrayLike<number>, time: number, from = 0, to = times.length) =>
    countUntil(times, time, false, from, to);

/**
 * Returns the index of the first time after `time`, or of the last before it; it may be beyond either end.
 */
export const pointBeside = (times: Float64Array, time: number, direction: Direction) =>
    direction > 0 ? pointsUntil(times, time) : pointsBefore(times, time) - 1;

/** A stretch of time during which a step function was not 0, in seconds. */
export interface Slice {
  readonly start: number;
  readonly end: number;
}

/** The stretches of a step function from a time on, one after the other; the last one may have no end. */
export class Stretches {
  /** Infinite after the last stretch. */
  start = -Infinity;
  end = -Infinity;
  #at: number;

  constructor(private readonly steps: Steps, from: number) {
    this.#at = Math.max(0, pointsUntil(steps.times, from) - 1);
    this.next();
  }

  next(): void {
    const { times, values } = this.steps;
    let i = this.#at;
    do {
      while (i < times.length && values[i] === 0) ++i;
      this.start = i < times.length ? times[i] : Infinity;
      while (i < times.length && values[i] !== 0) ++i;
      this.end = i < times.length ? times[i] : Infinity;
    } while (this.end === this.start && i < times.length);
    this.#at = i;
  }
}

/** What a step function did within a span. */
export interface Use {
  readonly seconds: number;
  readonly starts: number;
}

/**
 * A step function: 0 before its first point, and each point lasts until the next. The last one lasts to the
 * end of the document, which callers pass as `close`.
 */
export class Steps {
  #known: Float64Array|null = null;
  #knownLongest: number|null = null;

  /** `times` are seconds, ascending. */
  constructor(
      readonly times: Float64Array,
      readonly values: Float64Array,
  ) {}

  /** Returns how long the value was not 0 within [start, end), and how many stretches start there. */
  use(start: number, end: number): Use {
    const { times, values } = this;
    const first = pointsBefore(times, start);
    let on = first > 0 && values[first - 1] !== 0;
    let since = start;
    let seconds = 0;
    let starts = 0;
    for (let i = first; i < times.length && times[i] < end; ++i) {
      if (on === (values[i] !== 0)) continue;
      if (on)
        seconds += times[i] - since;
      else
        ++starts;
      since = times[i];
      on = !on;
    }
    return { seconds: on && end > since ? seconds + end - since : seconds, starts };
  }

  /**
   * Sets each of `shares`, the pixels of [start, end), to the share of its time during which the value was
   * not 0.
   */
  shares(start: number, end: number, close: number, shares: Float32Array): void {
    const { times } = this;
    const pixel = (end - start) / shares.length;
    let index = pointsUntil(times, start);
    let before = this.#onUntil(index, Math.min(start, close));
    for (let x = 0; x < shares.length; ++x) {
      const right = start + (x + 1) * pixel;
      // Most pixels have few points; a longer walk is replaced by a binary search.
      for (let walked = 0; index < times.length && times[index] <= right; ++index) {
        if (++walked > 8) {
          index = pointsUntil(times, right, index);
          break;
        }
      }
      const until = this.#onUntil(index, Math.min(right, close));
      shares[x] = Math.max(0, until - before) / pixel;
      before = until;
    }
  }

  /** Returns the stretch that covers `time`, or null if the value is 0 there. */
  sliceAt(time: number, close: number): Slice|null {
    const { times, values } = this;
    let first = pointsUntil(times, time) - 1;
    if (first < 0 || values[first] === 0) return null;
    let last = first + 1;
    while (first > 0 && values[first - 1] !== 0) --first;
    while (last < times.length && values[last] !== 0) ++last;
    const end = last < times.length ? times[last] : close;
    return time < end ? { start: times[first], end } : null;
  }

  /** Returns the first stretch that starts after `time`, or the last one that starts before it, or null. */
  sliceBeside(time: number, direction: Direction, close: number): Slice|null {
    const { times, values } = this;
    for (let i = pointBeside(times, time, direction); i >= 0 && i < times.length; i += direction) {
      const slice = values[i] === 0 || (values[i - 1] ?? 0) !== 0 ? null : this.sliceAt(times[i], close);
      if (slice) return slice;
    }
    return null;
  }

  /** Length of the longest stretch; infinite if the last one has no end. */
  get longest(): number {
    if (this.#knownLongest === null) {
      this.#knownLongest = 0;
      for (const on = new Stretches(this, -Infinity); on.start < Infinity; on.next())
        this.#knownLongest = Math.max(this.#knownLongest, on.end - on.start);
    }
    return this.#knownLongest;
  }

  /**
   * The on-time before each point, which makes the share of a pixel two look-ups. Most series of a long
   * recording are never looked at, hence not at once.
   */
  get #sums(): Float64Array {
    if (this.#known) return this.#known;
    const { times, values } = this;
    const sums = (this.#known = new Float64Array(times.length));
    for (let i = 1; i < times.length; ++i) {
      sums[i] = sums[i - 1] + (values[i - 1] !== 0 ? times[i] - times[i - 1] : 0);
    }
    return sums;
  }

  /** The on-time before `time`, which `count` points are at or before. */
  #onUntil(count: number, time: number): number {
    if (count === 0) return 0;
    const since = time - this.times[count - 1];
    return this.#sums[count - 1] + (this.values[count - 1] !== 0 && since > 0 ? since : 0);
  }
}
