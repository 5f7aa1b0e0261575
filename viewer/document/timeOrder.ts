import {zeros} from './grown';

/**
 * Returns the indices of `times` in ascending order, or null if they are so already. perf writes its buffers
 * of each core in turns, so that a recording is a row of ascending runs; they are merged two by two.
 */
export function timeOrder(times: ArrayLike<number>): Uint32Array|null {
  let runs = runStarts(times);
  if (runs.length <= 2) return null;
  let from = zeros(times.length);
  for (let i = 0; i < times.length; ++i) from[i] = i;
  let to = zeros(times.length);
  while (runs.length > 2) {
    const merged = [0];
    for (let run = 0; run + 1 < runs.length; run += 2) {
      const end = runs[Math.min(run + 2, runs.length - 1)];
      mergeRuns(times, from, to, runs[run], runs[run + 1], end);
      merged.push(end);
    }
    runs = merged;
    [from, to] = [to, from];
  }
  return from;
}

/** Returns where ascending runs start, and the end of the last. */
function runStarts(times: ArrayLike<number>): number[] {
  const starts = [0];
  for (let i = 1; i < times.length; ++i)
    if (times[i] < times[i - 1]) starts.push(i);
  starts.push(times.length);
  return starts;
}

function mergeRuns(
    times: ArrayLike<number>,
    from: Uint32Array,
    to: Uint32Array,
    start: number,
    middle: number,
    end: number,
    ): void {
  let left = start;
  let right = middle;
  for (let i = start; i < end; ++i) {
    const takeLeft = right >= end || (left < middle && times[from[left]] <= times[from[right]]);
    to[i] = takeLeft ? from[left++] : from[right++];
  }
}
