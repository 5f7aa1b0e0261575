import {formatShare} from '../model/axis';
import type {SpanUse, TaskUse} from '../model/span';
import type {TimechartModel} from '../model/TimechartModel';
import {button, element, shortName} from './dom';
import {describeRun, selectRun} from './runs';
import type {State} from './store';
import {brushOf, describeSpan, showTime, spanOf} from './timeAxis';
import type {App, Direction, View} from './View';

type Cells = readonly string[];

/** Milliseconds of a frame that the figures may take. */
const frameShare = 8;

/** What the timechart tells of the selected span. */
export class SpanView implements View {
  readonly id = 'span';
  readonly title = 'Span';
  readonly zone = 'detail';
  private host!: HTMLElement;
  private app!: App;
  private use: SpanUse|null = null;
  /** What the figures are about that are shown, or being reckoned. */
  private asked: readonly unknown[] = [];
  private pending = 0;

  available({ timechart }: State): boolean { return timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    this.host = host;
    this.app = app;
    host.classList.add('figures');
  }

  draw(state: State): void {
    const { timechart, filter, run } = state;
    const asked = [timechart, filter.start, filter.end, run];
    if (asked.every((part, i) => part === this.asked[i])) return;
    this.asked = asked;
    const { start, end } = spanOf(state);
    cancelAnimationFrame(this.pending);
    this.reckon(timechart!.reckon(start, end), state);
  }

  /** Works for a part of a frame, then goes on in the next one. */
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
    const head = element(
        'p', { class: 'lead' },
        `${brushOf(state) === null ? 'All' : 'Selected'}: ${describeSpan(spanOf(state))}`);
    this.host.replaceChildren(
        head, ...this.runLines(state, state.timechart!),
        ...sections(use).map(([title, rows]) => tableOf(title, rows)));
  }

  key(): boolean { return false; }

  table(): readonly Cells[] {
    return this.use === null ?
        [] :
        sections(this.use).flatMap(([title, rows], i) => [...(i > 0 ? [[]] : []), [title], ...rows]);
  }

  /** What is known of the selected run, with buttons to the task's next and previous one. */
  private runLines({ run }: State, { tasks }: TimechartModel): HTMLElement[] {
    if (run === null) return [];
    const step = (direction: Direction) => {
      const next = direction > 0 ? tasks.runAfter(run.task, run.start) : tasks.runBefore(run.task, run.start);
      if (next === null) return;
      showTime(this.app.store, next.start);
      selectRun(this.app, next);
    };
    return [
      element(
          'p',
          { class: 'run' },
          describeRun(tasks, run).join('; ') + ' ',
          button('‹', 'Run before of this task', () => step(-1)),
          button('›', 'Next run of this task', () => step(1)),
          ),
    ];
  }
}

const milliseconds = (seconds: number) => (seconds * 1e3).toFixed(3);

/** Returns the tables of a span: a title, and rows of which the first names the columns. */
function sections(use: SpanUse): [string, readonly Cells[]][] {
  const length = use.end - use.start;
  const share = (seconds: number) => (length > 0 ? formatShare(seconds / length) : '');
  const counters = [...use.counters.keys()];
  const cores = use.cores.map(
      ({ label,
         busy,
         longestGap }) => [shortName(label), milliseconds(busy), share(busy), milliseconds(longestGap)]);
  const tasks = use.tasks.map((task) => taskCells(task, share, counters));
  const interrupts = use.interrupts.map(
      ({ label,
         count,
         seconds }) => [shortName(label), String(count), milliseconds(seconds), share(seconds)]);
  const all: [string, readonly Cells[]][] = [
    ['Cores', [['Core', 'Busy, ms', 'Share', 'Longest gap, ms'], ...cores]],
    [
      `Tasks: ${use.switches} switches`,
      [
        [
          'Task', 'Running, ms', 'Share', 'For a CPU, ms', 'For I/O, ms', 'For the GPU, ms', 'Switches',
          'Longest gap, ms', ...counters.map(shortName)
        ],
        ...tasks,
      ],
    ],
    ['Interrupts', [['Interrupt', 'Count', 'Time, ms', 'Share'], ...interrupts]],
    [
      'Counters',
      [['Counter', 'Sum'], ...[...use.counters].map(([name, sum]) => [shortName(name), whole(sum)])]
    ],
  ];
  return all.filter(([, rows]) => rows.length > 1);
}

function taskCells(task: TaskUse, share: (seconds: number) => string, counters: readonly string[]): Cells {
  const { label, running, waitCpu, waitIo, waitGpu, switches, longestGap } = task;
  const sums = counters.map((name) => (task.counters.has(name) ? whole(task.counters.get(name)!) : ''));
  const waits = [waitCpu, waitIo, waitGpu].map(milliseconds);
  return [
    shortName(label), milliseconds(running), share(running), ...waits, String(switches),
    milliseconds(longestGap), ...sums
  ];
}

const whole = (sum: number) => Math.round(sum).toLocaleString('en');

/** More rows than these are left to the copied table. */
const mostRows = 200;

function tableOf(title: string, rows: readonly Cells[]): HTMLElement {
  const [head, ...body] = rows;
  const shown = body.slice(0, mostRows);
  const left = body.length - shown.length;
  return element(
      'table',
      {},
      element('caption', {}, left > 0 ? `${title} (${left} more in the copied table)` : title),
      element('thead', {}, element('tr', {}, ...head.map((cell) => element('th', { scope: 'col' }, cell)))),
      element(
          'tbody', {},
          ...shown.map(
              (cells) => element(
                  'tr', {},
                  ...cells.map(
                      (cell, i) =>
                          (i === 0 ? element('th', { scope: 'row' }, cell) : element('td', {}, cell)))))),
  );
}
