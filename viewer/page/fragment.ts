/** The state of the page in its URL, so that a link leads back to what was seen. */

import type {Extent} from '../model/axis';
import type {LaneChoice} from '../model/lanes';
import type {State, Store} from '../views/store';
import {brushOf} from '../views/timeAxis';

/** The URL follows when nothing has changed for this many milliseconds. */
const settled = 250;

const laneChoices = ['folded', 'hidden', 'pinned'] as const;

/**
 * Returns the state as the fragment of a URL, without its leading sign; what is as from the start is left
 * out.
 */
export function writeFragment(state: State): string {
  const { filter, lanes, cursor } = state;
  const brush = brushOf(state);
  const said: [string, string|number|false|null][] = [
    ['shown', state.visible && pairOf(state.visible)],
    ['selected', brush && pairOf(brush)],
    ['cores', listOf(filter.cores)],
    ['threads', listOf(filter.threads)],
    ['filter', filter.text || null],
    ['search', state.search || null],
    ['place', state.place >= 0 && state.place],
    ['view', state.panel || null],
    ...laneChoices.flatMap((choice) => [...lanes[choice]].map((path): [string, string] => [choice, path])),
    ['at', cursor && `${cursor.time},${cursor.lane}`],
    ['mark', state.mark],
  ];
  const parts = new URLSearchParams();
  for (const [part, text] of said)
    if (text !== null && text !== false) parts.append(part, String(text));
  return parts.toString();
}

const pairOf = (extent: Extent) => `${extent.start},${extent.end}`;
const listOf = (numbers: ReadonlySet<number>|null) => numbers && [...numbers].join();

/** Returns what a fragment says of the state; what it does not say, or says wrongly, is as from the start. */
export function readFragment(fragment: string, start: State): Partial<State> {
  const parts = new URLSearchParams(fragment);
  const selected = extentOf(parts.get('selected'));
  const [time, ...lane] = (parts.get('at') ?? '').split(',');
  const place = numberOf(parts.get('place'));
  const mark = numberOf(parts.get('mark'));
  const choices = laneChoices.map((choice) => [choice, new Set(parts.getAll(choice))]);
  const filter = {
    ...start.filter,
    ...selected,
    cores: numbersOf(parts.get('cores')),
    threads: numbersOf(parts.get('threads')),
    text: parts.get('filter') ?? '',
  };
  const filtered = ['selected', 'cores', 'threads', 'filter'].some((part) => parts.has(part));
  return {
    visible: extentOf(parts.get('shown')),
    filter: filtered ? filter : start.filter,
    run: null,
    search: parts.get('search') ?? '',
    place: Number.isInteger(place) ? place : -1,
    panel: parts.get('view') ?? start.panel,
    lanes: Object.fromEntries(choices) as LaneChoice,
    cursor: lane.length > 0 && Number.isFinite(numberOf(time)) ? { lane: lane.join(), time: Number(time) } :
                                                                 null,
    mark: Number.isFinite(mark) ? mark : null,
  };
}

function extentOf(text: string|null): Extent|null {
  const [start, end, ...more] = (text ?? '').split(',').map(numberOf);
  return more.length === 0 && Number.isFinite(end - start) && end > start ? { start, end } : null;
}

function numbersOf(text: string|null): ReadonlySet<number>|null {
  if (text === null) return null;
  return new Set(text.split(',').map(numberOf).filter((number) => Number.isInteger(number) && number >= 0));
}

/** Returns NaN also for no text, which Number would take for 0. */
const numberOf = (text: string|null): number => (text ? Number(text) : NaN);

/** Keeps the URL and the state alike, whichever of them changes. */
export function followFragment(store: Store): void {
  const start = store.state;
  let written = location.hash.slice(1);
  let timer = 0;
  if (written !== '') store.set(readFragment(written, start));
  addEventListener('hashchange', () => {
    if (location.hash.slice(1) === written) return;
    written = location.hash.slice(1);
    store.set(readFragment(written, start));
  });
  store.onCommit(() => {
    clearTimeout(timer);
    timer = setTimeout(() => {
      const next = writeFragment(store.state);
      if (next === written) return;
      written = next;
      history.replaceState(null, '', `#${next}`);
    }, settled);
  });
}
