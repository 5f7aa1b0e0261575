/** The words on the rows of a timechart, where there is room for them. */

import type {Lane} from '../model/lanes';
import {pointsBefore} from '../model/steps';
import type {TimechartModel} from '../model/TimechartModel';
import type {Track} from '../model/tracks';
import {shortName} from './dom';
import {bandsOf, colourOf, margin, Picture} from './laneRaster';
import type {Writer} from './texts';

/** The task that the kernel runs when there is none. */
const idleTask = 0;

/** Narrower stretches, in pixels of the page, carry no text. */
const leastRoom = 36;

/** Writes the texts of a row whose uppermost pixel is at `top`, in device pixels. */
export function writeTexts(
    writer: Writer, model: TimechartModel, lane: Lane, top: number, picture: Picture): void {
  let y = top + (margin / 2) * picture.scale;
  for (const band of bandsOf(lane)) {
    const height = band.height * picture.scale;
    const middle = y + height / 2;
    for (const track of band.tracks) {
      if (track.role === 'busy')
        writeTasks(writer, model, track, middle, picture);
      else if (band.kind === 'texts')
        writeMarkers(writer, model, track, middle, picture);
    }
    y += height;
  }
}

/** Writes on a core's busy time which task ran. */
function writeTasks(
    writer: Writer, model: TimechartModel, track: Track, middle: number, picture: Picture): void {
  const { axis, scale } = picture;
  const { width } = axis;
  const least = leastRoom * scale * axis.pixel;
  // A core is busy during every run.
  if (track.steps.longest < least) return;
  const colour = contrast(colourOf(track, picture.dark));
  model.tasks.forEachRunOnCore(track.cpu, axis.shown.start, axis.shown.end, least, (run) => {
    if (run.task === idleTask) return;
    const left = Math.max(0, axis.x(run.start));
    const right = Math.min(width, axis.x(run.end));
    if (right - left >= leastRoom * scale)
      writer.text(taskName(run.label), left + 3 * scale, middle, right - left - 6 * scale, colour);
  });
}

/** A task's label is its number and its name; the name alone has more room. */
const taskName = (label: string) => shortName(label.replace(/^\d+ - (?=.)/, ''));

/** Writes a marker's name after its moment, as far as the next one. */
function writeMarkers(
    writer: Writer, model: TimechartModel, track: Track, middle: number, picture: Picture): void {
  const { times } = track.steps;
  const { axis, scale } = picture;
  const { shown, width, pixel } = axis;
  for (let i = pointsBefore(times, shown.start); i < times.length && times[i] < shown.end;) {
    const left = axis.x(times[i]);
    let next = i + 1;
    while (next < times.length && times[next] === times[i]) ++next;
    const right = next < times.length ? Math.min(width, axis.x(times[next])) : width;
    const text = model.markerText(track, i);
    if (text && right - left >= leastRoom * scale) {
      const words = shortName(text.detail === '' ? text.name : `${text.name} ${text.detail}`);
      writer.text(
          words, left + 4 * scale, middle, right - left - 8 * scale, picture.dark ? '#e6e6e6' : '#222');
    }
    // Moments without room are skipped by columns, not one by one.
    i = right - left >= 1 ? next : Math.max(next, pointsBefore(times, times[i] + pixel));
  }
}

/** Returns black or white, whichever is read better on a colour. */
function contrast(colour: number): string {
  const light = 0.299 * ((colour >> 16) & 255) + 0.587 * ((colour >> 8) & 255) + 0.114 * (colour & 255);
  return light > 140 ? '#000' : '#fff';
}
