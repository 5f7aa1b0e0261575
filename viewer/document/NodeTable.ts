import {grown} from './grown';

/** Nodes of a tree that a packed document hands out block by block; node 0 is the root. */
export class NodeTable {
  count = 1;
  parents = new Uint32Array(1 << 12);
  /** The label of a node: a key, or an address, which has 64 bits. */
  high = new Uint32Array(1 << 12);
  low = new Uint32Array(1 << 12);

  add(parent: number, high: number, low: number): void {
    if (this.count === this.parents.length) {
      this.parents = grown(this.parents, 2 * this.count);
      this.high = grown(this.high, 2 * this.count);
      this.low = grown(this.low, 2 * this.count);
    }
    this.parents[this.count] = parent;
    this.high[this.count] = high;
    this.low[this.count] = low;
    ++this.count;
  }
}
