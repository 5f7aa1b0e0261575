/** Returns the value of a key, made and kept if there is none yet. */
export function kept<K, V>(map: Map<K, V>, key: K, make: () => V): V {
  let value = map.get(key);
  if (value === undefined) map.set(key, (value = make()));
  return value;
}
