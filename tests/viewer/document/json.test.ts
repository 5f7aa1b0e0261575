import assert from 'node:assert/strict';
import {test} from 'node:test';

import {readValue} from '../../../viewer/document/json';
import {Reader} from '../../../viewer/document/Reader';
import {latin1, pieces} from '../support';

async function parse(text: string, size?: number): Promise<unknown> {
  const reader = new Reader(pieces(latin1(text + ' '), size));
  return reader.unit(() => readValue(reader));
}

const accepted: [string, unknown][] = [
  ['[1,2,]', [1, 2]],
  ['[ 1 ,\n2\t, ]', [1, 2]],
  ['[]', []],
  ['[[],[3,],]', [[], [3]]],
  ['-0.5e2', -50],
  ['1.500000e+16', 1.5e16],
  ['9007199254740991', 9007199254740991],
  ['18446744073709551615', 18446744073709551615n],
  ['[true,false,null]', [true, false, null]],
  ['"a\\"b\\\\\\n\\u0041"', 'a"b\\\nA'],
  ['"raw \x01\x1f\n"', 'raw \x01\x1f\n'],
  ['"\xc3\xa9 \xff\xe2\x82"', '\u00e9 \\xff\\xe2\\x82'],
  ['"\xed\xa0\x80\xc0\xaf"', '\\xed\\xa0\\x80\\xc0\\xaf'],
];

test(
    'a comma before a closing bracket and raw bytes in names are accepted, however the bytes arrive',
    async () => {
      for (const [text, value] of accepted) {
        for (const size of [1, 2, 3, 1000]) assert.deepEqual(await parse(text, size), value, text);
      }
    });

test('all else is as strict as JSON', async () => {
  const refused = [
    '[,]', '[1,,2]', '[1 2]', '{"a":1,}', '{"a" 1}', '{a:1}', '01', '-', '1.', '.5', '1e', 'nul', '\'a\'',
    '"\\x"'
  ];
  for (const text of refused) await assert.rejects(parse(text), /./, text);
  await assert.rejects(parse('['.repeat(100000)), /nested too deep/);
  await assert.rejects(parse('9'.repeat(100000)), /too long/);
});

test('objects keep labels that name members of every object', async () => {
  const value = (await parse('{"__proto__":1,"constructor":2}')) as Record<string, unknown>;
  assert.deepEqual(Object.entries(value), [
    ['__proto__', 1],
    ['constructor', 2],
  ]);
});
