/** Wheel and pointer, alike on everything that can be zoomed. */

import {equip} from './dom';

/** Actions of gestures. `event` has the position. */
export interface Gestures {
  /** The wheel with Control. */
  zoom(factor: number, event: MouseEvent): void;
  /** The wheel with Shift, or sideways. */
  pan(pixels: number, event: MouseEvent): void;
  /** The wheel alone. */
  scroll(pixels: number, event: MouseEvent): void;
  /** A button was pressed; returns whether what follows is a click or a drag. */
  press(event: PointerEvent): boolean;
  /** The pressed pointer moved by that many pixels. */
  drag(event: PointerEvent, right: number, down: number): void;
  click(event: PointerEvent): void;
  /** The pointer moved without a drag, or left. */
  hover(event: PointerEvent|null): void;
}

/** Movements below this many pixels are clicks. */
const clickTolerance = 3;

/** Factor of a zoom by the wheel. */
export const wheelZoom = (pixels: number): number => Math.exp(pixels * 0.002);

/** Pixels of a line, for mice whose wheel counts lines. */
const linePixels = 16;

export function onGestures(target: HTMLElement, gestures: Gestures): void {
  let last: PointerEvent|null = null;
  let moved = false;

  target.addEventListener(
      'wheel',
      (event) => {
        event.preventDefault();
        const unit = event.deltaMode === 1 ? linePixels : 1;
        const [right, down] = [event.deltaX * unit, event.deltaY * unit];
        if (event.ctrlKey || event.metaKey)
          gestures.zoom(wheelZoom(down), event);
        else if (event.shiftKey || right !== 0)
          gestures.pan(right || down, event);
        else
          gestures.scroll(down, event);
      },
      { passive: false },
  );
  equip(target, {
    pointerdown: (event: PointerEvent) => {
      if (!gestures.press(event)) return;
      last = event;
      moved = false;
      target.setPointerCapture(event.pointerId);
    },
    pointermove: (event: PointerEvent) => {
      if (!last) return gestures.hover(event);
      const [right, down] = [event.clientX - last.clientX, event.clientY - last.clientY];
      if (!moved && Math.abs(right) + Math.abs(down) < clickTolerance) return;
      moved = true;
      last = event;
      gestures.drag(event, right, down);
    },
    pointerup: (event: PointerEvent) => {
      const clicked = last !== null && !moved;
      last = null;
      if (clicked) gestures.click(event);
    },
    pointercancel: () => (last = null),
    pointerleave: () => gestures.hover(null),
  });
}
