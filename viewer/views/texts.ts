/** Texts on canvases, where there is room for them. */

/** What texts are written on. */
export interface Writer {
  /** Writes text from `x` on, cut to `room`. */
  text(text: string, x: number, middle: number, room: number, colour: string): void;
}

/** A shorter beginning of a name is not shown. */
const fewestLetters = 3;
const mostWidths = 20_000;

/** Writes on a canvas. Widths of texts are kept: measuring costs more than drawing. */
export class CanvasWriter implements Writer {
  readonly #widths = new Map<string, number>();
  #font = '';

  constructor(private readonly context: CanvasRenderingContext2D) {}

  /** Sets the size of the letters; a canvas forgets it when its own size changes. */
  begin(size: number): void {
    const { context } = this;
    context.font = `${size}px system-ui, sans-serif`;
    context.textBaseline = 'middle';
    if (context.font !== this.#font || this.#widths.size > mostWidths) this.#widths.clear();
    this.#font = context.font;
  }

  text(text: string, x: number, middle: number, room: number, colour: string): void {
    const fitting = fitted(text, room, (part) => this.#width(part));
    if (fitting === '') return;
    this.context.fillStyle = colour;
    this.context.fillText(fitting, x, middle + 0.5);
  }

  #width(text: string): number {
    let width = this.#widths.get(text);
    if (width === undefined) this.#widths.set(text, (width = this.context.measureText(text).width));
    return width;
  }
}

/** Returns as much of a text as fits, about: to measure each beginning would cost more than the drawing. */
export function fitted(text: string, room: number, widthOf: (text: string) => number): string {
  const width = widthOf(text);
  if (width <= room) return text;
  const letters = Math.floor((text.length * (room - widthOf('…'))) / width);
  return letters < fewestLetters ? '' : `${text.slice(0, letters)}…`;
}
