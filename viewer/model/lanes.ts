/** The rows of a timechart, in the tree that its entries' `treeId` describes. */

import {kept} from './maps';
import type {Track} from './tracks';

/** A row, and the rows below it. */
export interface Lane {
  /** The parts of the `treeId`, root first: `proc_300_301`. Unique. */
  readonly path: string;
  readonly label: string;
  readonly depth: number;
  /** The first part of the path: `cpu`, `kgsl`, `irq`, `proc` or `evt` in our documents. */
  readonly root: string;
  readonly tracks: readonly Track[];
  readonly children: readonly Lane[];
  /** True if the document shows the row, or one below it, from the start. */
  readonly shown: boolean;
}

interface Branch {
  readonly path: string;
  readonly part: string;
  readonly tracks: Track[];
  readonly children: Map<string, Branch>;
}

/** Deeper trees than ours are shown as if they ended here. */
const deepest = 8;

/** Labels of the tree's first level. */
const rootLabels = new Map([
  ['cpu', 'Cores'],
  ['kgsl', 'GPU'],
  ['irq', 'Interrupts'],
  ['proc', 'Tasks'],
  ['evt', 'Markers'],
]);

/**
 * The rows of these roots are parts of one device: the first of them represents it and the others go below.
 */
const devices = new Set(['cpu', 'kgsl']);

/** Returns the parts of an entry's `treeId`, root first. */
export function treeParts(track: Track): string[] {
  const parts = track.entry.treeId.replace(/_root$/, '').split('_').reverse();
  // A counter's number would otherwise read like that of a task.
  if (track.isCounter) parts.push('counter ' + parts.pop());
  return parts.length <= deepest ? parts :
                                   [...parts.slice(0, deepest - 1), parts.slice(deepest - 1).join('_')];
}

/** Returns the tree's first level; rows that the document shows from the start come first on each level. */
export function laneTree(all: Iterable<Track>): Lane[] {
  const top: Branch = { path: '', part: '', tracks: [], children: new Map() };
  for (const track of all) {
    let branch = top;
    for (const part of treeParts(track)) {
      const path: string = branch === top ? part : `${branch.path}_${part}`;
      branch = kept(branch.children, part, () => ({ path, part, tracks: [], children: new Map() }));
    }
    branch.tracks.push(track);
  }
  return lanesOf(top, -1, '');
}

function lanesOf(branch: Branch, depth: number, root: string): Lane[] {
  const lanes = [...branch.children.values()].map((child) => laneOf(child, depth + 1, root || child.part));
  return [...lanes.filter((lane) => lane.shown), ...lanes.filter((lane) => !lane.shown)];
}

function laneOf(branch: Branch, depth: number, root: string): Lane {
  let tracks: readonly Track[] = branch.tracks;
  let children = lanesOf(branch, depth, root);
  const shown = tracks.some((track) => track.entry.show !== 0) || children.some((child) => child.shown);
  let label = labelOf(branch, depth, tracks);
  if (tracks.length === 0 && depth === 1 && devices.has(root) && children.length > 0) {
    const [first, ...rest] = children as [Lane, ...Lane[]];
    ({ tracks, label } = first);
    children = rest;
  }
  return { path: branch.path, label, depth, root, tracks, children, shown };
}

function labelOf(branch: Branch, depth: number, tracks: readonly Track[]): string {
  const first = tracks[0];
  if (!first) return depth === 0 ? rootLabels.get(branch.part) ?? branch.part : branch.part;
  return first.isCounter ? first.entry.tip : first.label;
}

/** Returns what identifies a row: a counter's label goes with its task's. */
export const fullLabel = ({label, tracks: [first]}: Lane): string =>
    first?.isCounter === true ? `${label}, ${first.entry.name}` : label;

/** What a person chose to see, by the paths of lanes. */
export interface LaneChoice {
  readonly folded: ReadonlySet<string>;
  readonly hidden: ReadonlySet<string>;
  readonly pinned: ReadonlySet<string>;
}

export const noChoice: LaneChoice = {
  folded: new Set(),
  hidden: new Set(),
  pinned: new Set()
};

/**
 * Returns the rows to draw, from top to bottom: the pinned ones, then the rest of the tree as far as it is
 * unfolded.
 */
export function visibleLanes(tree: readonly Lane[], choice: LaneChoice): {pinned: Lane[]; rest: Lane[]} {
  const pinned: Lane[] = [];
  const rest: Lane[] = [];
  const walk = (lanes: readonly Lane[], inside: boolean): void => {
    for (const lane of lanes) {
      if (choice.hidden.has(lane.path)) continue;
      if (choice.pinned.has(lane.path))
        pinned.push(lane);
      else if (inside)
        rest.push(lane);
      walk(lane.children, inside && !choice.folded.has(lane.path));
    }
  };
  walk(tree, true);
  return { pinned, rest };
}
