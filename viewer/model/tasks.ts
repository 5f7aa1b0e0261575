/** What one task did: its runs, one after the other over all cores, and what it waited for before each. */

import type {Direction} from './axis';
import {kept} from './maps';
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
  readonly waitIo: number;
  readonly waitCpu: number;
  readonly waitGpu: number;
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
      kept(this.ofTask, track.subject, () => []).push(track);
      if (track.role === 'running') kept(this.onCore, track.cpu, () => []).push(track);
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

  /**
   * Returns the task's first run that starts after `time`, or the last one that starts before it, or null.
   */
  runBeside(task: number, time: number, direction: Direction): Run|null {
    let best: Run|null = null;
    for (const track of this.running(task)) {
      const slice = track.steps.sliceBeside(time, direction, this.close);
      if (slice !== null && (best === null || (best.start - slice.start) * direction > 0))
        best = asRun(track, slice);
    }
    return best;
  }

  /**
   * Returns the task's wait between the end of its run before this one and its start, or null for the first
   * run.
   */
  waitBefore(run: Run): WaitBefore|null {
    const before = this.runBeside(run.task, run.start, -1);
    if (before === null) return null;
    const waited = { waitIo: 0, waitCpu: 0, waitGpu: 0 };
    for (const { role, steps } of this.ofTask.get(run.task) ?? []) {
      if (role === 'waitIo' || role === 'waitCpu' || role === 'waitGpu')
        waited[role] += steps.onTime(before.end, run.start);
    }
    return { total: Math.max(0, run.start - before.end), ...waited };
  }

  private running(task: number): Track[] {
    return (this.ofTask.get(task) ?? []).filter((track) => track.role === 'running');
  }

  private coreRuns(cpu: number): CoreRuns {
    return kept(this.ofCore, cpu, () => mergeRuns(this.onCore.get(cpu) ?? [], this.close));
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
