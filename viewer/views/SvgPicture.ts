import {kept} from '../model/maps';
import type {Surface} from './laneRaster';
import {fitted, type Writer} from './texts';

/** A vector picture. Boxes of one colour are one path, in the order in which the colours came. */
export class SvgPicture implements Surface, Writer {
  readonly #paths = new Map<number|string, string[]>();
  readonly #texts: string[] = [];

  constructor(
      private readonly width: number,
      private readonly height: number,
      private readonly ground: string,
      /** How far to the right of its place everything is drawn. */
      private readonly shift = 0,
  ) {}

  /** Colours are those of style sheets, or 0xrrggbb. */
  box(left: number, right: number, top: number, bottom: number, colour: number|string): void {
    const [x, y, width, height] = [this.shift + left, top, right - left, bottom - top].map(rounded);
    kept(this.#paths, colour, () => []).push(`M${x} ${y}h${width}v${height}h-${width}z`);
  }

  text(text: string, x: number, middle: number, room: number, colour: string): void {
    // Widths of letters are not known here; this is more than most have.
    const fitting = fitted(text, room, ({ length }) => letter * length);
    if (fitting !== '')
      this.#texts.push(`<text x="${rounded(this.shift + x)}" y="${rounded(middle + 4)}" fill="${colour}">${
          escaped(fitting)}</text>`);
  }

  toString(): string {
    const { width, height } = this;
    const paths =
        [...this.#paths].map(([colour, path]) => `<path fill="${css(colour)}" d="${path.join('')}"/>`);
    return [
      `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${width} ${height}" width="${width}" height="${
          height}" font-family="sans-serif" font-size="11">`,
      `<rect width="${width}" height="${height}" fill="${this.ground}"/>`,
      ...paths,
      ...this.#texts,
      '</svg>\n',
    ].join('\n');
  }
}

/** Room for one letter, in pixels. */
const letter = 6.5;

const rounded = (number: number) => Math.round(number * 100) / 100;
const css = (colour: number|string) =>
    typeof colour === 'string' ? colour : `#${colour.toString(16).padStart(6, '0')}`;
const escaped = (text: string) => text.replace(/[&<>]/g, (character) => `&#${character.charCodeAt(0)};`);
