import {clamped, type Direction} from '../model/axis';
import {div, element, equip, foldSign, placeIn, span, swatch, twisty, write} from './dom';
import {type App, nextOf, perform} from './View';

export interface Column {
  readonly title: string;
  /** Its classes in the style sheet. */
  readonly style: string;
  /** Sorts by the column. */
  readonly sort?: () => void;
}

export interface Row {
  /** A text for each column. */
  readonly cells: readonly string[];
  /** Parts of the width that a bar under the text fills, for the first columns. */
  readonly shares?: readonly number[];
  /** Colour of a swatch before the name. */
  readonly colour?: string;
  /** A class of the style sheet. */
  readonly style?: string;
  readonly level?: number;
  /** Whether the rows below it are listed; null if it has none. */
  readonly open?: boolean|null;
}

/** What a table asks its view. */
export interface Rows {
  row(index: number): Row;
  /** Looks into a row: Enter, or a double click. */
  open(index: number): void;
  isMatch?(index: number): boolean;
}

const rowHeight = 21;
const headHeight = 24;
/** Rows above and below the window that are there before they are scrolled to. */
const margin = 6;
const indent = 13;
const deepestIndent = 60;

/** A table of any number of rows, of which only those in sight are elements. */
export class RowTable {
  readonly #scroller: HTMLElement;
  readonly #heads: readonly HTMLElement[];
  readonly #space = div('rows-space');
  readonly #pool = new Map<number, HTMLElement>();
  #count = 0;
  #current = 0;

  constructor(
      host: HTMLElement,
      private readonly app: App,
      private readonly id: string,
      label: string,
      private readonly columns: readonly Column[],
      private readonly rows: Rows,
      role: 'grid'|'treegrid' = 'grid',
  ) {
    this.#heads = columns.map(
        ({ title, style, sort }) => element(
            'span', { class: style, role: 'columnheader' },
            sort ? element('button', { click: sort }, title) : title));
    equip(this.#space, {
      role: 'rowgroup',
      click: (event: MouseEvent) => this.#pick(event, false),
      dblclick: (event: MouseEvent) => this.#pick(event, true),
    });
    this.#scroller = element(
        'div', { class: 'rows', role, 'aria-label': label, tabIndex: 0, scroll: this.repaint },
        element('div', { class: 'row head', role: 'row' }, ...this.#heads), this.#space);
    host.append(this.#scroller);
  }

  get hasFocus(): boolean { return this.#scroller.contains(document.activeElement); }

  get chosen(): number { return this.#current; }

  draw(count: number): void {
    this.#count = count;
    this.#current = clamped(this.#current, 0, count - 1);
    this.#space.style.height = `${count * rowHeight}px`;
    const first = Math.max(0, Math.floor(this.#scroller.scrollTop / rowHeight) - margin);
    const last = Math.min(
        count, Math.ceil((this.#scroller.scrollTop + this.#scroller.clientHeight) / rowHeight) + margin);
    for (const [index, row] of this.#pool) {
      if (index >= first && index < last) continue;
      row.remove();
      this.#pool.delete(index);
    }
    for (let index = first; index < last; ++index)
      this.#fill(this.#pool.get(index) ?? this.#add(index), index);
    equip(
        this.#scroller,
        { 'aria-rowcount': count + 1, 'aria-activedescendant': `${this.id}-${this.#current}` });
  }

  /** Says by which column, and how, the rows are sorted. */
  sorted(by: number, descending: boolean): void {
    const order = descending ? 'descending' : 'ascending';
    this.#heads.forEach((head, column) => equip(head, { 'aria-sort': column === by ? order : 'none' }));
  }

  /** Makes a row the current one and brings it into sight. */
  choose(index: number): void {
    if (this.#count === 0) return;
    this.#current = clamped(index, 0, this.#count - 1);
    const top = this.#current * rowHeight;
    const scroller = this.#scroller;
    scroller.scrollTop =
        Math.min(top, Math.max(scroller.scrollTop, top + rowHeight + headHeight - scroller.clientHeight));
    this.repaint();
  }

  key(event: KeyboardEvent): boolean {
    const page = Math.max(1, Math.floor(this.#scroller.clientHeight / rowHeight) - 2);
    return perform(event.key, {
      ArrowUp: () => this.choose(this.#current - 1),
      ArrowDown: () => this.choose(this.#current + 1),
      PageUp: () => this.choose(this.#current - page),
      PageDown: () => this.choose(this.#current + page),
      Home: () => this.choose(0),
      End: () => this.choose(Infinity),
      Enter: () => this.rows.open(this.#current),
    });
  }

  /** Goes to the next or previous match of the search; returns its label, or null. */
  find(direction: Direction): string|null {
    const index = nextOf(this.#count, this.#current, direction, (row) => this.rows.isMatch?.(row) === true);
    if (index < 0) return null;
    this.choose(index);
    return this.#describe(index);
  }

  readonly repaint = (): void => this.app.store.repaint(this.#redraw);

  readonly #redraw = () => this.draw(this.#count);

  /** Returns the name, then the other cells with the titles of their columns. */
  #describe(index: number): string {
    const { cells } = this.rows.row(index);
    const name = this.columns.findIndex((column) => column.style === 'name');
    const others = this.columns.map((column, i) => `${column.title.toLowerCase()} ${cells[i]}`);
    return [cells[name], ...others.filter((_, i) => i !== name && cells[i] !== '')].join(', ');
  }

  #add(index: number): HTMLElement {
    const row = element(
        'div', { role: 'row', id: `${this.id}-${index}`, 'aria-rowindex': index + 2 },
        ...this.columns.map(
            ({ style }) => element(
                'span', { class: style, role: 'gridcell' },
                ...(style === 'name' ? [twisty(), swatch(''), span('')] : []))));
    row.style.transform = `translateY(${index * rowHeight}px)`;
    this.#pool.set(index, row);
    this.#space.append(row);
    return row;
  }

  #fill(made: HTMLElement, index: number): void {
    const { cells, shares = [], colour, style = '', level, open = null } = this.rows.row(index);
    made.className = `row ${style} ${index === this.#current ? 'current' : ''}`;
    equip(made, {
      'aria-label': this.#describe(index),
      'aria-level': level === undefined ? null : level + 1,
      'aria-expanded': open
    });
    cells.forEach((text, i) => write(made.children[i].lastElementChild ?? made.children[i], text));
    shares.forEach((share, i) => {
      (made.children[i] as HTMLElement).style.backgroundSize = `${(100 * share).toFixed(1)}% 100%`;
    });
    const [mark, sample] = made.querySelector('.name')!.children as HTMLCollectionOf<HTMLElement>;
    mark.hidden = level === undefined;
    mark.style.marginLeft = `${Math.min(level ?? 0, deepestIndent) * indent}px`;
    write(mark, foldSign(open));
    sample.hidden = colour === undefined;
    sample.style.background = colour ?? '';
  }

  #pick(event: MouseEvent, open: boolean): void {
    const index = Math.floor(placeIn(this.#space, event).y / rowHeight);
    if (index < 0 || index >= this.#count) return;
    this.choose(index);
    if (open !== (event.target as Element).matches('.twisty')) this.rows.open(index);
  }
}
