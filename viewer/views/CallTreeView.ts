import {PlaceKind} from '../document/profile';
import type {ProfileModel} from '../model/ProfileModel';
import type {Selection} from '../model/Selection';
import {childrenOf} from '../model/tree';
import {formatShare} from '../model/axis';
import {element, isDark, shortName} from './dom';
import {folded} from './folded';
import {kindColour} from './placeColours';
import {describePlace} from '../model/groupings';
import {formatCount, formatPart} from './placeLook';
import {ProfileBar} from './ProfileBar';
import {cellsOf, fillShare, RowList} from './RowList';
import type {State} from './store';
import {type App, type Direction, samplesChanged, type View} from './View';

interface TreeRow {
  readonly node: number;
  readonly depth: number;
}

/** The stacks as a table whose rows open to what they called. */
export class CallTreeView implements View {
  readonly id = 'tree';
  readonly title = 'Call tree';
  readonly zone = 'detail';
  private app!: App;
  private bar!: ProfileBar;
  private list!: RowList;
  private model: ProfileModel|null = null;
  private selection: Selection|null = null;
  private rows: TreeRow[] = [];
  private opened = new Set<number>([0]);
  private matches: Uint8Array|null = null;

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    this.app = app;
    host.classList.add('column');
    this.bar = new ProfileBar(host, app);
    host.append(
        element(
            'div', { class: 'row head', 'aria-hidden': 'true' },
            element('span', { class: 'number' }, 'Total'), element('span', { class: 'number' }, 'Self'),
            element('span', { class: 'name' }, 'Function'), element('span', { class: 'detail' }, 'Library')),
    );
    const repaint = () => app.store.repaint(this.paint);
    this.list = new RowList(host, 'treegrid', 'Call tree', repaint, (row, index) => this.fill(row, index), {
      choose: (index) => app.announce(this.describe(index)),
      open: (index) => this.toggle(index),
    });
    this.list.scroller.addEventListener('click', (event) => {
      if ((event.target as HTMLElement).classList.contains('twisty')) this.toggle(this.list.chosen);
    });
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    if (!samplesChanged(changed)) return;
    this.model = state.profile!;
    const selection = this.model.selection(state.filter);
    if (selection.profile !== this.selection?.profile) this.openHeaviest(selection);
    if (selection !== this.selection) {
      this.selection = selection;
      this.listRows();
    }
    this.matches = this.model.matches(state.search);
    this.bar.draw(state);
    this.paint();
  }

  key(event: KeyboardEvent): boolean {
    const row = this.rows[this.list.chosen];
    if (row !== undefined) {
      const open = this.opened.has(row.node);
      if (event.key === 'ArrowRight') {
        if (open)
          this.list.choose(this.list.chosen + 1);
        else
          this.toggle(this.list.chosen);
        return true;
      }
      if (event.key === 'ArrowLeft') {
        if (open && this.hasChildren(row.node))
          this.toggle(this.list.chosen);
        else
          this.list.choose(this.rows.findIndex(({ node }) => node === this.selection!.parents[row.node]));
        return true;
      }
      if (event.key === 'Enter' && event.shiftKey && row.node !== 0) {
        this.app.store.set({ place: this.selection!.places[row.node], panel: 'butterfly' });
        return true;
      }
    }
    return this.list.key(event);
  }

  find(direction: Direction): string|null {
    const { matches, selection, rows } = this;
    if (matches === null || selection === null) return null;
    for (let step = 1; step <= rows.length; ++step) {
      const index = (this.list.chosen + direction * step + rows.length * 2) % rows.length;
      if (rows[index].node === 0 || matches[selection.places[rows[index].node]] === 0) continue;
      this.list.choose(index);
      return this.describe(index);
    }
    return null;
  }

  table(): string[][] {
    const rows = this.rows.map(({ node, depth }) => {
      const { total, self, name, detail } = this.figures(node);
      return [String(depth), String(total), String(self), name, detail];
    });
    return [['depth', 'total', 'self', 'function', 'library'], ...rows];
  }

  folded(): string { return this.selection === null ? '' : folded(this.selection); }

  private readonly paint = () => this.list.draw(this.rows.length);

  private figures(node: number):
      { total: number; self: number; name: string; detail: string; kind: PlaceKind } {
    const selection = this.selection!;
    const { profile } = selection;
    const place = selection.places[node];
    const { weight } = profile;
    return {
      total: selection.totals[node] * weight,
      self: selection.selves[node] * weight,
      name: node === 0 ? 'all samples' : profile.places.names[place],
      detail: node === 0 ? '' : describePlace(profile, place),
      kind: node === 0 ? PlaceKind.User : profile.places.kinds[place],
    };
  }

  private describe(index: number): string {
    const { node, depth } = this.rows[index];
    const { total, self, name } = this.figures(node);
    const whole = this.selection!.count * this.selection!.profile.weight;
    return `${shortName(name)}, total ${formatPart(total, whole)}, self ${formatPart(self, whole)}, level ${
        depth}`;
  }

  private fill(row: HTMLElement, index: number): void {
    const { node, depth } = this.rows[index];
    const { total, self, name, detail, kind } = this.figures(node);
    const whole = this.selection!.count * this.selection!.profile.weight || 1;
    const [totalCell, selfCell, nameCell, detailCell] =
        cellsOf(row, ['number share', 'number', 'name', 'detail']);
    fillShare(totalCell, `${formatCount(total)}  ${formatShare(total / whole)}`, total / whole);
    selfCell.textContent = self === 0 ? '' : `${formatCount(self)}  ${formatShare(self / whole)}`;
    const children = this.hasChildren(node);
    const twisty = element('span', { class: 'twisty' }, children ? (this.opened.has(node) ? '▾' : '▸') : '');
    twisty.style.marginLeft = `${Math.min(depth, 60) * 13}px`;
    const swatch = element('i', { class: 'swatch' });
    swatch.style.background = kindColour(kind, isDark());
    nameCell.replaceChildren(twisty, swatch, shortName(name));
    detailCell.textContent = shortName(detail);
    row.setAttribute('aria-level', String(depth + 1));
    if (children)
      row.setAttribute('aria-expanded', String(this.opened.has(node)));
    else
      row.removeAttribute('aria-expanded');
    row.classList.toggle('match', node !== 0 && this.matches?.[this.selection!.places[node]] === 1);
  }

  private hasChildren(node: number): boolean {
    const { childStart, childEnd } = this.selection!;
    return childEnd[node] > childStart[node] && this.selection!.totals[node] > this.selection!.selves[node];
  }

  private toggle(index: number): void {
    const { node } = this.rows[index];
    if (!this.opened.delete(node)) this.opened.add(node);
    this.listRows();
    this.app.store.repaint(this.paint);
  }

  private listRows(): void {
    const rows: TreeRow[] = [];
    const pending: TreeRow[] = [{ node: 0, depth: 0 }];
    for (let row; (row = pending.pop()) !== undefined;) {
      rows.push(row);
      if (!this.opened.has(row.node)) continue;
      const { depth } = row;
      for (const node of childrenOf(this.selection!, row.node).reverse())
        pending.push({ node, depth: depth + 1 });
    }
    this.rows = rows;
  }

  /** Opens the way down that most samples took. */
  private openHeaviest(selection: Selection): void {
    this.opened = new Set([0]);
    for (let node = 0;;) {
      const heaviest = childrenOf(selection, node)[0];
      if (heaviest === undefined || selection.totals[heaviest] < selection.count / 20) return;
      this.opened.add(heaviest);
      node = heaviest;
    }
  }
}
