/** What every panel of the page is. */

import type {Direction} from '../model/axis';
import type {State, Store} from './store';

export interface App {
  readonly store: Store;
  /** Announces an action to screen readers and in the status line. */
  announce(text: string): void;
  /** Shows `lines` next to the pointer, as text; null hides them. */
  tooltip(lines: readonly string[]|null, event?: MouseEvent|null): void;
  /** Shows a line over all time views where the pointer is; null hides it. */
  hover(time: number|null): void;
}

export interface View {
  /** Part of the URL and of the element's id. */
  readonly id: string;
  readonly title: string;
  /** `time` views are above one another at the top; all others share the rest of the page as tabs. */
  readonly zone?: 'time';
  /** Returns whether there is something to show; views that return false are not listed. */
  available(state: State): boolean;
  /** Fills `host` once; it belongs to the view until the page closes. */
  mount(host: HTMLElement, app: App): void;
  /**
   * Paints the committed state. `before` is the one that this view painted last; null if all is to be
   * painted, as after a resize.
   */
  draw(state: State, before: State|null): void;
  /** Handles a key press while the view has the focus; returns whether it did. */
  key?(event: KeyboardEvent): boolean;
  /**
   * Moves to the next (1) or previous (-1) match of the state's search; returns what it is, or null without
   * one.
   */
  find?(direction: Direction): string|null;
  /** What it shows of the selection, as rows of cells; the first row names the columns. */
  table?(): readonly(readonly(string|number)[])[];
  /** The selected samples as folded stacks. */
  folded?(): string;
  /** What it shows, as pixels and, where it can, as a vector picture. */
  readonly picture?: { readonly canvas: HTMLCanvasElement; svg ? () : string };
}

/**
 * Returns the first index before or after `from` that is wanted, round a list of `count`, or -1. A `from` of
 * -1 is before the first one and after the last.
 */
export function nextOf(
    count: number, from: number, direction: Direction, isWanted: (index: number) => boolean): number {
  const start = from < 0 && direction < 0 ? 0 : from;
  for (let step = 1; step <= count; ++step) {
    const index = (start + direction * step + 2 * count) % count;
    if (isWanted(index)) return index;
  }
  return -1;
}

/** Does what a key stands for; returns whether it stands for anything. */
export function perform(key: string, actions: Readonly<Record<string, () => void>>): boolean {
  const known = Object.hasOwn(actions, key);
  if (known) actions[key]();
  return known;
}
