import type {Grouping, GroupWeights} from './groupings';

/** What rows can be sorted by. */
export type SortKey = 'self'|'total'|'name'|'detail';

export interface Order {
  readonly key: SortKey;
  readonly descending: boolean;
}

/**
 * Returns the groups that have samples and whose name or detail contains the text, in the order asked for;
 * the heaviest first of those that are alike in it.
 */
export function functionRows(
    grouping: Grouping, weights: GroupWeights, text: string, order: Order): number[] {
  const { groups } = grouping;
  const wanted = text.toLowerCase();
  const rows: number[] = [];
  for (let group = 0; group < groups.length; ++group) {
    if (weights.totals[group] === 0) continue;
    const { name, detail } = groups[group];
    if (wanted === '' || name.toLowerCase().includes(wanted) || detail.toLowerCase().includes(wanted))
      rows.push(group);
  }
  const sign = order.descending ? -1 : 1;
  const { selves, totals } = weights;
  const valueOf = (group: number) => order.key === 'self' ? selves[group] :
      order.key === 'total'                               ? totals[group] :
                                                            groups[group][order.key];
  return rows.sort(
      (a, b) =>
          sign * compare(valueOf(a), valueOf(b)) || totals[b] - totals[a] || selves[b] - selves[a] || a - b);
}

const compare = (a: string|number, b: string|number) => (a < b ? -1 : Number(a > b));
