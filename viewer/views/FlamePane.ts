import {type Direction, Scale, zoomed} from '../model/axis';
import {Boxes, layOut} from '../model/flameLayout';
import {childrenOf, type Tree} from '../model/tree';
import {element, fitCanvas, isDark, pageColour, shortName} from './dom';
import {onGestures} from './gestures';
import {SvgPicture} from './SvgPicture';
import {CanvasWriter} from './texts';
import {type App, nextOf} from './View';

/** What a flame graph shows of a tree's nodes. */
export interface FlameLook {
  name(node: number): string;
  /** Index into `palette`. */
  colour(node: number): number;
  readonly palette: readonly string[];
  /** Whether the search is for a node; null without a search. */
  readonly matches: ((node: number) => boolean)|null;
  /** Lines that tell a node, for the tooltip and for screen readers. */
  describe(node: number): string[];
}

const rowHeight = 18;
/** Boxes narrower than this many pixels are left out. */
const leastWidth = 0.5;
const leastText = 28;
const fontSize = 12;
const everything = {
  start: 0,
  end: 1
};

/**
 * One flame graph on a canvas: `focus` fills the width, or a part of it does after a zoom; what is above it
 * goes across the whole width. Marks of the pointer and the keyboard are elements over the canvas, so that
 * they repaint nothing.
 */
export class FlamePane {
  readonly canvas = element('canvas', { 'aria-hidden': 'true' });
  tree!: Tree;
  private readonly context = this.canvas.getContext('2d', { alpha: false })!;
  private readonly writer = new CanvasWriter(this.context);
  private readonly hoverMark = element('div', { class: 'flame-mark', hidden: true });
  private readonly chosenMark = element('div', { class: 'flame-mark chosen', hidden: true });
  private readonly stage: HTMLElement;
  private readonly boxes = new Boxes();
  private look!: FlameLook;
  private focus = 0;
  private chosen = 0;
  /** The part of the focus that fills the width. */
  private part = everything;
  private scroll = 0;
  private width = 0;
  private height = 0;

  constructor(
      host: HTMLElement,
      private readonly app: App,
      label: string,
      /** Called when a node is chosen to be looked into, by a double click or Enter with Shift. */
      private readonly open: (node: number) => void,
      /** Whether the root is at the bottom. */
      private upward = false,
  ) {
    this.stage = element(
        'div', { class: 'flame', tabIndex: '0', role: 'application', 'aria-roledescription': 'flame graph' },
        this.canvas, this.hoverMark, this.chosenMark);
    this.stage.setAttribute('aria-label', label);
    host.append(this.stage);
    this.listen();
  }

  get hasFocus(): boolean { return this.stage === document.activeElement; }

  /** Shows a tree; `sameNodes` says that its nodes are those of the tree before, so that the zoom is kept. */
  show(tree: Tree, look: FlameLook, sameNodes: boolean): void {
    this.tree = tree;
    this.look = look;
    if (!sameNodes) this.chosen = 0;
    if (sameNodes && tree.totals[this.focus] > 0)
      this.repaint();
    else
      this.focusOn(0);
  }

  /** Turns the graph upside down; returns whether the root is at the bottom now. */
  turn(): boolean {
    this.scroll = 0;
    return (this.upward = !this.upward);
  }

  /** Goes to the next or previous match of the search; returns its label. */
  find(direction: Direction): string|null {
    const { nodes, count } = this.boxes;
    const index =
        nextOf(count, this.boxOf(this.chosen), direction, (i) => this.look.matches?.(nodes[i]) === true);
    if (index < 0) return null;
    this.choose(nodes[index]);
    return this.look.describe(nodes[index]).join(', ');
  }

  key(event: KeyboardEvent): boolean {
    const { tree, chosen } = this;
    const toParent = this.upward ? 'ArrowDown' : 'ArrowUp';
    const toChild = this.upward ? 'ArrowUp' : 'ArrowDown';
    switch (event.key) {
      case toParent:
        this.choose(tree.parents[chosen]);
        break;
      case toChild:
        this.choose(childrenOf(tree, chosen)[0] ?? chosen);
        break;
      case 'ArrowLeft':
      case 'ArrowRight': {
        const siblings = childrenOf(tree, tree.parents[chosen]);
        this.choose(siblings[siblings.indexOf(chosen) + (event.key === 'ArrowRight' ? 1 : -1)] ?? chosen);
        break;
      }
      case 'Home':
        this.focusOn(0);
        this.choose(0);
        break;
      case 'Enter':
        if (event.shiftKey)
          this.open(chosen);
        else
          this.focusOn(chosen);
        break;
      case 'Backspace':
        this.focusOn(tree.parents[this.focus]);
        break;
      case '+':
      case '-':
        this.zoom(event.key === '+' ? 1 / 1.5 : 1.5, this.width / 2);
        break;
      case 'PageDown':
      case 'PageUp':
        this.scrollBy((event.key === 'PageDown' ? 0.8 : -0.8) * this.height);
        break;
      default:
        return false;
    }
    return true;
  }

  /** Returns the nodes that have a box, parents before their children. */
  nodes(): number[] { return [...this.boxes.nodes.subarray(0, this.boxes.count)]; }

  /** Returns the picture as SVG. */
  svg(): string {
    const { boxes, look } = this;
    const height = this.rows * rowHeight;
    const picture = new SvgPicture(this.width, height, pageColour('ground'));
    const text = pageColour('text');
    for (let i = 0; i < boxes.count; ++i) {
      const y = (this.upward ? this.rows - 1 - boxes.depths[i] : boxes.depths[i]) * rowHeight;
      const [left, right] = [this.left(i), this.right(i)];
      picture.box(
          left, right - gap(right - left), y, y + rowHeight - 1, look.palette[look.colour(boxes.nodes[i])]);
      picture.text(look.name(boxes.nodes[i]), left + 3, y + rowHeight / 2, right - left - 7, text);
    }
    return picture.toString();
  }

  private readonly draw = (): void => {
    const { stage, context } = this;
    this.width = stage.clientWidth;
    this.height = stage.clientHeight;
    const scale = fitCanvas(this.canvas, this.width, this.height);
    context.setTransform(scale, 0, 0, scale, 0, 0);
    this.lay();
    this.scroll = Math.min(this.scroll, Math.max(0, this.rows * rowHeight - this.height));
    this.paint();
    this.placeMark(this.chosenMark, this.chosen === 0 ? -1 : this.boxOf(this.chosen));
    this.hoverMark.hidden = true;
  };

  private repaint(): void { this.app.store.repaint(this.draw); }

  private lay(): void {
    const total = this.tree.totals[this.focus];
    const { start, end } = this.part;
    layOut(this.tree, this.focus, start * total, end * total, this.width, leastWidth, this.boxes);
  }

  /** Rows of the whole graph; the last box is in the deepest one. */
  private get rows(): number {
    return this.boxes.count === 0 ? 0 : this.boxes.depths[this.boxes.count - 1] + 1;
  }

  /** Edges of a box in the canvas. */
  private left(i: number): number { return Math.max(0, this.boxes.lefts[i]); }
  private right(i: number): number {
    return Math.min(this.width, this.boxes.lefts[i] + this.boxes.widths[i]);
  }
  private top(i: number): number {
    const down = this.boxes.depths[i] * rowHeight - this.scroll;
    return this.upward ? this.height - rowHeight - down : down;
  }

  private paint(): void {
    const { boxes, look, width, height, context, writer } = this;
    const { matches, palette } = look;
    context.fillStyle = pageColour('ground');
    context.fillRect(0, 0, width, height);
    const match = palette.length;
    // Boxes of one colour are painted together.
    const batches: number[][] = Array.from({ length: match + 1 }, () => []);
    const labelled: number[] = [];
    for (let i = 0; i < boxes.count; ++i) {
      const y = this.top(i);
      if (y <= -rowHeight || y >= height) continue;
      batches[matches?.(boxes.nodes[i]) === true ? match : look.colour(boxes.nodes[i])].push(i);
      if (boxes.widths[i] >= leastText) labelled.push(i);
    }
    batches.forEach((batch, colour) => {
      if (batch.length === 0) return;
      context.globalAlpha = matches !== null && colour !== match ? 0.45 : 1;
      context.fillStyle = palette[colour] ?? (isDark() ? '#b3248f' : '#ff7ad9');
      context.beginPath();
      for (const i of batch) {
        const left = this.left(i);
        const wide = this.right(i) - left;
        context.rect(left, this.top(i), Math.max(leastWidth, wide - gap(wide)), rowHeight - 1);
      }
      context.fill();
    });
    context.globalAlpha = 1;
    writer.begin(fontSize);
    const text = pageColour('text');
    for (const i of labelled) {
      const left = this.left(i);
      const room = this.right(i) - left - 7;
      writer.text(shortName(look.name(boxes.nodes[i])), left + 3, this.top(i) + rowHeight / 2, room, text);
    }
  }

  /** Chooses a node, announces it, and scrolls it into view. */
  private choose(node: number): void {
    this.chosen = node;
    if (this.boxOf(node) < 0) {
      // Too small or outside: its parent fills the width.
      this.focusOn(this.tree.parents[node]);
      this.lay();
    }
    const index = this.boxOf(node);
    const y = this.top(index);
    if (y < 0 || y + rowHeight > this.height)
      this.scroll = Math.max(0, this.boxes.depths[index] * rowHeight - this.height / 2);
    this.tell(node);
    this.repaint();
  }

  private tell(node: number): void { this.app.announce(this.look.describe(node).join(', ')); }

  private focusOn(node: number): void {
    this.focus = node;
    this.part = everything;
    this.repaint();
  }

  /** Zooms about a pixel, and moves by pixels. */
  private zoom(factor: number, x: number, pixels = 0): void {
    const scale = new Scale(this.part, this.width);
    this.part = zoomed(this.part, everything, factor, scale.time(x), pixels * scale.pixel);
    this.repaint();
  }

  private scrollBy(pixels: number): void {
    this.scroll = Math.max(0, this.scroll + (this.upward ? -pixels : pixels));
    this.repaint();
  }

  /** Index of a node's box, or -1. */
  private boxOf(node: number): number { return this.boxes.nodes.subarray(0, this.boxes.count).indexOf(node); }

  /** Returns the box under the pointer, or -1. */
  private boxAt(event: MouseEvent): number {
    const { left, top } = this.stage.getBoundingClientRect();
    const y = event.clientY - top;
    const row = Math.floor(((this.upward ? this.height - y : y) + this.scroll) / rowHeight);
    return this.boxes.at(event.clientX - left, row);
  }

  private placeMark(mark: HTMLElement, index: number): void {
    mark.hidden = index < 0;
    if (index < 0) return;
    const left = this.left(index);
    mark.style.transform = `translate(${left}px, ${this.top(index)}px)`;
    mark.style.width = `${Math.max(1, this.right(index) - left)}px`;
  }

  private listen(): void {
    const { stage, boxes } = this;
    const hover = (event: PointerEvent|null) => {
      const index = event === null ? -1 : this.boxAt(event);
      this.placeMark(this.hoverMark, index);
      this.app.tooltip(index < 0 ? null : this.look.describe(boxes.nodes[index]), event);
    };
    onGestures(stage, {
      zoom: (factor, event) => this.zoom(factor, event.clientX - stage.getBoundingClientRect().left),
      pan: (pixels) => this.zoom(1, 0, pixels),
      scroll: (pixels) => this.scrollBy(pixels),
      press: (event) => event.button === 0,
      drag: (_, right, down) => {
        hover(null);
        this.zoom(1, 0, -right);
        this.scrollBy(-down);
      },
      click: (event) => {
        const index = this.boxAt(event);
        if (index < 0) return;
        this.chosen = boxes.nodes[index];
        this.tell(this.chosen);
        this.focusOn(this.chosen);
      },
      hover,
    });
    stage.addEventListener('dblclick', (event) => {
      const index = this.boxAt(event);
      if (index >= 0) this.open(boxes.nodes[index]);
    });
  }
}

/** A gap to the right separates boxes; narrow ones would vanish in it. */
const gap = (width: number) => (width > 2 ? 1 : 0);
