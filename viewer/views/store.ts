/** The one state of the page. Setters only mark changes; one commit per frame notifies all views. */

import {differ} from '../model/maps';
import type {Extent} from '../model/axis';
import type {Filter} from '../model/filter';
import type {LaneChoice} from '../model/lanes';
import type {ProfileModel} from '../model/ProfileModel';
import type {Run} from '../model/tasks';
import type {TimechartModel} from '../model/TimechartModel';

export interface Cursor {
  readonly lane: string;
  readonly time: number;
}

/** A document that is being read, or what became of it. */
export interface Reading {
  readonly id: number;
  readonly name: string;
  readonly bytes: number;
  readonly total: number;
  readonly state: 'reading'|'complete'|'damaged'|'failed';
  readonly message: string;
}

export interface State {
  readonly readings: readonly Reading[];
  readonly profile: ProfileModel|null;
  /** The profile that `profile` is compared with. */
  readonly baseline: ProfileModel|null;
  readonly timechart: TimechartModel|null;
  /** The part of the time axis that is shown; null shows all of it. */
  readonly visible: Extent|null;
  /** The selected span, threads, cores and text: what all figures are about. */
  readonly filter: Filter;
  /** Text that is highlighted. */
  readonly search: string;
  /** The place that the butterfly shows, or -1. */
  readonly place: number;
  /** Id of the view in the main panel. */
  readonly panel: string;
  /** Rows of the timechart that are folded, hidden or pinned. */
  readonly lanes: LaneChoice;
  /** The keyboard's position in the timechart: a row's path and a time; null before its first use. */
  readonly cursor: Cursor|null;
  /**
   * The selected run of a task, whose span and thread the filter holds; null if something else is selected.
   */
  readonly run: Run|null;
  /** A moment to measure from, or null. */
  readonly mark: number|null;
}

/** Returns whether a document is being read, so that what is shown may be a part. */
export const isReading = (state: State): boolean =>
    state.readings.some((reading) => reading.state === 'reading');

/** Gets the state and the one of the commit before; null asks for everything to be painted. */
type Listener = (state: State, before: State|null) => void;

/** Paints all at once, or what it yields, part by part. */
export type Paint = () => void|Iterator<void>;

/** Milliseconds of a frame for painting: what is left then is painted with the next ones. */
const paintTime = 8;

export class Store {
  #committed: State|null = null;
  #frame = 0;
  readonly #listeners: Listener[] = [];
  readonly #repaints = new Set<Paint>();
  /** What is left of the painting that has begun; no other one begins before its end. */
  #rest: Iterator<void>|null = null;

  constructor(private current: State) {}

  get state(): State { return this.current; }

  /** Replaces members of the state; views see it with the next frame. */
  set(change: Partial<State>): void {
    const next = {...this.current, ...change };
    if (!differ(Object.values(next), Object.values(this.current))) return;
    this.current = next;
    this.#schedule();
  }

  /** Changes what is selected. */
  refine(change: Partial<Filter>, run: Run|null = this.current.run): void {
    this.set({ filter: {...this.current.filter, ...change }, run });
  }

  /** Repaints every view, such as after a resize. */
  refresh(): void {
    this.#committed = null;
    this.#schedule();
  }

  /** Calls `paint` once with one of the next frames; those that were asked for first come first. */
  repaint(paint: Paint): void {
    this.#repaints.add(paint);
    this.#schedule();
  }

  onCommit(listener: Listener): void { this.#listeners.push(listener); }

  #schedule(): void {
    if (this.#frame === 0) this.#frame = requestAnimationFrame(() => this.#commit());
  }

  #commit(): void {
    this.#frame = 0;
    const { current } = this;
    const committed = this.#committed;
    this.#committed = current;
    if (current !== committed)
      for (const listener of this.#listeners) listener(current, committed);
    const end = performance.now() + paintTime;
    for (; this.#rest || this.#repaints.size > 0; this.#paintPart())
      if (performance.now() >= end) return this.#schedule();
  }

  #paintPart(): void {
    if (this.#rest) {
      if (this.#rest.next().done === true) this.#rest = null;
      return;
    }
    const [paint] = this.#repaints as Iterable<Paint>;
    this.#repaints.delete(paint);
    this.#rest = paint() ?? null;
  }
}
