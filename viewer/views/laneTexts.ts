/** The words on the rows of a timechart, where there is room for them. */

import type {Lane} from '../model/lanes';
import {pointsBefore} from '../model/steps';
import type {TimechartModel} from '../model/TimechartModel';
import type {Track} from '../model/tracks';
import {shortName} from './dom';
import {bandsOf, colourOf, margin, Picture} from './laneRaster';

/** The task that the kernel runs when there is none. */
const idleTask = 0;

/** What texts are written on. */
export interface Writer {
  /** Writes text at a place in device pixels, cut to `room`, in a colour 0xrrggbb. */
  text(text: string, x: number, middle: number, room: number, colour: number): void;
}

/** Narrower stretches, in pixels of the page, carry no text. */
const leastRoom = 36;

/** Returns whether the texts of a row can be written without long work before. */
export const textsReady = ({tracks}: Lane, {tasks}: TimechartModel): boolean =>
    tracks.every(({role, cpu}) => role !== 'busy' || tasks.isCoreReady(cpu));

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
  const { shown, width, scale } = picture;
  const pixel = (shown.end - shown.start) / width;
  const colour = contrast(colourOf(track, picture.dark));
  model.tasks.forEachRunOnCore(track.cpu, shown.start, shown.end, leastRoom * scale * pixel, (run) => {
    if (run.task === idleTask) return;
    const left = Math.max(0, (run.start - shown.start) / pixel);
    const right = Math.min(width, (run.end - shown.start) / pixel);
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
  const { shown, width, scale } = picture;
  const pixel = (shown.end - shown.start) / width;
  for (let i = pointsBefore(times, shown.start); i < times.length && times[i] < shown.end;) {
    const left = (times[i] - shown.start) / pixel;
    let next = i + 1;
    while (next < times.length && times[next] === times[i]) ++next;
    const right = next < times.length ? Math.min(width, (times[next] - shown.start) / pixel) : width;
    const text = model.markerText(track, i);
    if (text !== null && right - left >= leastRoom * scale) {
      const words = shortName(text.detail === '' ? text.name : `${text.name} ${text.detail}`);
      writer.text(
          words, left + 4 * scale, middle, right - left - 8 * scale, picture.dark ? 0xe6e6e6 : 0x222222);
    }
    // Moments without room are skipped by columns, not one by one.
    i = right - left >= 1 ? next : Math.max(next, pointsBefore(times, times[i] + pixel));
  }
}

/** Returns black or white, whichever is read better on a colour. */
export function contrast(colour: number): number {
  const light = 0.299 * ((colour >> 16) & 255) + 0.587 * ((colour >> 8) & 255) + 0.114 * (colour & 255);
  return light > 140 ? 0x000000 : 0xffffff;
}

/** Writes on a canvas. Widths of texts are kept: measuring costs more than drawing. */
export class CanvasWriter implements Writer {
  private readonly widths = new Map<string, number>();

  constructor(
      private readonly context: CanvasRenderingContext2D,
      private readonly scale: number,
  ) {}

  text(text: string, x: number, middle: number, room: number, colour: number): void {
    const { context } = this;
    context.font = `${11 * this.scale}px system-ui, sans-serif`;
    context.textBaseline = 'middle';
    context.fillStyle = `#${colour.toString(16).padStart(6, '0')}`;
    const fitting = this.fit(text, room);
    if (fitting !== '') context.fillText(fitting, x, middle + 0.5);
  }

  private fit(text: string, room: number): string {
    if (this.width(text) <= room) return text;
    const characters = Math.floor((text.length * (room - this.width('…'))) / this.width(text));
    return characters < 2 ? '' : `${text.slice(0, characters)}…`;
  }

  private width(text: string): number {
    let width = this.widths.get(text);
    if (width === undefined) this.widths.set(text, (width = this.context.measureText(text).width));
    return width;
  }
}
