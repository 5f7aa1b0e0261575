/** A column of numbers. */
export type Column = Uint32Array|Uint16Array|Float64Array;

/** Returns a column of zeros. */
export const zeros = (count: number): Uint32Array => new Uint32Array(count);

/** Returns a copy of a column with room for `capacity` numbers. */
export function grown<T extends Column>(column: T, capacity: number): T {
  const larger = new (column.constructor as new (length: number) => T)(capacity);
  larger.set(column as never);
  return larger;
}
