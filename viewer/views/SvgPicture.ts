import type {Surface} from './laneRaster';
import type {Writer} from './laneTexts';

/** A vector picture. Boxes of one colour are one path, in the order in which the colours came. */
export class SvgPicture implements Surface, Writer {
  private readonly paths = new Map<number, string[]>();
  private readonly texts: string[] = [];

  constructor(
      private readonly width: number,
      private readonly height: number,
      private readonly ground: number,
  ) {}

  box(left: number, right: number, top: number, bottom: number, colour: number): void {
    let path = this.paths.get(colour);
    if (path === undefined) this.paths.set(colour, (path = []));
    const [x, y, width, height] = [left, top, right - left, bottom - top].map(rounded);
    path.push(`M${x} ${y}h${width}v${height}h-${width}z`);
  }

  text(text: string, x: number, middle: number, room: number, colour: number): void {
    // Widths of letters are not known here; this many fit for certain.
    const characters = Math.floor(room / letter);
    const fitting = text.length <= characters ? text :
        characters < 2                        ? '' :
                                                `${text.slice(0, characters - 1)}…`;
    if (fitting === '') return;
    this.texts.push(`<text x="${rounded(x)}" y="${rounded(middle + 4)}" fill="${hex(colour)}">${
        escaped(fitting)}</text>`);
  }

  toString(): string {
    const { width, height } = this;
    const paths =
        [...this.paths].map(([colour, path]) => `<path fill="${hex(colour)}" d="${path.join('')}"/>`);
    return [
      `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${width} ${height}" width="${width}" height="${
          height}" font-family="sans-serif" font-size="11">`,
      `<rect width="${width}" height="${height}" fill="${hex(this.ground)}"/>`,
      ...paths,
      ...this.texts,
      '</svg>\n',
    ].join('\n');
  }
}

/** Room for one letter, in pixels. */
const letter = 6.5;

const rounded = (number: number) => Math.round(number * 100) / 100;
const hex = (colour: number) => `#${colour.toString(16).padStart(6, '0')}`;
const escaped = (text: string) => text.replace(/[&<>]/g, (character) => `&#${character.charCodeAt(0)};`);
