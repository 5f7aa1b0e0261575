/** Paints the rows of a timechart, so that each column of pixels shows the exact shares of its time. */

import type {Extent, Scale} from '../model/axis';
import type {Lane} from '../model/lanes';
import {pointsBefore, pointsUntil} from '../model/steps';
import type {Track} from '../model/tracks';
import {devicePixels} from './dom';

/** The painting surface: pixels or the elements of a vector picture. Colours are 0xrrggbb. */
export interface Surface {
  /** Fills columns [left, right); rows may be fractions, whose pixels are blended. */
  box(left: number, right: number, top: number, bottom: number, colour: number): void;
}

export interface Picture {
  readonly axis: Scale;
  /** End of the document's time: states without a last point end here. */
  readonly close: number;
  /** Device pixels for each pixel of the page. */
  readonly scale: number;
  readonly dark: boolean;
  /**
   * A number for each column, for the rows to reckon with: new ones for each would be garbage in each frame.
   */
  readonly shares: Float32Array;
  readonly used: Float32Array;
}

type BandKind = 'states'|'level'|'marks'|'texts';

/** A part of a row, one above the other: series that may be on together do not share one. */
interface Band {
  readonly kind: BandKind;
  readonly height: number;
  readonly tracks: readonly Track[];
}

interface Layer {
  readonly kind: BandKind;
  readonly height: number;
  holds(track: Track): boolean;
}

/** What the bands of a row hold, from top to bottom; heights are in pixels of the page. */
const layers: readonly Layer[] = [
  { kind: 'texts', height: 13, holds: (track) => track.entry.type === 'events' },
  { kind: 'marks', height: 6, holds: (track) => track.shape === 'marks' && track.entry.type !== 'events' },
  { kind: 'states', height: 13, holds: (track) => track.shape === 'state' && track.role !== 'waitGpu' },
  // A task may sleep, or even run, while it waits for the GPU.
  { kind: 'states', height: 4, holds: (track) => track.role === 'waitGpu' },
  { kind: 'level', height: 17, holds: (track) => track.shape === 'level' },
];
/** A row of marks alone is as high as the words of its label. */
const onlyMarks = 13;
const headingHeight = 17;
export const margin = 4;

/** Returns the bands of a row that hold anything, from top to bottom. */
export function bandsOf(lane: Lane): Band[] {
  const bands = layers.map((layer) => ({...layer, tracks: lane.tracks.filter(layer.holds) }))
                    .filter((band) => band.tracks.length > 0);
  return bands.length === 1 && bands[0].kind === 'marks' ? [{...bands[0], height: onlyMarks }] : bands;
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
  const { axis: { width, shown }, close, shares, used } = picture;
  used.fill(0);
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
  const { axis } = picture;
  if (track.peak <= 0 || !touches(track, axis.shown)) return;
  const colour = colourOf(track, picture.dark);
  const pale = mix(colour, picture.dark ? 0x000000 : 0xffffff, 0.5);
  const high = (value: number) => bottom - (value / track.peak) * (bottom - top);
  const last = Math.min(axis.width, Math.ceil(axis.x(picture.close)));
  let index = pointsUntil(times, axis.shown.start);
  for (let x = 0; x < last;) {
    let least = index > 0 ? values[index - 1] : 0;
    let most = least;
    const end = axis.time(x + 1);
    let right = x + 1;
    if (index < times.length && times[index] < end) {
      for (; index < times.length && times[index] < end; ++index) {
        least = Math.min(least, values[index]);
        most = Math.max(most, values[index]);
      }
    } else {
      const next = index < times.length ? Math.floor(axis.x(times[index])) : last;
      right = Math.min(last, Math.max(right, next));
    }
    if (most > least) surface.box(x, right, high(most), high(least), pale);
    if (least > 0) surface.box(x, right, high(least), bottom, colour);
    x = right;
  }
}

/**
 * Shows each moment as a column; a value of 1 among greater ones, such as work that ends no frame, is half
 * as high.
 */
function paintMarks(surface: Surface, track: Track, top: number, bottom: number, picture: Picture): void {
  const { times, values } = track.steps;
  const { axis } = picture;
  const { shown, width } = axis;
  const colour = colourOf(track, picture.dark);
  const low = track.entry.type === 'events' ? top : (top + bottom) / 2;
  for (let i = pointsBefore(times, shown.start); i < times.length && times[i] < shown.end;) {
    const x = Math.floor(axis.x(times[i]));
    const end = axis.time(x + 1);
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
  const part = Math.round(share * 256);
  // Red and blue at once: there is room for the products between them.
  const channels = (mask: number, half: number) =>
      (((first & mask) * (256 - part) + (second & mask) * part + half) >>> 8) & mask;
  return channels(0xff00ff, 0x800080) | channels(0xff00, 0x8000);
}

/** Pixels as a canvas takes them. */
export class Pixels implements Surface {
  readonly image: ImageData;
  readonly #words: Uint32Array;

  constructor(
      readonly width: number,
      readonly height: number,
  ) {
    this.image = new ImageData(width, height);
    this.#words = new Uint32Array(this.image.data.buffer);
  }

  /** Returns pixels for a part of the page: those of `before` if there are as many. */
  static of(width: number, height: number, before: Pixels|null): Pixels {
    const [columns, rows] = [devicePixels(width), devicePixels(height)];
    return before?.width === columns && before.height === rows ? before : new Pixels(columns, rows);
  }

  clear(colour: number): void { this.#words.fill(word(colour)); }

  box(left: number, right: number, top: number, bottom: number, colour: number): void {
    const first = Math.max(0, Math.ceil(top));
    const last = Math.min(this.height, Math.floor(bottom));
    const full = word(colour);
    const { width } = this;
    const words = this.#words;
    // A call costs more than a few stores.
    const narrow = right - left <= 8;
    for (let start = first * width; start < last * width; start += width) {
      if (narrow)
        for (let i = start + left; i < start + right; ++i) words[i] = full;
      else
        words.fill(full, start + left, start + right);
    }
    if (last < first)
      this.#blend(last, left, right, full, bottom - top);
    else {
      if (first > top) this.#blend(first - 1, left, right, full, first - top);
      if (bottom > last) this.#blend(last, left, right, full, bottom - last);
    }
  }

  #blend(y: number, left: number, right: number, full: number, share: number): void {
    if (y < 0 || y >= this.height) return;
    const { width } = this;
    const words = this.#words;
    for (let i = y * width + left; i < y * width + right; ++i)
      words[i] = (opaque | mix(words[i], full, share)) >>> 0;
  }
}

const opaque = 0xff000000;

/** Canvases store red first, which is the lowest byte of a word on every machine that runs a browser. */
const word = (colour: number) =>
    (opaque | ((colour & 255) << 16) | (colour & 0xff00) | ((colour >> 16) & 255)) >>> 0;

/** Colours of the page that are painted rather than styled; page.css has the same. */
export const groundColours = (dark: boolean) =>
    dark ? {ground: 0x111111, line: 0x222222} : {ground: 0xffffff, line: 0xeeeeee};
