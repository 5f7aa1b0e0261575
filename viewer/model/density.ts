import type {Profile} from '../document/profile';
import {sampleRange, type Selection} from './Selection';

/** The rows of a time line: a core or a thread each. */
export interface TimeRow {
  readonly kind: 'core'|'thread';
  /** Number of the core, or index of the thread. */
  readonly subject: number;
  readonly samples: number;
}

/** Returns the cores in their order, then the threads, those with most samples first. */
export function timeRows({samples, threads}: Profile): TimeRow[] {
  const rows = (kind: TimeRow['kind'], subjects: Uint16Array|Uint32Array, most: number): TimeRow[] => {
    const counts = new Uint32Array(most);
    for (let i = 0; i < samples.count; ++i) counts[subjects[i]]++;
    const found: TimeRow[] = [];
    counts.forEach((count, subject) => count > 0 && found.push({ kind, subject, samples: count }));
    return found;
  };
  const busiestFirst = (a: TimeRow, b: TimeRow) => b.samples - a.samples;
  return [
    ...rows('core', samples.cores, 0x10000),
    ...rows('thread', samples.threads, threads.length).sort(busiestFirst)
  ];
}

/** Samples in each pixel of some rows: counts[row * columns + column]. */
export interface Density {
  readonly columns: number;
  readonly all: Uint32Array;
  /** Those of the selection only. */
  readonly selected: Uint32Array;
}

/** Counts the samples of [start, end) in the given rows, all of them and the selected ones. */
export function density(
    selection: Selection,
    rows: readonly TimeRow[],
    start: number,
    end: number,
    columns: number,
    ): Density {
  const { profile } = selection;
  const { times, cores, threads } = profile.samples;
  const rowOfCore = new Int32Array(0x10000).fill(-1);
  const rowOfThread = new Int32Array(profile.threads.length).fill(-1);
  rows.forEach(
      ({ kind, subject }, row) => ((kind === 'core' ? rowOfCore : rowOfThread)[subject] = row * columns));
  const scale = columns / (end - start);
  const counter = (counts: Uint32Array) => (i: number) => {
    const column = Math.min(columns - 1, ((times[i] - start) * scale) | 0);
    const core = rowOfCore[cores[i]];
    const thread = rowOfThread[threads[i]];
    if (core >= 0) counts[core + column]++;
    if (thread >= 0) counts[thread + column]++;
  };
  const all = new Uint32Array(rows.length * columns);
  const count = counter(all);
  // The last sample belongs to the last pixel of a time line that ends with it.
  const [first, last] = sampleRange(profile, start, end >= times[times.length - 1] ? Infinity : end);
  for (let i = first; i < last; ++i) count(i);
  if (selection.isEverything) return { columns, all, selected: all };
  const selected = new Uint32Array(all.length);
  const countSelected = counter(selected);
  selection.forEachSample((i) => {
    if (i >= first && i < last) countSelected(i);
  });
  return { columns, all, selected };
}
