import {element} from './dom';

const rowHeight = 21;
/** Rows above and below the window that are there before they are scrolled to. */
const margin = 6;

/**
 * A table of any number of rows, of which only those in sight are elements. `fill` writes a row into its
 * element, which it finds with the cells that it made before or empty.
 */
export class RowList {
  readonly scroller: HTMLElement;
  private readonly spacer = element('div', { class: 'rows-space', role: 'presentation' });
  private readonly pool = new Map<number, HTMLElement>();
  private count = 0;
  private current = 0;

  constructor(
      host: HTMLElement,
      role: 'grid'|'treegrid',
      label: string,
      private readonly repaint: () => void,
      private readonly fill: (row: HTMLElement, index: number) => void,
      private readonly act: { choose(index: number): void; open(index: number): void },
  ) {
    this.scroller = element('div', { class: 'rows', role, 'aria-label': label, tabindex: '0' }, this.spacer);
    host.append(this.scroller);
    this.scroller.addEventListener('scroll', this.repaint);
    this.scroller.addEventListener('click', (event) => this.pick(event, false));
    this.scroller.addEventListener('dblclick', (event) => this.pick(event, true));
  }

  get chosen(): number { return this.current; }

  draw(count: number): void {
    this.count = count;
    this.current = Math.max(0, Math.min(this.current, count - 1));
    this.spacer.style.height = `${count * rowHeight}px`;
    this.scroller.setAttribute('aria-rowcount', String(count));
    const first = Math.max(0, Math.floor(this.scroller.scrollTop / rowHeight) - margin);
    const last = Math.min(
        count, Math.ceil((this.scroller.scrollTop + this.scroller.clientHeight) / rowHeight) + margin);
    for (const [index, row] of this.pool) {
      if (index >= first && index < last) continue;
      row.remove();
      this.pool.delete(index);
    }
    for (let index = first; index < last; ++index) {
      let row = this.pool.get(index);
      if (row === undefined) {
        row = element('div', {
          class: 'row',
          role: 'row',
          id: `${this.scroller.getAttribute('aria-label')}-${index}`.replace(/\W+/g, '-')
        });
        row.style.transform = `translateY(${index * rowHeight}px)`;
        row.setAttribute('aria-rowindex', String(index + 1));
        this.pool.set(index, row);
        this.spacer.append(row);
      }
      row.setAttribute('aria-selected', String(index === this.current));
      if (index === this.current) this.scroller.setAttribute('aria-activedescendant', row.id);
      this.fill(row, index);
    }
  }

  /** Makes a row the current one and brings it into sight. */
  choose(index: number): void {
    if (this.count === 0) return;
    this.current = Math.max(0, Math.min(index, this.count - 1));
    const top = this.current * rowHeight;
    const { scroller } = this;
    if (top < scroller.scrollTop) scroller.scrollTop = top;
    if (top + rowHeight > scroller.scrollTop + scroller.clientHeight)
      scroller.scrollTop = top + rowHeight - scroller.clientHeight;
    this.act.choose(this.current);
    this.repaint();
  }

  key(event: KeyboardEvent): boolean {
    const page = Math.max(1, Math.floor(this.scroller.clientHeight / rowHeight) - 1);
    const steps: Record<string, number> = {
      ArrowUp: -1,
      ArrowDown: 1,
      PageUp: -page,
      PageDown: page,
      Home: -Infinity,
      End: Infinity
    };
    if (event.key in steps)
      this.choose(this.current + steps[event.key]);
    else if (event.key === 'Enter')
      this.act.open(this.current);
    else
      return false;
    return true;
  }

  private pick(event: MouseEvent, open: boolean): void {
    const index = Math.floor((event.clientY - this.spacer.getBoundingClientRect().top) / rowHeight);
    if (index < 0 || index >= this.count) return;
    this.choose(index);
    if (open) this.act.open(index);
  }
}

/** Returns the cells of a row, made on its first use. */
export function cellsOf(row: HTMLElement, classes: readonly string[]): HTMLElement[] {
  if (row.childElementCount === 0) {
    row.append(...classes.map((name) => element('span', { class: name, role: 'gridcell' })));
  }
  return [...row.children] as HTMLElement[];
}

/** Writes a share into a cell, with a bar behind it. */
export function fillShare(cell: HTMLElement, text: string, share: number): void {
  cell.textContent = text;
  cell.style.backgroundSize = `${(100 * share).toFixed(1)}% 100%`;
}
