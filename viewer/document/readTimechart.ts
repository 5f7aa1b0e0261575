import {Byte, accept, anotherElement, expect, firstElement, peek, readLabel, readNumber, readString, readValue, type Value,} from './json';
import type {Reader} from './Reader';
import type {Head, TimechartBuilder} from './TimechartBuilder';

/** Reads a timechart document after its opening brace, from its first label on. */
export async function readTimechart(reader: Reader, builder: TimechartBuilder): Promise<void> {
  do {
    const label = await reader.unit(readLabel);
    if (label !== 'entries')
      await reader.unit(readValue);
    else if (await reader.unit(firstElement)) {
      do await readEntry(reader, builder);
      while (await reader.unit(anotherElement));
    }
  } while (await reader.unit(accept, Byte.Comma));
  await reader.unit(expect, Byte.CloseObject);
}

async function readEntry(reader: Reader, builder: TimechartBuilder): Promise<void> {
  await reader.unit(expect, Byte.OpenObject);
  const members: { [label: string]: Value } = Object.create(null);
  try {
    if (await reader.unit(accept, Byte.CloseObject)) return;
    let points = false;
    do {
      await reader.rows(() => {
        const label = readLabel(reader);
        points = label === 'data' && firstElement(reader);
        if (points) return false;
        if (label !== 'data') members[label] = readValue(reader);
        return accept(reader, Byte.Comma);
      });
      if (points) await readPoints(reader, builder, members);
    } while (await reader.unit(accept, Byte.Comma));
    await reader.unit(expect, Byte.CloseObject);
  } finally {
    // Also after damage, so that the points before it are shown.
    if (text(members['id']) !== '') builder.endEntry(headOf(members));
  }
}

async function readPoints(
    reader: Reader, builder: TimechartBuilder, members: { [label: string]: Value }): Promise<void> {
  if (members['type'] === 'events')
    await reader.rows(() => readEvent(reader, builder));
  else
    await reader.rows(() => readPlainPoints(reader, builder) || readPoint(reader, builder));
}

function readPoint(reader: Reader, builder: TimechartBuilder): boolean {
  expect(reader, Byte.OpenArray);
  const time = Number(readNumber(reader));
  expect(reader, Byte.Comma);
  const value = readNumber(reader);
  if (anotherElement(reader)) reader.fail('a point has more than two values');
  const another = anotherElement(reader);
  builder.addPoint(time, value);
  return another;
}

/**
 * Reads points in the engine's own form, `[1.000001,2],[`, by loops over bytes; returns whether there were
 * any.
 */
function readPlainPoints(reader: Reader, builder: TimechartBuilder): boolean {
  const { bytes } = reader;
  const start = reader.pos;
  for (;;) {
    let i = reader.pos;
    if (bytes[i] !== Byte.OpenArray) break;
    const negative = bytes[i + 1] === Byte.Minus;
    if (negative) ++i;
    let digit = 0;
    let time = 0;
    const whole = ++i;
    for (; (digit = bytes[i] - Byte.Zero) >= 0 && digit <= 9; ++i) time = time * 10 + digit;
    const point = i - whole;
    // Six decimals always: the sum is a whole number of microseconds.
    if (point === 0 || point > 9 || (point > 1 && bytes[whole] === Byte.Zero) || bytes[i++] !== Byte.Point)
      break;
    const decimals = i;
    for (; (digit = bytes[i] - Byte.Zero) >= 0 && digit <= 9; ++i) time = time * 10 + digit;
    if (i - decimals !== 6 || bytes[i++] !== Byte.Comma) break;
    if (bytes[i] === Byte.Space) ++i;
    let value = 0;
    const first = i;
    for (; (digit = bytes[i] - Byte.Zero) >= 0 && digit <= 9; ++i) value = value * 10 + digit;
    const size = i - first;
    if (size === 0 || size > 15 || (size > 1 && bytes[first] === Byte.Zero)) break;
    if (bytes[i] !== Byte.CloseArray || bytes[i + 1] !== Byte.Comma || bytes[i + 2] !== Byte.OpenArray) break;
    builder.addPoint(negative ? -time / 1e6 : time / 1e6, value);
    reader.pos = i + 2;
  }
  return reader.pos > start;
}

/** Reads a point of a series of events: time, code, name, arguments. */
function readEvent(reader: Reader, builder: TimechartBuilder): boolean {
  expect(reader, Byte.OpenArray);
  const time = Number(readNumber(reader));
  expect(reader, Byte.Comma);
  const code = readNumber(reader);
  const texts: string[] = [];
  while (anotherElement(reader))
    texts.push(peek(reader) === Byte.Quote ? readString(reader) : String(readNumber(reader)));
  const another = anotherElement(reader);
  builder.addPoint(time, code);
  builder.addTexts(texts[0] ?? '', texts.slice(1).join(' '));
  return another;
}

const text = (value: Value|undefined) => (typeof value === 'string' ? value : '');

function headOf(members: { [label: string]: Value }): Head {
  const { 'hints': hints, 'show': show } = members;
  const colours = typeof hints === 'object' && hints !== null && !Array.isArray(hints) ? hints : {};
  return {
    id: text(members['id']),
    name: text(members['name']),
    treeId: text(members['treeId']),
    type: text(members['type']),
    class: text(members['class']),
    show: typeof show === 'number' ? show : 0,
    tip: text(members['tip']),
    white: text(colours['white']),
    black: text(colours['black']),
  };
}
