/** Colours of places: the kind gives the hue, the library and the function a shade of it. */

import type {PlaceKind, Places} from '../document/profile';
import {kept} from '../model/maps';

const shades = 6;

/**
 * By PlaceKind; `spread` is how far the shades differ, in degrees of hue. Cut back-traces are
 * farther from the page than all places, so that their end is not taken for a root.
 */
const hues: readonly(readonly [hue: number, saturation: number, spread: number, apart: number])[] = [
  [205, 60, 14, 0],
  [18, 78, 38, 0],
  [220, 6, 0, 0],
  [285, 38, 10, 0],
  [45, 9, 0, 22],
];

/** By PlaceKind. */
export const kindNames: readonly string[] =
    ['kernel', 'program or library', 'no function known', 'no mapping known', 'cut off'];

/** A palette and the index into it for each place; boxes of one colour are painted together. */
export interface PlaceColours {
  readonly palette: readonly string[];
  readonly indices: Uint8Array;
}

const palettes = new Map<boolean, string[]>();

/** Returns the shades of all kinds, and the colour of nodes that are not places. */
function palette(dark: boolean): readonly string[] {
  return kept(palettes, dark, () => {
    const colours = hues.flatMap(
        ([hue, saturation, spread, apart]) => Array.from(
            { length: shades },
            (_, shade) => {
              const part = shade / (shades - 1);
              const lightness = dark ? 34 + 8 * part + apart / 3 : 80 - 9 * part - apart;
              const strength = dark ? saturation * 0.62 : saturation;
              return `hsl(${hue + spread * part} ${strength}% ${lightness}%)`;
            }),
    );
    return [...colours, dark ? '#2c3037' : '#e4e7ec'];
  });
}

/** Index of the colour of nodes that are not places, such as "all samples". */
export const noPlace = shades * hues.length;

/** The colour of a kind by itself, for legends and tables. */
export const kindColour = (kind: PlaceKind, dark: boolean): string => palette(dark)[kind * shades + 2];

export function placeColours({kinds, libraries, count}: Places, dark: boolean): PlaceColours {
  const indices = new Uint8Array(count);
  for (let place = 0; place < count; ++place) {
    const mixed = Math.imul(libraries[place] + 1, 0x9e3779b1) >>> 0;
    const own = Math.imul(place + 1, 0x85ebca6b) >>> 0;
    // Functions of one library are close to each other.
    const shade = (((mixed >>> 28) % (shades - 1)) + ((own >>> 16) & 1)) % shades;
    indices[place] = kinds[place] * shades + shade;
  }
  return { palette: palette(dark), indices };
}
