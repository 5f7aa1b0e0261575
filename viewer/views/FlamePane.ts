import {Boxes, layOut} from '../model/flameLayout';
import {childrenOf, pathTo, type Tree} from '../model/tree';
import {element, fitCanvas, isDark, pageColour, shortName} from './dom';
import type {App, Direction} from './View';

/** What a flame graph shows of a tree's nodes. */
export interface FlameLook {
  name(node: number): string;
  /** Index into `palette`. */
  colour(node: number): number;
  readonly palette: readonly string[];
  /** 1 for what the search is for; null without a search. */
  matches(node: number): boolean|null;
  /** Lines that tell a node, for the tooltip and for screen readers. */
  describe(node: number): string[];
}

const rowHeight = 18;
/** Boxes narrower than this many pixels are left out. */
const leastWidth = 0.5;
/** A shorter beginning of a name tells nothing. */
const fewestLetters = 4;
const leastText = 28;
const fontFamily = 'system-ui, sans-serif';
const fontSize = 12;
/** Movements below this many pixels are clicks. */
const clickTolerance = 3;

/**
 * One flame graph on a canvas: `focus` fills the width, or a part of it does after a zoom; what stands above
 * it is shown across the whole width. Marks of the pointer and the keyboard lie over the canvas, so that they
 * repaint nothing.
 */
export class FlamePane {
  readonly canvas = element('canvas', { 'aria-hidden': 'true' });
  private readonly hoverMark = element('div', { class: 'flame-mark hover', hidden: true });
  private readonly chosenMark = element('div', { class: 'flame-mark chosen', hidden: true });
  private readonly stage: HTMLElement;
  private readonly boxes = new Boxes();
  private tree: Tree|null = null;
  private look!: FlameLook;
  private focus = 0;
  private chosen = 0;
  /** Nodes above the focus, the root first. */
  private above: readonly number[] = [];
  /** The part of the focus that fills the width. */
  private start = 0;
  private end = 1;
  private scroll = 0;
  private width = 0;
  private height = 0;
  private readonly textWidths = new Map<string, number>();
  private drag: { x: number; y: number; moved: boolean }|null = null;

  constructor(
      host: HTMLElement,
      private readonly app: App,
      /** Whether the root stands at the bottom. */
      private upward: boolean,
      /** Called when a node is chosen to be looked into, by a double click or Enter with Shift. */
      private readonly open: (node: number) => void,
      label: string,
  ) {
    this.stage = element('div', { class: 'flame', tabindex: '0', role: 'img', 'aria-label': label });
    this.stage.append(this.canvas, this.hoverMark, this.chosenMark);
    host.append(this.stage);
    this.listen();
  }

  get shown(): Tree|null { return this.tree; }

  /** Shows a tree; `sameNodes` says that its nodes are those of the tree before, so that the zoom is kept. */
  show(tree: Tree, look: FlameLook, sameNodes: boolean): void {
    this.tree = tree;
    this.look = look;
    if (sameNodes && tree.totals[this.focus] > 0) return;
    this.focusOn(0);
    if (!sameNodes) this.chosen = 0;
  }

  setUpward(upward: boolean): void {
    this.upward = upward;
    this.scroll = 0;
  }

  readonly draw = (): void => {
    const { tree } = this;
    if (tree === null) return;
    this.width = this.stage.clientWidth;
    this.height = this.stage.clientHeight;
    const scale = fitCanvas(this.canvas, this.width, this.height);
    const context = this.canvas.getContext('2d', { alpha: false })!;
    context.setTransform(scale, 0, 0, scale, 0, 0);
    this.lay(tree);
    const lowest = Math.max(0, this.depthOfAll() * rowHeight - this.height);
    this.scroll = Math.min(this.scroll, lowest);
    this.paint(context);
    this.placeMark(this.chosenMark, this.chosen === 0 ? -1 : this.boxOf(this.chosen));
    this.hoverMark.hidden = true;
  };

  /** Goes to the next (1) or previous (-1) node that the search is for; returns what it is. */
  find(direction: Direction): string|null {
    const { tree, look, boxes } = this;
    if (tree === null) return null;
    const from = this.boxOf(this.chosen);
    const count = boxes.count;
    for (let step = 1; step <= count; ++step) {
      const index =
          (((from < 0 && direction > 0 ? -1 : Math.max(from, 0)) + direction * step) % count + count) % count;
      const node = boxes.nodes[index];
      if (node === 0 || look.matches(node) !== true) continue;
      this.choose(node);
      return look.describe(node).join(', ');
    }
    return null;
  }

  key(event: KeyboardEvent): boolean {
    const { tree } = this;
    if (tree === null) return false;
    const node = this.chosen;
    const toParent = this.upward ? 'ArrowDown' : 'ArrowUp';
    const toChild = this.upward ? 'ArrowUp' : 'ArrowDown';
    switch (event.key) {
      case toParent:
        return this.choose(node === 0 ? 0 : tree.parents[node]);
      case toChild:
        return this.choose(childrenOf(tree, node)[0] ?? node);
      case 'ArrowLeft':
      case 'ArrowRight': {
        const siblings = childrenOf(tree, tree.parents[node]);
        const next = siblings[siblings.indexOf(node) + (event.key === 'ArrowRight' ? 1 : -1)];
        return this.choose(next ?? node);
      }
      case 'Home':
        this.focusOn(0);
        return this.choose(0);
      case 'Enter':
        if (event.shiftKey)
          this.open(node);
        else
          this.focusOn(node);
        return true;
      case 'Backspace':
        this.focusOn(tree.parents[this.focus]);
        return true;
      case '+':
      case '-':
        this.zoom(event.key === '+' ? 1 / 1.5 : 1.5, this.width / 2);
        return true;
      case 'PageDown':
      case 'PageUp':
        this.scrollBy((event.key === 'PageDown' ? 0.8 : -0.8) * this.height);
        return true;
    }
    return false;
  }

  /** Calls `visit` for each node that has a box, a parent ahead of its children. */
  forEachBox(visit: (node: number) => void): void {
    for (let i = 0; i < this.boxes.count; ++i) visit(this.boxes.nodes[i]);
  }

  /** Returns the picture as SVG. */
  svg(): string {
    const { boxes, look } = this;
    const rows: string[] = [];
    const rect = (node: number, left: number, width: number, depth: number) => {
      const y = this.upward ? (this.depthOfAll() - 1 - depth) * rowHeight : depth * rowHeight;
      const name = look.name(node);
      const most = Math.floor(width / 6.5);
      const text = most < 3 ? '' : name.length > most ? `${name.slice(0, most - 1)}…` : name;
      rows.push(
          `<g><title>${escaped(look.describe(node).join('\n'))}</title>` +
              `<rect x="${left.toFixed(2)}" y="${y}" width="${
                  Math.max(0.5, width - 0.5).toFixed(2)}" height="${rowHeight - 1}" fill="${
                  look.palette[look.colour(node)]}"/>` +
              (text === '' ? '' :
                             `<text x="${(left + 3).toFixed(2)}" y="${y + 13}">${escaped(text)}</text>`) +
              '</g>',
      );
    };
    this.above.forEach((node, depth) => rect(node, 0, this.width, depth));
    for (let i = 0; i < boxes.count; ++i) {
      const left = Math.max(0, boxes.lefts[i]);
      rect(
          boxes.nodes[i], left, Math.min(this.width, boxes.lefts[i] + boxes.widths[i]) - left,
          this.above.length + boxes.depths[i]);
    }
    const height = this.depthOfAll() * rowHeight;
    return (
        `<svg xmlns="http://www.w3.org/2000/svg" width="${this.width}" height="${height}" font-family="${
            fontFamily}" font-size="${fontSize}" fill="${pageColour('text')}">` +
        `<rect width="100%" height="100%" fill="${pageColour('ground')}"/>${rows.join('')}</svg>`);
  }

  private lay(tree: Tree): void {
    const total = tree.totals[this.focus];
    const path = this.focus === 0 ? [] : [0, ...pathTo(tree, this.focus).slice(0, -1)];
    this.above = path;
    layOut(tree, this.focus, this.start * total, this.end * total, this.width, leastWidth, this.boxes);
  }

  private depthOfAll(): number {
    const { count, depths } = this.boxes;
    return this.above.length + (count > 0 ? depths[count - 1] + 1 : 0);
  }

  /** Top of a row in the canvas. */
  private top(depth: number): number {
    return this.upward ? this.height - (depth + 1) * rowHeight + this.scroll :
                         depth * rowHeight - this.scroll;
  }

  private paint(context: CanvasRenderingContext2D): void {
    const { boxes, look, width, height } = this;
    const dark = isDark();
    context.fillStyle = pageColour('ground');
    context.fillRect(0, 0, width, height);
    const searching = look.matches(this.focus) !== null;
    const match = look.palette.length;
    const batches: number[][] = Array.from({ length: match + 1 }, () => []);
    for (let i = -this.above.length; i < boxes.count; ++i) {
      const depth = i < 0 ? this.above.length + i : this.above.length + boxes.depths[i];
      const y = this.top(depth);
      if (y <= -rowHeight || y >= height) continue;
      const node = i < 0 ? this.above[depth] : boxes.nodes[i];
      batches[searching && look.matches(node) === true ? match : look.colour(node)].push(i);
    }
    context.globalAlpha = searching ? 0.45 : 1;
    batches.forEach((batch, colour) => {
      if (batch.length === 0) return;
      if (colour === match) context.globalAlpha = 1;
      context.fillStyle = look.palette[colour] ?? (dark ? '#b3248f' : '#ff7ad9');
      context.beginPath();
      for (const i of batch) this.addBox(context, i);
      context.fill();
    });
    context.globalAlpha = 1;
    context.fillStyle = pageColour('text');
    context.font = `${fontSize}px ${fontFamily}`;
    context.textBaseline = 'middle';
    for (const batch of batches)
      for (const i of batch) this.addText(context, i);
  }

  private addBox(context: CanvasRenderingContext2D, i: number): void {
    const { boxes, width } = this;
    if (i < 0) {
      context.rect(0, this.top(this.above.length + i), width, rowHeight - 1);
      return;
    }
    const left = Math.max(0, boxes.lefts[i]);
    const right = Math.min(width, boxes.lefts[i] + boxes.widths[i]);
    // A gap to the right tells boxes apart; narrow ones would vanish in it.
    const gap = right - left > 2 ? 1 : 0;
    context.rect(
        left, this.top(this.above.length + boxes.depths[i]), Math.max(0.5, right - left - gap),
        rowHeight - 1);
  }

  private addText(context: CanvasRenderingContext2D, i: number): void {
    const { boxes } = this;
    const left = i < 0 ? 0 : Math.max(0, boxes.lefts[i]);
    const right = i < 0 ? this.width : Math.min(this.width, boxes.lefts[i] + boxes.widths[i]);
    if (right - left < leastText) return;
    const node = i < 0 ? this.above[this.above.length + i] : boxes.nodes[i];
    const depth = i < 0 ? this.above.length + i : this.above.length + boxes.depths[i];
    const text = this.fitted(context, this.look.name(node), right - left - 7);
    if (text !== '') context.fillText(text, left + 3, this.top(depth) + rowHeight / 2);
  }

  /** Returns as much of the name as fits. */
  private fitted(context: CanvasRenderingContext2D, name: string, room: number): string {
    const short = shortName(name);
    const width = this.textWidth(context, short);
    if (width <= room) return short;
    // Letters differ in width: the estimate may be a few too many.
    for (let letters = Math.floor((short.length * room) / width); letters >= fewestLetters; --letters) {
      const cut = `${short.slice(0, letters - 1)}…`;
      if (this.textWidth(context, cut) <= room) return cut;
    }
    return '';
  }

  private textWidth(context: CanvasRenderingContext2D, text: string): number {
    let width = this.textWidths.get(text);
    if (width === undefined) {
      if (this.textWidths.size > 20000) this.textWidths.clear();
      width = context.measureText(text).width;
      this.textWidths.set(text, width);
    }
    return width;
  }

  /** Chooses a node, tells it, and brings it into view; returns true for the callers' convenience. */
  private choose(node: number): true {
    this.chosen = node;
    if (this.boxOf(node) < 0 && this.tree !== null) {
      // Too small or outside: its parent fills the width.
      this.focusOn(this.tree.parents[node]);
      this.lay(this.tree);
    }
    const index = this.boxOf(node);
    const depth = index >= 0 ? this.above.length + this.boxes.depths[index] : this.above.indexOf(node);
    const y = this.top(depth);
    if (y < 0 || y + rowHeight > this.height) this.scroll = Math.max(0, depth * rowHeight - this.height / 2);
    this.app.announce(this.look.describe(node).join(', '));
    this.app.store.repaint(this.draw);
    return true;
  }

  private focusOn(node: number): void {
    this.focus = node;
    this.start = 0;
    this.end = 1;
    this.app.store.repaint(this.draw);
  }

  /** Zooms about a pixel. */
  private zoom(factor: number, x: number): void {
    const length = Math.min(1, Math.max(1e-7, (this.end - this.start) * factor));
    const at = this.start + (x / this.width) * (this.end - this.start);
    this.start = Math.min(Math.max(0, at - (x / this.width) * length), 1 - length);
    this.end = this.start + length;
    this.app.store.repaint(this.draw);
  }

  private pan(pixels: number): void {
    const length = this.end - this.start;
    this.start = Math.min(Math.max(0, this.start + (pixels / this.width) * length), 1 - length);
    this.end = this.start + length;
    this.app.store.repaint(this.draw);
  }

  private scrollBy(pixels: number): void {
    this.scroll = Math.max(0, this.scroll + (this.upward ? -pixels : pixels));
    this.app.store.repaint(this.draw);
  }

  /** Index of a node's box, or -1. */
  private boxOf(node: number): number { return this.boxes.nodes.subarray(0, this.boxes.count).indexOf(node); }

  /** Returns the node under the pointer, or -1. */
  private nodeAt(event: MouseEvent): number {
    const { left, top } = this.stage.getBoundingClientRect();
    const y = event.clientY - top;
    const row = Math.floor((this.upward ? this.height - y + this.scroll : y + this.scroll) / rowHeight);
    if (row < this.above.length) return this.above[row] ?? -1;
    const index = this.boxes.at(event.clientX - left, row - this.above.length);
    return index < 0 ? -1 : this.boxes.nodes[index];
  }

  private placeMark(mark: HTMLElement, index: number): void {
    mark.hidden = index < 0;
    if (index < 0) return;
    const { boxes } = this;
    const left = Math.max(0, boxes.lefts[index]);
    const right = Math.min(this.width, boxes.lefts[index] + boxes.widths[index]);
    mark.style.transform = `translate(${left}px, ${this.top(this.above.length + boxes.depths[index])}px)`;
    mark.style.width = `${Math.max(1, right - left)}px`;
  }

  private listen(): void {
    const { stage } = this;
    stage.addEventListener(
        'wheel',
        (event) => {
          event.preventDefault();
          const unit = event.deltaMode === 1 ? 16 : 1;
          const x = event.clientX - stage.getBoundingClientRect().left;
          if (event.ctrlKey || event.metaKey)
            this.zoom(Math.exp(event.deltaY * unit * 0.002), x);
          else if (event.shiftKey || event.deltaX !== 0)
            this.pan((event.deltaX || event.deltaY) * unit);
          else
            this.scrollBy(event.deltaY * unit);
        },
        { passive: false },
    );
    stage.addEventListener('pointerdown', (event) => {
      if (event.button !== 0) return;
      this.drag = { x: event.clientX, y: event.clientY, moved: false };
      stage.setPointerCapture(event.pointerId);
    });
    stage.addEventListener('pointermove', (event) => this.move(event));
    stage.addEventListener('pointerup', (event) => {
      const clicked = this.drag !== null && !this.drag.moved;
      this.drag = null;
      const node = clicked ? this.nodeAt(event) : -1;
      if (node < 0) return;
      this.chosen = node;
      this.app.announce(this.look.describe(node).join(', '));
      this.focusOn(node);
    });
    stage.addEventListener('dblclick', (event) => {
      const node = this.nodeAt(event);
      if (node > 0) this.open(node);
    });
    stage.addEventListener('pointerleave', () => {
      this.hoverMark.hidden = true;
      this.app.tooltip(null);
    });
  }

  private move(event: PointerEvent): void {
    const { drag } = this;
    if (drag !== null) {
      drag.moved ||= Math.abs(event.clientX - drag.x) + Math.abs(event.clientY - drag.y) >= clickTolerance;
      if (drag.moved) {
        this.pan(drag.x - event.clientX);
        this.scrollBy(drag.y - event.clientY);
        drag.x = event.clientX;
        drag.y = event.clientY;
      }
    }
    const node = drag?.moved === true ? -1 : this.nodeAt(event);
    this.placeMark(this.hoverMark, node < 0 ? -1 : this.boxOf(node));
    this.app.tooltip(node < 0 ? null : this.look.describe(node), event);
  }
}

const escapes: Record<string, string> = {
  '&': '&amp;',
  '<': '&lt;',
  '>': '&gt;',
  '"': '&quot;'
};
const escaped = (text: string) => text.replace(/[&<>"]/g, (c) => escapes[c]);
