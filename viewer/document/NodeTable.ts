import {grown, zeros} from './grown';

/** Nodes of a tree, each with its parent and a key; node 0 is the root. */
export class NodeTable {
  count = 1;
  parents = zeros(1 << 12);
  keys = zeros(1 << 12);

  add(parent: number, key: number): void {
    if (this.count === this.parents.length) {
      this.parents = grown(this.parents, 2 * this.count);
      this.keys = grown(this.keys, 2 * this.count);
    }
    this.parents[this.count] = parent;
    this.keys[this.count] = key;
    ++this.count;
  }
}
