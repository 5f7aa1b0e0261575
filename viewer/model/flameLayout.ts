import {grown} from '../document/grown';
import {pathTo, type Tree} from './tree';

/** The boxes of a flame graph, as columns; `count` of their entries are in use. */
export class Boxes {
  count = 0;
  nodes = new Uint32Array(1024);
  depths = new Uint16Array(1024);
  /** Left edge and width in pixels. */
  lefts = new Float64Array(1024);
  widths = new Float64Array(1024);

  add(node: number, depth: number, left: number, width: number): void {
    const at = this.count++;
    if (at === this.nodes.length) this.grow();
    this.nodes[at] = node;
    this.depths[at] = depth;
    this.lefts[at] = left;
    this.widths[at] = width;
  }

  /** Returns the index of the box at a pixel of a row, or -1. */
  at(x: number, depth: number): number {
    for (let i = 0; i < this.count; ++i) {
      if (this.depths[i] === depth && x >= this.lefts[i] && x < this.lefts[i] + this.widths[i]) return i;
    }
    return -1;
  }

  private grow(): void {
    const capacity = 2 * this.nodes.length;
    this.nodes = grown(this.nodes, capacity);
    this.depths = grown(this.depths, capacity);
    this.lefts = grown(this.lefts, capacity);
    this.widths = grown(this.widths, capacity);
  }
}

/** Depth beyond which nothing is laid out: no screen is that high, and a row number has 16 bits. */
const deepest = 4096;

/**
 * Lays out the boxes that are at least `least` pixels wide, where the samples from `start` to `end` of `root`
 * (in samples, 0 to its total) fill `width` pixels. The ancestors of `root` get the whole width. A
 * parent precedes its children.
 */
export function layOut(
    tree: Tree,
    root: number,
    start: number,
    end: number,
    width: number,
    least: number,
    boxes: Boxes,
    ): Boxes {
  boxes.count = 0;
  const scale = width / (end - start);
  const fewest = least / scale;
  if (!(tree.totals[root] > 0) || !(scale > 0)) return boxes;
  const path = [0, ...pathTo(tree, root)];
  const top = path.length - 1;
  for (let depth = 0; depth < top; ++depth) boxes.add(path[depth], depth, 0, width);
  boxes.add(root, top, -start * scale, tree.totals[root] * scale);
  // The boxes are their own queue: those of one row are laid out after all of the row above.
  for (let i = top; i < boxes.count; ++i) {
    const node = boxes.nodes[i];
    const depth = boxes.depths[i] + 1;
    if (depth > deepest) break;
    let left = boxes.lefts[i];
    tree.expand(node);
    const { childStart, childEnd, children, totals, bounds } = tree;
    const last = childEnd[node];
    for (let at = childStart[node]; at < last; ++at) {
      const child = children[at];
      // The children that follow are no heavier.
      if (bounds[child] < fewest || left >= width) break;
      const childWidth = totals[child] * scale;
      if (totals[child] >= fewest && left + childWidth > 0) boxes.add(child, depth, left, childWidth);
      left += childWidth;
    }
  }
  return boxes;
}
