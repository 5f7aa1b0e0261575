import {zeros} from '../document/grown';
import {describePlace} from '../model/groupings';
import {MergedTree} from '../model/MergedTree';
import type {Selection} from '../model/Selection';
import {childrenOf} from '../model/tree';
import {div, element, shortName, span} from './dom';
import {FlamePane} from './FlamePane';
import {formatPart, placeLook} from './placeLook';
import {ProfileView} from './ProfileView';
import type {State} from './store';

/** One function: what called it is above, what it called below. */
export class ButterflyView extends ProfileView {
  readonly id = 'butterfly';
  readonly title = 'Callers and callees';
  readonly #name = element('div', { class: 'butterfly-name', role: 'heading', 'aria-level': '2' });
  #callers!: FlamePane;
  #callees!: FlamePane;
  #place = -1;
  protected override more = (state: State) => state.place;

  table() {
    const { places: { names }, weight } = this.model.profile;
    const rows = this.#panes.flatMap(({ pane, direction }) => {
      const { tree } = pane;
      return childrenOf(tree, 0).map(
          (node) => [direction, tree.totals[node] * weight, names[tree.places[node]]]);
    });
    return [['direction', 'samples', 'function'], ...rows];
  }

  protected fill(host: HTMLElement): void {
    const [above, below] = [div('half'), div('half')];
    host.append(above, this.#name, below);
    const open = (pane: FlamePane, node: number) => this.app.store.set({ place: pane.tree.places[node] });
    this.#callers = new FlamePane(above, this.app, 'Callers', (node) => open(this.#callers, node), true);
    this.#callees = new FlamePane(below, this.app, 'Callees', (node) => open(this.#callees, node));
    this.parts = [this.#callees, this.#callers];
  }

  protected show(state: State, before: Selection|undefined): void {
    const { model, selection } = this;
    const place =
        state.place >= 0 && state.place < model.profile.places.count ? state.place : heaviest(selection);
    const same = selection === before && place === this.#place;
    this.#place = place;
    const name = model.profile.places.names[place] ?? '';
    for (const { pane, direction } of this.#panes) {
      const tree = same ? pane.tree : MergedTree.of(selection, place, direction);
      pane.show(tree, placeLook(model, tree, selection, name, state.search), same);
    }
    this.#name.replaceChildren(
        element('strong', {}, shortName(name)),
        ` total ${formatPart(this.#callees.tree.totals[0] * model.profile.weight, this.whole)} `,
        span('quiet', shortName(describePlace(model.profile, place))),
    );
  }

  get #panes() {
    return [
      { pane: this.#callers, direction: 'callers' },
      { pane: this.#callees, direction: 'callees' },
    ] as const;
  }
}

/** Returns the place in which most samples were taken. */
function heaviest({ selves, places, profile }: Selection): number {
  const byPlace = zeros(profile.places.count);
  for (let node = 1; node < selves.length; ++node) byPlace[places[node]] += selves[node];
  return byPlace.reduce((best, samples, place) => (samples > byPlace[best] ? place : best), 0);
}
