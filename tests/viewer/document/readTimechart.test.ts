import assert from 'node:assert/strict';
import {test} from 'node:test';

import {latin1, read, readTimechart} from '../support';

const entry = (id: string, type: string, data: string) => `{"id":"${id}","name":"${
    id} n","treeId":"t","type":"${
    type}","class":"c","show":1,"tip":"x","hints":{"white":"#000000","black":"#ffffff"},"data":[${data}]}`;
const text = `
{"entries":[
${entry('cpu-0-b', 'binary', '[0.000100,1],[0.000150,0]')}
,${entry('empty', 'bar', '')}
,${entry('proc-1-r0', 'binary', '[0.000001, 1],[2.500000, 0],')}
,${entry('ctr', 'bar', '[5000000000.123456,0],[-1.000001,18446744073709551615]')}
,${entry('evt', 'events', '[1,4,"name","",],[0.5,3,"na\\nme","a\x07",],')}
,]}`;

const shown = (document: Awaited<ReturnType<typeof readTimechart>>) =>
    document.entries.map(({ id, show, tip, white, black, times, values, names, details }) => {
      const string = (index: number) => document.strings[index];
      return [
        id, show, tip, white, black, [...times], [...values], [...names].map(string), [...details].map(string)
      ];
    });

test('entries become columns in the order of time', async () => {
  const document = await readTimechart(text);
  const colours = [1, 'x', '#000000', '#ffffff'];
  assert.deepEqual(shown(document), [
    ['cpu-0-b', ...colours, [0.0001, 0.00015], [1, 0], [], []],
    ['empty', ...colours, [], [], [], []],
    ['proc-1-r0', ...colours, [0.000001, 2.5], [1, 0], [], []],
    ['ctr', ...colours, [-1.000001, 5000000000.123456], [18446744073709552000, 0], [], []],
    ['evt', ...colours, [0.5, 1], [3, 4], ['na\\u{a}me', 'name'], ['a\\u{7}', '']],
  ]);
  assert.equal(document.entries[3].exact?.get(0), 18446744073709551615n);
});

test('white space and pieces of any size give the same', async () => {
  const expected = shown(await readTimechart(text));
  assert.deepEqual(shown(await readTimechart(text.replace(/[[\]{},:]/g, ' $&\n '))), expected);
  for (const size of [1, 13]) assert.deepEqual(shown((await read(latin1(text), size)) as never), expected);
});

test('entries keep their points where columns end', async () => {
  // Columns have room for 65,536 points.
  const counts = [40_000, 40_000, 140_000, 1];
  const points = (count: number, from: number) =>
      Array.from({ length: count }, (_, i) => `[${(i + 1).toFixed(6)},${from + i}]`).join(',');
  const entries = counts.map((count, i) => entry(`e${i}`, 'bar', points(count, i * 1e6)));
  const document = await readTimechart(`{"entries":[${entries.join(',')}]}`);
  document.entries.forEach(({ times, values }, i) => {
    assert.equal(times.length, counts[i]);
    assert(times.every((time, at) => time === at + 1) && values.every((value, at) => value === i * 1e6 + at));
  });
});

test('every cut shows the points before it', async () => {
  const bytes = latin1(text);
  let most = 0;
  for (let size = 12; size < bytes.length; ++size) {
    const document = await read(bytes.subarray(0, size), 40);
    assert(document.kind === 'timechart' && document.damage?.offset === size, `${size}`);
    const points = document.entries.reduce((sum, { times }) => sum + times.length, 0);
    assert(document.entries.every(({ id }) => id !== ''), `${size}`);
    assert(points >= most, `${size}`);
    most = points;
  }
  assert.equal(most, 8);
});
