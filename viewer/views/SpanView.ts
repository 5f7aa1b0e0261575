import {differ} from '../model/maps';
import {type Direction, formatShare} from '../model/axis';
import type {SpanUse} from '../model/span';
import {button, element, shortName} from './dom';
import {describeRun, selectBeside} from './runs';
import {isReading, type State} from './store';
import {brushOf, describeSpan, spanOf} from './timeAxis';
import type {App, View} from './View';

type Cells = readonly string[];
/** A title, what the columns are, and what gives the cells of each row. */
type Section = readonly[string, Cells, readonly(() => Cells)[]];

/** Statistics of the timechart over the selected span. */
export class SpanView implements View {
  readonly id = 'span';
  readonly title = 'Span';
  #host!: HTMLElement;
  #app!: App;
  #use: SpanUse|null = null;
  /** What the figures are about that are shown, or being reckoned. */
  #asked: readonly unknown[] = [];
  #work!: Iterator<void, SpanUse>;
  #state!: State;

  available(state: State): boolean { return state.timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    this.#host = host;
    this.#app = app;
    host.classList.add('figures');
    // Nothing in it takes the focus, and it scrolls.
    host.tabIndex = 0;
  }

  draw(state: State): void {
    const { timechart } = state;
    // The figures of a part would be replaced before they can be read.
    if (timechart !== this.#asked[0] && isReading(state)) return;
    const asked = [timechart, state.filter.start, state.filter.end, state.run];
    if (!differ(asked, this.#asked)) return;
    this.#asked = asked;
    const { start, end } = spanOf(state);
    this.#work = timechart!.reckon(start, end);
    this.#state = state;
    this.#app.store.repaint(this.#reckon);
  }

  /** Does a part of the work; the next one comes after all else that is to be painted. */
  readonly #reckon = (): void => {
    const { done, value } = this.#work.next();
    if (done === true)
      this.#show(value, this.#state);
    else
      this.#app.store.repaint(this.#reckon);
  };

  #show(use: SpanUse, state: State): void {
    this.#use = use;
    const what = brushOf(state) ? 'Selected' : 'All';
    this.#host.replaceChildren(
        element('p', { class: 'lead' }, `${what}: ${describeSpan(spanOf(state))}`), ...this.#runLines(state),
        ...sections(use).map(tableOf));
  }

  table(): readonly Cells[] {
    return this.#use ?
        sections(this.#use).flatMap(
            ([title, head, rows], i) =>
                [...(i > 0 ? [[]] : []), [title],
                 ...[head, ...rows.map((row) => row())].map((cells) => cells.map(shortName))]) :
        [];
  }

  /** Details of the selected run, with buttons to the task's next and previous one. */
  #runLines({ run, timechart }: State): HTMLElement[] {
    if (!run) return [];
    const step = (direction: Direction) => () => void selectBeside(this.#app, run.task, run.start, direction);
    return [
      element(
          'p', { class: 'run' }, describeRun(timechart!.tasks, run).join('; ') + ' ',
          button('‹', 'Previous run of this task', step(-1)), button('›', 'Next run of this task', step(1))),
    ];
  }
}

const ms = (seconds: number) => (seconds * 1e3).toFixed(3);

/** Returns the tables of a span that have any rows. */
function sections(use: SpanUse): Section[] {
  const length = use.end - use.start;
  const share = (seconds: number) => (length > 0 ? formatShare(seconds / length) : '');
  const names = [...use.counters.keys()];
  const sum = (counters: ReadonlyMap<string, number>, name: string) =>
      counters.has(name) ? whole(counters.get(name)!) : '';
  const all: Section[] = [
    [
      'Cores', ['Core', 'Busy, ms', 'Share', 'Longest gap, ms'],
      use.cores.map(({ label, busy, longestGap }) => () => [label, ms(busy), share(busy), ms(longestGap)])
    ],
    [
      `Tasks: ${use.switches} switches`,
      [
        'Task', 'Running, ms', 'Share', 'For a CPU, ms', 'For I/O, ms', 'For the GPU, ms', 'Switches',
        'Longest gap, ms', ...names
      ],
      use.tasks.map(
          (task) => () =>
              [task.label, ms(task.running), share(task.running),
               ...[task.waitCpu, task.waitIo, task.waitGpu].map(ms), String(task.switches),
               ms(task.longestGap), ...names.map((name) => sum(task.counters, name))])
    ],
    [
      'Interrupts', ['Interrupt', 'Count', 'Time, ms', 'Share'],
      use.interrupts.map(
          ({ label, count, seconds }) => () => [label, String(count), ms(seconds), share(seconds)])
    ],
    ['Counters', ['Counter', 'Sum'], names.map((name) => () => [name, sum(use.counters, name)])],
  ];
  return all.filter(([, , rows]) => rows.length > 0);
}

const whole = (sum: number) => Math.round(sum).toLocaleString('en');

/** More rows than these are left to the copied table. */
const mostRows = 200;
/** Rows that a table starts with; it gets more of them each time that its end comes into sight. */
const fewRows = 40;

function tableOf([title, head, rows]: Section): HTMLElement {
  const left = rows.length - mostRows;
  const line = (scope: 'col'|'row', cells: Cells) => element(
      'tr', {},
      ...cells.map(shortName).map(
          (cell, i) =>
              i === 0 || scope === 'col' ? element('th', { scope }, cell) : element('td', {}, cell)));
  const listed = element('tbody');
  const end = new IntersectionObserver((seen) => seen.some(({ isIntersecting }) => isIntersecting) && grow());
  const grow = () => {
    const start = listed.rows.length;
    end.disconnect();
    listed.append(
        ...rows.slice(start, Math.min(mostRows, start + fewRows)).map((cells) => line('row', cells())));
    if (listed.rows.length > start) end.observe(listed.lastElementChild!);
  };
  grow();
  return element(
      'table', { 'aria-rowcount': rows.length + 1 },
      element('caption', {}, left > 0 ? `${title} (${left} more in the copied table)` : title),
      element('thead', {}, line('col', head)), listed);
}
