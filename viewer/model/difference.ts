import {zeros} from '../document/grown';
import type {Profile} from '../document/profile';
import {childrenByWeight, StackTable} from '../document/StackTable';
import type {Selection} from './Selection';
import {kept} from './maps';
import {sumUp} from './Selection';
import type {Tree} from './tree';

/**
 * Two profiles as one tree: stacks that both have share a node. Places are the same if their names and their
 * libraries' names are. A box is as wide as the heavier of the two, in samples of `current`.
 */
export class DifferenceTree implements Tree {
  declare readonly places: Uint32Array;
  declare readonly parents: Uint32Array;
  /** Samples of the current profile, and of the baseline scaled to as many. */
  declare readonly current: Uint32Array;
  declare readonly baseline: Float64Array;
  declare readonly totals: Float64Array;
  declare readonly childStart: Uint32Array;
  declare readonly childEnd: Uint32Array;
  declare readonly children: Uint32Array;

  constructor(union: Union, current: Selection, baseline: Selection) {
    this.places = union.places;
    this.parents = union.parents;
    const count = this.places.length;
    this.current = gathered(current, union.currentNodes, union.parents, count);
    const scale = baseline.count > 0 ? current.count / baseline.count : 0;
    this.baseline =
        Float64Array.from(gathered(baseline, union.baselineNodes, union.parents, count), (n) => n * scale);
    this.totals = Float64Array.from(this.current, (samples, node) => Math.max(samples, this.baseline[node]));
    this.#widen();
    const { firstChild, children } = childrenByWeight(this.parents, this.totals);
    this.childStart = firstChild;
    this.childEnd = firstChild.subarray(1);
    this.children = children;
  }

  get bounds(): Float64Array { return this.totals; }

  expand(): void {
    // All children are there from the start.
  }

  /**
   * A parent must have room for all of its children, of which some are heavier in one profile and some in
   * the other.
   */
  #widen(): void {
    const needed = new Float64Array(this.totals.length);
    for (let node = this.totals.length - 1; node >= 0; --node) {
      this.totals[node] = Math.max(this.totals[node], needed[node]);
      if (node > 0) needed[this.parents[node]] += this.totals[node];
    }
  }
}

/** Stacks of two profiles in one numbering; it depends on the documents only, not on what is selected. */
export interface Union {
  readonly parents: Uint32Array;
  /** Place of each node, as a number of the joint places. */
  readonly places: Uint32Array;
  /** Node of the union for each node of either. */
  readonly currentNodes: Uint32Array;
  readonly baselineNodes: Uint32Array;
  /** Place of either profile for each joint place, or -1. */
  readonly currentPlaces: Int32Array;
  readonly baselinePlaces: Int32Array;
}

export function unite(current: Profile, baseline: Profile): Union {
  const index = new Map<string, number>();
  const ofCurrent = jointPlaces(current, index);
  const ofBaseline = jointPlaces(baseline, index);
  const table = new StackTable();
  const currentNodes = insert(current, ofCurrent, table);
  const baselineNodes = insert(baseline, ofBaseline, table);
  const { parents, keys } = table.release();
  return {
    parents,
    places: keys,
    currentNodes,
    baselineNodes,
    currentPlaces: reversed(ofCurrent, index.size),
    baselinePlaces: reversed(ofBaseline, index.size),
  };
}

function jointPlaces({ places }: Profile, index: Map<string, number>): Uint32Array {
  return Uint32Array.from(places.names, (name, place) => {
    const key = `${name}\n${places.names[places.libraries[place]]}`;
    return kept(index, key, () => index.size);
  });
}

function insert({ stacks }: Profile, joint: Uint32Array, table: StackTable): Uint32Array {
  const nodes = zeros(stacks.count);
  for (let node = 1; node < stacks.count; ++node) {
    nodes[node] = table.child(nodes[stacks.parents[node]], joint[stacks.places[node]]);
  }
  return nodes;
}

function reversed(joint: Uint32Array, size: number): Int32Array {
  const places = new Int32Array(size).fill(-1);
  joint.forEach((place, index) => (places[place] = index));
  return places;
}

/** Returns the samples of each node of the union. */
function gathered(
    selection: Selection, nodes: Uint32Array, parents: Uint32Array, count: number): Uint32Array {
  const totals = zeros(count);
  const { selves } = selection;
  for (let node = 0; node < nodes.length; ++node) totals[nodes[node]] += selves[node];
  sumUp({ parents }, totals);
  return totals;
}
