import {differ} from '../model/maps';
import {type Direction, formatShare} from '../model/axis';
import type {SpanUse} from '../model/span';
import {button, element, shortName} from './dom';
import {describeRun, selectBeside} from './runs';
import {isReading, type State} from './store';
import {brushOf, describeSpan, spanOf} from './timeAxis';
import type {App, View} from './View';

type Cells = readonly string[];

/** Milliseconds of a frame that the figures may take. */
const frameShare = 8;

/** Statistics of the timechart over the selected span. */
export class SpanView implements View {
  readonly id = 'span';
  readonly title = 'Span';
  private declare host: HTMLElement;
  private declare app: App;
  private use: SpanUse|null = null;
  /** What the figures are about that are shown, or being reckoned. */
  private asked: readonly unknown[] = [];
  private pending = 0;

  available(state: State): boolean { return state.timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    this.host = host;
    this.app = app;
    host.classList.add('figures');
  }

  draw(state: State): void {
    const { timechart, filter } = state;
    // The figures of a part would be replaced before they can be read.
    if (timechart !== this.asked[0] && isReading(state)) return;
    const asked = [timechart, filter.start, filter.end, state.run];
    if (!differ(asked, this.asked)) return;
    this.asked = asked;
    const { start, end } = spanOf(state);
    cancelAnimationFrame(this.pending);
    this.reckon(timechart!.reckon(start, end), state);
  }

  /** Works for a part of a frame, then continues in the next one. */
  private reckon(work: Generator<void, SpanUse, void>, state: State): void {
    const deadline = performance.now() + frameShare;
    let step = work.next();
    while (!step.done && performance.now() < deadline) step = work.next();
    if (step.done)
      this.show(step.value, state);
    else
      this.pending = requestAnimationFrame(() => this.reckon(work, state));
  }

  private show(use: SpanUse, state: State): void {
    this.use = use;
    const what = brushOf(state) ? 'Selected' : 'All';
    this.host.replaceChildren(
        element('p', { class: 'lead' }, `${what}: ${describeSpan(spanOf(state))}`), ...this.runLines(state),
        ...sections(use).map(([title, rows]) => tableOf(title, rows)));
  }

  table(): readonly Cells[] {
    return this.use ?
        sections(this.use).flatMap(([title, rows], i) => [...(i > 0 ? [[]] : []), [title], ...rows]) :
        [];
  }

  /** Details of the selected run, with buttons to the task's next and previous one. */
  private runLines({ run, timechart }: State): HTMLElement[] {
    if (!run) return [];
    const step = (direction: Direction) => () => void selectBeside(this.app, run.task, run.start, direction);
    return [
      element(
          'p', { class: 'run' }, describeRun(timechart!.tasks, run).join('; ') + ' ',
          button('‹', 'Previous run of this task', step(-1)), button('›', 'Next run of this task', step(1))),
    ];
  }
}

const ms = (seconds: number) => (seconds * 1e3).toFixed(3);

/** Returns the tables of a span: a title, and rows of which the first names the columns. */
function sections(use: SpanUse): [string, readonly Cells[]][] {
  const length = use.end - use.start;
  const share = (seconds: number) => (length > 0 ? formatShare(seconds / length) : '');
  const names = [...use.counters.keys()];
  const sum = (counters: ReadonlyMap<string, number>, name: string) =>
      counters.has(name) ? whole(counters.get(name)!) : '';
  const all: [string, Cells, readonly Cells[]][] = [
    [
      'Cores', ['Core', 'Busy, ms', 'Share', 'Longest gap, ms'],
      use.cores.map(({ label, busy, longestGap }) => [label, ms(busy), share(busy), ms(longestGap)])
    ],
    [
      `Tasks: ${use.switches} switches`,
      [
        'Task', 'Running, ms', 'Share', 'For a CPU, ms', 'For I/O, ms', 'For the GPU, ms', 'Switches',
        'Longest gap, ms', ...names
      ],
      use.tasks.map(
          ({ label, running, waitCpu, waitIo, waitGpu, switches, longestGap, counters }) =>
              [label, ms(running), share(running), ...[waitCpu, waitIo, waitGpu].map(ms), String(switches),
               ms(longestGap), ...names.map((name) => sum(counters, name))])
    ],
    [
      'Interrupts', ['Interrupt', 'Count', 'Time, ms', 'Share'],
      use.interrupts.map(({ label, count, seconds }) => [label, String(count), ms(seconds), share(seconds)])
    ],
    ['Counters', ['Counter', 'Sum'], names.map((name) => [name, sum(use.counters, name)])],
  ];
  return all.filter(([, , rows]) => rows.length > 0)
      .map(([title, head, rows]) => [title, [head, ...rows].map((cells) => cells.map(shortName))]);
}

const whole = (sum: number) => Math.round(sum).toLocaleString('en');

/** More rows than these are left to the copied table. */
const mostRows = 200;

function tableOf(title: string, rows: readonly Cells[]): HTMLElement {
  const [head, ...body] = rows;
  const left = body.length - mostRows;
  const line = (scope: 'col'|'row', cells: Cells) => element(
      'tr', {},
      ...cells.map(
          (cell, i) =>
              i === 0 || scope === 'col' ? element('th', { scope }, cell) : element('td', {}, cell)));
  return element(
      'table', {}, element('caption', {}, left > 0 ? `${title} (${left} more in the copied table)` : title),
      element('thead', {}, line('col', head)),
      element('tbody', {}, ...body.slice(0, mostRows).map((cells) => line('row', cells))));
}
