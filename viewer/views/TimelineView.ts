import {type Density, density, timeRows, type TimeRow} from '../model/density';
import type {Profile} from '../document/profile';
import type {Selection} from '../model/Selection';
import {element, fitCanvas, isDark, pageColour, shortName} from './dom';
import {formatCount} from './placeLook';
import type {State} from './store';
import {axisWidth, brushOf, gutter, setBrush, shownExtent, timeGestures} from './timeAxis';
import type {App, View} from './View';

const rowHeight = 18;
/** Part of the shown time that a key moves the brush by. */
const keyStep = 0.01;

/** Samples over time, one row for each core and each thread; a drag selects a span, a label its row. */
export class TimelineView implements View {
  readonly id = 'timeline';
  readonly title = 'Samples over time';
  readonly zone = 'time';
  private app!: App;
  private host!: HTMLElement;
  private readonly picture = element('canvas', { class: 'timeline-picture' });
  private readonly brushMark = element('div', { class: 'timeline-brush', hidden: true });
  private readonly scroller = element('div', { class: 'timeline-scroll', tabindex: '0', role: 'listbox' });
  private readonly spacer = element('div', {});
  private profile: Profile|null = null;
  private selection: Selection|null = null;
  private rows: TimeRow[] = [];
  private current = 0;
  private counted: { readonly question: readonly unknown[]; readonly density: Density }|null = null;

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    this.app = app;
    this.host = host;
    this.scroller.setAttribute(
        'aria-label', 'Cores and threads; Enter selects the samples of one, Shift and arrows a span');
    const stage = element('div', { class: 'timeline-stage' }, this.picture, this.brushMark);
    this.scroller.append(this.spacer);
    host.append(this.scroller, stage);
    this.scroller.addEventListener('scroll', () => app.store.repaint(this.paint));
    timeGestures(stage, app, {
      width: () => axisWidth(host),
      scroll: (pixels) => (this.scroller.scrollTop += pixels),
      hover: (time, y, event) => this.hover(time, y, event),
      click: () => setBrush(app.store, null),
    });
    stage.addEventListener('click', (event) => {
      const { left, top } = stage.getBoundingClientRect();
      const row = this.rowAt(event.clientY - top);
      if (event.clientX - left < gutter && row >= 0)
        this.select(row, event.ctrlKey || event.metaKey || event.shiftKey);
    });
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    const model = state.profile!;
    if (model.profile !== this.profile) {
      this.profile = model.profile;
      this.rows = timeRows(model.profile);
      this.spacer.style.height = `${this.rows.length * rowHeight}px`;
      this.host.style.setProperty('--rows', String(this.rows.length));
    }
    const selection = model.selectionOfAllTime(state.filter);
    const stale = changed.has('profile') || changed.has('visible') || changed.has('timechart') ||
        selection !== this.selection;
    this.selection = selection;
    if (stale) this.paint();
    this.placeBrush(state);
  }

  key(event: KeyboardEvent): boolean {
    switch (event.key) {
      case 'ArrowUp':
      case 'ArrowDown':
        return this.go(this.current + (event.key === 'ArrowDown' ? 1 : -1));
      case 'Home':
        return this.go(0);
      case 'End':
        return this.go(this.rows.length - 1);
      case 'Enter':
      case ' ':
        this.select(this.current, event.ctrlKey || event.shiftKey);
        return true;
      case 'ArrowLeft':
      case 'ArrowRight':
        this.moveBrush(event.key === 'ArrowRight' ? 1 : -1, event.shiftKey);
        return true;
    }
    return false;
  }

  table(): string[][] {
    const weight = this.profile?.weight ?? 1;
    return [['row', 'samples'], ...this.rows.map((row) => [this.nameOf(row), String(row.samples * weight)])];
  }

  canvas(): HTMLCanvasElement { return this.picture; }

  private readonly paint = (): void => {
    const { selection, picture } = this;
    if (selection === null) return;
    const state = this.app.store.state;
    const height = this.scroller.clientHeight;
    const scale = fitCanvas(picture, gutter + axisWidth(this.host), height);
    const context = picture.getContext('2d', { alpha: false })!;
    const dark = isDark();
    context.setTransform(scale, 0, 0, scale, 0, 0);
    context.fillStyle = pageColour('ground');
    context.fillRect(0, 0, picture.width, picture.height);
    const top = this.scroller.scrollTop;
    const first = Math.floor(top / rowHeight);
    const rows = this.rows.slice(first, Math.ceil((top + height) / rowHeight));
    if (rows.length === 0) return;
    const { start, end } = shownExtent(state);
    const columns = Math.round(axisWidth(this.host) * scale);
    const counted = this.count(selection, rows, first, start, end, columns);
    const band = Math.round((rowHeight - 2) * scale);
    rows.forEach((row, index) => {
      const y = (first + index) * rowHeight - top;
      const image = this.drawRow(counted, index, row, band, dark, scale);
      context.putImageData(image, Math.round(gutter * scale), Math.round((y + 1) * scale));
    });
    this.drawLabels(context, rows, first, top);
  };

  /** Returns the samples of each pixel, which many repaints have in common. */
  private count(
      selection: Selection, rows: readonly TimeRow[],
      ...place: readonly[number, number, number, number]): Density {
    const question = [selection, rows.length, ...place];
    if (this.counted === null || question.some((part, index) => part !== this.counted!.question[index])) {
      const [, start, end, columns] = place;
      this.counted = { question, density: density(selection, rows, start, end, columns) };
    }
    return this.counted.density;
  }

  /** Returns the picture of a row: grey for all samples of a pixel, coloured for the selected ones. */
  private drawRow(
      { all, selected, columns }: Density, row: number, { kind }: TimeRow, band: number, dark: boolean,
      scale: number): ImageData {
    const image = new ImageData(columns, band);
    const pixels = new Uint32Array(image.data.buffer);
    pixels.fill(dark ? 0xff1c1816 : 0xffffffff);
    const quiet = dark ? 0xff4a423b : 0xffdcd6d0;
    const strong = kind === 'core' ? (dark ? 0xffc98a4a : 0xffc97b35) : dark ? 0xff4a93e0 : 0xff2f86ea;
    const most = all.subarray(row * columns, (row + 1) * columns).reduce((a, b) => Math.max(a, b), 1);
    // A column of one sample stays visible beside one of a thousand.
    const levels = (count: number) =>
        (count === 0 ? 0 : Math.max(Math.ceil(2 * scale), Math.round((count / most) * band)));
    for (let column = 0; column < columns; ++column) {
      const at = row * columns + column;
      const high = levels(all[at]);
      const chosen = Math.min(high, levels(selected[at]));
      for (let y = 0; y < high; ++y) pixels[(band - 1 - y) * columns + column] = y < chosen ? strong : quiet;
    }
    return image;
  }

  private drawLabels(context: CanvasRenderingContext2D, rows: readonly TimeRow[], first: number, top: number):
      void {
    const [text, quiet, line, accent, chosenColour] =
        ['text', 'quiet', 'line', 'accent', 'chosen'].map(pageColour);
    const { filter } = this.app.store.state;
    context.font = '12px system-ui, sans-serif';
    context.textBaseline = 'middle';
    rows.forEach((row, index) => {
      const y = (first + index) * rowHeight - top;
      const chosen = row.kind === 'core' ? filter.cores : filter.threads;
      context.fillStyle = chosenColour;
      if (chosen?.has(row.subject) === true) context.fillRect(0, y, gutter - 1, rowHeight);
      context.fillStyle = line;
      context.fillRect(0, y + rowHeight - 1, gutter + axisWidth(this.host), 1);
      if (first + index === this.current && this.host.contains(document.activeElement)) {
        context.strokeStyle = accent;
        context.strokeRect(1, y + 1, gutter - 3, rowHeight - 3);
      }
      context.save();
      context.beginPath();
      context.rect(0, y, gutter - 52, rowHeight);
      context.clip();
      context.fillStyle = text;
      context.fillText(shortName(this.nameOf(row)), 10, y + rowHeight / 2);
      context.restore();
      context.fillStyle = quiet;
      context.textAlign = 'right';
      context.fillText(formatCount(row.samples * (this.profile?.weight ?? 1)), gutter - 8, y + rowHeight / 2);
      context.textAlign = 'left';
    });
  }

  private nameOf({ kind, subject }: TimeRow): string {
    if (kind === 'core') return `Core ${subject}`;
    const { name, tid } = this.profile!.threads[subject];
    return `${name} (${tid})`;
  }

  private rowAt(y: number): number {
    const row = Math.floor((y + this.scroller.scrollTop) / rowHeight);
    return row < this.rows.length ? row : -1;
  }

  private hover(time: number|null, y: number, event: PointerEvent): void {
    const row = time === null ? -1 : this.rowAt(y);
    const label = event.clientX - this.host.getBoundingClientRect().left < gutter;
    this.app.hover(label ? null : time);
    if (row < 0) return this.app.tooltip(null);
    const { samples } = this.rows[row];
    const lines = [this.nameOf(this.rows[row]), `${formatCount(samples * this.profile!.weight)} samples`];
    this.app.tooltip(label ? [...lines, 'click to select them alone, with Shift to add them'] : lines, event);
  }

  /** Moves to a row; returns true for the callers' convenience. */
  private go(row: number): true {
    this.current = Math.max(0, Math.min(row, this.rows.length - 1));
    const y = this.current * rowHeight;
    const { scroller } = this;
    scroller.scrollTop = Math.min(y, Math.max(scroller.scrollTop, y + rowHeight - scroller.clientHeight));
    const { samples } = this.rows[this.current];
    this.app.announce(
        `${this.nameOf(this.rows[this.current])}, ${formatCount(samples * this.profile!.weight)} samples`);
    this.app.store.repaint(this.paint);
    return true;
  }

  /** Selects the samples of a row, or takes it in or out of what is selected. */
  private select(index: number, add: boolean): void {
    const { kind, subject } = this.rows[index];
    const { store } = this.app;
    const key = kind === 'core' ? 'cores' : 'threads';
    const before = store.state.filter[key];
    const chosen = new Set(add ? before : []);
    if (before?.has(subject) === true && (add || before.size === 1))
      chosen.delete(subject);
    else
      chosen.add(subject);
    this.current = index;
    store.set({ filter: {...store.state.filter, [key]: chosen.size === 0 ? null : chosen }, run: null });
  }

  private moveBrush(direction: number, extend: boolean): void {
    const { store } = this.app;
    const shown = shownExtent(store.state);
    const step = (shown.end - shown.start) * keyStep * direction;
    const { start, end } = brushOf(store.state) ?? { start: shown.start, end: shown.start };
    const next =
        extend ? { start, end: Math.max(start, end + step) } : { start: start + step, end: end + step };
    setBrush(store, next.end > next.start ? next : null);
  }

  private placeBrush(state: State): void {
    const brush = brushOf(state);
    this.brushMark.hidden = brush === null;
    if (brush === null) return;
    const shown = shownExtent(state);
    const width = axisWidth(this.host);
    const x = (time: number) =>
        Math.max(0, Math.min(width, ((time - shown.start) / (shown.end - shown.start)) * width));
    this.brushMark.style.transform = `translateX(${gutter + x(brush.start)}px)`;
    this.brushMark.style.width = `${Math.max(1, x(brush.end) - x(brush.start))}px`;
  }
}
