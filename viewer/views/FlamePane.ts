import {type Direction, Scale, zoomed} from '../model/axis';
import {type Box, boxAt, layOut} from '../model/flameLayout';
import {childrenOf, type Tree} from '../model/tree';
import {element, fitCanvas, isDark, pageColour, placeIn, shortName} from './dom';
import {onGestures} from './gestures';
import {SvgPicture} from './SvgPicture';
import {CanvasWriter} from './texts';
import {type App, nextOf, perform} from './View';

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
  readonly canvas = element('canvas', { 'aria-hidden': true });
  declare tree: Tree;
  readonly #context = this.canvas.getContext('2d', { alpha: false })!;
  readonly #writer = new CanvasWriter(this.#context);
  readonly #hoverMark = element('div', { class: 'flame-mark', hidden: true });
  readonly #chosenMark = element('div', { class: 'flame-mark chosen', hidden: true });
  readonly #stage: HTMLElement;
  #boxes: readonly Box[] = [];
  #look!: FlameLook;
  #focus = 0;
  #chosen = 0;
  /** The part of the focus that fills the width. */
  #part = everything;
  #scroll = 0;
  #width = 0;
  #height = 0;

  constructor(
      host: HTMLElement,
      private readonly app: App,
      label: string,
      /** Called when a node is chosen to be looked into, by a double click or Enter with Shift. */
      private readonly open: (node: number) => void,
      /** Whether the root is at the bottom. */
      private upward = false,
  ) {
    this.#stage = element(
        'div', {
          class: 'flame',
          tabIndex: 0,
          role: 'application',
          'aria-roledescription': 'flame graph',
          'aria-label': label,
          // Some screen readers say nothing of an application that gets the focus.
          focus: () => this.#tell(this.#chosen, `${label}; `),
          dblclick: (event: MouseEvent) => {
            const box = this.#boxAt(event);
            if (box) this.open(box.node);
          },
        },
        this.canvas, this.#hoverMark, this.#chosenMark);
    host.append(this.#stage);
    this.#listen();
  }

  get hasFocus(): boolean { return this.#stage === document.activeElement; }

  /** Shows a tree; `sameNodes` says that its nodes are those of the tree before, so that the zoom is kept. */
  show(tree: Tree, look: FlameLook, sameNodes: boolean): void {
    this.tree = tree;
    this.#look = look;
    if (!sameNodes) this.#chosen = 0;
    if (sameNodes && tree.totals[this.#focus] > 0)
      this.#repaint();
    else
      this.#focusOn(0);
  }

  /** Turns the graph upside down; returns whether the root is at the bottom now. */
  turn(): boolean {
    this.#scroll = 0;
    return (this.upward = !this.upward);
  }

  /** Goes to the next or previous match of the search; returns its label. */
  find(direction: Direction): string|null {
    const boxes = this.#boxes;
    const look = this.#look;
    const chosen = this.#chosen;
    const from = boxes.findIndex((box) => box.node === chosen);
    const index = nextOf(boxes.length, from, direction, (i) => look.matches?.(boxes[i].node) === true);
    if (index < 0) return null;
    const { node } = boxes[index];
    this.#choose(node);
    return look.describe(node).join(', ');
  }

  key(event: KeyboardEvent): boolean {
    const { tree } = this;
    const chosen = this.#chosen;
    const beside = (step: number) => {
      const siblings = childrenOf(tree, tree.parents[chosen]);
      this.#choose(siblings[siblings.indexOf(chosen) + step] ?? chosen);
    };
    return perform(event.key, {
      [this.upward ? 'ArrowDown' : 'ArrowUp']: () => this.#choose(tree.parents[chosen]),
      [this.upward ? 'ArrowUp' : 'ArrowDown']: () => this.#choose(childrenOf(tree, chosen)[0] ?? chosen),
      ArrowLeft: () => beside(-1),
      ArrowRight: () => beside(1),
      Home: () => {
        this.#focusOn(0);
        this.#choose(0);
      },
      Enter: () => (event.shiftKey ? this.open(chosen) : this.#focusOn(chosen)),
      Backspace: () => this.#focusOn(tree.parents[this.#focus]),
      '+': () => this.#zoom(1 / 1.5, this.#width / 2),
      '-': () => this.#zoom(1.5, this.#width / 2),
      PageDown: () => this.#scrollBy(0.8 * this.#height),
      PageUp: () => this.#scrollBy(-0.8 * this.#height),
    });
  }

  /** Returns the nodes that have a box, parents before their children. */
  nodes(): number[] { return this.#boxes.map((box) => box.node); }

  /** Returns the picture as SVG. */
  svg(): string {
    const boxes = this.#boxes;
    const look = this.#look;
    const height = this.#rows * rowHeight;
    const picture = new SvgPicture(this.#width, height, pageColour('ground'));
    const text = pageColour('text');
    for (const box of boxes) {
      const y = (this.upward ? this.#rows - 1 - box.depth : box.depth) * rowHeight;
      const [left, right] = this.#edges(box);
      picture.box(left, right - gap(right - left), y, y + rowHeight - 1, look.palette[look.colour(box.node)]);
      picture.text(look.name(box.node), left + 3, y + rowHeight / 2, right - left - 7, text);
    }
    return picture.toString();
  }

  readonly #draw = (): void => {
    this.#width = this.#stage.clientWidth;
    this.#height = this.#stage.clientHeight;
    const scale = fitCanvas(this.canvas, this.#width, this.#height);
    this.#context.setTransform(scale, 0, 0, scale, 0, 0);
    this.#lay();
    this.#scroll = Math.min(this.#scroll, Math.max(0, this.#rows * rowHeight - this.#height));
    this.#paint();
    this.#placeMark(this.#chosenMark, this.#chosen === 0 ? undefined : this.#boxOf(this.#chosen));
    this.#hoverMark.hidden = true;
  };

  #repaint(): void { this.app.store.repaint(this.#draw); }

  #lay(): void {
    const total = this.tree.totals[this.#focus];
    this.#boxes = layOut(
        this.tree, this.#focus, this.#part.start * total, this.#part.end * total, this.#width, leastWidth);
  }

  /** Rows of the whole graph; the last box is in the deepest one. */
  get #rows(): number { return (this.#boxes.at(-1)?.depth ?? -1) + 1; }

  /** Left and right edge of a box in the canvas. */
  #edges({ left, width }: Box): [number, number] {
    return [Math.max(0, left), Math.min(this.#width, left + width)];
  }

  #top(box: Box): number {
    const down = box.depth * rowHeight - this.#scroll;
    return this.upward ? this.#height - rowHeight - down : down;
  }

  #paint(): void {
    const boxes = this.#boxes;
    const look = this.#look;
    const height = this.#height;
    const context = this.#context;
    const writer = this.#writer;
    const { matches, palette } = look;
    context.fillStyle = pageColour('ground');
    context.fillRect(0, 0, this.#width, height);
    const match = palette.length;
    // Boxes of one colour are painted together.
    const batches: Box[][] = Array.from({ length: match + 1 }, () => []);
    const labelled: Box[] = [];
    for (const box of boxes) {
      const y = this.#top(box);
      if (y <= -rowHeight || y >= height) continue;
      batches[matches?.(box.node) === true ? match : look.colour(box.node)].push(box);
      if (box.width >= leastText) labelled.push(box);
    }
    batches.forEach((batch, colour) => {
      if (batch.length === 0) return;
      context.globalAlpha = matches && colour !== match ? 0.45 : 1;
      context.fillStyle = palette[colour] ?? (isDark() ? '#b3248f' : '#ff7ad9');
      for (const box of batch) {
        const [left, right] = this.#edges(box);
        const wide = right - left;
        context.fillRect(left, this.#top(box), Math.max(leastWidth, wide - gap(wide)), rowHeight - 1);
      }
    });
    context.globalAlpha = 1;
    writer.begin(fontSize);
    const text = pageColour('text');
    for (const box of labelled) {
      const [left, right] = this.#edges(box);
      const middle = this.#top(box) + rowHeight / 2;
      writer.text(shortName(look.name(box.node)), left + 3, middle, right - left - 7, text);
    }
  }

  /** Chooses a node, announces it, and scrolls it into view. */
  #choose(node: number): void {
    this.#chosen = node;
    if (!this.#boxOf(node)) {
      // Too small or outside: its parent fills the width.
      this.#focusOn(this.tree.parents[node]);
      this.#lay();
    }
    const box = this.#boxOf(node);
    const y = box ? this.#top(box) : 0;
    if (box && (y < 0 || y + rowHeight > this.#height))
      this.#scroll = Math.max(0, box.depth * rowHeight - this.#height / 2);
    this.#tell(node);
    this.#repaint();
  }

  #tell(node: number, before = ''): void { this.app.announce(before + this.#look.describe(node).join(', ')); }

  #focusOn(node: number): void {
    this.#focus = node;
    this.#part = everything;
    this.#repaint();
  }

  /** Zooms about a pixel, and moves by pixels. */
  #zoom(factor: number, x: number, pixels = 0): void {
    const scale = new Scale(this.#part, this.#width);
    this.#part = zoomed(this.#part, everything, factor, scale.time(x), pixels * scale.pixel);
    this.#repaint();
  }

  #scrollBy(pixels: number): void {
    this.#scroll = Math.max(0, this.#scroll + (this.upward ? -pixels : pixels));
    this.#repaint();
  }

  #boxOf(wanted: number): Box|undefined { return this.#boxes.find((box) => box.node === wanted); }

  /** Returns the box under the pointer. */
  #boxAt(event: MouseEvent): Box|undefined {
    const { x, y } = placeIn(this.#stage, event);
    const row = Math.floor(((this.upward ? this.#height - y : y) + this.#scroll) / rowHeight);
    return boxAt(this.#boxes, x, row);
  }

  #placeMark(mark: HTMLElement, box: Box|undefined): void {
    mark.hidden = !box;
    if (!box) return;
    const [left, right] = this.#edges(box);
    mark.style.transform = `translate(${left}px, ${this.#top(box)}px)`;
    mark.style.width = `${Math.max(1, right - left)}px`;
  }

  #listen(): void {
    const stage = this.#stage;
    const hover = (event: PointerEvent|null) => {
      const box = event ? this.#boxAt(event) : undefined;
      this.#placeMark(this.#hoverMark, box);
      this.app.tooltip(box ? this.#look.describe(box.node) : null, event);
    };
    onGestures(stage, {
      zoom: (factor, event) => this.#zoom(factor, placeIn(stage, event).x),
      pan: (pixels) => this.#zoom(1, 0, pixels),
      scroll: (pixels) => this.#scrollBy(pixels),
      press: (event) => event.button === 0,
      drag: (_, right, down) => {
        hover(null);
        this.#zoom(1, 0, -right);
        this.#scrollBy(-down);
      },
      click: (event) => {
        const box = this.#boxAt(event);
        if (!box) return;
        const { node } = box;
        this.#chosen = node;
        this.#tell(node);
        this.#focusOn(node);
      },
      hover,
    });
  }
}

/** A gap to the right separates boxes; narrow ones would vanish in it. */
const gap = (width: number) => (width > 2 ? 1 : 0);
