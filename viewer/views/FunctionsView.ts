import {formatShare} from '../model/axis';
import {functionRows, type Order, type SortKey} from '../model/functionRows';
import {type Grouping, groupings, type GroupWeights} from '../model/groupings';
import {element, isDark, searchField, shortName} from './dom';
import {kindColour} from './placeColours';
import {formatCount} from './placeLook';
import {ProfileView} from './ProfileView';
import {type Row, RowTable} from './RowTable';
import type {State} from './store';

const columns: readonly(readonly[SortKey, string, string])[] = [
  ['self', 'Self', 'number share'],
  ['total', 'Total', 'number share'],
  ['name', 'Name', 'name'],
  ['detail', 'Where', 'detail'],
];

/** The selected samples by function, library, source file, process, thread or core. */
export class FunctionsView extends ProfileView {
  readonly id = 'functions';
  readonly title = 'Functions';
  readonly #by = element(
      'select', { 'aria-label': 'Rows are', change: () => this.#repaint() },
      ...Object.entries(groupings).map(([id, { title }]) => element('option', { value: id }, title)));
  readonly #filter = searchField('Only rows with…', () => this.#repaint());
  #order: Order = { key: 'self', descending: true };
  #list!: RowTable;
  #grouping!: Grouping;
  #weights!: GroupWeights;
  #groups: readonly number[] = [];
  #matches: Uint8Array|null = null;
  protected override controls = [this.#by, this.#filter];

  table() {
    const { weight } = this.model.profile;
    const { selves, totals } = this.#weights;
    const rows = this.#groups.map((group) => {
      const { name, detail } = this.#grouping.groups[group];
      return [selves[group] * weight, totals[group] * weight, name, detail];
    });
    return [['self', 'total', groupings[this.#by.value].title.toLowerCase(), 'where'], ...rows];
  }

  protected fill(host: HTMLElement): void {
    const heads = columns.map(([key, title, style]) => ({ title, style, sort: () => this.#sort(key) }));
    this.#list = new RowTable(host, this.app, this.id, this.title, heads, {
      row: (index) => this.#row(this.#groups[index]),
      open: (index) => this.#open(this.#groups[index]),
      isMatch: (index) => this.#matches?.[this.#groups[index]] === 1,
    });
    this.parts = [this.#list];
  }

  protected show(state: State): void {
    this.#grouping = this.model.grouping(this.#by.value);
    this.#weights = this.#grouping.weigh(this.selection);
    this.#groups = functionRows(this.#grouping, this.#weights, this.#filter.value, this.#order);
    this.#matches = this.#grouping.byPlace ? this.model.matches(state.search) : null;
    this.#list.sorted(columns.findIndex(([key]) => key === this.#order.key), this.#order.descending);
    this.#list.draw(this.#groups.length);
  }

  readonly #showAgain = () => this.show(this.app.store.state);

  #repaint(): void { this.app.store.repaint(this.#showAgain); }

  #sort(key: SortKey): void {
    const descending = this.#order.key === key ? !this.#order.descending : key === 'self' || key === 'total';
    this.#order = { key, descending };
    this.#repaint();
  }

  #row(group: number): Row {
    const { name, detail, kind } = this.#grouping.groups[group];
    const samples = [this.#weights.selves[group], this.#weights.totals[group]];
    const shares = samples.map((count) => count / this.selection.count);
    const figures = samples.map(
        (count, i) => `${formatCount(count * this.model.profile.weight)}  ${formatShare(shares[i])}`);
    return {
      cells: [...figures, shortName(name), shortName(detail)],
      shares,
      colour: kindColour(kind, isDark()),
      style: this.#matches?.[group] === 1 ? 'match' : '',
    };
  }

  /** Looks into a function; for anything else, selects its samples. */
  #open(group: number): void {
    if (this.#grouping.byPlace)
      this.app.store.set({ place: group, panel: 'butterfly' });
    else if (this.#grouping.narrow)
      this.app.store.refine(this.#grouping.narrow(group));
  }
}
