import type {ProfileModel} from '../model/ProfileModel';
import {describePlace} from '../model/groupings';
import type {Selection} from '../model/Selection';
import type {Tree} from '../model/tree';
import {formatShare} from '../model/axis';
import {isDark, shortName} from './dom';
import type {FlameLook} from './FlamePane';
import {kindNames, noPlace, placeColours} from './placeColours';

const grouped = new Intl.NumberFormat('en', { maximumFractionDigits: 0 });

/** Returns a number of samples, in groups of three digits. */
export const formatCount = (count: number): string => grouped.format(count);

/** Returns samples and their share, such as `1,234 (12.3%)`. */
export const formatPart = (count: number, whole: number): string =>
    `${formatCount(count)} (${whole > 0 ? formatShare(count / whole) : '0%'})`;

/** Returns how a tree over places of the profile looks. */
export function placeLook(
    model: ProfileModel, tree: Tree, selection: Selection, rootName: string, search: string): FlameLook {
  const { profile } = model;
  const { places, weight } = profile;
  const { palette, indices } = placeColours(places, isDark());
  const matches = model.matches(search);
  const whole = selection.count * weight;
  const nameOf = (node: number) => (node === 0 ? rootName : places.names[tree.places[node]]);
  return {
    palette,
    name: nameOf,
    colour: (node) => (node === 0 && tree.places[0] === 0 ? noPlace : indices[tree.places[node]]),
    matches: matches && ((node) => node !== 0 && matches[tree.places[node]] === 1),
    describe(node) {
      const name = shortName(nameOf(node));
      const total = `total ${formatPart(tree.totals[node] * weight, whole)}`;
      if (node === 0) return [name, total];
      const place = tree.places[node];
      const where = describePlace(profile, place);
      const kind = kindNames[places.kinds[place]];
      const own = tree === selection ? `self ${formatPart(selection.selves[node] * weight, whole)}` : '';
      return [name, total, own, where === '' ? kind : `${kind}, ${shortName(where)}`].filter(
          (line) => line !== '');
    },
  };
}
