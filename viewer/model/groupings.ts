/** What the rows of the table of functions can be: functions, or what functions and samples belong to. */

import {zeros} from '../document/grown';
import {PlaceKind, type Profile} from '../document/profile';
import type {Filter} from './filter';
import {kept} from './maps';
import type {Selection} from './Selection';

export interface Group {
  readonly name: string;
  readonly kind: PlaceKind;
  /** More about it, such as a function's library and line. */
  readonly detail: string;
}

/** Weights of the groups of a selection, in samples. */
export interface GroupWeights {
  readonly selves: Uint32Array;
  readonly totals: Uint32Array;
}

export interface Grouping {
  readonly groups: readonly Group[];
  /** Whether each group is one place, of the same number. */
  readonly byPlace: boolean;
  weigh(selection: Selection): GroupWeights;
  /** Returns the filter that lets the samples of a group through, where a filter can. */
  narrow?(group: number): Partial<Filter>;
}

interface Kind {
  readonly title: string;
  make(profile: Profile): Grouping;
}

export const groupings: Readonly<Record<string, Kind>> = {
  'function': {title: 'Function', make: byFunction},
  'library': {title: 'Library', make: byLibrary},
  'file': {title: 'Source file', make: byFile},
  'process': {title: 'Process', make: byProcess},
  'thread': {title: 'Thread', make: byThread},
  'core': {title: 'Core', make: byCore},
};

/** Returns where a place is: its library, its source file and line. */
export function describePlace({places, files}: Profile, place: number): string {
  const library = places.libraries[place] === place ? '' : places.names[places.libraries[place]];
  if (places.files[place] < 0) return library;
  const line = places.lines[place] > 0 ? `:${places.lines[place]}` : '';
  return `${library}  ${files[places.files[place]]}${line}`;
}

function group(name: string, kind = PlaceKind.User, detail = ''): Group { return { name, kind, detail }; }

function byFunction(profile: Profile): Grouping {
  const { kinds } = profile.places;
  const groups =
      profile.places.names.map((name, place) => group(name, kinds[place], describePlace(profile, place)));
  const identity = Int32Array.from({ length: profile.places.count }, (_, place) => place);
  return ofPlaces(profile, groups, identity, true);
}

function byLibrary(profile: Profile): Grouping {
  const { places } = profile;
  const index = new Map<number, number>();
  const groups: Group[] = [];
  const groupOf = Int32Array.from(places.libraries, (library) => {
    const add = () => groups.push(group(places.names[library], libraryKind(profile, library))) - 1;
    return kept(index, library, add);
  });
  return ofPlaces(profile, groups, groupOf, false);
}

/** A mapped file is no unresolved place by itself, only where a sample in it has no function. */
function libraryKind({ places }: Profile, library: number): PlaceKind {
  return places.kinds[library] === PlaceKind.Unresolved ? PlaceKind.User : places.kinds[library];
}

function byFile(profile: Profile): Grouping {
  const groups = profile.files.map((name) => group(name));
  const none = groups.push(group('no source file known', PlaceKind.Unresolved)) - 1;
  const groupOf = Int32Array.from(profile.places.files, (file) => (file < 0 ? none : file));
  return ofPlaces(profile, groups, groupOf, false);
}

function byProcess(profile: Profile): Grouping {
  const groups =
      profile.processes.map((process) => group(process.name, PlaceKind.User, `process ${process.pid}`));
  const none = groups.push(group('unknown process', PlaceKind.Unresolved)) - 1;
  const first = new Map<number, number>();
  profile.processes.forEach(({ pid }, index) => first.has(pid) || first.set(pid, index));
  const groupOf =
      profile.threads.map((thread) => (thread.process < 0 ? none : first.get(thread.pid) ?? none));
  return {
    ...ofSamples(groups, (index) => groupOf[profile.samples.threads[index]]),
    narrow: (chosen) => {
      const pid = profile.processes[chosen]?.pid;
      return { threads: new Set(profile.threads.flatMap((thread, at) => (thread.pid === pid ? [at] : []))) };
    }
  };
}

function byThread(profile: Profile): Grouping {
  const groups = profile.threads.map(
      (thread) => group(thread.name, PlaceKind.User, `thread ${thread.tid} of process ${thread.pid}`));
  return {
    ...ofSamples(groups, (index) => profile.samples.threads[index]),
    narrow: (chosen) => ({ threads: new Set([chosen]) })
  };
}

function byCore(profile: Profile): Grouping {
  const { cores } = profile.samples;
  const most = cores.reduce((highest, core) => Math.max(highest, core), 0);
  const groups = Array.from({ length: most + 1 }, (_, core) => group(`Core ${core}`));
  return {...ofSamples(groups, (index) => cores[index]), narrow: (chosen) => ({ cores: new Set([chosen]) }) };
}

/** Groups of samples: each sample belongs to one, so that its own time is all of its time. */
function ofSamples(groups: readonly Group[], groupOf: (index: number) => number): Grouping {
  return {
    groups,
    byPlace: false,
    weigh(selection) {
      const totals = zeros(groups.length);
      selection.forEachSample((index) => totals[groupOf(index)]++);
      return { selves: totals, totals };
    },
  };
}

/** Groups of places. */
function ofPlaces(
    profile: Profile, groups: readonly Group[], groupOf: Int32Array, byPlace: boolean): Grouping {
  let outermost: Uint8Array|null = null;
  return {
    groups,
    byPlace,
    weigh(selection) {
      outermost ??= outermostNodes(profile, groupOf);
      const { places, count } = profile.stacks;
      const selves = zeros(groups.length);
      const totals = zeros(groups.length);
      const nodes = selection.selves;
      for (let node = 1; node < count; ++node) {
        const group = groupOf[places[node]];
        selves[group] += nodes[node];
        // A group counts once per stack, however often it occurs.
        if (outermost[node] === 1) totals[group] += selection.totals[node];
      }
      return { selves, totals };
    },
  };
}

/** Returns a mark for each node with no other node of its group above it. */
function outermostNodes(profile: Profile, groupOf: Int32Array): Uint8Array {
  const { count, parents, places } = profile.stacks;
  const marks = new Uint8Array(count);
  for (let node = 1; node < count; ++node) {
    const group = groupOf[places[node]];
    let above = parents[node];
    while (above !== 0 && groupOf[places[above]] !== group) above = parents[above];
    marks[node] = Number(above === 0);
  }
  return marks;
}
