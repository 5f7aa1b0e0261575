import type { State, Store } from '../views/store';

/** What undo brings back. */
type Selection = Pick<State, 'filter' | 'run'>;

/** Changes that follow each other faster than this many milliseconds, such as those of a drag, are one step. */
const oneStep = 400;
const mostSteps = 100;

/** The selections that were made before the present one. */
export class History {
  private readonly steps: Selection[] = [];
  private present: Selection;
  private changed = -Infinity;

  constructor(private readonly store: Store) {
    this.present = selectionOf(store.state);
    store.onCommit((state, keys) => {
      if (keys.has('filter')) this.note(selectionOf(state));
    });
  }

  /** Brings the selection before the present one back; returns whether there was one. */
  undo(): boolean {
    const before = this.steps.pop();
    if (before === undefined) return false;
    this.present = before;
    this.changed = -Infinity;
    this.store.set(before);
    return true;
  }

  private note(selection: Selection): void {
    if (selection.filter === this.present.filter) return;
    const now = performance.now();
    if (now - this.changed > oneStep) this.steps.push(this.present);
    if (this.steps.length > mostSteps) this.steps.shift();
    this.changed = now;
    this.present = selection;
  }
}

const selectionOf = ({ filter, run }: State): Selection => ({ filter, run });
