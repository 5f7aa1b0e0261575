import type {Selection} from '../model/Selection';

/**
 * Returns the selected samples as folded stacks: a line for each stack, its places from the root on, and its
 * count.
 */
export function folded(selection: Selection): string {
  const { profile, selves, parents, places } = selection;
  // A semicolon ends a place.
  const names = profile.places.names.map((name) => name.replaceAll(';', ':'));
  const lines: string[] = [];
  for (let node = 1; node < selves.length; ++node) {
    if (selves[node] === 0) continue;
    const stack: string[] = [];
    for (let at = node; at !== 0; at = parents[at]) stack.push(names[places[at]]);
    lines.push(`${stack.reverse().join(';')} ${selves[node] * profile.weight}\n`);
  }
  return lines.join('');
}
