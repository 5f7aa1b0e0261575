import {functionRows, type Order, type SortKey} from '../model/functionRows';
import {groupings, type Grouping, type GroupWeights} from '../model/groupings';
import {formatShare} from '../model/axis';
import type {ProfileModel} from '../model/ProfileModel';
import type {Selection} from '../model/Selection';
import {element, isDark, shortName} from './dom';
import {folded} from './folded';
import {kindColour} from './placeColours';
import {formatCount, formatPart} from './placeLook';
import {ProfileBar} from './ProfileBar';
import {cellsOf, fillShare, RowList} from './RowList';
import type {State} from './store';
import {type App, type Direction, samplesChanged, type View} from './View';

const columns: readonly(readonly[SortKey, string, string])[] = [
  ['self', 'Self', 'number'],
  ['total', 'Total', 'number'],
  ['name', 'Name', 'name'],
  ['detail', 'Where', 'detail'],
];

/** The selected samples by function, library, source file, process, thread or core. */
export class FunctionsView implements View {
  readonly id = 'functions';
  readonly title = 'Functions';
  readonly zone = 'detail';
  private app!: App;
  private bar!: ProfileBar;
  private list!: RowList;
  private readonly heads = new Map<SortKey, HTMLElement>();
  private by = 'function';
  private text = '';
  private order: Order = { key: 'self', descending: true };
  private model!: ProfileModel;
  private selection: Selection|null = null;
  private grouping!: Grouping;
  private weights!: GroupWeights;
  private rows: number[] = [];
  private matches: Uint8Array|null = null;

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    this.app = app;
    host.classList.add('column');
    const options =
        Object.entries(groupings).map(([id, { title }]) => element('option', { value: id }, title));
    const by: HTMLSelectElement = element(
        'select', { 'aria-label': 'Rows are', change: () => this.change(() => (this.by = by.value)) },
        ...options);
    const text: HTMLInputElement = element('input', {
      type: 'search',
      class: 'filter',
      placeholder: 'Rows with…',
      'aria-label': 'Only rows with this text',
      spellcheck: 'false',
      input: () => this.change(() => (this.text = text.value)),
    });
    this.bar = new ProfileBar(host, app, [by, text]);
    host.append(
        element('div', { class: 'row head', role: 'row' }, ...columns.map((column) => this.head(...column))));
    const repaint = () => app.store.repaint(this.paint);
    this.list = new RowList(host, 'grid', 'Functions', repaint, (row, index) => this.fill(row, index), {
      choose: (index) => app.announce(this.describe(index)),
      open: (index) => this.open(index),
    });
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    if (samplesChanged(changed)) this.show(state);
  }

  key(event: KeyboardEvent): boolean {
    return event.target instanceof HTMLElement && event.target.closest('.head') === null &&
        this.list.key(event);
  }

  find(direction: Direction): string|null {
    const { matches, rows } = this;
    if (matches === null) return null;
    for (let step = 1; step <= rows.length; ++step) {
      const index = (this.list.chosen + direction * step + rows.length * 2) % rows.length;
      if (matches[rows[index]] === 0) continue;
      this.list.choose(index);
      return this.describe(index);
    }
    return null;
  }

  table(): string[][] {
    const { weight } = this.model.profile;
    const { selves, totals } = this.weights;
    const rows = this.rows.map((group) => {
      const { name, detail } = this.grouping.groups[group];
      return [String(selves[group] * weight), String(totals[group] * weight), name, detail];
    });
    return [['self', 'total', groupings[this.by].title.toLowerCase(), 'where'], ...rows];
  }

  folded(): string { return this.selection === null ? '' : folded(this.selection); }

  private readonly paint = () => this.list.draw(this.rows.length);

  private readonly showAgain = () => this.show(this.app.store.state);

  private show(state: State): void {
    this.model = state.profile!;
    this.selection = this.model.selection(state.filter);
    this.grouping = this.model.grouping(this.by);
    this.weights = this.grouping.weigh(this.selection);
    this.rows = functionRows(this.grouping, this.weights, this.text, this.order);
    this.matches = this.grouping.byPlace ? this.model.matches(state.search) : null;
    for (const [key, head] of this.heads) {
      const sorted = key === this.order.key;
      head.setAttribute('aria-sort', sorted ? (this.order.descending ? 'descending' : 'ascending') : 'none');
    }
    this.bar.draw(state);
    this.paint();
  }

  private head(key: SortKey, title: string, style: string): HTMLElement {
    const sort = () => this.change(() => {
      const descending = this.order.key === key ? !this.order.descending : key === 'self' || key === 'total';
      this.order = { key, descending };
    });
    const head = element(
        'span', { class: style, role: 'columnheader' },
        element('button', { type: 'button', click: sort }, title));
    this.heads.set(key, head);
    return head;
  }

  /** Makes a change of what is shown and paints it. */
  private change(make: () => void): void {
    make();
    this.app.store.repaint(this.showAgain);
  }

  private describe(index: number): string {
    const group = this.rows[index];
    const { name, detail } = this.grouping.groups[group];
    const { weight } = this.model.profile;
    const whole = this.selection!.count * weight;
    const self = formatPart(this.weights.selves[group] * weight, whole);
    const total = formatPart(this.weights.totals[group] * weight, whole);
    return `${shortName(name)}, self ${self}, total ${total}${detail === '' ? '' : `, ${shortName(detail)}`}`;
  }

  private fill(row: HTMLElement, index: number): void {
    const group = this.rows[index];
    const { name, detail, kind } = this.grouping.groups[group];
    const { weight } = this.model.profile;
    const whole = this.selection!.count || 1;
    const [self, total, nameCell, detailCell] =
        cellsOf(row, ['number share', 'number share', 'name', 'detail']);
    const figure = (cell: HTMLElement, samples: number) =>
        fillShare(cell, `${formatCount(samples * weight)}  ${formatShare(samples / whole)}`, samples / whole);
    figure(self, this.weights.selves[group]);
    figure(total, this.weights.totals[group]);
    const swatch = element('i', { class: 'swatch' });
    swatch.style.background = kindColour(kind, isDark());
    nameCell.replaceChildren(swatch, shortName(name));
    detailCell.textContent = shortName(detail);
    row.classList.toggle('match', this.matches?.[group] === 1);
  }

  /** Looks into a function; for anything else, selects its samples. */
  private open(index: number): void {
    const group = this.rows[index];
    const { store } = this.app;
    if (this.grouping.byPlace)
      store.set({ place: group, panel: 'butterfly' });
    else if (this.by === 'core')
      store.set({ filter: {...store.state.filter, cores: new Set([group]) } });
    else if (this.by === 'thread')
      store.set({ filter: {...store.state.filter, threads: new Set([group]) } });
    else if (this.by === 'process') {
      const { pid } = this.model.profile.processes[group] ?? {};
      const threads = this.model.profile.threads.flatMap((thread, at) => (thread.pid === pid ? [at] : []));
      store.set({ filter: {...store.state.filter, threads: new Set(threads) } });
    }
  }
}
