/** The time axis that all time views share: what part of it is shown, and the gestures that move it. */

import {closestZoom, commonExtent, Extent, formatDuration, formatTime, zoomed} from '../model/axis';
import type {State, Store} from './store';
import type {App} from './View';

/** Width of the labels to the left of every time view, in pixels of the page. */
export const gutter = 230;

/** Room for the scroll bar of rows, to the right of every time view. */
export const scrollBar = 14;

/** Returns the width of the axis in a time view, in pixels of the page. */
export const axisWidth = (host: HTMLElement): number => Math.max(1, host.clientWidth - gutter - scrollBar);

/** Returns the time that the opened documents cover. */
export const wholeExtent = ({profile, timechart}: State): Extent => commonExtent(profile, timechart);

/** Returns the part of the time axis that is shown. */
export const shownExtent = (state: State): Extent => state.visible ?? wholeExtent(state);

/** Returns the selected span, or null without one. */
export function brushOf({filter: {start, end}}: State): Extent|null {
  return end > start && (start > -Infinity || end < Infinity) ? { start, end } : null;
}

/** Returns the span that figures are about: the selection, or all. */
export const spanOf = (state: State): Extent => brushOf(state) ?? wholeExtent(state);

/** Selects a span; null selects everything. The thread of a selected run is given up with the run. */
export function setBrush(store: Store, brush: Extent|null): void {
  const { filter, run } = store.state;
  const { start, end } = brush ?? { start: -Infinity, end: Infinity };
  store.set({ filter: {...filter, start, end, threads: run === null ? filter.threads : null }, run: null });
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

/** Returns a line that tells a span. */
export const describeSpan = ({start, end}: Extent): string =>
    `${formatDuration(end - start)} from ${formatTime(start)} to ${formatTime(end)}`;

/** Handles the keys that move the time axis, wherever the focus is; returns whether it did. */
export function timeKey(event: KeyboardEvent, store: Store): boolean {
  const { state } = store;
  const shown = shownExtent(state);
  const length = shown.end - shown.start;
  const middle = state.cursor?.time ?? (shown.start + shown.end) / 2;
  const at = middle >= shown.start && middle < shown.end ? middle : (shown.start + shown.end) / 2;
  switch (event.key.toLowerCase()) {
    case 'w':
      zoomTime(store, 1 / 1.5, at);
      return true;
    case 's':
      zoomTime(store, 1.5, at);
      return true;
    case 'a':
      zoomTime(store, 1, at, -length / 5);
      return true;
    case 'd':
      zoomTime(store, 1, at, length / 5);
      return true;
    case 'f': {
      const brush = brushOf(state);
      if (brush !== null) showSpan(store, brush);
      return brush !== null;
    }
    case '0':
      store.set({ visible: null });
      return true;
  }
  return false;
}

/** What a time view tells its gestures. */
export interface TimeSurface {
  /** Width of the axis in pixels of the page; it begins after the gutter. */
  width(): number;
  /** Scrolls the rows, where there are more than fit. */
  scroll?(pixels: number): void;
  /** The pointer moved over `time`, `y` pixels from the top; null when it left. */
  hover(time: number|null, y: number, event: PointerEvent): void;
  click(time: number, y: number, event: PointerEvent): void;
}

/** Movements below this many pixels are clicks. */
const clickTolerance = 3;

/**
 * Lets wheel and pointer move the axis and select: a drag selects, with Shift or the middle button it moves
 * the axis; the wheel scrolls, with Shift it moves the axis, with Control it zooms. A double click shows the
 * selection.
 */
export function timeGestures(target: HTMLElement, app: App, surface: TimeSurface): void {
  const { store } = app;
  const timeAt = (event: MouseEvent) => {
    const shown = shownExtent(store.state);
    const x = event.clientX - target.getBoundingClientRect().left - gutter;
    return shown.start + (x / surface.width()) * (shown.end - shown.start);
  };
  const yOf = (event: MouseEvent) => event.clientY - target.getBoundingClientRect().top;
  const perPixel = () => (shownExtent(store.state).end - shownExtent(store.state).start) / surface.width();
  let drag: { x: number; time: number; pans: boolean; moved: boolean }|null = null;

  target.addEventListener(
      'wheel',
      (event) => {
        event.preventDefault();
        const unit = event.deltaMode === 1 ? 16 : 1;
        if (event.ctrlKey || event.metaKey)
          zoomTime(store, Math.exp(event.deltaY * unit * 0.002), timeAt(event));
        else if (event.shiftKey || event.deltaX !== 0) {
          zoomTime(store, 1, timeAt(event), (event.deltaX || event.deltaY) * unit * perPixel());
        } else if (surface.scroll !== undefined)
          surface.scroll(event.deltaY * unit);
        else
          zoomTime(store, Math.exp(event.deltaY * unit * 0.002), timeAt(event));
      },
      { passive: false },
  );
  target.addEventListener('pointerdown', (event) => {
    const x = event.clientX - target.getBoundingClientRect().left;
    if (event.button > 1 || x < gutter || x >= gutter + surface.width()) return;
    drag = {
      x: event.clientX,
      time: timeAt(event),
      pans: event.shiftKey || event.button === 1,
      moved: false
    };
    target.setPointerCapture(event.pointerId);
  });
  target.addEventListener('pointermove', (event) => {
    const time = timeAt(event);
    surface.hover(time, yOf(event), event);
    if (drag === null) return;
    drag.moved ||= Math.abs(event.clientX - drag.x) >= clickTolerance;
    if (!drag.moved) return;
    if (drag.pans)
      zoomTime(store, 1, time, drag.time - time);
    else
      setBrush(store, { start: Math.min(drag.time, time), end: Math.max(drag.time, time) });
  });
  target.addEventListener('pointerup', (event) => {
    const clicked = drag !== null && !drag.moved ? drag.time : null;
    drag = null;
    if (clicked !== null) surface.click(clicked, yOf(event), event);
  });
  target.addEventListener('pointercancel', () => (drag = null));
  target.addEventListener('pointerleave', (event) => surface.hover(null, 0, event));
  target.addEventListener('dblclick', () => {
    const brush = brushOf(store.state);
    if (brush !== null) showSpan(store, brush);
  });
}
