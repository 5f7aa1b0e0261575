import {zeros} from './grown';
import {NodeTable} from './NodeTable';
import type {Stacks} from './profile';

/** Frames of one place with the same callers share a node; node 0 is the root. */
export class StackTable extends NodeTable {
  #slots = zeros(1 << 13);
  /**
   * Nodes of whole back-traces, by a hash of their keys: samples are taken in the same places again and
   * again, and a walk up the tree is cheaper than a search for each key.
   */
  #recent = zeros(1 << 17);
  /** Keys come from the document, so that a fixed hash could be fed collisions. */
  readonly #seed = (Math.random() * 2 ** 32) | 1;

  /** Returns the node of the first `depth` keys, innermost first, below `root`. */
  stack(root: number, innermostFirst: Uint32Array, depth: number): number {
    const { parents, keys } = this;
    const recent = this.#recent;
    let hash = root;
    for (let i = 0; i < depth; ++i) hash = Math.imul(hash ^ innermostFirst[i], 0x9e3779b1) ^ (hash >>> 15);
    const slot = (hash ^ (hash >>> 16)) & (recent.length - 1);
    let at = recent[slot];
    let i = 0;
    for (; at !== 0 && i < depth && keys[at] === innermostFirst[i]; ++i) at = parents[at];
    if (i === depth && at === root) return recent[slot];
    let node = root;
    for (i = depth - 1; i >= 0; --i) node = this.child(node, innermostFirst[i]);
    return (recent[slot] = node);
  }

  /** Returns the node of `key` below `parent`. */
  child(parent: number, key: number): number {
    const { parents, keys } = this;
    const slots = this.#slots;
    const mask = slots.length - 1;
    let slot = this.#hash(parent, key) & mask;
    let node: number;
    while ((node = slots[slot]) !== 0) {
      if (parents[node] === parent && keys[node] === key) return node;
      slot = (slot + 1) & mask;
    }
    node = this.count;
    this.add(parent, key);
    slots[slot] = node;
    if (2 * this.count > slots.length) this.#widen();
    return node;
  }

  #widen(): void {
    const mask = 2 * this.#slots.length - 1;
    // The old table is released before the new one is made: together they would be the peak of the memory.
    this.#slots = zeros(0);
    const slots = zeros(mask + 1);
    for (let node = 1; node < this.count; ++node) {
      let slot = this.#hash(this.parents[node], this.keys[node]) & mask;
      while (slots[slot] !== 0) slot = (slot + 1) & mask;
      slots[slot] = node;
    }
    this.#slots = slots;
  }

  #hash(parent: number, key: number): number {
    const mixed = Math.imul(parent ^ this.#seed, 0x9e3779b1) ^ Math.imul(key, 0x85ebca6b);
    const spread = Math.imul(mixed ^ (mixed >>> 15), this.#seed);
    return spread ^ (spread >>> 13);
  }

  /** Releases the table of look-ups and returns the nodes' parents and keys. */
  release(): { parents: Uint32Array; keys: Uint32Array } {
    this.#slots = zeros(0);
    return { parents: this.parents.subarray(0, this.count), keys: this.keys.subarray(0, this.count) };
  }
}

/** Adds the totals and the children of each node, the heaviest first, given the node of each sample. */
export function finishStacks(parents: Uint32Array, places: Uint32Array, samples: Uint32Array): Stacks {
  const count = parents.length;
  const totals = zeros(count);
  for (const node of samples) totals[node]++;
  for (let node = count - 1; node > 0; --node) totals[parents[node]] += totals[node];
  return { count, parents, places, totals, ...childrenByWeight(parents, totals) };
}

/** Returns the children of each node, the heaviest first, and where in them those of a node begin. */
export function childrenByWeight(
    parents: Uint32Array, totals: Column): Pick<Stacks, 'firstChild'|'children'> {
  const count = parents.length;
  const firstChild = zeros(count + 1);
  for (let node = 1; node < count; ++node) firstChild[parents[node] + 1]++;
  for (let node = 0; node < count; ++node) firstChild[node + 1] += firstChild[node];
  // From the last node down, so that the first entry of each stretch is reached as its end.
  const children = zeros(Math.max(0, count - 1));
  const next = firstChild.slice(1);
  for (let node = count - 1; node > 0; --node) children[--next[parents[node]]] = node;
  for (let node = 0; node < count; ++node)
    sortHeaviestFirst(children, firstChild[node], firstChild[node + 1], totals);
  return { firstChild, children };
}

type Column = Uint32Array|Float64Array;

function sortHeaviestFirst(nodes: Uint32Array, start: number, end: number, totals: Column): void {
  // A typed array's own sort costs a call; most nodes have few children.
  if (end - start > 16) {
    nodes.subarray(start, end).sort((a, b) => totals[b] - totals[a] || a - b);
    return;
  }
  for (let i = start + 1; i < end; ++i) {
    const node = nodes[i];
    const total = totals[node];
    let at = i;
    for (; at > start && totals[nodes[at - 1]] < total; --at) nodes[at] = nodes[at - 1];
    nodes[at] = node;
  }
}
