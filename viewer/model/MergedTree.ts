import {grown} from '../document/grown';

import {kept} from './maps';

import type {Selection} from './Selection';
import type {Tree} from './tree';

/** Which way a merged tree grows from its first nodes. */
export type Direction = 'callers'|'callees';

/** Entries of one place. */
interface Group {
  total: number;
  readonly indices: number[];
}

/**
 * A tree in which nodes of the stacks are put together by their place, made as far as it is looked at. A node
 * stands for entries: nodes of the stacks from which it goes on, each with the samples that came that way.
 */
export class MergedTree implements Tree {
  places = new Uint32Array(64);
  parents = new Uint32Array(64);
  totals = new Uint32Array(64);
  childStart = new Uint32Array(64);
  childEnd = new Uint32Array(64);
  children = new Uint32Array(64);
  private count = 0;
  private entryStart = new Uint32Array(64);
  private entryEnd = new Uint32Array(64);
  private readonly expanded = new Set<number>();
  /** Entries of all nodes: a node of the stacks and its samples. */
  private nodes = new Uint32Array(256);
  private amounts = new Uint32Array(256);
  private entries = 0;

  private constructor(
      private readonly selection: Selection,
      private readonly direction: Direction,
  ) {}

  get bounds(): Uint32Array { return this.totals; }

  /** Returns the tree of what each place was called by, with the places that took the samples at its top. */
  static inverted(selection: Selection): MergedTree {
    const tree = new MergedTree(selection, 'callers');
    tree.addNode(0, 0);
    const { selves } = selection;
    const tops: number[] = [];
    for (let node = 1; node < selves.length; ++node)
      if (selves[node] > 0) tops.push(node);
    tree.addChildren(0, tops, (node) => selves[node]);
    tree.totals[0] = selection.count;
    return tree;
  }

  /** Returns the tree of the callers or callees of a place; its root is the place. */
  static of(selection: Selection, place: number, direction: Direction): MergedTree {
    const tree = new MergedTree(selection, direction);
    tree.addNode(0, place);
    const { places, totals, parents } = selection;
    for (let node = 1; node < places.length; ++node) {
      if (places[node] !== place || totals[node] === 0) continue;
      let above = parents[node];
      while (above !== 0 && places[above] !== place) above = parents[above];
      // Samples of a recursion are counted with its outermost call.
      if (above === 0) tree.addEntry(node, totals[node]);
    }
    tree.entryEnd[0] = tree.entries;
    for (let i = 0; i < tree.entries; ++i) tree.totals[0] += tree.amounts[i];
    return tree;
  }

  expand(node: number): void {
    if (this.expanded.has(node)) return;
    const next: number[] = [];
    const amounts: number[] = [];
    const { parents, totals, childStart, childEnd, children } = this.selection;
    for (let i = this.entryStart[node]; i < this.entryEnd[node]; ++i) {
      const at = this.nodes[i];
      if (this.direction === 'callers') {
        if (parents[at] === 0) continue;
        next.push(parents[at]);
        amounts.push(this.amounts[i]);
        continue;
      }
      for (let child = childStart[at]; child < childEnd[at]; ++child) {
        if (totals[children[child]] === 0) continue;
        next.push(children[child]);
        amounts.push(totals[children[child]]);
      }
    }
    this.addChildren(node, next, (_, index) => amounts[index]);
  }

  /** Adds the children of nodes of the stacks, one child per place, the heaviest first. */
  private addChildren(
      parent: number, nodes: readonly number[], amountOf: (node: number, index: number) => number): void {
    this.expanded.add(parent);
    const byPlace = new Map<number, Group>();
    nodes.forEach((node, index) => {
      const place = this.selection.places[node];
      const group = kept(byPlace, place, () => ({ total: 0, indices: [] }));
      group.total += amountOf(node, index);
      group.indices.push(index);
    });
    const ordered = [...byPlace].sort(([, a], [, b]) => b.total - a.total);
    const start = this.count;
    for (const [place, { total, indices }] of ordered) {
      const child = this.addNode(parent, place);
      this.totals[child] = total;
      this.entryStart[child] = this.entries;
      for (const index of indices) this.addEntry(nodes[index], amountOf(nodes[index], index));
      this.entryEnd[child] = this.entries;
    }
    // New nodes have the highest numbers, so each one's index in `children` is its number.
    this.childStart[parent] = start;
    this.childEnd[parent] = this.count;
  }

  private addNode(parent: number, place: number): number {
    const node = this.count++;
    if (node === this.places.length) {
      for (const column
               of ['places', 'parents', 'totals', 'childStart', 'childEnd', 'children', 'entryStart',
                   'entryEnd'] as const) {
        this[column] = grown(this[column], 2 * this[column].length);
      }
    }
    this.places[node] = place;
    this.parents[node] = parent;
    this.children[node] = node;
    return node;
  }

  private addEntry(node: number, amount: number): void {
    const at = this.entries++;
    if (at === this.nodes.length) {
      this.nodes = grown(this.nodes, 2 * this.nodes.length);
      this.amounts = grown(this.amounts, 2 * this.amounts.length);
    }
    this.nodes[at] = node;
    this.amounts[at] = amount;
  }
}
