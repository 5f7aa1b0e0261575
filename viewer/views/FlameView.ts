import {MergedTree} from '../model/MergedTree';
import type {Selection} from '../model/Selection';
import {pathTo, type Tree} from '../model/tree';
import {button} from './dom';
import {FlamePane} from './FlamePane';
import {formatPart, placeLook} from './placeLook';
import {ProfileView} from './ProfileView';
import type {State} from './store';

/**
 * All selected samples by their stacks: by caller from the root, or inverted, by what called the places that
 * took them.
 */
export class FlameView extends ProfileView {
  readonly id = 'flame';
  readonly title = 'Flame graph';
  #pane!: FlamePane;
  #inverted = false;
  #tree: Tree|null = null;
  protected override controls = [
    this.#toggle(
        'Inverted', 'Callers of the places that took the samples', () => (this.#inverted = !this.#inverted)),
    this.#toggle('Root at bottom', null, () => this.#pane.turn()),
  ];

  table() {
    const { selection } = this;
    const tree = this.#tree;
    const { places, weight } = selection.profile;
    const rows = this.#pane.nodes().map(
        (node) =>
            [pathTo(tree!, node).length,
             tree!.totals[node] * weight,
             `${((100 * tree!.totals[node]) / selection.count).toFixed(3)}%`,
             node === 0 ? 'all' : places.names[tree!.places[node]],
    ]);
    return [['depth', 'total', 'share', 'name'], ...rows];
  }

  protected fill(host: HTMLElement): void {
    this.#pane = new FlamePane(
        host, this.app, 'Flame graph; arrow keys walk it, Enter zooms',
        (node) => node > 0 && this.app.store.set({ place: this.#tree!.places[node], panel: 'butterfly' }));
    this.parts = [this.#pane];
  }

  protected show(state: State, before: Selection|undefined): void {
    const { model, selection } = this;
    const shown = this.#tree;
    const turned = this.#inverted === (shown === before);
    if (selection !== before || turned)
      this.#tree = this.#inverted ? MergedTree.inverted(selection) : selection;
    const sameNodes = this.#tree === shown ||
        (this.#tree === selection && shown === before && selection.profile === before?.profile);
    const { profile } = model;
    const name = `all samples: ${formatPart(this.whole, profile.samples.count * profile.weight)}`;
    this.#pane.show(this.#tree!, placeLook(model, this.#tree!, selection, name, state.search), sameNodes);
  }

  /** Returns a button that shows whether it is pressed; `flip` changes and returns it. */
  #toggle(label: string, title: string|null, flip: () => boolean): HTMLButtonElement {
    const made = button(label, title, () => {
      made.setAttribute('aria-pressed', String(flip()));
      this.app.store.refresh();
    }, { 'aria-pressed': false });
    return made;
  }
}
