/** Statistics of a timechart over a span of time. */

import {timeOrder} from '../document/timeOrder';

import {kept} from './maps';
import {pointsBefore, Stretches} from './steps';

import {isWait, noWaits, type Track} from './tracks';

/** The task that the kernel runs when there is none. */
const idle = 0;

export interface CoreUse {
  readonly label: string;
  readonly cpu: number;
  /** Seconds. */
  readonly busy: number;
  /** The longest time that the core was not busy, in seconds. */
  readonly longestGap: number;
}

export interface InterruptUse {
  readonly label: string;
  readonly count: number;
  readonly seconds: number;
}

export interface TaskUse {
  readonly task: number;
  readonly label: string;
  /** Seconds, as are the waits and the gap. */
  readonly running: number;
  readonly waitIo: number;
  readonly waitCpu: number;
  readonly waitGpu: number;
  /** How often it was switched in. */
  readonly switches: number;
  /** The longest time that it did not run. */
  readonly longestGap: number;
  /** By the counters' names. Of a run that is partly in the span that part of its count is taken. */
  readonly counters: Map<string, number>;
}

export interface SpanUse {
  readonly start: number;
  readonly end: number;
  readonly cores: CoreUse[];
  readonly interrupts: InterruptUse[];
  /** Those that ran or waited, the longest running first and the idle task last. */
  readonly tasks: TaskUse[];
  /** Of all cores, those to the idle task included. */
  readonly switches: number;
  readonly counters: Map<string, number>;
}

/**
 * Computes the statistics of [start, end), which must be within the document's time. Pauses after each
 * core, interrupt and task: a long recording takes longer than a frame.
 */
export function*
    reckonSpan(all: readonly Track[], start: number, end: number): Generator<void, SpanUse, void> {
  const cores: CoreUse[] = [];
  const interrupts: InterruptUse[] = [];
  const tasks: TaskUse[] = [];
  for (const track of all) {
    if (track.role !== 'busy') continue;
    const busy = track.steps.use(start, end).seconds;
    cores.push({ label: track.label, cpu: track.cpu, busy, longestGap: longestGap([track], start, end) });
    yield;
  }
  for (const tracks of bySubject(all, (track) => track.role === 'interrupt')) {
    const use = interruptUse(tracks, start, end);
    if (use.count > 0 || use.seconds > 0) interrupts.push(use);
    yield;
  }
  for (const tracks of bySubject(all, (track) => track.entry.id.startsWith('proc-'))) {
    const use = taskUse(tracks, start, end);
    if (use.running + use.waitIo + use.waitCpu + use.waitGpu > 0) tasks.push(use);
    yield;
  }
  interrupts.sort((a, b) => b.count - a.count);
  tasks.sort(
      (a, b) =>
          Number(a.task === idle) - Number(b.task === idle) || b.running - a.running || a.task - b.task);
  const counters = new Map<string, number>();
  for (const task of tasks)
    for (const [name, sum] of task.counters) add(counters, name, sum);
  return {
    start,
    end,
    cores,
    interrupts,
    tasks,
    switches: tasks.reduce((sum, task) => sum + task.switches, 0),
    counters
  };
}

function interruptUse(tracks: readonly Track[], start: number, end: number): InterruptUse {
  let count = 0;
  let seconds = 0;
  for (const { steps } of tracks) {
    const use = steps.use(start, end);
    count += use.starts;
    seconds += use.seconds;
  }
  return { label: tracks[0].label, count, seconds };
}

function taskUse(tracks: readonly Track[], start: number, end: number): TaskUse {
  const seconds = { running: 0, ...noWaits };
  const counters = new Map<string, number>();
  let switches = 0;
  for (const track of tracks) {
    const { role } = track;
    if (role === 'running' || isWait(role)) {
      const use = track.steps.use(start, end);
      seconds[role] += use.seconds;
      if (role === 'running') switches += use.starts;
    }
    if (role === 'counter') add(counters, track.entry.tip, counted(track, start, end));
  }
  const runs = tracks.filter((track) => track.role === 'running');
  return {
    task: tracks[0].subject,
    label: tracks[0].label,
    ...seconds,
    switches,
    counters,
    /** Calculated only when it is read, as it takes time. */
    get longestGap() { return longestGap(runs, start, end); },
  };
}

function bySubject(all: readonly Track[], wanted: (track: Track) => boolean): Iterable<Track[]> {
  const found = new Map<number, Track[]>();
  for (const track of all) {
    if (wanted(track)) kept(found, track.subject, () => []).push(track);
  }
  return found.values();
}

function add(sums: Map<string, number>, name: string, more: number): void {
  sums.set(name, (sums.get(name) ?? 0) + more);
}

/** Returns the longest time of [start, end) during which none of the tracks was on, in seconds. */
export function longestGap(all: readonly Track[], start: number, end: number): number {
  const starts: number[] = [];
  const ends: number[] = [];
  for (const track of all) {
    for (const on = new Stretches(track.steps, start); on.start < end; on.next()) {
      starts.push(on.start);
      ends.push(on.end);
    }
  }
  const order = timeOrder(starts);
  let longest = 0;
  let last = start;
  for (let i = 0; i < starts.length; ++i) {
    const at = order ? order[i] : i;
    longest = Math.max(longest, starts[at] - last);
    last = Math.max(last, ends[at]);
  }
  return Math.max(longest, end - last);
}

/**
 * Returns how far a counter moved within [start, end): each point counts evenly over the time up to the next
 * one.
 */
export function counted({steps: {times, values}}: Track, start: number, end: number): number {
  let sum = 0;
  for (let i = Math.max(0, pointsBefore(times, start) - 1); i + 1 < times.length && times[i] < end; ++i) {
    const from = times[i];
    const to = times[i + 1];
    if (to > from)
      sum += (values[i] * Math.max(0, Math.min(to, end) - Math.max(from, start))) / (to - from);
    else
      sum += values[i];
  }
  return sum;
}
