import {anotherElement, Byte, peek, readValue} from './json';

import type {Reader} from './Reader';
import {Row} from './Row';
import {cutKey, type SampleColumns} from './SampleColumns';

/** Number of digits that a double always represents exactly. */
const exactDigits = 15;
const powersOfTen = Array.from({ length: exactDigits + 1 }, (_, exponent) => 10 ** exponent);

const toDigits = (value: bigint) => Uint8Array.from(value.toString(), (digit) => digit.charCodeAt(0));

/**
 * Markers of contexts, such as "from here on the kernel", are among the addresses of a back-trace. They are
 * the highest 4095 numbers of 64 bits. perf: PERF_CONTEXT_MAX.
 */
const firstMarker = 2n ** 64n - 4095n;
const firstMarkerDigits = toDigits(firstMarker);
const lastAddressDigits = toDigits(2n ** 64n - 1n);
const mostDigits = lastAddressDigits.length;

/**
 * Reads rows of samples. Nearly all bytes of a document are here: rows in the form that the engine writes are
 * read by loops over bytes, any other row, and the last of a window, by the general parser.
 */
export class SampleRows {
  /** Position of the fast loops. */
  #at = 0;

  constructor(
      private readonly reader: Reader,
      private readonly samples: SampleColumns,
  ) {}

  /** Reads at least one row; returns whether another one follows. */
  read(): boolean { return this.#readPlainRows() > 0 || this.#readAnyRow(); }

  /** Reads the rows that have the engine's form and are followed by another one; returns how many. */
  #readPlainRows(): number {
    const { reader } = this;
    const { bytes } = reader;
    let rows = 0;
    this.#at = reader.pos;
    while (this.#readPlainRow(bytes)) {
      reader.pos = this.#at;
      ++rows;
    }
    return rows;
  }

  #readPlainRow(bytes: Uint8Array): boolean {
    const { samples } = this;
    if (bytes[this.#at++] !== Byte.OpenArray || this.#whole(bytes) < 0) return false;
    const addressStart = this.#at;
    if (!this.#skipAddress(bytes)) return false;
    this.#at++;
    const key = this.#whole(bytes);
    const time = this.#decimal(bytes);
    const core = this.#whole(bytes);
    const process = this.#whole(bytes);
    const tid = this.#whole(bytes);
    if (key < 0 || time !== time || core < 0 || core > 0xffff || process < 0 || tid < 0) return false;

    if (bytes[this.#at++] !== Byte.OpenArray) return false;
    let entries = 0;
    let depth = 0;
    let own = false;
    while (bytes[this.#at] === Byte.OpenArray) {
      const start = ++this.#at;
      if (!this.#skipAddress(bytes)) return false;
      const end = this.#at++;
      const frame = this.#lastWhole(bytes);
      if (frame < 0) return false;
      ++entries;
      if (!isMarker(bytes, start, end)) {
        if (depth === 0) own = sameDigits(bytes, start, addressStart, end - start + 1);
        samples.pushFrame(depth++, frame);
      }
      if (bytes[this.#at] === Byte.Comma)
        this.#at++;
      else if (bytes[this.#at] !== Byte.CloseArray)
        return false;
    }
    if (bytes[this.#at++] !== Byte.CloseArray) return false;
    if (bytes[this.#at] === Byte.Comma) this.#at++;
    if (bytes[this.#at++] !== Byte.CloseArray || bytes[this.#at++] !== Byte.Comma) return false;
    if (bytes[this.#at] !== Byte.OpenArray) return false;
    samples.add(key, time, core, process, tid, depth, entries, own);
    return true;
  }

  /** Reads a row of any form. */
  #readAnyRow(): boolean {
    const { reader, samples } = this;
    peek(reader);
    const start = reader.pos;
    const value = readValue(reader);
    const another = anotherElement(reader);
    const row = new Row(reader, start, 'samples', value);
    const [number, at, place, time, core, process, tid, entries] = row.values;
    const address = row.address(at);
    const key = row.whole(place);
    row.whole(number);
    if (row.whole(core) > 0xffff || key === cutKey) row.fail();
    let depth = 0;
    let own = false;
    const trace = row.list(entries);
    for (const entry of trace) {
      const [from, caller] = row.list(entry);
      const frame = row.whole(caller);
      const called = row.address(from);
      if (frame === cutKey) row.fail();
      if (called >= firstMarker) continue;
      if (depth === 0) own = called === address;
      samples.pushFrame(depth++, frame);
    }
    samples.add(
        key, row.number(time), row.whole(core), row.whole(process), row.whole(tid), depth, trace.length, own);
    return another;
  }

  /** Reads an integer of 32 bits and the comma after it; returns -1 for anything else. */
  #whole(bytes: Uint8Array): number {
    const value = this.#digits(bytes);
    return bytes[this.#at++] === Byte.Comma ? value : -1;
  }

  /** Reads the last whole number of an array and its closing bracket, or returns -1. */
  #lastWhole(bytes: Uint8Array): number {
    const value = this.#digits(bytes);
    if (bytes[this.#at] === Byte.Comma) this.#at++;
    return bytes[this.#at++] === Byte.CloseArray ? value : -1;
  }

  #digits(bytes: Uint8Array): number {
    const start = this.#at;
    let i = start;
    let value = 0;
    for (let digit; (digit = bytes[i] - Byte.Zero) >= 0 && digit <= 9; ++i) value = value * 10 + digit;
    this.#at = i;
    const size = i - start;
    if (size === 0 || size > 10 || (size > 1 && bytes[start] === Byte.Zero) || value >= cutKey) return -1;
    return value;
  }

  /** Passes over the digits of an address; they must be followed by a comma. */
  #skipAddress(bytes: Uint8Array): boolean {
    const start = this.#at;
    let i = start;
    while (bytes[i] >= Byte.Zero && bytes[i] <= Byte.Nine) ++i;
    this.#at = i;
    const size = i - start;
    if (size === 0 || size > mostDigits || bytes[i] !== Byte.Comma) return false;
    if (size === mostDigits && compareDigits(bytes, start, lastAddressDigits) > 0) return false;
    return size === 1 || bytes[start] !== Byte.Zero;
  }

  /**
   * Reads a number with up to 15 digits on either side of the point, and its comma; returns NaN for anything
   * else.
   */
  #decimal(bytes: Uint8Array): number {
    let i = this.#at;
    const negative = bytes[i] === Byte.Minus;
    if (negative) ++i;
    const start = i;
    let value = 0;
    let digit;
    for (; (digit = bytes[i] - Byte.Zero) >= 0 && digit <= 9; ++i) value = value * 10 + digit;
    const size = i - start;
    if (size === 0 || size > exactDigits || (size > 1 && bytes[start] === Byte.Zero)) return NaN;
    if (bytes[i] === Byte.Point) {
      const point = ++i;
      let fraction = 0;
      for (; (digit = bytes[i] - Byte.Zero) >= 0 && digit <= 9; ++i) fraction = fraction * 10 + digit;
      const decimals = i - point;
      if (decimals === 0 || decimals > exactDigits) return NaN;
      const scale = powersOfTen[decimals];
      // One division of two exact numbers rounds as the general parser does; with more digits the last one
      // may differ.
      value = size + decimals <= exactDigits ? (value * scale + fraction) / scale : value + fraction / scale;
    }
    this.#at = i + 1;
    if (bytes[i] !== Byte.Comma) return NaN;
    return negative ? -value : value;
  }
}

const isMarker = (bytes: Uint8Array, start: number, end: number) =>
    end - start === mostDigits && compareDigits(bytes, start, firstMarkerDigits) >= 0;

/**
 * Returns a number below, at or above 0 as the digits at `start` are below, the same as or above `digits`.
 */
function compareDigits(bytes: Uint8Array, start: number, digits: Uint8Array): number {
  for (let i = 0; i < digits.length; ++i)
    if (bytes[start + i] !== digits[i]) return bytes[start + i] - digits[i];
  return 0;
}

/** Returns whether the `size` bytes at both positions are the same. */
function sameDigits(bytes: Uint8Array, one: number, other: number, size: number): boolean {
  for (let i = 0; i < size; ++i)
    if (bytes[one + i] !== bytes[other + i]) return false;
  return true;
}
