/** The time axis that all time views share: what part of it is shown, and the gestures that move it. */

import {closestZoom, commonExtent, Extent, formatDuration, formatTime, Scale, zoomed} from '../model/axis';
import {everything} from '../model/filter';

import {placeIn} from './dom';
import {onGestures, wheelZoom} from './gestures';

import type {State, Store} from './store';
import {type App, perform} from './View';

/** Width of the labels to the left of every time view, in pixels of the page. */
export const gutter = 230;

/** Room for the scroll bar of rows, to the right of every time view. */
export const scrollBar = 14;

/** Returns the width of the axis in a time view, in pixels of the page. */
export const axisWidth = (host: HTMLElement): number => Math.max(1, host.clientWidth - gutter - scrollBar);

/** Returns the time that the opened documents cover. */
export const wholeExtent = (state: State): Extent => commonExtent(state.profile, state.timechart);

/** Returns the part of the time axis that is shown. */
export const shownExtent = (state: State): Extent => state.visible ?? wholeExtent(state);

/** Returns the shown part over the width of a time view. */
export const scaleOf = (state: State, host: HTMLElement): Scale =>
    new Scale(shownExtent(state), axisWidth(host));

/** Returns the selected span, or null without one. */
export function brushOf({filter: {start, end}}: State): Extent|null {
  return end > start && (start > -Infinity || end < Infinity) ? { start, end } : null;
}

/** Returns the span that figures are about: the selection, or all. */
export const spanOf = (state: State): Extent => brushOf(state) ?? wholeExtent(state);

/** Selects a span; null selects everything. The thread of a selected run is given up with the run. */
export function setBrush(store: Store, brush: Extent|null): void {
  const { state } = store;
  const { start, end } = brush ?? everything;
  store.refine({ start, end, threads: state.run ? null : state.filter.threads }, null);
}

/** Scales the axis by `factor` about a time, then moves it by `shift` seconds. */
export function zoomTime(store: Store, factor: number, at: number, shift = 0): void {
  const whole = wholeExtent(store.state);
  const next = zoomed(shownExtent(store.state), whole, factor, at, shift);
  store.set({ visible: next.end - next.start >= whole.end - whole.start ? null : next });
}

/** Shows a span with a little room at both sides. */
export function showSpan(store: Store, {start, end}: Extent): void {
  const room = Math.max((end - start) * 0.05, closestZoom / 2);
  const whole = wholeExtent(store.state);
  store.set({ visible: zoomed({ start: start - room, end: end + room }, whole, 1, (start + end) / 2) });
}

/** Brings a time into view without a change of the scale. */
export function showTime(store: Store, time: number): void {
  const { start, end } = shownExtent(store.state);
  if (time < start || time >= end) zoomTime(store, 1, start, time - (start + end) / 2);
}

/** Returns a text that describes a span. */
export const describeSpan = ({start, end}: Extent): string =>
    `${formatDuration(end - start)} from ${formatTime(start)} to ${formatTime(end)}`;

const keyZoom = 1.5;
const keyPan = 0.2;

/** Handles the keys that move the time axis, wherever the focus is; returns whether it did. */
export function timeKey(event: KeyboardEvent, store: Store): boolean {
  const { start, end } = shownExtent(store.state);
  const cursor = store.state.cursor?.time ?? NaN;
  const at = cursor >= start && cursor < end ? cursor : (start + end) / 2;
  const brush = brushOf(store.state);
  const move = (part: number) => zoomTime(store, 1, at, (end - start) * part);
  return perform(event.key.toLowerCase(), {
    'w': () => zoomTime(store, 1 / keyZoom, at),
    's': () => zoomTime(store, keyZoom, at),
    'a': () => move(-keyPan),
    'd': () => move(keyPan),
    'f': () => brush && showSpan(store, brush),
    '0': () => store.set({ visible: null }),
  });
}

/** What a time view does by itself. */
export interface TimeSurface {
  /** Scrolls the rows, where there are more than fit. */
  scroll?(pixels: number): void;
  /** The pointer moved over `time`, `y` pixels from the top; null when it left. */
  hover(time: number|null, y: number, event: PointerEvent|null): void;
  click(time: number, y: number): void;
}

/**
 * Lets wheel and pointer move the axis and select: a drag selects, with Shift or the middle button it moves
 * the axis; the wheel scrolls, with Shift it moves the axis, with Control it zooms. A double click shows the
 * selection.
 */
export function timeGestures(
    target: HTMLElement, host: HTMLElement, {store}: App, surface: TimeSurface): void {
  const scale = () => scaleOf(store.state, host);
  const xOf = (event: MouseEvent) => placeIn(target, event).x - gutter;
  const yOf = (event: MouseEvent) => placeIn(target, event).y;
  const timeAt = (event: MouseEvent) => scale().time(xOf(event));
  const zoom = (factor: number, event: MouseEvent) => zoomTime(store, factor, timeAt(event));
  const hover = (event: PointerEvent|null) =>
      event ? surface.hover(timeAt(event), yOf(event), event) : surface.hover(null, 0, null);
  const pan = (pixels: number) => zoomTime(store, 1, 0, pixels * scale().pixel);
  let from = 0;
  let pans = false;
  onGestures(target, {
    zoom,
    pan,
    hover,
    scroll(pixels, event) {
      if (!surface.scroll)
        zoom(wheelZoom(pixels), event);
      else
        surface.scroll(pixels);
    },
    press(event) {
      const x = xOf(event);
      from = timeAt(event);
      pans = event.shiftKey || event.button === 1;
      return event.button <= 1 && x >= 0 && x < axisWidth(host);
    },
    drag(event, right) {
      hover(event);
      const time = timeAt(event);
      if (pans)
        pan(-right);
      else
        setBrush(store, { start: Math.min(from, time), end: Math.max(from, time) });
    },
    click: (event) => surface.click(from, yOf(event)),
  });
  target.addEventListener('dblclick', () => {
    const brush = brushOf(store.state);
    if (brush) showSpan(store, brush);
  });
}
