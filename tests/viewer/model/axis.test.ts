import assert from 'node:assert/strict';
import {test} from 'node:test';

import {commonExtent, formatDuration, ticks, zoomed} from '../../../viewer/model/axis';

test('lengths of time have the unit that reads best', () => {
  const lengths: [number, string][] = [
    [0, '0 s'],
    [1.5, '1.5 s'],
    [0.99996, '1 s'],
    [0.0136, '13.6 ms'],
    [2.5e-6, '2.5 µs'],
    [1e-9, '0.001 µs'],
    [3600, '3600 s'],
    [123456, '123500 s'],
  ];
  for (const [seconds, text] of lengths) assert.equal(formatDuration(seconds), text);
});

test('zooming keeps the time under the pointer and stays within the document', () => {
  const whole = { start: 10, end: 20 };
  assert.deepEqual(zoomed(whole, whole, 0.5, 12.5), { start: 11.25, end: 16.25 });
  assert.deepEqual(zoomed({ start: 11, end: 12 }, whole, 100, 11.5), whole);
  assert.deepEqual(zoomed({ start: 11, end: 12 }, whole, 1, 11, 50), { start: 19, end: 20 });
  const closest = zoomed({ start: 11, end: 11.001 }, whole, 1e-9, 11);
  assert(Math.abs(closest.end - closest.start - 1e-6) < 1e-9);
});

test('documents of no length, and none at all, still have an axis', () => {
  assert.deepEqual(commonExtent(null, null), { start: 0, end: 1 });
  assert(commonExtent({ start: 5, end: 5 }, null).end > 5);
  assert.deepEqual(commonExtent({ start: 5, end: 6 }, { start: 1, end: 2 }), { start: 1, end: 6 });
});

test('ticks are round and few', () => {
  for (const [start, end] of [[0, 1], [18.1445, 18.3465], [5.0000001, 5.0000009], [-3, 9000]]) {
    const found = ticks({ start, end }, 8);
    assert(found.length >= 2 && found.length <= 9, `${start} ${end}: ${found.length}`);
    assert.equal(new Set(found.map(({ label }) => label)).size, found.length, 'labels differ');
    for (const { time } of found) assert(time >= start && time <= end);
  }
});
