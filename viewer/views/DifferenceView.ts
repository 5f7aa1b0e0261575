import {formatShare} from '../model/axis';
import {differ} from '../model/maps';

import {DifferenceTree, unite, type Union} from '../model/difference';
import type {ProfileModel} from '../model/ProfileModel';
import type {Selection} from '../model/Selection';
import {button, div, isDark, shortName} from './dom';
import {type FlameLook, FlamePane} from './FlamePane';
import {type LegendEntry, ProfileView} from './ProfileView';
import {RowTable} from './RowTable';
import type {State} from './store';

/** A place's share of either profile's samples. */
interface Change {
  /** Joint place of the union. */
  readonly place: number;
  readonly before: number;
  readonly after: number;
}

/** Steps between "all gone" and "all new". */
const steps = 8;

const columns = [
  ...['Before', 'After', 'Change'].map((title) => ({ title, style: `number ${title.toLowerCase()}` })),
  { title: 'Function (self)', style: 'name' }
];

/** What changed from one profile to another: red is more than before, blue is less. */
export class DifferenceView extends ProfileView {
  readonly id = 'difference';
  readonly title = 'Difference';
  #pane!: FlamePane;
  #list!: RowTable;
  #union!: Union;
  #models: readonly ProfileModel[] = [];
  #selections: readonly Selection[] = [];
  #tree!: DifferenceTree;
  #changes: readonly Change[] = [];
  protected override more = (state: State) => state.baseline;
  protected override legend: readonly LegendEntry[] = [
    [(dark) => palette(dark)[0], 'less than before'],
    [(dark) => palette(dark)[steps], 'the same'],
    [(dark) => palette(dark)[2 * steps], 'more than before'],
  ];
  protected override controls = [button(
      'Swap before and after', null,
      () => this.app.store.set(
          { profile: this.app.store.state.baseline, baseline: this.app.store.state.profile }))];

  override available(state: State): boolean { return state.profile !== null && state.baseline !== null; }

  table() {
    const rows = this.#changes.map(
        ({ place, before, after }) =>
            [...[before, after, after - before].map((share) => (100 * share).toFixed(3)),
             this.#nameOf(place)]);
    return [['before %', 'after %', 'change', 'function'], ...rows];
  }

  protected fill(host: HTMLElement): void {
    const flame = div('half');
    const table = div('half column difference-table');
    host.append(div('side-by-side', flame, table));
    this.#pane = new FlamePane(flame, this.app, 'Difference flame graph', () => undefined);
    this.#list = new RowTable(table, this.app, this.id, 'Changes', columns, {
      row: (index) => {
        const { place, before, after } = this.#changes[index];
        const change = after - before;
        return {
          cells: [formatShare(before), formatShare(after), signed(change), shortName(this.#nameOf(place))],
          style: change > 0 ? 'more' :
              change < 0    ? 'less' :
                              '',
        };
      },
      open: (index) => {
        const place = this.#union.currentPlaces[this.#changes[index].place];
        if (place >= 0) this.app.store.set({ place, panel: 'butterfly' });
      },
    });
    this.parts = [this.#pane, this.#list];
  }

  protected show(state: State): void {
    const models = [this.model, state.baseline!];
    if (differ(models, this.#models)) {
      this.#union = unite(models[0].profile, models[1].profile);
      this.#models = models;
    }
    // Threads, cores and times of one recording mean nothing in the other.
    const selections = [this.selection, models[1].selection(models[1].textFilter(state.filter.text))];
    const other = differ(selections, this.#selections);
    if (other) {
      this.#selections = selections;
      this.#tree = new DifferenceTree(this.#union, selections[0], selections[1]);
      this.#changes = this.#listChanges();
    }
    this.#pane.show(this.#tree, this.#look(state.search), !other);
    this.#list.draw(this.#changes.length);
  }

  /** Name of a joint place, from whichever profile has it. */
  #nameOf(place: number): string {
    const [after, before] = this.#models.map(({ profile }) => profile.places.names);
    const current = this.#union.currentPlaces[place];
    return current >= 0 ? after[current] : before[this.#union.baselinePlaces[place]];
  }

  #look(search: string): FlameLook {
    const { current, baseline, places } = this.#tree;
    const [after, before] = this.#models;
    const [found, foundBefore] = [after.matches(search), before.matches(search)];
    const { currentPlaces, baselinePlaces } = this.#union;
    const whole = this.#selections[0].count || 1;
    const nameOf = (node: number) =>
        (node === 0 ? `${before.profile.name} → ${after.profile.name}` : this.#nameOf(places[node]));
    return {
      palette: palette(isDark()),
      name: nameOf,
      colour(node) {
        const change = current[node] - baseline[node];
        return steps + Math.round((change / Math.max(current[node], baseline[node], 1)) * steps);
      },
      matches: found &&
          ((node) => node !== 0 &&
               (found[currentPlaces[places[node]]] === 1 ||
                foundBefore![baselinePlaces[places[node]]] === 1)),
      describe(node) {
        const [now, then] = [current[node] / whole, baseline[node] / whole];
        return [
          shortName(nameOf(node)),
          `before ${formatShare(then)}, after ${formatShare(now)}, change ${signed(now - then)}`
        ];
      },
    };
  }

  /** Returns every place's share of the samples that were taken in it, the largest change first. */
  #listChanges(): Change[] {
    const { baselinePlaces } = this.#union;
    const [after, before] = this.#selections.map((selection, index) => {
      const { selves } = this.#models[index].grouping('function').weigh(selection);
      return (place: number) => (place < 0 ? 0 : selves[place] / (selection.count || 1));
    });
    const changes = Array.from(this.#union.currentPlaces, (current, place) => ({
                                                            place,
                                                            after: after(current),
                                                            before: before(baselinePlaces[place]),
                                                          }));
    const size = (change: Change) => Math.abs(change.after - change.before);
    return changes.filter((change) => change.before > 0 || change.after > 0)
        .sort((a, b) => size(b) - size(a));
  }
}

const signed = (share: number) => `${share > 0 ? '+' : share < 0 ? '−' : ''}${formatShare(Math.abs(share))}`;

/** Blue for less, grey for the same, red for more. */
function palette(dark: boolean): string[] {
  return Array.from({ length: 2 * steps + 1 }, (_, index) => {
    const part = Math.abs(index - steps) / steps;
    const hue = index <= steps ? 215 : 5;
    const lightness = dark ? 32 + 10 * part : 90 - 24 * part;
    return `hsl(${hue} ${Math.round(6 + 74 * part)}% ${lightness}%)`;
  });
}
