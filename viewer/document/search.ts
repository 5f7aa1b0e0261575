/**
 * Returns how many of the ascending numbers are below `value`, or equal to it if `inclusive`; the result
 * must lie between `from` and `to`.
 */
export function countUntil<T extends number|bigint>(
    ascending: ArrayLike<T>, value: T, inclusive: boolean, from: number, to: number): number {
  while (from < to) {
    const middle = (from + to) >>> 1;
    const at = ascending[middle];
    if (at < value || (inclusive && at === value))
      from = middle + 1;
    else
      to = middle;
  }
  return from;
}
