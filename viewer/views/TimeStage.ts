import {div, element} from './dom';
import {axisWidth, timeGestures, type TimeSurface} from './timeAxis';
import {type App, perform} from './View';

/** Part of the window that a key scrolls by. */
const keyScroll = 0.8;

/**
 * The frame of a time view with rows: labels to the left, pictures on the axis, a scroll bar to the right.
 */
export class TimeStage {
  readonly #space = div('');
  readonly #scroller = element('div', { class: 'scroll', tabIndex: -1 }, this.#space);

  constructor(
      private readonly host: HTMLElement,
      app: App,
      readonly labels: HTMLElement,
      pictures: readonly HTMLElement[],
      repaint: () => void,
      surface: TimeSurface,
  ) {
    const stage = div('stage', labels, ...pictures);
    host.append(this.#scroller, stage);
    this.#scroller.addEventListener('scroll', () => app.store.repaint(repaint));
    const scroll = (pixels: number) => (this.#scroller.scrollTop += pixels);
    timeGestures(stage, host, app, {...surface, scroll });
  }

  get width(): number { return axisWidth(this.host); }
  get height(): number { return this.host.clientHeight; }
  /** Pixels above the window. */
  get top(): number { return this.#scroller.scrollTop; }

  /** Sets the height of all rows together. */
  set rows(height: number) { this.#space.style.height = `${height}px`; }

  /** Scrolls no further than needed, so that a row can be seen below `fixed` pixels that do not scroll. */
  show(top: number, height: number, fixed = 0): void {
    this.#scroller.scrollTop =
        Math.min(top - fixed, Math.max(this.#scroller.scrollTop, top + height - this.height));
  }

  /** Handles the keys that scroll without a change of the row; returns whether it did. */
  key(event: KeyboardEvent): boolean {
    const scroll = (windows: number) => () => void (this.#scroller.scrollTop += windows * this.height);
    return perform(event.key, { PageUp: scroll(-keyScroll), PageDown: scroll(keyScroll) });
  }
}
