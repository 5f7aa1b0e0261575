import {clamped} from '../model/axis';
import type {Profile} from '../document/profile';
import {everySample, pixelBounds, RowSamples, type TimeRow, timeRows} from '../model/density';
import type {Selection} from '../model/Selection';
import {element, equip, fitCanvas, isDark, placeIn, shortName, span} from './dom';
import {groundColours, Pixels} from './laneRaster';
import {formatCount} from './placeLook';
import type {State} from './store';
import {brushOf, gutter, scaleOf, setBrush, shownExtent} from './timeAxis';
import {TimeStage} from './TimeStage';
import {type App, perform, type View} from './View';

const rowHeight = 18;
/** Part of the shown time that a key moves the brush by. */
const keyStep = 0.01;
/** A column of one sample stays visible next to one of a thousand. */
const leastColumn = 2;

/** Samples over time, one row for each core and each thread; a drag selects a span, a label its row. */
export class TimelineView implements View {
  readonly id = 'timeline';
  readonly title = 'Samples over time';
  readonly zone = 'time';
  #app!: App;
  #host!: HTMLElement;
  #stage!: TimeStage;
  readonly picture = { canvas: element('canvas', { 'aria-hidden': true }) };
  readonly #brushMark = element('div', { class: 'timeline-brush', hidden: true });
  #profile!: Profile;
  #selection!: Selection;
  #rows: readonly TimeRow[] = [];
  #current = 0;
  #pixels: Pixels|null = null;
  /** The rows in sight, and the samples of each: all of them, and the selected ones. */
  #listed: readonly TimeRow[] = [];
  #all!: RowSamples;
  #selected!: RowSamples;

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    this.#app = app;
    this.#host = host;
    const labels = element('div', {
      class: 'labels',
      role: 'listbox',
      tabIndex: 0,
      'aria-multiselectable': true,
      'aria-label': 'Cores and threads; Enter selects one, Shift and arrows a span',
      click: (event: MouseEvent) => {
        const row = this.#rowAt(placeIn(host, event).y);
        if (row < this.#rows.length) this.#select(row, event.ctrlKey || event.metaKey || event.shiftKey);
      }
    });
    this.#stage = new TimeStage(host, app, labels, [this.picture.canvas, this.#brushMark], this.#show, {
      hover: (time, y, event) => this.#hover(time, y, event),
      click: () => setBrush(app.store, null),
    });
  }

  draw(state: State, before: State|null): void {
    const model = state.profile!;
    if (model.profile !== this.#profile) {
      this.#profile = model.profile;
      this.#rows = timeRows(model.profile);
      this.#listed = [];
      this.#stage.rows = this.#rows.length * rowHeight;
      this.#host.style.setProperty('--rows', String(this.#rows.length));
    }
    const selection = model.selectionOfAllTime(state.filter);
    if (selection !== this.#selection) this.#listed = [];
    this.#selection = selection;
    if (this.#listed.length === 0 || !before)
      this.#show();
    else if (state.visible !== before.visible || state.timechart !== before.timechart)
      this.#app.store.repaint(this.#paint);
    this.#placeBrush(state);
  }

  key(event: KeyboardEvent): boolean {
    const select = () => this.#select(this.#current, event.ctrlKey || event.shiftKey);
    return perform(event.key, {
             ArrowUp: () => this.#go(this.#current - 1),
             ArrowDown: () => this.#go(this.#current + 1),
             Home: () => this.#go(0),
             End: () => this.#go(Infinity),
             Enter: select,
             ' ': select,
             ArrowLeft: () => this.#moveBrush(-1, event.shiftKey),
             ArrowRight: () => this.#moveBrush(1, event.shiftKey),
           }) ||
        this.#stage.key(event);
  }

  table() {
    const { weight } = this.#profile;
    return [['row', 'samples'], ...this.#rows.map((row) => [this.#nameOf(row), row.samples * weight])];
  }

  /** Shows the rows in sight, which are others after a scroll. */
  readonly #show = (): void => {
    const first = this.#rowAt(0);
    this.#list(this.#rows.slice(first, Math.ceil((this.#stage.top + this.#stage.height) / rowHeight)));
    this.#label(first, this.#stage.top);
    this.#app.store.repaint(this.#paint);
  };

  readonly #paint = (): Iterator<void> => this.#paintRows();

  /** Paints row by row, and shows the rows once all are painted. */
  * #paintRows(): Iterator<void> {
    const listed = this.#listed;
    const everyone = this.#all;
    const chosen = this.#selected;
    const { top } = this.#stage;
    const first = this.#rowAt(0);
    const scale = devicePixelRatio;
    const pixels = (this.#pixels = Pixels.of(this.#stage.width, this.#stage.height, this.#pixels));
    const dark = isDark();
    const quiet = dark ? 0x3b424a : 0xd0d6dc;
    pixels.clear(groundColours(dark).ground);
    const bounds = pixelBounds(this.#profile, shownExtent(this.#app.store.state), pixels.width);
    for (const [row, { kind }] of listed.entries()) {
      const bottom = Math.round(((first + row + 1) * rowHeight - top - 1) * scale);
      const high = Math.round((rowHeight - 2) * scale);
      const strong = kind === 'core' ? 0x4080cc : 0xe88c3c;
      const all = everyone.count(row, bounds);
      const selected = chosen === everyone ? all : chosen.count(row, bounds);
      const most = all.reduce((a, b) => Math.max(a, b), 1);
      const level = (count: number) =>
          count === 0 ? 0 : Math.max(Math.ceil(leastColumn * scale), Math.round((count / most) * high));
      all.forEach((count, x) => {
        if (count === 0) return;
        const middle = bottom - level(selected[x]);
        pixels.box(x, x + 1, bottom - level(count), middle, quiet);
        pixels.box(x, x + 1, middle, bottom, strong);
      });
      yield;
    }
    fitCanvas(this.picture.canvas, this.#stage.width, this.#stage.height);
    this.picture.canvas.getContext('2d', { alpha: false })!.putImageData(pixels.image, 0, 0);
  }

  /** Finds the samples of the rows in sight, which many repaints have in common. */
  #list(rows: readonly TimeRow[]): void {
    if (rows.length === this.#listed.length && rows[0] === this.#listed[0]) return;
    const profile = this.#profile;
    const selection = this.#selection;
    this.#listed = rows;
    this.#all = new RowSamples(profile, rows, everySample(profile));
    this.#selected = selection.isEverything ?
        this.#all :
        new RowSamples(profile, rows, (visit) => selection.forEachSample(visit));
  }

  #label(first: number, top: number): void {
    const { filter } = this.#app.store.state;
    const options = this.#listed.map((row, i) => {
      const chosen = (row.kind === 'core' ? filter.cores : filter.threads)?.has(row.subject) === true;
      const option = element(
          'div', {
            class: first + i === this.#current ? 'label current' : 'label',
            role: 'option',
            id: `row-${first + i}`,
            'aria-selected': chosen
          },
          span('label-name', shortName(this.#nameOf(row))), span('quiet', this.#countOf(row)));
      option.style.top = `${(first + i) * rowHeight - top}px`;
      option.style.height = `${rowHeight}px`;
      return option;
    });
    this.#stage.labels.replaceChildren(...options);
    equip(this.#stage.labels, { 'aria-activedescendant': `row-${this.#current}` });
  }

  #nameOf({ kind, subject }: TimeRow): string {
    if (kind === 'core') return `Core ${subject}`;
    const { name, tid } = this.#profile.threads[subject];
    return `${name} (${tid})`;
  }

  #countOf(row: TimeRow): string { return formatCount(row.samples * this.#profile.weight); }

  #tell(row: TimeRow): string[] { return [this.#nameOf(row), `${this.#countOf(row)} samples`]; }

  #hover(time: number|null, y: number, event: PointerEvent|null): void {
    const row = this.#rows[this.#rowAt(y)];
    const label = event !== null && placeIn(this.#host, event).x < gutter;
    this.#app.hover(label ? null : time);
    if (time === null || !row)
      this.#app.tooltip(null);
    else
      this.#app.tooltip(
          label ? [...this.#tell(row), 'a click selects them, with Shift adds them'] : this.#tell(row),
          event);
  }

  /** Returns the index of the row `y` pixels below the upper edge. */
  #rowAt(y: number): number { return Math.floor((y + this.#stage.top) / rowHeight); }

  #go(row: number): void {
    this.#current = clamped(row, 0, this.#rows.length - 1);
    this.#stage.show(this.#current * rowHeight, rowHeight);
    this.#app.announce(this.#tell(this.#rows[this.#current]).join(', '));
    this.#app.store.repaint(this.#show);
  }

  /** Selects the samples of a row, or takes it in or out of what is selected. */
  #select(index: number, add: boolean): void {
    const { kind, subject } = this.#rows[index];
    const { store } = this.#app;
    const before = kind === 'core' ? store.state.filter.cores : store.state.filter.threads;
    const chosen = new Set(add ? before : []);
    if (before?.has(subject) === true && (add || before.size === 1))
      chosen.delete(subject);
    else
      chosen.add(subject);
    this.#current = index;
    const next = chosen.size === 0 ? null : chosen;
    store.refine(kind === 'core' ? { cores: next } : { threads: next }, null);
  }

  #moveBrush(direction: number, extend: boolean): void {
    const { store } = this.#app;
    const shown = shownExtent(store.state);
    const step = (shown.end - shown.start) * keyStep * direction;
    const { start, end } = brushOf(store.state) ?? { start: shown.start, end: shown.start };
    const next =
        extend ? { start, end: Math.max(start, end + step) } : { start: start + step, end: end + step };
    setBrush(store, next.end > next.start ? next : null);
  }

  #placeBrush(state: State): void {
    const brush = brushOf(state);
    this.#brushMark.hidden = !brush;
    if (!brush) return;
    const scale = scaleOf(state, this.#host);
    const [left, right] = [brush.start, brush.end].map((time) => clamped(scale.x(time), 0, scale.width));
    this.#brushMark.style.transform = `translateX(${gutter + left}px)`;
    this.#brushMark.style.width = `${Math.max(1, right - left)}px`;
  }
}
