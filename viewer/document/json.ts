/**
 * JSON as our documents have it. It is strict but for three things that the writer does: an array may have a
 * comma before its closing bracket, and strings may contain raw control bytes and invalid UTF-8.
 */

import {Reader} from './Reader';
import {decode} from './text';

export const enum Byte {
  Tab = 9,
  LineFeed = 10,
  CarriageReturn = 13,
  Space = 32,
  Quote = 34,
  Plus = 43,
  Comma = 44,
  Minus = 45,
  Point = 46,
  Zero = 48,
  Nine = 57,
  Colon = 58,
  OpenArray = 91,
  Backslash = 92,
  CloseArray = 93,
  OpenObject = 123,
  CloseObject = 125,
}

export type Value = string|number|bigint|boolean|null|Value[]|{[label: string]: Value};

/** Nesting beyond this is no document of ours, and would exhaust the stack. */
const deepest = 64;

const longestNumber = 400;

const words: [string, boolean|null][] = [
  ['true', true],
  ['false', false],
  ['null', null],
];

/** Returns the next byte that is no white space, without passing over it. */
export function peek(reader: Reader): number {
  const { bytes } = reader;
  for (;;) {
    const byte = bytes[reader.pos];
    if (byte === Byte.Space || byte === Byte.LineFeed || byte === Byte.CarriageReturn || byte === Byte.Tab)
      reader.pos++;
    else if (reader.pos >= reader.end)
      reader.runOut();
    else
      return byte;
  }
}

/** Passes over `byte`, which must come next. */
export function expect(reader: Reader, byte: Byte): void {
  if (peek(reader) !== byte) reader.fail(`"${String.fromCharCode(byte)}" is missing`);
  reader.pos++;
}

/** Passes over `byte` if it comes next, and returns whether it did. */
export function accept(reader: Reader, byte: Byte): boolean {
  if (peek(reader) !== byte) return false;
  reader.pos++;
  return true;
}

/** Ends an element of an array: returns whether another one follows. */
export function anotherElement(reader: Reader): boolean {
  if (accept(reader, Byte.Comma)) return peek(reader) !== Byte.CloseArray || (reader.pos++, false);
  expect(reader, Byte.CloseArray);
  return false;
}

/** Reads `[` and returns whether an element follows. */
export function firstElement(reader: Reader): boolean {
  expect(reader, Byte.OpenArray);
  return !accept(reader, Byte.CloseArray);
}

export function readString(reader: Reader): string {
  expect(reader, Byte.Quote);
  const { bytes } = reader;
  const start = reader.pos;
  let escaped = false;
  let i = start;
  for (; bytes[i] !== Byte.Quote; ++i) {
    if (bytes[i] === Byte.Backslash) {
      escaped = true;
      ++i;
    }
    if (i >= reader.end) reader.runOut();
  }
  const text = decode(bytes.subarray(start, i));
  // Decoding writes invalid bytes with a backslash, which is no escape.
  const plain = escaped ? text.replace(/\\(?:u[0-9a-fA-F]{4}|[^]?)/g, unescaped(reader)) : text;
  reader.pos = i + 1;
  return plain;
}

const unescaped = (reader: Reader) => (escape: string): string => {
  try {
    return JSON.parse(`"${escape}"`);
  } catch {
    return reader.fail('a name has an unknown escape');
  }
};

/** Reads a label and its colon. */
export function readLabel(reader: Reader): string {
  const label = readString(reader);
  expect(reader, Byte.Colon);
  return label;
}

const isDigit = (byte: number) => byte >= Byte.Zero && byte <= Byte.Nine;

/** Reads a number; one that a double would round comes as bigint. */
export function readNumber(reader: Reader): number|bigint {
  peek(reader);
  const { bytes } = reader;
  const start = reader.pos;
  let i = start;
  const digits = () => {
    const from = i;
    while (isDigit(bytes[i])) ++i;
    if (i >= reader.end) reader.runOut();
    if (i === from) reader.fail('a number is malformed');
  };
  if (bytes[i] === Byte.Minus) ++i;
  const first = i;
  digits();
  if (bytes[first] === Byte.Zero && i > first + 1) reader.fail('a number is malformed');
  let whole = true;
  if (bytes[i] === Byte.Point) {
    whole = false;
    ++i;
    digits();
  }
  if ((bytes[i] | 32) === 101) {
    whole = false;
    ++i;
    if (bytes[i] === Byte.Plus || bytes[i] === Byte.Minus) ++i;
    digits();
  }
  if (i - start > longestNumber) reader.fail('a number is too long');
  reader.pos = i;
  const text = String.fromCharCode(...bytes.subarray(start, i));
  const value = Number(text);
  return whole && !Number.isSafeInteger(value) ? BigInt(text) : value;
}

function readWord(reader: Reader): boolean|null {
  for (const [word, value] of words) {
    for (let i = 0;; ++i) {
      if (i === word.length) {
        reader.pos += i;
        return value;
      }
      if (reader.pos + i >= reader.end) reader.runOut();
      if (reader.bytes[reader.pos + i] !== word.charCodeAt(i)) break;
    }
  }
  return reader.fail('a value is malformed');
}

/** Reads any value. */
export function readValue(reader: Reader, depth = 0): Value {
  if (depth > deepest) reader.fail('values are nested too deep');
  const byte = peek(reader);
  if (byte === Byte.Quote) return readString(reader);
  if (byte === Byte.Minus || isDigit(byte)) return readNumber(reader);
  if (byte === Byte.OpenArray) {
    const array: Value[] = [];
    if (firstElement(reader)) {
      do array.push(readValue(reader, depth + 1));
      while (anotherElement(reader));
    }
    return array;
  }
  if (byte !== Byte.OpenObject) return readWord(reader);
  const object: { [label: string]: Value } = Object.create(null);
  reader.pos++;
  if (accept(reader, Byte.CloseObject)) return object;
  do {
    const label = readLabel(reader);
    object[label] = readValue(reader, depth + 1);
  } while (accept(reader, Byte.Comma));
  expect(reader, Byte.CloseObject);
  return object;
}
