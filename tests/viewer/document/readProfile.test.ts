import assert from 'node:assert/strict';
import {test} from 'node:test';

import {LayoutFile} from '../../../viewer/document/layoutFile';
import {PlaceKind} from '../../../viewer/document/profile';
import {latin1, profileText, read, readProfile, rows, sampleLines} from '../support';

const markers = '[18446744073709551488,0,]';
const deep = (entries: number) =>
    Array.from({ length: entries }, (_, i) => `[${65800 + i},${i === 0 ? 6 : 7},]`).join(',');
const samples = [
  '[1,65796,6,1.5,0,4,7,[[65796,6,],[65544,7,],],]',
  '[2,3221258500,8,1.75,1,4,8,[],]',
  `[3,65800,6,1.875,1,4,7,[${markers},[65800,5,],[65544,7,],],]`,
  '[4,18446744071562067968,8,1.9,0,4,7,[[65800,6,],[65544,7,],],]',
  '[5,1084358660,9,-0.25,15,1,0,[[1084358660,9,],[65544,7,],],]',
];
const text = profileText({ samples: `${samples.join(',')},` });
const lines = [
  '-0.25 core15 kernel/0 main;{tool-40a20000}',
  '1.5 core0 tool/7 main;work',
  '1.75 core1 worker/8 schedule',
  '1.875 core1 tool/7 main;work',
  '1.9 core0 tool/7 main;work;schedule',
];

test('samples come in the order of time, with their stacks, without markers of contexts', async () => {
  const profile = await readProfile(text);
  assert.deepEqual(sampleLines(profile), lines);
  assert.equal(profile.damage, null);
});

test('a back-trace starts with the sample itself only if it repeats its address', async () => {
  const samples =
      '[1,65796,6,1,0,4,7,[[65800,6,],[65544,7,],],],[2,65796,6,2,0,4,7,[[65796,7,],[65544,7,],],],';
  // The general parser reads what the loops over bytes do not: here the second row, as the last, and spaces.
  for (const form of [samples, samples.repeat(2), samples.replace(/,/g, ', ')]) {
    const stacks =
        sampleLines(await readProfile(profileText({ samples: form }))).map((line) => line.split(' ')[3]);
    assert.deepEqual([...new Set(stacks)], ['main;work;work', 'main;work']);
  }
});

test('pieces of any size and white space give the same', async () => {
  for (const size of [1, 7, 64])
    assert.deepEqual(sampleLines((await read(latin1(text), size)) as never), lines);
  const spaced = text.replace(/[[\],]/g, ' $& \n');
  assert.deepEqual(sampleLines(await readProfile(spaced)), lines);
  const unlabelled = text.replace(/^\{.*\n/, '{}')
                         .replace(/\n? "[a-z]*": \{\n/g, '{')
                         .replace(/\},\{/g, '}{')
                         .replace(/\}\n$/, '');
  assert.match(unlabelled, /^\{\}\{ +"descriptions"/);
  assert.deepEqual(sampleLines(await readProfile(unlabelled)), lines);
});

test('every cut of a document shows the rows before it and says where it broke', async () => {
  const bytes = latin1(text);
  let most = 0;
  for (let size = 0; size < bytes.length - 2; ++size) {
    let profile;
    try {
      profile = await read(bytes.subarray(0, size), 50);
    } catch (error) {
      assert(size < 16 && error instanceof Error, `${size}: ${error}`);
      assert.match(error.message, /^test.json: .*at byte \d+/);
      continue;
    }
    assert(profile.kind === 'profile' && profile.damage !== null, `${size}`);
    assert.equal(profile.damage.offset, size);
    assert(profile.samples.count >= most, `${size}`);
    most = profile.samples.count;
  }
  assert.equal(most, samples.length);
});

test('every byte that is damaged is found or harmless', async () => {
  const bytes = latin1(text);
  const from = text.indexOf('"samples"');
  for (let at = 0; at < bytes.length; ++at) {
    const damaged = bytes.slice();
    damaged[at] ^= 0x15;
    const outcome = await read(damaged, 31).catch((error: Error) => error);
    if (outcome instanceof Error)
      assert(at < 20, `${at}: ${outcome}`);
    else if (outcome.kind === 'profile' && outcome.damage === null && at > from)
      assert.equal(outcome.samples.count, 5);
  }
});

test('malformed rows are damage, not guesses', async () => {
  const bad = [
    '[1,65796,6,1.5,0,4,7,],',
    '[1,65796,6,1.5,0,4,"7",[],],',
    '[1,65796,4294967295,1.5,0,4,7,[],],',
    '[1,65796,6,1.5,70000,4,7,[],],',
    '[1,99999999999999999999,6,1.5,0,4,7,[],],',
    '[1,65796,6,1.5,0,4,7,[[99999999999999999999,6,],],],',
    '[1,65796,06,1.5,0,4,7,[],],',
    '[1,-5,6,1.5,0,4,7,[],],',
    '[1,65796,6,1.5.5,0,4,7,[],],',
  ];
  for (const row of bad) {
    const profile = await readProfile(profileText({ samples: samples[0] + ',' + row + samples[1] }));
    assert(profile.damage !== null, row);
    assert.equal(profile.samples.count, 1, row);
  }
});

test('a back-trace as deep as the document keeps them is marked as cut', async () => {
  const row = (entries: number) => `[1,65800,6,1.5,0,4,7,[${deep(entries)},],],`;
  const stack = async (rowsText: string, layout: LayoutFile|null = null) =>
      sampleLines(await readProfile(profileText({ samples: rowsText }), layout))
          .map((line) => line.split(' ')[3].slice(0, 4));
  assert.deepEqual(await stack(row(14)), ['main']);
  assert.deepEqual(await stack(row(15)), ['cut']);
  const layout = LayoutFile.parse('{"depth":20,"mappings":[]}');
  assert.deepEqual(await stack(row(15) + row(20), layout), ['main', 'cut']);
  // The marker of a context counts for the document's depth: the same frames, once complete and once cut.
  const marked = `[1,65800,6,1.5,0,4,7,[${markers},${deep(14)},],],`;
  assert.deepEqual(await stack(row(14) + marked + row(14)), ['main', 'cut', 'main']);
  // Deeper than documents usually are: the depth that this one keeps is unknown.
  assert.deepEqual(await stack(row(15) + row(16) + row(15)), ['main', 'main', 'main']);
});

test('the children of a node are the heaviest first, however many', async () => {
  const keys = Array.from({ length: 40 }, (_, i) => 100 + (i * 7) % 40);
  const functions = keys.map((key) => `[${key},"function ${key}",0,1,[5,],],`).join('');
  const samples = keys.flatMap((key) => Array(key - 99).fill(`[1,1,${key},1,0,4,7,[],],`)).join('');
  const { stacks } = await readProfile(profileText({ functions, samples }));
  const weights = Array.from(stacks.children, (node) => stacks.totals[node]);
  assert.deepEqual(weights, Array.from({ length: 40 }, (_, i) => 40 - i));
});

test('places know what they are', async () => {
  const profile = await readProfile(
      profileText({
        libraries: `${rows.libraries}[10,5,"/app/tool",1000,4096,],[11,4,"/lib/x\x01.so",2000,16,],`,
        files: '[20,"a.cc",[[6,12,],],],',
        samples:
            '[1,1,6,1,0,4,7,[],],[1,1,8,1,0,4,7,[],],[1,1,9,1,0,4,7,[],],[1,1,10,1,0,4,7,[],],[1,1,77,1,0,4,7,[],],',
      }),
  );
  const { places, files } = profile;
  const kinds = Object.fromEntries(places.names.map((name, i) => [name, places.kinds[i]]));
  assert.equal(kinds['work'], PlaceKind.User);
  assert.equal(kinds['schedule'], PlaceKind.Kernel);
  assert.equal(kinds['{tool-40a20000}'], PlaceKind.Synthetic);
  assert.equal(kinds['/app/tool'], PlaceKind.Unresolved);
  assert.equal(kinds['key 77'], PlaceKind.Unresolved);
  assert.equal(kinds['/lib/x\\u{1}.so'], PlaceKind.Unresolved);
  assert.equal(places.names.filter((name) => name === '/app/tool').length, 1);
  const work = places.names.indexOf('work');
  assert.equal(`${files[places.files[work]]}:${places.lines[work]}`, 'a.cc:12');
  assert.equal(places.names[places.libraries[work]], '/app/tool');
});

test('moved addresses are shown as they were', async () => {
  const layout = LayoutFile.parse(
      '{"mappings":[{"pid":7,"start":"0x40a20000","size":"0x10000","original":"0xb6f00000","file":"x"},' +
          '{"pid":7,"start":"0x10000","size":"0x1000","original":"0x7f0000010000"}]}',
  );
  // Addresses at and beside the edges of mappings, and of another process.
  const cases: [number, bigint, bigint][] = [
    [7, 0x40a20000n, 0xb6f00000n], [7, 0x40a2ffffn, 0xb6f0ffffn], [7, 0x40a30000n, 0x40a30000n],
    [7, 0x10104n, 0x7f0000010104n], [7, 0xffffn, 0xffffn], [8, 0x10104n, 0x10104n]
  ];
  for (const [pid, address, original] of cases) assert.equal(layout.original(pid, address), original);
  const { places } = await readProfile(
      profileText({
        libraries: `${rows.libraries}[12,4,"/gap",1084358656,65536,],`,
        functions: rows.functions.replace('65536,[2,],', '65536,[12,],'),
        samples: '[1,1084358660,9,2,0,4,7,[],],',
      }),
      layout,
  );
  assert(places.names.includes('{tool-b6f00000}'));
});

test('wrong files get a clear line', async () => {
  const wrong: [string, RegExp][] = [
    ['PERFILE2xxxxxxxxxx', /a recording, not a document/],
    ['<html>', /does not start with "\{"/],
    ['[1,2]', /starts with "\["/],
    ['{"traceEvents":[]}', /first label is "traceEvents"/],
    ['', /cut off at byte 0/],
  ];
  for (const [bytes, message] of wrong) await assert.rejects(read(latin1(bytes)), message);
});
