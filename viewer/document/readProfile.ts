import {accept, anotherElement, Byte, expect, firstElement, peek, readLabel, readValue, type Value} from './json';

import type {ProfileBuilder} from './ProfileBuilder';
import type {Reader} from './Reader';
import {Row} from './Row';
import {SampleBlocks} from './SampleBlocks';
import {SampleRows} from './SampleRows';

/** The sections in order, by which they are identified in a document without labels. */
const sections = ['processes', 'libraries', 'files', 'functions', 'samples'];

/** Reads a profile document after its opening brace, from its first label on. */
export async function readProfile(reader: Reader, builder: ProfileBuilder): Promise<void> {
  do {
    const label = await reader.unit(readLabel);
    if (sections.includes(label) || label === 'blocks')
      await readSection(reader, builder, label);
    else if (label === 'Description')
      await reader.unit(readValue);
    else
      reader.fail(`"${label.slice(0, 40)}" is no part of a document`);
  } while (await reader.unit(accept, Byte.Comma));
  await reader.unit(expect, Byte.CloseObject);
}

/**
 * Reads a document that was written without labels: the outer object closed early, and the sections follow it
 * one after the other.
 */
export async function readUnlabelledProfile(reader: Reader, builder: ProfileBuilder): Promise<void> {
  for (const section of sections) await readSection(reader, builder, section);
}

async function readSection(reader: Reader, builder: ProfileBuilder, section: string): Promise<void> {
  await reader.unit(expect, Byte.OpenObject);
  do {
    const label = await reader.unit(readLabel);
    if (label === 'descriptions')
      await reader.unit(readValue);
    else if (label !== 'data')
      reader.fail(`"${label.slice(0, 40)}" is no part of a document`);
    else if (await reader.unit(firstElement))
      await readRows(reader, builder, section);
  } while (await reader.unit(accept, Byte.Comma));
  await reader.unit(expect, Byte.CloseObject);
}

function readRows(reader: Reader, builder: ProfileBuilder, section: string): Promise<void> {
  if (section === 'blocks') {
    const blocks = new SampleBlocks(reader, builder.samples);
    return reader.rows(() => blocks.read());
  }
  if (section === 'samples') {
    const rows = new SampleRows(reader, builder.samples);
    return reader.rows(() => rows.read());
  }
  const add = adders[section];
  return reader.rows(() => {
    peek(reader);
    const start = reader.pos;
    const value = readValue(reader);
    const end = anotherElement(reader);
    add(builder, new Row(reader, start, section, value));
    return end;
  });
}

/** What becomes of a section's rows, by its label in the document. */
const adders: Record<string, (builder: ProfileBuilder, row: Row) => void> = {
  'processes': (builder, row) => {
    const [key, pid, tid, name] = row.values;
    builder.processes.push(
        { key: row.whole(key), pid: row.whole(pid), tid: row.whole(tid), name: row.text(name) });
  },
  'libraries': (builder, row) => {
    const [key, process, name] = row.values;
    builder.libraries.push({ key: row.whole(key), process: row.whole(process), name: row.text(name) });
  },
  'files': (builder, row) => {
    const [, name, lines] = row.values;
    const pairOf = ([key, line]: readonly Value[]): [number, number] => [row.whole(key), row.whole(line)];
    builder.files.push(
        { name: row.text(name), lines: row.list(lines).map((entry) => pairOf(row.list(entry))) });
  },
  'functions': (builder, row) => {
    const [key, name, start, , libraries] = row.values;
    builder.functions.push({
      key: row.whole(key),
      name: row.text(name),
      start: row.address(start),
      libraries: row.list(libraries).map((library) => row.whole(library)),
    });
  },
};
