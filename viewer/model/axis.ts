/** Times on the axis that all views share, and how they are written. */

/** Seconds. */
export interface Extent {
  readonly start: number;
  readonly end: number;
}

/** Returns the number of [least, most] that is nearest to `value`; `least` if there is none. */
export const clamped = (value: number, least: number, most: number): number =>
    Math.max(least, Math.min(value, most));

/** Backward or forward. */
export type Direction = -1|1;

/** An extent over a number of pixels. */
export class Scale {
  /** Seconds of one pixel. */
  readonly pixel: number;

  constructor(
      readonly shown: Extent,
      readonly width: number,
  ) {
    this.pixel = (shown.end - shown.start) / width;
  }

  /** Returns where a time is, in pixels from the left. */
  x(time: number): number { return (time - this.shown.start) / this.pixel; }

  time(x: number): number { return this.shown.start + x * this.pixel; }
}

/** Returns the time that the documents cover together. */
export function commonExtent(...parts: readonly(Extent | null)[]): Extent {
  let start = Infinity;
  let end = -Infinity;
  for (const part of parts) {
    if (!part) continue;
    start = Math.min(start, part.start);
    end = Math.max(end, part.end);
  }
  if (!(end >= start)) return { start: 0, end: 1 };
  // A document of one moment still needs an axis; a microsecond is what documents resolve.
  return end > start ? { start, end } : { start: start - 0.5e-6, end: end + 0.5e-6 };
}

/** The closest zoom: one microsecond over the whole width. */
export const closestZoom = 1e-6;

/**
 * Returns the part of `whole` that results when `shown` is scaled about `at` and then moved by `shift`
 * seconds.
 */
export function zoomed(shown: Extent, whole: Extent, factor: number, at: number, shift = 0): Extent {
  const wholeLength = whole.end - whole.start;
  const length = clamped((shown.end - shown.start) * factor, Math.min(closestZoom, wholeLength), wholeLength);
  const part = (at - shown.start) / (shown.end - shown.start);
  const start = clamped(at - part * length + shift, whole.start, whole.end - length);
  return { start, end: start + length };
}

const units: readonly[number, string][] = [[1, 's'], [1e-3, 'ms'], [1e-6, 'µs']];

/** Returns a length of time such as `12.4 ms`, with four significant digits. */
export function formatDuration(seconds: number): string {
  if (seconds === 0) return '0 s';
  const [unit, name] = units.find(([size]) => Math.abs(seconds) >= size * 0.9995) ?? units[units.length - 1];
  return `${Number((seconds / unit).toPrecision(4))} ${name}`;
}

/** Returns a moment in seconds, to the microsecond. */
export const formatTime = (seconds: number): string => `${seconds.toFixed(6)} s`;

/** Returns a share such as `24.7%`. */
export const formatShare = (share: number): string => `${(100 * share).toFixed(1)}%`;

export interface Tick {
  readonly time: number;
  readonly label: string;
}

/** Returns moments at round distances, at most about one in each `1 / most` of the extent. */
export function ticks({start, end}: Extent, most: number): Tick[] {
  const least = (end - start) / Math.max(1, most);
  let step = 10 ** Math.floor(Math.log10(least));
  step *= [1, 2, 5, 10].find((factor) => step * factor >= least * 0.999) ?? 10;
  const decimals = Math.min(9, Math.max(0, -Math.floor(Math.log10(step * 1.001))));
  const found: Tick[] = [];
  for (let i = Math.ceil(start / step); i * step <= end && found.length <= 2 * most; ++i) {
    found.push({ time: i * step, label: `${(i * step).toFixed(decimals)} s` });
  }
  return found;
}
