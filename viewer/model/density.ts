import {zeros} from '../document/grown';
import type {Profile} from '../document/profile';
import type {Extent} from './axis';
import {pointsBefore} from './steps';

/** The rows of a time line: a core or a thread each. */
export interface TimeRow {
  readonly kind: 'core'|'thread';
  /** Number of the core, or index of the thread. */
  readonly subject: number;
  readonly samples: number;
}

const mostCores = 0x10000;

/** Returns the cores in their order, then the threads, those with most samples first. */
export function timeRows({samples, threads}: Profile): TimeRow[] {
  const rows = (kind: TimeRow['kind'], subjects: Uint16Array|Uint32Array, most: number): TimeRow[] => {
    const counts = zeros(most);
    for (let i = 0; i < samples.count; ++i) counts[subjects[i]]++;
    const found: TimeRow[] = [];
    counts.forEach((count, subject) => count > 0 && found.push({ kind, subject, samples: count }));
    return found;
  };
  const busiestFirst = (a: TimeRow, b: TimeRow) => b.samples - a.samples;
  return [
    ...rows('core', samples.cores, mostCores),
    ...rows('thread', samples.threads, threads.length).sort(busiestFirst)
  ];
}

/**
 * Returns the first sample of each pixel of [start, end), and the first one after all; the document's last
 * sample belongs to the last pixel of a span that ends with it.
 */
export function pixelBounds({samples: {times}}: Profile, {start, end}: Extent, pixels: number): Uint32Array {
  const bounds = zeros(pixels + 1);
  for (let x = 0; x <= pixels; ++x)
    bounds[x] = pointsBefore(times, start + ((end - start) * x) / pixels, bounds[x - 1]);
  if (end >= times[times.length - 1]) bounds[pixels] = times.length;
  return bounds;
}

/** The samples of each of some rows: a span is counted without visiting all of them. */
export class RowSamples {
  /** Ascending. */
  readonly #columns: readonly Uint32Array[];

  constructor(
      { samples, threads }: Profile,
      rows: readonly TimeRow[],
      forEachSample: (visit: (index: number) => void) => void,
  ) {
    const rowOfCore = new Int32Array(mostCores).fill(-1);
    const rowOfThread = new Int32Array(threads.length).fill(-1);
    rows.forEach(({ kind, subject }, row) => ((kind === 'core' ? rowOfCore : rowOfThread)[subject] = row));
    const columns = rows.map((row) => zeros(row.samples));
    const counts = zeros(rows.length);
    forEachSample((index) => {
      const core = rowOfCore[samples.cores[index]];
      const thread = rowOfThread[samples.threads[index]];
      if (core >= 0) columns[core][counts[core]++] = index;
      if (thread >= 0) columns[thread][counts[thread]++] = index;
    });
    this.#columns = columns.map((column, row) => column.subarray(0, counts[row]));
  }

  /** Returns the samples of a row in each pixel; `bounds` are those of `pixelBounds`. */
  count(row: number, bounds: Uint32Array): Uint32Array {
    const column = this.#columns[row];
    const counts = zeros(bounds.length - 1);
    let from = firstFrom(column, bounds[0], 0);
    for (let x = 0; x < counts.length; ++x) {
      const to = firstFrom(column, bounds[x + 1], from);
      counts[x] = to - from;
      from = to;
    }
    return counts;
  }
}

/**
 * Returns the first index from `from` on whose sample is not before `sample`; near ones are found soonest.
 */
function firstFrom(column: Uint32Array, sample: number, from: number): number {
  let step = 1;
  for (; column[from + step] < sample; step *= 2) from += step;
  return pointsBefore(column, sample, from, Math.min(column.length, from + step));
}

/** Calls `visit` with the index of each sample of the profile. */
export const everySample = (profile: Profile) => (visit: (index: number) => void) => {
  for (let i = 0; i < profile.samples.count; ++i) visit(i);
};
