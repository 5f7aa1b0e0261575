/** What one task did: its runs, one after the other over all cores, and what it waited for before each. */

import {pointsUntil, Slice} from './steps';
import type {Track} from './tracks';

/** A stretch of time that a task ran on one core. */
export interface Run extends Slice {
  readonly task: number;
  readonly label: string;
  readonly cpu: number;
}

/** How long a task did not run before a run, and how much of that it waited for what, in seconds. */
export interface WaitBefore {
  readonly total: number;
  readonly io: number;
  readonly cpu: number;
  readonly gpu: number;
}

/** All runs on one core in the order of time, as columns. */
interface CoreRuns {
  readonly starts: Float64Array;
  readonly ends: Float64Array;
  readonly tracks: Track[];
}

/** The tracks of all tasks, found by task or by core. */
export class Tasks {
  private readonly ofTask = new Map<number, Track[]>();
  private readonly onCore = new Map<number, Track[]>();
  private readonly ofCore = new Map<number, CoreRuns>();

  /** `close` is the end of the document's time, where stretches without a last point end. */
  constructor(
      tracks: Iterable<Track>,
      private readonly close: number,
  ) {
    for (const track of tracks) {
      if (!track.entry.id.startsWith('proc-')) continue;
      append(this.ofTask, track.subject, track);
      if (track.role === 'running') append(this.onCore, track.cpu, track);
    }
  }

  /**
   * Returns whether the runs on a core have been merged, which is done at their first use and takes its
   * time.
   */
  isCoreReady(cpu: number): boolean { return this.ofCore.has(cpu); }

  /** Returns what ran on the core at `time`, or null. */
  runOnCore(cpu: number, time: number): Run|null {
    const runs = this.coreRuns(cpu);
    const index = pointsUntil(runs.starts, time) - 1;
    return index >= 0 && time < runs.ends[index] ? runOf(runs, index, cpu) : null;
  }

  /**
   * Calls `visit` for each run on the core that shares time with [start, end) and takes `least` seconds or
   * more.
   */
  forEachRunOnCore(cpu: number, start: number, end: number, least: number, visit: (run: Run) => void): void {
    const runs = this.coreRuns(cpu);
    for (let i = Math.max(0, pointsUntil(runs.starts, start) - 1);
         i < runs.starts.length && runs.starts[i] < end; ++i) {
      if (runs.ends[i] > start && runs.ends[i] - runs.starts[i] >= least) visit(runOf(runs, i, cpu));
    }
  }

  /** Returns the run of the task that covers `time`, or null. */
  runAt(task: number, time: number): Run|null {
    for (const track of this.running(task)) {
      const slice = track.steps.sliceAt(time, this.close);
      if (slice !== null) return asRun(track, slice);
    }
    return null;
  }

  /** Returns the task's first run that starts after `time`, or null. */
  runAfter(task: number, time: number): Run|null {
    let best: Run|null = null;
    for (const track of this.running(task)) {
      const slice = track.steps.sliceAfter(time, this.close);
      if (slice !== null && (best === null || slice.start < best.start)) best = asRun(track, slice);
    }
    return best;
  }

  /** Returns the task's last run that starts before `time`, or null. */
  runBefore(task: number, time: number): Run|null {
    let best: Run|null = null;
    for (const track of this.running(task)) {
      const slice = track.steps.sliceBefore(time, this.close);
      if (slice !== null && (best === null || slice.start > best.start)) best = asRun(track, slice);
    }
    return best;
  }

  /**
   * Returns the task's wait between the end of its run before this one and its start, or null for the first
   * run.
   */
  waitBefore(run: Run): WaitBefore|null {
    const before = this.runBefore(run.task, run.start);
    if (before === null) return null;
    const waited = { io: 0, cpu: 0, gpu: 0 };
    for (const { role, steps } of this.ofTask.get(run.task) ?? []) {
      if (role === 'waitIo')
        waited.io += steps.onTime(before.end, run.start);
      else if (role === 'waitCpu')
        waited.cpu += steps.onTime(before.end, run.start);
      else if (role === 'waitGpu')
        waited.gpu += steps.onTime(before.end, run.start);
    }
    return { total: Math.max(0, run.start - before.end), ...waited };
  }

  private running(task: number): Track[] {
    return (this.ofTask.get(task) ?? []).filter((track) => track.role === 'running');
  }

  private coreRuns(cpu: number): CoreRuns {
    let runs = this.ofCore.get(cpu);
    if (runs === undefined) this.ofCore.set(cpu, (runs = mergeRuns(this.onCore.get(cpu) ?? [], this.close)));
    return runs;
  }
}

/**
 * Merges the runs of all tasks of a core. The starts alone are sorted, natively; the rest looks its position
 * up.
 */
function mergeRuns(tracks: readonly Track[], close: number): CoreRuns {
  let count = 0;
  for (const { steps } of tracks) steps.forEachSlice(-Infinity, close, () => ++count);
  const starts = new Float64Array(count);
  for (const { steps } of tracks) steps.forEachSlice(-Infinity, close, (from) => (starts[--count] = from));
  starts.sort();
  const ends = new Float64Array(starts.length);
  const owners = new Array<Track>(starts.length);
  for (const track of tracks) {
    track.steps.forEachSlice(-Infinity, close, (from, to) => {
      let index = pointsUntil(starts, from) - 1;
      while (owners[index] !== undefined) --index;
      ends[index] = to;
      owners[index] = track;
    });
  }
  return { starts, ends, tracks: owners };
}

function runOf({ starts, ends, tracks }: CoreRuns, index: number, cpu: number): Run {
  const { subject, entry } = tracks[index];
  return { start: starts[index], end: ends[index], task: subject, label: entry.name, cpu };
}

function asRun({ entry, subject, cpu }: Track, slice: Slice): Run {
  return {...slice, task: subject, label: entry.name, cpu };
}

function append<T>(lists: Map<number, T[]>, key: number, item: T): void {
  const list = lists.get(key);
  if (list === undefined)
    lists.set(key, [item]);
  else
    list.push(item);
}
