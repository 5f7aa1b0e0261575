import {PlaceKind} from '../document/profile';
import {formatShare} from '../model/axis';
import {describePlace} from '../model/groupings';
import type {Selection} from '../model/Selection';
import {childrenOf} from '../model/tree';
import {isDark, shortName} from './dom';
import {kindColour} from './placeColours';
import {formatCount} from './placeLook';
import {ProfileView} from './ProfileView';
import {type Row, RowTable} from './RowTable';
import type {State} from './store';
import {perform} from './View';

interface TreeRow {
  readonly node: number;
  readonly depth: number;
}

const columns = [
  { title: 'Total', style: 'number share' },
  { title: 'Self', style: 'number' },
  { title: 'Function', style: 'name' },
  { title: 'Library', style: 'detail' },
];

/** Nodes with a smaller part of the samples are not opened from the start. */
const openedShare = 1 / 20;

/** The stacks as a table whose rows open to what they called. */
export class CallTreeView extends ProfileView {
  readonly id = 'tree';
  readonly title = 'Call tree';
  #list!: RowTable;
  #rows: TreeRow[] = [];
  #opened = new Set<number>();
  #matches: Uint8Array|null = null;

  override key(event: KeyboardEvent): boolean {
    const { chosen } = this.#list;
    const row = this.#rows[chosen];
    if (!row) return false;
    const open = this.#opened.has(row.node) && this.#hasChildren(row.node);
    const above = this.selection.parents[row.node];
    const actions = {
      ArrowRight: () => (open ? this.#list.choose(chosen + 1) : this.#toggle(chosen)),
      ArrowLeft: () =>
          (open ? this.#toggle(chosen) :
                  this.#list.choose(this.#rows.findIndex(({ node }) => node === above))),
    };
    if (event.key === 'Enter' && event.shiftKey && row.node !== 0)
      this.app.store.set({ place: this.selection.places[row.node], panel: 'butterfly' });
    else
      return perform(event.key, actions) || this.#list.key(event);
    return true;
  }

  table() {
    const rows = this.#rows.map((row) => {
      const { total, self, name, detail } = this.#figures(row.node);
      return [row.depth, total, self, name, detail];
    });
    return [['depth', 'total', 'self', 'function', 'library'], ...rows];
  }

  protected fill(host: HTMLElement): void {
    const rows = {
      row: (index: number) => this.#row(this.#rows[index]),
      open: (index: number) => this.#toggle(index),
      isMatch: (index: number) => this.#isMatch(this.#rows[index].node),
    };
    this.#list = new RowTable(host, this.app, this.id, this.title, columns, rows, 'treegrid');
    this.parts = [this.#list];
  }

  protected show(state: State, before: Selection|undefined): void {
    if (this.selection.profile !== before?.profile) this.#openHeaviest();
    if (this.selection !== before) this.#listRows();
    this.#matches = this.model.matches(state.search);
    this.#list.draw(this.#rows.length);
  }

  #figures(node: number) {
    const { selection } = this;
    const { profile } = selection;
    const place = selection.places[node];
    const figures = {
      total: selection.totals[node] * profile.weight,
      self: selection.selves[node] * profile.weight
    };
    return node === 0 ? {...figures, name: 'all samples', detail: '', kind: PlaceKind.User } : {
      ...figures,
      name: profile.places.names[place],
      detail: describePlace(profile, place),
      kind: profile.places.kinds[place] as PlaceKind
    };
  }

  #row({ node, depth }: TreeRow): Row {
    const { total, self, name, detail, kind } = this.#figures(node);
    const figure = (samples: number) =>
        samples === 0 ? '' : `${formatCount(samples)}  ${formatShare(samples / this.whole)}`;
    return {
      cells: [figure(total), figure(self), shortName(name), shortName(detail)],
      shares: [total / (this.whole || 1)],
      colour: kindColour(kind, isDark()),
      style: this.#isMatch(node) ? 'match' : '',
      level: depth,
      open: this.#hasChildren(node) ? this.#opened.has(node) : null,
    };
  }

  #isMatch(node: number): boolean { return node !== 0 && this.#matches?.[this.selection.places[node]] === 1; }

  #hasChildren(node: number): boolean {
    const { selection } = this;
    return selection.childEnd[node] > selection.childStart[node] &&
        selection.totals[node] > selection.selves[node];
  }

  #toggle(index: number): void {
    const { node } = this.#rows[index];
    if (!this.#opened.delete(node)) this.#opened.add(node);
    this.#listRows();
    this.app.store.repaint(this.#redraw);
  }

  readonly #redraw = () => this.#list.draw(this.#rows.length);

  #listRows(): void {
    const rows: TreeRow[] = [];
    const pending: TreeRow[] = [{ node: 0, depth: 0 }];
    for (let row; (row = pending.pop()) !== undefined;) {
      rows.push(row);
      if (!this.#opened.has(row.node)) continue;
      const depth = row.depth + 1;
      for (const node of childrenOf(this.selection, row.node).reverse()) pending.push({ node, depth });
    }
    this.#rows = rows;
  }

  /** Opens the way down that most samples took. */
  #openHeaviest(): void {
    const { selection } = this;
    this.#opened = new Set();
    for (let node = 0; node !== undefined && selection.totals[node] >= selection.count * openedShare;
         node = childrenOf(selection, node)[0])
      this.#opened.add(node);
  }
}
