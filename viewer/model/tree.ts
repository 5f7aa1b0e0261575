/**
 * A tree of places with weights, as flame graphs and tables show it. Node 0 is the root. Nodes are numbers
 * and the columns are indexed by them; the children of node n are `children[childStart[n]]` to
 * `children[childEnd[n] - 1]`.
 */
export interface Tree {
  readonly places: ArrayLike<number>;
  /** Samples of the node and all below it. */
  readonly totals: ArrayLike<number>;
  /** Never below `totals`, and the order of the children: the heaviest first. */
  readonly bounds: ArrayLike<number>;
  readonly childStart: ArrayLike<number>;
  readonly childEnd: ArrayLike<number>;
  readonly children: ArrayLike<number>;
  /** The node above; that of the root is 0. */
  readonly parents: ArrayLike<number>;
  /** Makes sure that the children of the node are there. The columns may be others afterwards. */
  expand(node: number): void;
}

/** Returns the children of a node that weigh something now, the heaviest first. */
export function childrenOf(tree: Tree, node: number): number[] {
  tree.expand(node);
  const found: number[] = [];
  for (let i = tree.childStart[node]; i < tree.childEnd[node]; ++i) {
    if (tree.totals[tree.children[i]] > 0) found.push(tree.children[i]);
  }
  return found.sort((a, b) => tree.totals[b] - tree.totals[a]);
}

/** Returns the nodes from below the root down to `node`. */
export function pathTo(tree: Tree, node: number): number[] {
  const path: number[] = [];
  for (; node !== 0; node = tree.parents[node]) path.push(node);
  return path.reverse();
}
