import {formatDuration, formatShare, formatTime} from '../model/axis';
import {Lane, LaneChoice, visibleLanes} from '../model/lanes';
import {pointsBefore, pointsUntil, Slice} from '../model/steps';
import type {TimechartModel} from '../model/TimechartModel';
import type {Track} from '../model/tracks';
import type {State} from './store';
import {button, element, fitCanvas, isDark, shortName} from './dom';
import {laneHeight, paintLane, Picture, Pixels, Surface} from './laneRaster';
import {CanvasWriter, textsReady, Writer, writeTexts} from './laneTexts';
import {selectRun} from './runs';
import {SvgPicture} from './SvgPicture';
import {axisWidth, gutter, setBrush, showTime, shownExtent, timeGestures} from './timeAxis';
import type {App, Direction, View} from './View';

/** A row where it is drawn, in pixels of the page from the top of the view. */
interface PlacedLane {
  readonly lane: Lane;
  readonly top: number;
  readonly height: number;
  readonly pinned: boolean;
}

/** The rows of a timechart. */
export class LanesView implements View {
  readonly id = 'lanes';
  readonly title = 'Timechart';
  readonly zone = 'time';
  private host!: HTMLElement;
  private app!: App;
  private readonly base = element('canvas', { class: 'lanes-base', role: 'img' });
  private readonly overlay = element('canvas', { class: 'lanes-overlay', 'aria-hidden': 'true' });
  private readonly labels = element(
      'div', { class: 'lanes-labels', role: 'tree', tabindex: '0', 'aria-label': 'Rows of the timechart' });
  private readonly space = element('div', { class: 'lanes-space' });
  private readonly scroller = element('div', { class: 'lanes-scroll', tabindex: '-1' }, this.space);
  private pixels: Pixels|null = null;
  private placed: PlacedLane[] = [];
  private pending = 0;
  /** Rows whose texts are still to be written. */
  private late: PlacedLane[] = [];

  available({ timechart }: State): boolean { return timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    this.host = host;
    this.app = app;
    const stage = element('div', { class: 'lanes-stage' }, this.labels, this.base, this.overlay);
    host.append(this.scroller, stage);
    this.scroller.addEventListener('scroll', () => this.repaint());
    timeGestures(stage, app, {
      width: () => this.width,
      scroll: (pixels) => (this.scroller.scrollTop += pixels),
      hover: (time, y, event) => this.hover(time, y, event),
      click: (time, y) => this.click(time, y),
    });
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    const model = state.timechart!;
    if (changed.has('timechart') || changed.has('lanes') || this.placed.length === 0)
      this.space.style.height = `${this.totalHeight(model, state.lanes)}px`;
    const moved = (['timechart', 'lanes', 'profile', 'readings'] as const).some((key) => changed.has(key));
    if (moved) this.place(model, state.lanes);
    if (moved || changed.has('visible')) this.paint(state, model);
    if (moved || changed.has('search') || changed.has('cursor')) this.label(state);
    this.drawOverlay(state);
  }

  /** Paints with the next frame what the state's changes do not tell. */
  private repaint(): void {
    if (this.pending !== 0) return;
    this.pending = requestAnimationFrame(() => {
      this.pending = 0;
      if (this.app.store.state.timechart !== null) this.draw(this.app.store.state, new Set(['lanes']));
    });
  }

  key(event: KeyboardEvent): boolean {
    const { store } = this.app;
    const cursor = this.cursorOf(store.state);
    if (cursor === null) return false;
    const act = this.actions[event.key.length === 1 ? event.key.toLowerCase() : event.key];
    if (act === undefined || event.ctrlKey || event.metaKey || event.altKey) return false;
    act(cursor, event);
    return true;
  }

  find(direction: Direction): string|null {
    const { store } = this.app;
    const { state } = store;
    const wanted = state.search.toLowerCase();
    const all = this.allLanes(state.timechart!);
    if (wanted === '' || all.length === 0) return null;
    const at = all.findIndex((lane) => lane.path === state.cursor?.lane);
    const from = at < 0 && direction < 0 ? 0 : at;
    for (let step = 1; step <= all.length; ++step) {
      const index = (from + direction * step + all.length * 2) % all.length;
      if (!all[index].label.toLowerCase().includes(wanted)) continue;
      this.reveal(all[index]);
      this.moveTo(all[index], state.cursor?.time ?? shownExtent(state).start);
      return all[index].label;
    }
    return null;
  }

  canvas(): HTMLCanvasElement { return this.base; }

  svg(): string {
    const { state } = this.app.store;
    const model = state.timechart!;
    const colours = groundColours();
    const picture = new SvgPicture(gutter + this.width, this.host.clientHeight, colours.ground);
    const lanes: Picture = {
      shown: shownExtent(state),
      close: model.end,
      width: this.width,
      scale: 1,
      dark: isDark()
    };
    const shifted: Surface&Writer = {
      box: (left, right, top, bottom, colour) =>
          picture.box(gutter + left, gutter + right, top, bottom, colour),
      text: (text, x, ...rest) => picture.text(text, gutter + x, ...rest),
    };
    for (const { lane, top, height } of this.placed) {
      picture.text(shortName(lane.label), 8 + lane.depth * 12, top + height / 2, gutter - 20, colours.text);
      paintLane(shifted, lane, top, lanes);
      writeTexts(shifted, model, lane, top, lanes);
    }
    return picture.toString();
  }

  /** The keys of the rows; the help lists them. */
  private readonly actions: Readonly<Record<string, (cursor: PlacedCursor, event: KeyboardEvent) => void>> = {
    ArrowDown: (cursor) => this.step(cursor, 1),
    ArrowUp: (cursor) => this.step(cursor, -1),
    ArrowRight: (cursor, event) => this.toPoint(cursor, 1, event.shiftKey),
    ArrowLeft: (cursor, event) => this.toPoint(cursor, -1, event.shiftKey),
    Enter: (cursor) => this.selectAt(cursor.lane, cursor.time),
    ' ': ({ lane }) => this.toggle('folded', lane),
    p: ({ lane }) => this.toggle('pinned', lane),
    h: ({ lane }) => this.toggle('hidden', lane),
    u: () => this.choose({ hidden: new Set() }),
    m: (cursor) =>
        this.app.store.set({ mark: this.app.store.state.mark === cursor.time ? null : cursor.time }),
    ']': (cursor) => this.toRun(cursor, 1),
    '[': (cursor) => this.toRun(cursor, -1),
  };

  private get width(): number { return axisWidth(this.host); }

  private allLanes(model: TimechartModel): Lane[] {
    const { pinned, rest } =
        visibleLanes(model.tree, { folded: new Set(), hidden: new Set(), pinned: new Set() });
    return [...pinned, ...rest];
  }

  private totalHeight(model: TimechartModel, choice: LaneChoice): number {
    const { pinned, rest } = visibleLanes(model.tree, choice);
    return [...pinned, ...rest].reduce((height, lane) => height + laneHeight(lane), 0);
  }

  /** Finds the rows that can be seen: the pinned ones stay above the scrolled rest. */
  private place(model: TimechartModel, choice: LaneChoice): void {
    const { pinned, rest } = visibleLanes(model.tree, choice);
    const height = this.host.clientHeight;
    this.placed = [];
    let top = 0;
    for (const lane of pinned) {
      this.placed.push({ lane, top, height: laneHeight(lane), pinned: true });
      top += laneHeight(lane);
    }
    const fixed = top;
    top -= this.scroller.scrollTop;
    for (const lane of rest) {
      const rowHeight = laneHeight(lane);
      if (top + rowHeight > fixed && top < height)
        this.placed.push({ lane, top, height: rowHeight, pinned: false });
      top += rowHeight;
    }
  }

  private paint(state: State, model: TimechartModel): void {
    const scale = fitCanvas(this.base, this.width, this.host.clientHeight);
    fitCanvas(this.overlay, this.width, this.host.clientHeight);
    const { width, height } = this.base;
    if (this.pixels === null || this.pixels.width !== width || this.pixels.height !== height)
      this.pixels = new Pixels(width, height);
    const { pixels } = this;
    const dark = isDark();
    const { ground, line } = groundColours();
    const picture: Picture = { shown: shownExtent(state), close: model.end, width, scale, dark };
    pixels.clear(ground);
    // The rest is painted first: pinned rows cover what is scrolled below them.
    for (const row of [...this.placed].reverse()) {
      const top = Math.round(row.top * scale);
      const bottom = Math.round((row.top + row.height) * scale);
      if (row.pinned) pixels.box(0, width, top, bottom, ground);
      paintLane(pixels, row.lane, top, picture);
      pixels.box(0, width, bottom - 1, bottom, line);
    }
    const context = this.base.getContext('2d', { alpha: false })!;
    context.putImageData(pixels.image, 0, 0);
    const writer = new CanvasWriter(context, scale);
    const write = ({ lane, top }: PlacedLane) =>
        writeTexts(writer, model, lane, Math.round(top * scale), picture);
    this.late = this.placed.filter(({ lane }) => !textsReady(lane, model));
    for (const row of this.placed)
      if (!this.late.includes(row)) write(row);
    this.writeLate(this.late, write);
    this.base.setAttribute(
        'aria-label',
        `${this.placed.length} rows from ${formatTime(picture.shown.start)} to ${
            formatTime(picture.shown.end)}`);
  }

  /** Writes the texts of rows that take long, one a frame, unless the rows are painted anew meanwhile. */
  private writeLate(late: PlacedLane[], write: (row: PlacedLane) => void): void {
    if (late.length === 0) return;
    requestAnimationFrame(() => {
      if (late !== this.late) return;
      write(late.shift()!);
      this.writeLate(late, write);
    });
  }

  private label(state: State): void {
    const wanted = state.search.toLowerCase();
    const current = state.cursor?.lane ?? '';
    const rows = this.placed.map(({ lane, top, height, pinned }) => {
      const folded = state.lanes.folded.has(lane.path);
      const row = element(
          'div',
          {
            class: 'lane' + (lane.tracks.length === 0 ? ' heading' : '') + (pinned ? ' pinned' : ''),
            role: 'treeitem',
            id: `lane-${lane.path}`,
            'aria-level': String(lane.depth + 1),
            'aria-selected': String(lane.path === current),
            title: shortName(lane.label),
          },
          element(
              'span', { class: 'fold', 'aria-hidden': 'true' },
              lane.children.length === 0 ? '' :
                  folded                 ? '▸' :
                                           '▾'),
          element('span', { class: 'lane-name' }, shortName(lane.label)),
          button(
              pinned ? '●' : '○', pinned ? 'Unpin (P)' : 'Pin to the top (P)',
              () => this.toggle('pinned', lane), { tabindex: '-1' }),
          button('✕', 'Hide (H)', () => this.toggle('hidden', lane), { tabindex: '-1' }),
      );
      if (lane.children.length > 0) row.setAttribute('aria-expanded', String(!folded));
      if (wanted !== '' && lane.label.toLowerCase().includes(wanted)) row.classList.add('match');
      row.style.top = `${top}px`;
      row.style.height = `${height}px`;
      row.style.paddingLeft = `${4 + lane.depth * 12}px`;
      row.addEventListener('click', (event) => {
        if ((event.target as Element).closest('button') !== null) return;
        this.labels.focus();
        this.moveTo(lane, state.cursor?.time ?? shownExtent(state).start);
        if (event.offsetX < 22 + lane.depth * 12 && lane.children.length > 0) this.toggle('folded', lane);
      });
      return row;
    });
    this.labels.replaceChildren(...rows);
    this.labels.setAttribute('aria-activedescendant', current === '' ? '' : `lane-${current}`);
  }

  /** Selected span, mark and cursor: painted apart, so that moving them leaves the rows alone. */
  private drawOverlay(state: State): void {
    const context = this.overlay.getContext('2d')!;
    const { width, height } = this.overlay;
    const shown = shownExtent(state);
    const x = (time: number) => Math.round(((time - shown.start) / (shown.end - shown.start)) * width);
    context.clearRect(0, 0, width, height);
    const { start, end } = state.filter;
    if (end > start && (start > -Infinity || end < Infinity)) {
      context.fillStyle = isDark() ? '#0008' : '#fff9';
      context.fillRect(0, 0, x(Math.max(start, shown.start)), height);
      context.fillRect(x(Math.min(end, shown.end)), 0, width, height);
      context.fillStyle = '#3b6fd4';
      for (const edge of [start, end]) context.fillRect(x(edge) - (edge === end ? 1 : 0), 0, 1, height);
    }
    if (state.mark !== null) {
      context.fillStyle = '#d0342c';
      context.fillRect(x(state.mark), 0, 1, height);
    }
    const row = this.placed.find(({ lane }) => lane.path === state.cursor?.lane);
    if (state.cursor !== null && row !== undefined) {
      const scale = width / this.width;
      context.strokeStyle = '#e08a00';
      context.lineWidth = 2 * scale;
      const slice = sliceOn(row.lane, state.cursor.time, state.timechart!.end);
      const left = x(slice?.start ?? state.cursor.time) - 1;
      context.strokeRect(
          left, row.top * scale + 1, Math.max(2, x(slice?.end ?? state.cursor.time) - left),
          row.height * scale - 3);
    }
  }

  private hover(time: number|null, y: number, event: PointerEvent): void {
    this.app.hover(time);
    const row = time === null ? undefined : this.rowAt(y);
    const inside = event.clientX - this.host.getBoundingClientRect().left >= gutter;
    if (time === null || row === undefined || !inside || row.lane.tracks.length === 0)
      this.app.tooltip(null);
    else
      this.app.tooltip(this.describe(row.lane, time), event);
  }

  private click(time: number, y: number): void {
    const row = this.rowAt(y);
    this.labels.focus();
    if (row !== undefined) this.selectAt(row.lane, time);
  }

  private rowAt(y: number): PlacedLane|undefined {
    return this.placed.find(({ top, height }) => y >= top && y < top + height);
  }

  /** The lines that tell what a row shows at a time. */
  private describe(lane: Lane, time: number): string[] {
    const { state } = this.app.store;
    const model = state.timechart!;
    const shown = shownExtent(state);
    const pixel = (shown.end - shown.start) / this.width;
    const lines = [shortName(lane.label)];
    for (const track of lane.tracks) lines.push(...this.describeTrack(model, track, time, pixel));
    const busy = lane.tracks.find(({ role }) => role === 'busy');
    const run = busy === undefined ? null : model.tasks.runOnCore(busy.cpu, time);
    if (run !== null) lines.push(`${shortName(run.label)} for ${formatDuration(run.end - run.start)}`);
    lines.push(
        formatTime(time) +
        (state.mark === null ? '' : `, ${formatDuration(time - state.mark)} from the mark`));
    return lines;
  }

  private describeTrack(model: TimechartModel, track: Track, time: number, pixel: number): string[] {
    const { entry, steps, shape } = track;
    const name = shortName(entry.tip || entry.name);
    if (shape === 'state') {
      const slice = steps.sliceAt(time, model.end);
      if (slice !== null)
        return [`${name}: ${formatDuration(slice.end - slice.start)} from ${formatTime(slice.start)}`];
      const share = steps.onTime(time - pixel, time + pixel) / (2 * pixel);
      return share > 0 ? [`${name}: ${formatShare(share)} here`] : [];
    }
    if (shape === 'level') return [`${name}: ${exactValue(track, time)}`];
    const from = pointsBefore(steps.times, time - 3 * pixel);
    const to = pointsUntil(steps.times, time + 3 * pixel);
    const texts = Array.from({ length: Math.min(5, to - from) }, (_, i) => {
      const text = model.markerText(track, from + i);
      return text === null ? `${name}: ${steps.values[from + i]}` :
                             `${shortName(text.name)} ${shortName(text.detail)}`;
    });
    return to - from > 5 ? [...texts, `and ${to - from - 5} more`] : texts;
  }

  private cursorOf(state: State): PlacedCursor|null {
    if (state.timechart === null) return null;
    const all = this.allLanes(state.timechart);
    const lane = all.find(({ path }) => path === state.cursor?.lane) ?? all[0];
    return lane === undefined ? null : { lane, time: state.cursor?.time ?? shownExtent(state).start };
  }

  private step({ lane, time }: PlacedCursor, direction: Direction): void {
    const { state } = this.app.store;
    const { pinned, rest } = visibleLanes(state.timechart!.tree, state.lanes);
    const rows = [...pinned, ...rest];
    const at =
        state.cursor === null ? (direction > 0 ? -1 : 1) : rows.findIndex(({ path }) => path === lane.path);
    const next = rows[Math.min(rows.length - 1, Math.max(0, at + direction))];
    if (next !== undefined) this.moveTo(next, time);
  }

  /**
   * Moves the cursor to the row's next or previous point in time; with `extend`, selects what lies between.
   */
  private toPoint({ lane, time }: PlacedCursor, direction: Direction, extend: boolean): void {
    let next = direction > 0 ? Infinity : -Infinity;
    for (const { steps } of lane.tracks) {
      const index = direction > 0 ? pointsUntil(steps.times, time) : pointsBefore(steps.times, time) - 1;
      if (index < 0 || index >= steps.times.length) continue;
      next = direction > 0 ? Math.min(next, steps.times[index]) : Math.max(next, steps.times[index]);
    }
    if (!Number.isFinite(next)) return;
    const { store } = this.app;
    if (extend) {
      const { start, end } = store.state.filter;
      const anchor = time === end ? start : time === start ? end : time;
      const from = Number.isFinite(anchor) ? anchor : time;
      setBrush(store, from === next ? null : { start: Math.min(from, next), end: Math.max(from, next) });
    }
    showTime(store, next);
    this.moveTo(lane, next);
  }

  /** Selects the run before or after the cursor of the task that the row shows. */
  private toRun({ lane, time }: PlacedCursor, direction: Direction): void {
    const { tasks } = this.app.store.state.timechart!;
    const task = taskOf(lane) ?? tasks.runOnCore(coreOf(lane), time)?.task;
    if (task === undefined) return;
    const run = direction > 0 ? tasks.runAfter(task, time) : tasks.runBefore(task, time);
    if (run === null)
      this.app.announce(direction > 0 ? 'No later run of this task' : 'No earlier run of this task');
    else {
      showTime(this.app.store, run.start);
      this.moveTo(lane, run.start);
      selectRun(this.app, run);
    }
  }

  /** Selects what the row shows at a time: a run with its samples, or another stretch. */
  private selectAt(lane: Lane, time: number): void {
    const { store } = this.app;
    const model = store.state.timechart!;
    this.moveTo(lane, time);
    const task = taskOf(lane);
    const run =
        task === undefined ? model.tasks.runOnCore(coreOf(lane), time) : model.tasks.runAt(task, time);
    const slice = sliceOn(lane, time, model.end);
    if (run !== null)
      selectRun(this.app, run);
    else
      setBrush(store, slice);
  }

  private moveTo(lane: Lane, time: number): void {
    const { store } = this.app;
    const row = this.placed.find(({ lane: { path } }) => path === lane.path);
    store.set({ cursor: { lane: lane.path, time } });
    if (row === undefined || row.top + row.height > this.host.clientHeight) this.scrollTo(lane);
    this.app.announce(this.describe(lane, time).join('; '));
  }

  private scrollTo(lane: Lane): void {
    const { state } = this.app.store;
    const { pinned, rest } = visibleLanes(state.timechart!.tree, state.lanes);
    const fixed = pinned.reduce((height, row) => height + laneHeight(row), 0);
    let top = 0;
    for (const row of rest) {
      if (row.path === lane.path)
        this.scroller.scrollTop = Math.max(0, top - (this.host.clientHeight - fixed) / 2);
      top += laneHeight(row);
    }
  }

  /** Unfolds and unhides what keeps a row from being seen. */
  private reveal(lane: Lane): void {
    const { lanes } = this.app.store.state;
    const keeps = (path: string) => lane.path !== path && lane.path.startsWith(`${path}_`);
    const folded = new Set([...lanes.folded].filter((path) => !keeps(path)));
    const hidden = new Set([...lanes.hidden].filter((path) => !keeps(path) && path !== lane.path));
    if (folded.size < lanes.folded.size || hidden.size < lanes.hidden.size) this.choose({ folded, hidden });
  }

  private toggle(what: keyof LaneChoice, { path, label }: Lane): void {
    const chosen = new Set(this.app.store.state.lanes[what]);
    const added = !chosen.delete(path);
    if (added) chosen.add(path);
    this.choose({ [what]: chosen });
    this.app.announce(`${shortName(label)}: ${added ? what : `no longer ${what}`}`);
  }

  private choose(change: Partial<LaneChoice>): void {
    const { store } = this.app;
    store.set({ lanes: {...store.state.lanes, ...change } });
  }
}

interface PlacedCursor {
  readonly lane: Lane;
  readonly time: number;
}

/** Colours of the page that are painted rather than styled; page.css has the same. */
const groundColours = () => isDark() ? { ground: 0x16181c, line: 0x24272c, text: 0xe4e6ea } :
                                       { ground: 0xffffff, line: 0xeef0f3, text: 0x1c1f24 };

/** Returns the task that a row shows, if it shows one. */
const taskOf = (lane: Lane): number|undefined =>
    lane.tracks.find(({ entry }) => entry.id.startsWith('proc-'))?.subject;

/** Returns the core of a core's row, or -1. */
const coreOf = (lane: Lane): number => (lane.root === 'cpu' ? lane.tracks[0]?.cpu ?? -1 : -1);

/** Returns the stretch of a row's states that covers a time, or null. */
function sliceOn(lane: Lane, time: number, close: number): Slice|null {
  for (const { shape, steps } of lane.tracks) {
    const slice = shape === 'state' ? steps.sliceAt(time, close) : null;
    if (slice !== null) return slice;
  }
  return null;
}

/** Returns the value at a time, as the document has it. */
function exactValue({ entry, steps }: Track, time: number): string {
  const index = pointsUntil(steps.times, time) - 1;
  return index < 0 ? '0' : String(entry.exact?.get(index) ?? steps.values[index]);
}
