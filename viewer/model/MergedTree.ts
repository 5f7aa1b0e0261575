import {kept} from './maps';

import type {Selection} from './Selection';
import type {Tree} from './tree';

/** Which way a merged tree grows from its first nodes. */
export type Direction = 'callers'|'callees';

/** Nodes of the stacks from which a node goes on, each with the samples that came that way. */
class Entries {
  total = 0;
  readonly nodes: number[] = [];
  readonly amounts: number[] = [];

  add(node: number, amount: number): void {
    this.total += amount;
    this.nodes.push(node);
    this.amounts.push(amount);
  }
}

/** A tree in which nodes of the stacks are put together by their place, made as far as it is looked at. */
export class MergedTree implements Tree {
  readonly places: number[] = [];
  readonly parents: number[] = [];
  readonly totals: number[] = [];
  readonly bounds = this.totals;
  readonly childStart: number[] = [];
  readonly childEnd: number[] = [];
  readonly children: number[] = [];
  /** What each node stands for; null once it has its children. */
  readonly #entries: (Entries|null)[] = [];

  private constructor(
      private readonly selection: Selection,
      private readonly direction: Direction,
      place: number,
      entries: Entries,
  ) {
    this.#addNode(0, place, entries);
  }

  /** Returns the tree of what each place was called by, with the places that took the samples at its top. */
  static inverted(selection: Selection): MergedTree {
    const { selves } = selection;
    const tops = new Entries();
    for (let node = 1; node < selves.length; ++node)
      if (selves[node] > 0) tops.add(node, selves[node]);
    const tree = new MergedTree(selection, 'callers', 0, tops);
    tree.#addChildren(0, tops);
    return tree;
  }

  /** Returns the tree of the callers or callees of a place; its root is the place. */
  static of(selection: Selection, place: number, direction: Direction): MergedTree {
    const { places, totals, parents } = selection;
    const entries = new Entries();
    for (let node = 1; node < places.length; ++node) {
      if (places[node] !== place || totals[node] === 0) continue;
      let above = parents[node];
      while (above !== 0 && places[above] !== place) above = parents[above];
      // Samples of a recursion are counted with its outermost call.
      if (above === 0) entries.add(node, totals[node]);
    }
    return new MergedTree(selection, direction, place, entries);
  }

  expand(node: number): void {
    const entries = this.#entries[node];
    if (!entries) return;
    const next = new Entries();
    const { parents, totals, childStart, childEnd, children } = this.selection;
    entries.nodes.forEach((at, index) => {
      if (this.direction === 'callees') {
        for (let i = childStart[at]; i < childEnd[at]; ++i)
          if (totals[children[i]] !== 0) next.add(children[i], totals[children[i]]);
      } else if (parents[at] !== 0)
        next.add(parents[at], entries.amounts[index]);
    });
    this.#addChildren(node, next);
  }

  /** Adds the children of a node, one for each place of the entries, the heaviest first. */
  #addChildren(parent: number, { nodes, amounts }: Entries): void {
    const byPlace = new Map<number, Entries>();
    nodes.forEach(
        (node, i) => kept(byPlace, this.selection.places[node], () => new Entries()).add(node, amounts[i]));
    this.#entries[parent] = null;
    this.childStart[parent] = this.places.length;
    for (const [place, entries] of [...byPlace].sort(([, a], [, b]) => b.total - a.total))
      this.#addNode(parent, place, entries);
    this.childEnd[parent] = this.places.length;
  }

  #addNode(parent: number, place: number, entries: Entries): void {
    // New nodes have the highest numbers, so each one's index in `children` is its number.
    this.children.push(this.places.length);
    this.places.push(place);
    this.parents.push(parent);
    this.totals.push(entries.total);
    this.childStart.push(0);
    this.childEnd.push(0);
    this.#entries.push(entries);
  }
}
