import {clamped, type Direction} from '../model/axis';
import {fullLabel, type Lane, type LaneChoice, noChoice, visibleLanes} from '../model/lanes';
import {differ} from '../model/maps';
import {pointBeside} from '../model/steps';
import {button, element, equip, placeIn, foldSign, shortName, span, twisty} from './dom';
import {coreOf, describeLane, sliceOn, taskOf} from './laneFacts';
import {LanePictures, type PlacedLane} from './LanePictures';
import {laneHeight} from './laneRaster';
import {selectBeside, selectRun} from './runs';
import type {State} from './store';
import {gutter, setBrush, shownExtent, showTime} from './timeAxis';
import {TimeStage} from './TimeStage';
import {type App, nextOf, perform, type View} from './View';

interface PlacedCursor {
  readonly lane: Lane;
  readonly time: number;
}

/** The rows of a timechart: labels, keys and what is chosen. */
export class LanesView implements View {
  readonly id = 'lanes';
  readonly title = 'Timechart';
  readonly zone = 'time';
  #host!: HTMLElement;
  #app!: App;
  #stage!: TimeStage;
  readonly #pictures = new LanePictures();
  readonly #labels =
      element('div', { class: 'labels', role: 'tree', tabIndex: 0, 'aria-label': 'Rows of the timechart' });
  /** All rows that are neither folded nor hidden, where the view would show them without an end. */
  #rows: readonly PlacedLane[] = [];
  /** Height of the pinned rows, which do not scroll. */
  #fixed = 0;
  #placed: readonly PlacedLane[] = [];

  available(state: State): boolean { return state.timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    this.#host = host;
    this.#app = app;
    const { base, overlay } = this.#pictures;
    this.#stage = new TimeStage(host, app, this.#labels, [base, overlay], this.#scrolled, {
      hover: (time, y, event) => this.#hover(time, y, event),
      click: (time, y) => this.#click(time, y),
    });
  }

  draw(state: State, before: State|null): void {
    const other = (parts: (state: State) => unknown[]) => !before || differ(parts(state), parts(before));
    const moved = other((state) => [state.timechart, state.lanes, state.profile]);
    if (moved) this.#place(state);
    const { store } = this.#app;
    if (moved || other((state) => [state.visible])) store.repaint(this.#paint);
    if (moved || other((state) => [state.search, state.cursor])) store.repaint(this.#label);
    store.repaint(this.#paintOverlay);
  }

  readonly #paint = (): Iterator<void> =>
      this.#pictures.paint(this.#placed, this.#app.store.state, this.#stage);

  readonly #paintOverlay = (): void =>
      this.#pictures.paintOverlay(this.#placed, this.#app.store.state, this.#stage);

  key(event: KeyboardEvent): boolean {
    const { cursor } = this.#app.store.state;
    const all = this.#allLanes();
    const lane = all.find((known) => known.path === cursor?.lane) ?? all[0];
    return (lane && this.#act({ lane, time: this.#time }, event)) || this.#stage.key(event);
  }

  find(direction: Direction): string|null {
    const { search, cursor } = this.#app.store.state;
    const all = this.#allLanes();
    const wanted = search.toLowerCase();
    const at = all.findIndex((lane) => lane.path === cursor?.lane);
    const index = nextOf(all.length, at, direction, (i) => all[i].label.toLowerCase().includes(wanted));
    if (index < 0) return null;
    this.#reveal(all[index]);
    this.#moveTo(all[index], this.#time);
    return fullLabel(all[index]);
  }

  readonly picture = {
    canvas: this.#pictures.base,
    svg: () => this.#pictures.svg(this.#placed, this.#app.store.state, this.#stage.width, this.#stage.height),
  };

  /** The keys of the rows; the help lists them. */
  /** Does what a key stands for where the cursor is; returns whether it stands for anything. */
  #act(cursor: PlacedCursor, { key, shiftKey }: KeyboardEvent): boolean {
    const { lane, time } = cursor;
    const { store } = this.#app;
    return perform(key.length === 1 ? key.toLowerCase() : key, {
      ArrowDown: () => this.#step(cursor, 1),
      ArrowUp: () => this.#step(cursor, -1),
      ArrowRight: () => this.#toPoint(cursor, 1, shiftKey),
      ArrowLeft: () => this.#toPoint(cursor, -1, shiftKey),
      Home: () => this.#step(cursor, -Infinity),
      End: () => this.#step(cursor, Infinity),
      Enter: () => this.#selectAt(lane, time),
      ' ': () => this.#fold(lane),
      'p': () => this.#toggle('pinned', lane),
      'h': () => this.#toggle('hidden', lane),
      'u': () => this.#choose({ hidden: new Set() }),
      'm': () => store.set({ mark: store.state.mark === time ? null : time }),
      ']': () => this.#toRun(cursor, 1),
      '[': () => this.#toRun(cursor, -1),
    });
  }

  /** Time of the cursor. */
  get #time(): number {
    const { state } = this.#app.store;
    return state.cursor?.time ?? shownExtent(state).start;
  }

  readonly #scrolled = (): void => {
    const { state } = this.#app.store;
    if (state.timechart) this.draw(state, null);
  };

  #allLanes(): Lane[] { return visibleLanes(this.#app.store.state.timechart!.tree, noChoice).rest; }

  /** Finds where rows are, and those that can be seen: the pinned ones stay above the scrolled rest. */
  #place(state: State): void {
    const { pinned, rest } = visibleLanes(state.timechart!.tree, state.lanes);
    let bottom = 0;
    this.#rows = [...pinned, ...rest].map((lane, index) => {
      const height = laneHeight(lane);
      return { lane, top: (bottom += height) - height, height, pinned: index < pinned.length };
    });
    this.#stage.rows = bottom;
    this.#fixed = this.#rows[pinned.length]?.top ?? bottom;
    const { top: scrolled, height: end } = this.#stage;
    this.#placed =
        this.#rows.map((row) => (row.pinned ? row : {...row, top: row.top - scrolled }))
            .filter(({ top, height, pinned: fixed }) => fixed || (top + height > this.#fixed && top < end));
  }

  readonly #label = (): void => {
    const { search, lanes, cursor } = this.#app.store.state;
    const wanted = search.toLowerCase();
    const current = cursor?.lane ?? '';
    const rows = this.#placed.map(({ lane, top, height, pinned }) => {
      const { path } = lane;
      const open = lane.children.length === 0 ? null : !lanes.folded.has(path);
      const name = shortName(fullLabel(lane));
      const alone = pinned || lanes.pinned.has(path.slice(0, path.lastIndexOf('_')));
      const act = (mark: string, title: string, what: keyof LaneChoice) =>
          button(mark, title, () => this.#toggle(what, lane), { tabIndex: -1, 'aria-hidden': true });
      const row = element(
          'div',
          {
            class: `label lane${lane.tracks.length === 0 ? ' heading' : ''}${pinned ? ' pinned' : ''}${
                wanted !== '' && lane.label.toLowerCase().includes(wanted) ? ' match' : ''}`,
            role: 'treeitem',
            id: `lane-${path}`,
            'aria-level': lane.depth + 1,
            'aria-selected': path === current,
            'aria-expanded': open,
            'aria-label': name,
            title: name,
            click: (event: MouseEvent) => this.#clickLabel(lane, event.target as Element),
          },
          twisty(foldSign(open)),
          span('label-name', alone ? name : shortName(lane.label)),
          act(pinned ? '●' : '○', pinned ? 'Unpin (P)' : 'Pin to the top (P)', 'pinned'),
          act('✕', 'Hide (H)', 'hidden'),
      );
      row.style.top = `${top}px`;
      row.style.height = `${height}px`;
      row.style.paddingLeft = `${4 + lane.depth * 12}px`;
      return row;
    });
    this.#labels.replaceChildren(...rows);
    equip(this.#labels, { 'aria-activedescendant': current && `lane-${current}` });
  };

  #clickLabel(lane: Lane, target: Element): void {
    if (target.matches('button')) return;
    this.#labels.focus();
    this.#moveTo(lane, this.#time);
    if (target.matches('.twisty')) this.#fold(lane);
  }

  #hover(time: number|null, y: number, event: PointerEvent|null): void {
    this.#app.hover(time);
    const row = this.#rowAt(y);
    const inside = event !== null && placeIn(this.#host, event).x >= gutter;
    if (time === null || !row || !inside || row.lane.tracks.length === 0)
      this.#app.tooltip(null);
    else
      this.#app.tooltip(this.#describe(row.lane, time), event);
  }

  #click(time: number, y: number): void {
    const row = this.#rowAt(y);
    this.#labels.focus();
    if (row) this.#selectAt(row.lane, time);
  }

  #rowAt(y: number): PlacedLane|undefined {
    return this.#placed.find(({ top, height }) => y >= top && y < top + height);
  }

  #describe(lane: Lane, time: number): string[] {
    const { state } = this.#app.store;
    const { start, end } = shownExtent(state);
    return describeLane(state.timechart!, lane, time, (end - start) / this.#stage.width, state.mark);
  }

  #step(cursor: PlacedCursor, by: number): void {
    const at = this.#rows.findIndex((row) => row.lane === cursor.lane);
    const next = this.#app.store.state.cursor ? at + by : 0;
    const row = this.#rows[clamped(next, 0, this.#rows.length - 1)];
    if (row) this.#moveTo(row.lane, cursor.time);
  }

  /**
   * Moves the cursor to the row's next or previous point in time; with `extend`, selects what is between.
   */
  #toPoint({ lane, time }: PlacedCursor, direction: Direction, extend: boolean): void {
    const points = lane.tracks.map(({ steps: { times } }) => times[pointBeside(times, time, direction)])
                       .filter((point) => point !== undefined);
    if (points.length === 0) return;
    const next = direction > 0 ? Math.min(...points) : Math.max(...points);
    const { store } = this.#app;
    if (extend) {
      const { start, end } = store.state.filter;
      const anchor = time === end ? start : time === start ? end : time;
      const from = Number.isFinite(anchor) ? anchor : time;
      setBrush(store, from === next ? null : { start: Math.min(from, next), end: Math.max(from, next) });
    }
    showTime(store, next);
    this.#moveTo(lane, next);
  }

  /** Selects the run before or after the cursor of the task that the row shows. */
  #toRun({ lane, time }: PlacedCursor, direction: Direction): void {
    const task = taskOf(lane) ?? this.#app.store.state.timechart!.tasks.runOnCore(coreOf(lane), time)?.task;
    const run = task === undefined ? null : selectBeside(this.#app, task, time, direction);
    if (run) this.#app.store.set({ cursor: { lane: lane.path, time: run.start } });
  }

  /** Selects what the row shows at a time: a run with its samples, or another stretch. */
  #selectAt(lane: Lane, time: number): void {
    const { tasks, end } = this.#app.store.state.timechart!;
    this.#moveTo(lane, time);
    const task = taskOf(lane);
    const run = task === undefined ? tasks.runOnCore(coreOf(lane), time) : tasks.runAt(task, time);
    if (run)
      selectRun(this.#app, run);
    else
      setBrush(this.#app.store, sliceOn(lane, time, end));
  }

  #moveTo(lane: Lane, time: number): void {
    this.#app.store.set({ cursor: { lane: lane.path, time } });
    this.#place(this.#app.store.state);
    const row = this.#rows.find((placed) => placed.lane.path === lane.path);
    if (row?.pinned === false) this.#stage.show(row.top, row.height, this.#fixed);
    this.#app.announce(this.#describe(lane, time).join('; '));
  }

  /** Unfolds and unhides what keeps a row from being seen. */
  #reveal(lane: Lane): void {
    const { lanes } = this.#app.store.state;
    const above = (path: string) => lane.path.startsWith(`${path}_`);
    const folded = new Set([...lanes.folded].filter((path) => !above(path)));
    const hidden = new Set([...lanes.hidden].filter((path) => !above(path) && path !== lane.path));
    if (folded.size < lanes.folded.size || hidden.size < lanes.hidden.size) this.#choose({ folded, hidden });
  }

  #fold(lane: Lane): void {
    if (lane.children.length > 0) this.#toggle('folded', lane);
  }

  #toggle(what: keyof LaneChoice, lane: Lane): void {
    const chosen = new Set(this.#app.store.state.lanes[what]);
    const added = !chosen.delete(lane.path);
    if (added) chosen.add(lane.path);
    this.#choose({ [what]: chosen });
    this.#app.announce(`${shortName(fullLabel(lane))}: ${added ? what : `no longer ${what}`}`);
  }

  #choose(change: Partial<LaneChoice>): void {
    this.#app.store.set({ lanes: {...this.#app.store.state.lanes, ...change } });
  }
}
