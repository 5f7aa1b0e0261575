import assert from 'node:assert/strict';
import {test} from 'node:test';

import {Steps, Stretches} from '../../../viewer/model/steps';

const steps = (...points: [number, number][]) =>
    new Steps(Float64Array.from(points, ([time]) => time), Float64Array.from(points, ([, value]) => value));

/**
 * On from 1 to 2 and from 4 to 7, in two values, with a stretch of no length at 3; on again from 9 to the
 * end, 10.
 */
const sample = steps([1, 1], [2, 0], [3, 1], [3, 0], [4, 2], [5, 3], [7, 0], [9, 1]);
const close = 10;

/** What `shares` should give: the time of every pixel cut into the stretches between points. */
function slowShares(of: Steps, start: number, end: number, width: number): number[] {
  return Array.from({ length: width }, (_, x) => {
    const left = start + ((end - start) * x) / width;
    const right = Math.min(close, start + ((end - start) * (x + 1)) / width);
    let on = 0;
    of.times.forEach((from, i) => {
      const to = i + 1 < of.times.length ? of.times[i + 1] : close;
      if (of.values[i] !== 0) on += Math.max(0, Math.min(right, to) - Math.max(left, from));
    });
    return on / ((end - start) / width);
  });
}

test('on-time is exact for any span', () => {
  for (const [start, end, expected] of [
           [0, 10, 5], [1.5, 1.75, 0.25], [0, 1, 0], [4.5, 6, 1.5], [6, 9.5, 1.5], [5, 5, 0], [6, 5, 0]]) {
    assert.equal(sample.use(start, end).seconds, expected, `[${start}, ${end})`);
  }
});

test('each pixel holds the exact share of its time', () => {
  const dense =
      steps(...Array.from({ length: 4000 }, (_, i): [number, number] => [i / 400 + (i % 7) * 1e-4, i % 2]));
  for (const of of [sample, dense, steps()]) {
    for (const [start, end, width] of [
             [0, 10, 7], [-3, 14, 100], [2.9, 3.1, 5], [8, 30, 3], [11, 12, 4], [0.00001, 9.99, 1600]]) {
      const shares = new Float32Array(width);
      of.shares(start, end, close, shares);
      slowShares(of, start, end, width)
          .forEach((share, x) => assert.ok(Math.abs(share - shares[x]) < 1e-5, `${start} ${end} ${x}`));
    }
  }
});

test('slices are found at and beside a time', () => {
  assert.deepEqual(sample.sliceAt(6.5, close), { start: 4, end: 7 });
  assert.deepEqual(sample.sliceAt(9.5, close), { start: 9, end: 10 });
  for (const time of [0, 2, 3, 7, 10]) assert.equal(sample.sliceAt(time, close), null, `at ${time}`);
  assert.deepEqual(sample.sliceBeside(1, 1, close), { start: 4, end: 7 }, 'the stretch of no length is none');
  assert.deepEqual(sample.sliceBeside(4, 1, close), { start: 9, end: 10 }, 'a new value starts no stretch');
  assert.deepEqual(sample.sliceBeside(4, -1, close), { start: 1, end: 2 });
  assert.deepEqual(sample.sliceBeside(9, -1, close), { start: 4, end: 7 });
  assert.equal(sample.sliceBeside(9, 1, close), null);
  assert.equal(sample.sliceBeside(1, -1, close), null);
});

test('stretches follow each other from a time on', () => {
  const found: number[][] = [];
  const stretches = new Stretches(sample, 1.5);
  for (; stretches.start < Infinity; stretches.next()) found.push([stretches.start, stretches.end]);
  assert.deepEqual(found, [[1, 2], [4, 7], [9, Infinity]], 'the one of no length is left out');
  assert.equal(sample.use(1, 9).starts, 3, 'those of no length count: something was switched on');
});
