/** Paints the rows of a timechart, so that each column of pixels shows the exact shares of its time. */

import type {Extent} from '../model/axis';
import type {Lane} from '../model/lanes';
import {pointsBefore, pointsUntil} from '../model/steps';
import type {Track} from '../model/tracks';

/** What is painted on: pixels or the elements of a vector picture. Colours are 0xrrggbb. */
export interface Surface {
  /** Fills columns [left, right); rows may be fractions, whose pixels are blended. */
  box(left: number, right: number, top: number, bottom: number, colour: number): void;
}

export interface Picture {
  readonly shown: Extent;
  /** End of the document's time: states without a last point end here. */
  readonly close: number;
  readonly width: number;
  /** Device pixels for each pixel of the page. */
  readonly scale: number;
  readonly dark: boolean;
}

type BandKind = 'states'|'level'|'marks'|'texts';

/** A part of a row, one above the other: series that may be on together do not share one. */
interface Band {
  readonly kind: BandKind;
  readonly height: number;
  readonly tracks: Track[];
}

const heights = {
  states: 13,
  overlap: 4,
  level: 17,
  marks: 6,
  texts: 13
};
/** A row of marks alone is as high as the words of its label. */
const onlyMarks = 13;
const headingHeight = 17;
export const margin = 4;

/** Returns the bands of a row, from top to bottom; heights are in pixels of the page. */
export function bandsOf(lane: Lane): Band[] {
  const overlap: Band = { kind: 'states', height: heights.overlap, tracks: [] };
  const states: Band = { kind: 'states', height: heights.states, tracks: [] };
  const level: Band = { kind: 'level', height: heights.level, tracks: [] };
  const marks: Band = { kind: 'marks', height: heights.marks, tracks: [] };
  const texts: Band = { kind: 'texts', height: heights.texts, tracks: [] };
  for (const track of lane.tracks) {
    if (track.shape === 'level')
      level.tracks.push(track);
    else if (track.entry.type === 'events')
      texts.tracks.push(track);
    else if (track.shape === 'marks')
      marks.tracks.push(track);
    // A task may sleep, or even run, while it waits for the GPU.
    else if (track.role === 'waitGpu')
      overlap.tracks.push(track);
    else
      states.tracks.push(track);
  }
  const bands = [texts, marks, states, overlap, level].filter((band) => band.tracks.length > 0);
  return bands.length === 1 && bands[0] === marks ? [{...marks, height: onlyMarks }] : bands;
}

/** Returns the height of a row in pixels of the page. */
export function laneHeight(lane: Lane): number {
  const bands = bandsOf(lane);
  if (bands.length === 0) return headingHeight;
  return bands.reduce((height, band) => height + band.height, margin);
}

/** Colours of cores for which the document has none, from the fifth on. */
const otherColours = [0x8c564b, 0xe377c2, 0x17a2a2, 0xbc8f2f, 0x7f7f7f, 0xd9534f, 0x3f8fd2, 0x6f8f3f];

/** Returns the colour of a series: the document's own for the page's background, if it has one. */
export function colourOf(track: Track, dark: boolean): number {
  const hint = dark ? track.entry.black : track.entry.white;
  if (/^#[0-9a-fA-F]{6}$/.test(hint)) return parseInt(hint.slice(1), 16);
  return otherColours[Math.max(0, track.cpu) % otherColours.length];
}

/** Paints a row whose uppermost pixel is at `top`, in device pixels. */
export function paintLane(surface: Surface, lane: Lane, top: number, picture: Picture): void {
  let y = top + (margin / 2) * picture.scale;
  for (const band of bandsOf(lane)) {
    const bottom = y + band.height * picture.scale;
    if (band.kind === 'states')
      paintStates(surface, band.tracks, y, bottom, picture);
    else if (band.kind === 'level')
      for (const track of band.tracks) paintLevel(surface, track, y + 1, bottom, picture);
    else
      for (const track of band.tracks) paintMarks(surface, track, y, bottom, picture);
    y = bottom;
  }
}

/** Stacks the shares of several states in each column; equal columns are painted as one box. */
function paintStates(
    surface: Surface, tracks: readonly Track[], top: number, bottom: number, picture: Picture): void {
  const { width, shown, close } = picture;
  const used = new Float32Array(width);
  const shares = new Float32Array(width);
  for (const track of tracks) {
    if (!touches(track, shown)) continue;
    track.steps.shares(shown.start, shown.end, close, shares);
    const colour = colourOf(track, picture.dark);
    for (let x = 0; x < width;) {
      const share = shares[x];
      const below = used[x];
      let right = x + 1;
      while (right < width && shares[right] === share && used[right] === below) ++right;
      if (share > 0) {
        // Rounding and overlaps must not leave the band.
        const above = Math.min(1, below + share);
        surface.box(x, right, bottom - above * (bottom - top), bottom - below * (bottom - top), colour);
        used.fill(above, x, right);
      }
      x = right;
    }
  }
}

/**
 * Shows a value as bars on a scale up to the greatest of the whole series: the least of a column solid, the
 * greatest pale.
 */
function paintLevel(surface: Surface, track: Track, top: number, bottom: number, picture: Picture): void {
  const { times, values } = track.steps;
  const { shown, width } = picture;
  if (track.peak <= 0 || !touches(track, shown)) return;
  const colour = colourOf(track, picture.dark);
  const pale = mix(colour, picture.dark ? 0x000000 : 0xffffff, 0.5);
  const high = (value: number) => bottom - (value / track.peak) * (bottom - top);
  const pixel = (shown.end - shown.start) / width;
  const last = Math.min(width, Math.ceil((picture.close - shown.start) / pixel));
  let index = pointsUntil(times, shown.start);
  for (let x = 0; x < last;) {
    let least = index > 0 ? values[index - 1] : 0;
    let most = least;
    const end = shown.start + (x + 1) * pixel;
    let right = x + 1;
    if (index < times.length && times[index] < end) {
      for (; index < times.length && times[index] < end; ++index) {
        least = Math.min(least, values[index]);
        most = Math.max(most, values[index]);
      }
    } else {
      const next = index < times.length ? Math.floor((times[index] - shown.start) / pixel) : last;
      right = Math.min(last, Math.max(right, next));
    }
    if (most > least) surface.box(x, right, high(most), high(least), pale);
    if (least > 0) surface.box(x, right, high(least), bottom, colour);
    x = right;
  }
}

/**
 * Shows each moment as a column; a value of 1 beside greater ones, such as work that ends no frame, is half
 * as high.
 */
function paintMarks(surface: Surface, track: Track, top: number, bottom: number, picture: Picture): void {
  const { times, values } = track.steps;
  const { shown, width } = picture;
  const colour = colourOf(track, picture.dark);
  const pixel = (shown.end - shown.start) / width;
  const low = track.entry.type === 'events' ? top : (top + bottom) / 2;
  for (let i = pointsBefore(times, shown.start); i < times.length && times[i] < shown.end;) {
    const x = Math.floor((times[i] - shown.start) / pixel);
    const end = shown.start + (x + 1) * pixel;
    let most = values[i];
    for (++i; i < times.length && times[i] < end; ++i) most = Math.max(most, values[i]);
    surface.box(x, Math.min(width, x + Math.round(picture.scale)), most > 1 ? top : low, bottom, colour);
  }
}

/** Returns whether the series can show anything within the extent. */
function touches({ steps: { times } }: Track, { start, end }: Extent): boolean {
  return times.length > 0 && times[0] < end && end > start;
}

/** Returns `share` of the second colour over the first. */
export function mix(first: number, second: number, share: number): number {
  const channel = (shift: number) => {
    const from = (first >> shift) & 255;
    return Math.round(from + (((second >> shift) & 255) - from) * share) << shift;
  };
  return channel(16) | channel(8) | channel(0);
}

/** Pixels as a canvas takes them. */
export class Pixels implements Surface {
  readonly image: ImageData;
  private readonly words: Uint32Array;

  constructor(
      readonly width: number,
      readonly height: number,
  ) {
    this.image = new ImageData(width, height);
    this.words = new Uint32Array(this.image.data.buffer);
  }

  clear(colour: number): void { this.words.fill(word(colour)); }

  box(left: number, right: number, top: number, bottom: number, colour: number): void {
    const first = Math.max(0, Math.ceil(top));
    const last = Math.min(this.height, Math.floor(bottom));
    const full = word(colour);
    for (let y = first; y < last; ++y) this.row(y, left, right, full);
    if (last < first) {
      this.blend(last, left, right, colour, bottom - top);
      return;
    }
    if (first > top) this.blend(first - 1, left, right, colour, first - top);
    if (bottom > last) this.blend(last, left, right, colour, bottom - last);
  }

  private row(y: number, left: number, right: number, full: number): void {
    const start = y * this.width;
    // A call costs more than a few stores.
    if (right - left > 8)
      this.words.fill(full, start + left, start + right);
    else
      for (let x = left; x < right; ++x) this.words[start + x] = full;
  }

  private blend(y: number, left: number, right: number, colour: number, share: number): void {
    if (y < 0 || y >= this.height) return;
    for (let i = y * this.width + left; i < y * this.width + right; ++i) {
      this.words[i] = word(mix(swapped(this.words[i]), colour, share));
    }
  }
}

/** Canvases store red first, which is the lowest byte of a word on every machine that runs a browser. */
const swapped = (value: number) => ((value & 255) << 16) | (value & 0xff00) | ((value >> 16) & 255);
const word = (colour: number) => (0xff000000 | swapped(colour)) >>> 0;
