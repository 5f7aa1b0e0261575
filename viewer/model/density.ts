import type { Profile } from '../document/profile';
import { sampleRange } from './Selection';

/** Samples in each pixel of the time line, one row for each core or thread. */
export interface Density {
  readonly rows: number;
  readonly columns: number;
  /** counts[row * columns + column]. */
  readonly counts: Uint32Array;
  /** The most that any pixel of a row has. */
  readonly most: Uint32Array;
}

/** Counts the samples of [start, end) by `rowOf`, the row of each core or thread. */
export function density(
  profile: Profile,
  subjects: Uint16Array | Uint32Array,
  rowOf: Int32Array,
  rows: number,
  start: number,
  end: number,
  columns: number,
): Density {
  const counts = new Uint32Array(rows * columns);
  const { times } = profile.samples;
  const scale = columns / (end - start);
  // The last sample belongs to the last pixel of a time line that ends with it.
  const [first, last] = sampleRange(profile, start, end >= times[times.length - 1] ? Infinity : end);
  for (let i = first; i < last; ++i) {
    const row = rowOf[subjects[i]];
    if (row >= 0) counts[row * columns + Math.min(columns - 1, ((times[i] - start) * scale) | 0)]++;
  }
  const most = new Uint32Array(rows);
  for (let row = 0; row < rows; ++row) {
    for (let at = row * columns; at < (row + 1) * columns; ++at) if (counts[at] > most[row]) most[row] = counts[at];
  }
  return { rows, columns, counts, most };
}
