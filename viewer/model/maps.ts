/** Returns the value of a key, made and kept if there is none yet. */
export function kept<K, V>(map: Map<K, V>, key: K, make: () => V): V {
  let value = map.get(key);
  if (value === undefined) map.set(key, (value = make()));
  return value;
}

/** Returns a function that keeps its last answer until it is asked for something else. */
export function latest<A extends unknown[], R>(answer: (...asked: A) => R): (...asked: A) => R {
  let known: { readonly asked: A; readonly answer: R }|null = null;
  return (...asked) => {
    if (!known || differ(asked, known.asked)) known = { asked, answer: answer(...asked) };
    return known!.answer;
  };
}

/** Returns whether two lists of the same length differ anywhere. */
export const differ = (first: readonly unknown[], second: readonly unknown[]): boolean =>
    first.some((value, i) => value !== second[i]);
