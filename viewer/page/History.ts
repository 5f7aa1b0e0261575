import type {State, Store} from '../views/store';

/** What undo brings back. */
type Selection = Pick<State, 'filter'|'run'>;

const mostSteps = 100;

/** The selections that were made before the present one. */
export class History {
  readonly #steps: Selection[] = [];
  #present: Selection;
  /** Counts presses of keys and pointer: what one press changes, such as a whole drag, is one step. */
  #presses = 0;
  #noted = -1;

  constructor(private readonly store: Store) {
    this.#present = selectionOf(store.state);
    for (const press of ['pointerdown', 'keydown']) addEventListener(press, () => ++this.#presses, true);
    store.onCommit((state) => this.#note(selectionOf(state)));
  }

  /** Brings the selection before the present one back; returns whether there was one. */
  undo(): boolean {
    const before = this.#steps.pop();
    if (!before) return false;
    this.#present = before;
    this.#noted = -1;
    this.store.set(before);
    return true;
  }

  #note(selection: Selection): void {
    if (selection.filter === this.#present.filter) return;
    if (this.#presses !== this.#noted) this.#steps.push(this.#present);
    if (this.#steps.length > mostSteps) this.#steps.shift();
    this.#noted = this.#presses;
    this.#present = selection;
  }
}

const selectionOf = (state: State): Selection => ({ filter: state.filter, run: state.run });
