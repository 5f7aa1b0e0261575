/** What a timechart tells of a span of time. */

import { pointsBefore, Slice } from './steps';
import type { Track } from './tracks';

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
  running: number;
  waitIo: number;
  waitCpu: number;
  waitGpu: number;
  /** How often it was switched in. */
  switches: number;
  /** The longest time that it did not run. */
  longestGap: number;
  /** By the counters' names. A span that holds a part of a run takes that part of its count. */
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

/** Returns what the series tell of [start, end), which lies within the document's time. */
export function spanUse(all: readonly Track[], start: number, end: number): SpanUse {
  const cores: CoreUse[] = [];
  const interrupts = new Map<number, { label: string; count: number; seconds: number }>();
  const tasks = new Map<number, TaskUse>();
  const runs = new Map<number, Track[]>();
  const counters = new Map<string, number>();
  let switches = 0;
  for (const track of all) {
    const { role, steps, subject, cpu, entry } = track;
    if (role === 'busy') {
      cores.push({ label: entry.name, cpu, busy: steps.onTime(start, end), longestGap: longestGap([track], start, end) });
    } else if (role === 'interrupt') {
      const use = interrupts.get(subject) ?? { label: track.label, count: 0, seconds: 0 };
      use.count += steps.startsWithin(start, end);
      use.seconds += steps.onTime(start, end);
      interrupts.set(subject, use);
    } else if (entry.id.startsWith('proc-')) {
      let use = tasks.get(subject);
      if (use === undefined) tasks.set(subject, (use = noUse(subject, entry.name)));
      if (role === 'running') {
        const times = steps.startsWithin(start, end);
        use.running += steps.onTime(start, end);
        use.switches += times;
        switches += times;
        const others = runs.get(subject);
        if (others === undefined) runs.set(subject, [track]);
        else others.push(track);
      } else if (role === 'waitIo' || role === 'waitCpu' || role === 'waitGpu') {
        use[role] += steps.onTime(start, end);
      } else if (role === 'counter') {
        const sum = counted(track, start, end);
        use.counters.set(entry.tip, (use.counters.get(entry.tip) ?? 0) + sum);
        counters.set(entry.tip, (counters.get(entry.tip) ?? 0) + sum);
      }
    }
  }
  for (const [task, tracks] of runs) tasks.get(task)!.longestGap = longestGap(tracks, start, end);
  const active = [...tasks.values()].filter((use) => use.running + use.waitIo + use.waitCpu + use.waitGpu > 0);
  active.sort((a, b) => Number(a.task === idle) - Number(b.task === idle) || b.running - a.running || a.task - b.task);
  const used = [...interrupts.values()].filter((use) => use.count > 0 || use.seconds > 0);
  return { start, end, cores, interrupts: used.sort((a, b) => b.count - a.count), tasks: active, switches, counters };
}

function noUse(task: number, label: string): TaskUse {
  return {
    task, label, running: 0, waitIo: 0, waitCpu: 0, waitGpu: 0, switches: 0, longestGap: 0, counters: new Map(),
  };
}

/** Returns the longest time of [start, end) during which none of the series was on, in seconds. */
export function longestGap(all: readonly Track[], start: number, end: number): number {
  const slices: Slice[] = [];
  for (const { steps } of all) steps.forEachSlice(start, end, (from, to) => slices.push({ start: from, end: to }));
  if (all.length > 1) slices.sort((a, b) => a.start - b.start);
  let longest = 0;
  let covered = start;
  for (const slice of slices) {
    longest = Math.max(longest, slice.start - covered);
    covered = Math.max(covered, slice.end);
  }
  return Math.max(longest, end - covered);
}

/** Returns how far a counter moved within [start, end): each point counts evenly over the time up to the next one. */
export function counted({ steps: { times, values } }: Track, start: number, end: number): number {
  let sum = 0;
  for (let i = Math.max(0, pointsBefore(times, start) - 1); i + 1 < times.length && times[i] < end; ++i) {
    const from = times[i];
    const to = times[i + 1];
    if (to > from) sum += (values[i] * Math.max(0, Math.min(to, end) - Math.max(from, start))) / (to - from);
    else if (from >= start) sum += values[i];
  }
  return sum;
}
