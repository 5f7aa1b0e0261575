/**
 * Number of back-traces that are remembered, a power of two, and the most entries that one of them may have.
 */
const slots = 1 << 16;
const longest = 16;

/**
 * A direct-mapped cache of the nodes of whole back-traces: samples are taken in the same places again and
 * again, and one look at all keys in a row is cheaper than the search for each.
 */
export class RecentStacks {
  private readonly keys = new Uint32Array(slots * longest);
  /** Number of keys of each slot; 0 for an empty one. */
  private readonly depths = new Uint8Array(slots);
  private readonly roots = new Uint32Array(slots);
  private readonly nodes = new Uint32Array(slots);
  /** The slot of the back-trace that was looked for last. */
  private slot = 0;

  /** Returns the node of the first `depth` keys below `root`, or 0 if it is not known. */
  find(root: number, keys: Uint32Array, depth: number): number {
    if (depth > longest) return 0;
    let hash = root;
    for (let i = 0; i < depth; ++i) hash = Math.imul(hash ^ keys[i], 0x9e3779b1) ^ (hash >>> 15);
    const slot = this.slot = (hash ^ (hash >>> 16)) & (slots - 1);
    if (this.depths[slot] !== depth || this.roots[slot] !== root) return 0;
    const start = slot * longest;
    for (let i = 0; i < depth; ++i)
      if (this.keys[start + i] !== keys[i]) return 0;
    return this.nodes[slot];
  }

  /** Remembers the node of the back-trace that was looked for last and not found. */
  remember(root: number, keys: Uint32Array, depth: number, node: number): void {
    if (depth > longest) return;
    const { slot } = this;
    this.depths[slot] = depth;
    this.roots[slot] = root;
    this.nodes[slot] = node;
    const start = slot * longest;
    for (let i = 0; i < depth; ++i) this.keys[start + i] = keys[i];
  }

  clear(): void { this.depths.fill(0); }
}
