import type {Grouping, GroupWeights} from './groupings';

/** What rows can be sorted by. */
export type SortKey = 'self'|'total'|'name'|'detail';

export interface Order {
  readonly key: SortKey;
  readonly descending: boolean;
}

/**
 * Returns the groups that have samples and whose name or detail contains the text, in the order asked for.
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
  const compare = new Map<SortKey, (a: number, b: number) => number>([
                    ['self', (a, b) => selves[a] - selves[b] || totals[a] - totals[b]],
                    ['total', (a, b) => totals[a] - totals[b] || selves[a] - selves[b]],
                    ['name', (a, b) => compareText(groups[a].name, groups[b].name)],
                    ['detail', (a, b) => compareText(groups[a].detail, groups[b].detail)],
                  ]).get(order.key)!;
  return rows.sort((a, b) => sign * compare(a, b) || a - b);
}

const compareText = (a: string, b: string) => (a < b ? -1 : Number(a > b));
