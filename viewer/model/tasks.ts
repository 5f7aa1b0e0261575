/** What one task did: its runs, one after the other over all cores, and what it waited for before each. */

import type {Direction} from './axis';
import {kept} from './maps';
import {type Slice, Stretches} from './steps';
import {isWait, noWaits, type Track, type Waits} from './tracks';

/** A stretch of time that a task ran on one core. */
export interface Run extends Slice {
  readonly task: number;
  readonly label: string;
  readonly cpu: number;
}

/** How long a task did not run before a run, and how much of that it waited for what, in seconds. */
export interface WaitBefore extends Waits {
  readonly total: number;
}

/** The tracks of all tasks, found by task or by core. */
export class Tasks {
  readonly #ofTask = new Map<number, Track[]>();
  readonly #onCore = new Map<number, Track[]>();

  /** `close` is the end of the document's time, where stretches without a last point end. */
  constructor(
      tracks: Iterable<Track>,
      private readonly close: number,
  ) {
    for (const track of tracks) {
      if (!track.entry.id.startsWith('proc-')) continue;
      kept(this.#ofTask, track.subject, () => []).push(track);
      if (track.role === 'running') kept(this.#onCore, track.cpu, () => []).push(track);
    }
  }

  /** Returns what ran on the core at `time`, or null. */
  runOnCore(cpu: number, time: number): Run|null { return this.#runOf(this.#onCore.get(cpu) ?? [], time); }

  /**
   * Calls `visit` for the part within [start, end) of each run on the core, task by task, if it takes `least`
   * seconds or more.
   */
  forEachRunOnCore(cpu: number, start: number, end: number, least: number, visit: (run: Run) => void): void {
    for (const track of this.#onCore.get(cpu) ?? []) {
      // Seen from afar, no run of most tasks is long enough, and their many points need no look.
      if (track.steps.longest < least) continue;
      const runs = new Stretches(track.steps, start);
      for (; runs.start < end; runs.next()) {
        const run = { start: Math.max(start, runs.start), end: Math.min(end, this.close, runs.end) };
        if (run.end - run.start >= least) visit(asRun(track, run));
      }
    }
  }

  /** Returns the run of the task that covers `time`, or null. */
  runAt(task: number, time: number): Run|null { return this.#runOf(this.#running(task), time); }

  /**
   * Returns the task's first run that starts after `time`, or the last one that starts before it, or null.
   */
  runBeside(task: number, time: number, direction: Direction): Run|null {
    let best: Run|null = null;
    for (const track of this.#running(task)) {
      const slice = track.steps.sliceBeside(time, direction, this.close);
      if (slice && (!best || (best.start - slice.start) * direction > 0)) best = asRun(track, slice);
    }
    return best;
  }

  /**
   * Returns the task's wait between the end of its run before this one and its start, or null for the first
   * run.
   */
  waitBefore(run: Run): WaitBefore|null {
    const before = this.runBeside(run.task, run.start, -1);
    if (!before) return null;
    const waited = {...noWaits };
    for (const { role, steps } of this.#ofTask.get(run.task) ?? []) {
      if (isWait(role)) waited[role] += steps.use(before.end, run.start).seconds;
    }
    return { total: Math.max(0, run.start - before.end), ...waited };
  }

  #running(task: number): Track[] {
    return (this.#ofTask.get(task) ?? []).filter((track) => track.role === 'running');
  }

  #runOf(tracks: readonly Track[], time: number): Run|null {
    for (const track of tracks) {
      const slice = track.steps.sliceAt(time, this.close);
      if (slice) return asRun(track, slice);
    }
    return null;
  }
}

function asRun(track: Track, slice: Slice): Run {
  return {...slice, task: track.subject, label: track.entry.name, cpu: track.cpu };
}
