import {pathTo, type Tree} from './tree';

/** A box of a flame graph: the row of its node, the root's being 0, its left edge and its width in pixels. */
export interface Box {
  readonly node: number;
  readonly depth: number;
  readonly left: number;
  readonly width: number;
}

/** Returns the box at a pixel of a row. */
export const boxAt = (boxes: readonly Box[], x: number, row: number): Box|undefined =>
    boxes.find(({depth, left, width}) => depth === row && x >= left && x < left + width);

/** Depth beyond which nothing is laid out: no screen is that high. */
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
    ): Box[] {
  const boxes: Box[] = [];
  const scale = width / (end - start);
  const fewest = least / scale;
  if (!(tree.totals[root] > 0) || !(scale > 0)) return boxes;
  const path = [0, ...pathTo(tree, root)];
  const top = path.length - 1;
  for (let depth = 0; depth < top; ++depth) boxes.push({ node: path[depth], depth, left: 0, width });
  boxes.push({ node: root, depth: top, left: -start * scale, width: tree.totals[root] * scale });
  // The boxes are their own queue: those of one row are laid out after all of the row above.
  for (let i = top; i < boxes.length; ++i) {
    const { node } = boxes[i];
    const depth = boxes[i].depth + 1;
    if (depth > deepest) break;
    let { left } = boxes[i];
    tree.expand(node);
    const { childStart, children, totals, bounds } = tree;
    const last = tree.childEnd[node];
    for (let at = childStart[node]; at < last; ++at) {
      const child = children[at];
      // The children that follow are no heavier.
      if (bounds[child] < fewest || left >= width) break;
      const childWidth = totals[child] * scale;
      if (totals[child] >= fewest && left + childWidth > 0)
        boxes.push({ node: child, depth, left, width: childWidth });
      left += childWidth;
    }
  }
  return boxes;
}
