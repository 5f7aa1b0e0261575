/** What a row of a timechart shows at a time, in words. */

import {formatDuration, formatShare, formatTime} from '../model/axis';
import {fullLabel, type Lane} from '../model/lanes';
import {pointsBefore, pointsUntil, type Slice} from '../model/steps';
import type {TimechartModel} from '../model/TimechartModel';
import type {Track} from '../model/tracks';
import {shortName} from './dom';

/** Returns the task that a row shows, if it shows one. */
export const taskOf = (lane: Lane): number|undefined =>
    lane.tracks.find((track) => track.entry.id.startsWith('proc-'))?.subject;

/** Returns the core of a core's row, or -1. */
export const coreOf = (lane: Lane): number => (lane.root === 'cpu' ? lane.tracks[0]?.cpu ?? -1 : -1);

/** Returns the stretch of a row's states that covers a time, or null. */
export function sliceOn(lane: Lane, time: number, close: number): Slice|null {
  for (const { shape, steps } of lane.tracks) {
    const slice = shape === 'state' ? steps.sliceAt(time, close) : null;
    if (slice) return slice;
  }
  return null;
}

/** Returns the lines that tell what a row shows; `pixel` is the time around it that the eye takes for it. */
export function describeLane(
    model: TimechartModel, lane: Lane, time: number, pixel: number, mark: number|null): string[] {
  const label = shortName(fullLabel(lane));
  const lines = [label, ...lane.tracks.flatMap((track) => describeTrack(model, track, time, pixel, label))];
  const busy = lane.tracks.find((track) => track.role === 'busy');
  const run = busy ? model.tasks.runOnCore(busy.cpu, time) : null;
  if (run) lines.push(`${shortName(run.label)} for ${formatDuration(run.end - run.start)}`);
  const since = mark === null ? '' : `, ${formatDuration(time - mark)} from the mark`;
  return [...lines, formatTime(time) + since];
}

/** Distance in pixels at which the pointer selects a mark. */
const reach = 3;
const mostMarks = 5;

function describeTrack(
    model: TimechartModel, track: Track, time: number, pixel: number, label: string): string[] {
  const { entry, steps } = track;
  const { times, values } = steps;
  const name = shortName(entry.tip || entry.name);
  // The row's label stands ahead of all.
  const lead = name === label ? '' : `${name}: `;
  if (track.shape === 'state') {
    const slice = steps.sliceAt(time, model.end);
    if (slice) return [`${lead}${formatDuration(slice.end - slice.start)} from ${formatTime(slice.start)}`];
    const share = steps.use(time - pixel, time + pixel).seconds / (2 * pixel);
    return share > 0 ? [`${lead}${formatShare(share)} here`] : [];
  }
  if (track.shape === 'level') {
    // As the document has it: a double would round long numbers.
    const index = pointsUntil(times, time) - 1;
    return [`${lead}${entry.exact?.get(index) ?? values[index] ?? 0}`];
  }
  const from = pointsBefore(times, time - reach * pixel);
  const count = pointsUntil(times, time + reach * pixel) - from;
  const lines = Array.from({ length: Math.min(mostMarks, count) }, (_, i) => {
    const text = model.markerText(track, from + i);
    return text ? `${shortName(text.name)} ${shortName(text.detail)}` : `${lead}${values[from + i]}`;
  });
  return count > mostMarks ? [...lines, `and ${count - mostMarks} more`] : lines;
}
