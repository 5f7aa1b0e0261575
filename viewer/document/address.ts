/** Addresses have 64 bits, a double holds 53: they are kept in two halves. */
export interface Address {
  readonly high: number;
  readonly low: number;
}

export const toAddress = (value: number|bigint): Address => typeof value === 'number' ?
    {high: Math.floor(value / 2 ** 32), low: value >>> 0} :
    {high: Number(value >> 32n), low: Number(value & 0xffffffffn)};

export const toBigInt = (high: number, low: number) => (BigInt(high) << 32n) | BigInt(low);

/** Returns the address in hexadecimal digits, as names such as `{app-40a20000}` have it. */
export const hexadecimal = (high: number, low: number) =>
    high === 0 ? low.toString(16) : high.toString(16) + low.toString(16).padStart(8, '0');
