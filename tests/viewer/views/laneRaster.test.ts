import assert from 'node:assert/strict';
import {test} from 'node:test';

import {Scale} from '../../../viewer/model/axis';
import {laneTree} from '../../../viewer/model/lanes';
import {laneHeight, paintLane, Pixels, Surface} from '../../../viewer/views/laneRaster';
import {track} from '../tracks';

/** Keeps how much of each column each colour covers, in pixels. */
class Ledger implements Surface {
  readonly area = new Map<number, number[]>();
  top = Infinity;
  bottom = -Infinity;

  constructor(private readonly width: number) {}

  box(left: number, right: number, top: number, bottom: number, colour: number): void {
    assert(
        left >= 0 && right <= this.width && left < right && bottom >= top,
        `${left} ${right} ${top} ${bottom}`);
    const columns = this.area.get(colour) ?? new Array<number>(this.width).fill(0);
    for (let x = left; x < right; ++x) columns[x] += bottom - top;
    this.area.set(colour, columns);
    this.top = Math.min(this.top, top);
    this.bottom = Math.max(this.bottom, bottom);
  }
}

function paint(
    width: number, shown: { start: number; end: number }, ...tracks: ReturnType<typeof track>[]): Ledger {
  const [lane] = laneTree(tracks);
  const ledger = new Ledger(width);
  paintLane(ledger, lane, 100, {
    axis: new Scale(shown, width),
    close: 10,
    scale: 1,
    dark: false,
    shares: new Float32Array(width),
    used: new Float32Array(width),
  });
  if (ledger.area.size > 0)
    assert(ledger.top >= 100 && ledger.bottom <= 100 + laneHeight(lane), 'within its row');
  return ledger;
}

const near = (actual: number[]|undefined, expected: number[]) => {
  assert(actual !== undefined, 'painted at all');
  expected.forEach(
      (value, x) =>
          assert(Math.abs(value - actual[x]) < 1e-4, `column ${x}: ${actual[x]}, expected ${value}`));
};

test('states of one row are stacked by their exact shares', () => {
  const run = track('proc-1-r0', 'proc:running', 'x_root', [[0, 1], [1.5, 0], [9, 1]], { white: '#010203' });
  const wait = track('proc-1-w', 'proc:wait', 'x_root', [[1.5, 1], [3, 0]], { white: '#0a0b0c' });
  const ledger = paint(6, { start: 0, end: 12 }, run, wait);
  near(ledger.area.get(0x010203), [13 * 0.75, 0, 0, 0, 13 * 0.5, 0]);
  near(ledger.area.get(0x0a0b0c), [13 * 0.25, 13 * 0.5, 0, 0, 0, 0]);
});

test('a wait for the GPU has a band of its own', () => {
  const run = track('proc-1-r0', 'proc:running', 'x_root', [[0, 1], [10, 0]], { white: '#010203' });
  const wait = track('proc-1-g', 'proc:wait', 'x_root', [[5, 1], [10, 0]], { white: '#0a0b0c' });
  const ledger = paint(2, { start: 0, end: 10 }, run, wait);
  near(ledger.area.get(0x010203), [13, 13]);
  near(ledger.area.get(0x0a0b0c), [0, 4]);
});

test('a value shows the least and the greatest of each column', () => {
  const level = track(
      'cpu-0-f', 'cpu:freq', 'x_root', [[1, 50], [2, 100], [2.5, 25], [8, 0]],
      { type: 'bar', white: '#808080' });
  const ledger = paint(5, { start: 0, end: 10 }, level);
  near(ledger.area.get(0x808080), [0, 4, 4, 4, 0]);
  near(ledger.area.get(0xc0c0c0), [8, 12, 0, 0, 4]);
});

test('moments are one column each, and those of the second kind are higher', () => {
  const marks = track(
      'gpu-3-0-i1', 'gpu:issue', 'x_root', [[1, 1], [1.01, 1], [5, 2]], { type: 'marker', white: '#ff0000' });
  near(paint(10, { start: 0, end: 10 }, marks).area.get(0xff0000), [0, 6.5, 0, 0, 0, 13, 0, 0, 0, 0]);
});

test('rows without points and spans beside them stay empty', () => {
  const empty = track('proc-1-g', 'proc:wait', 'x_root', []);
  const early = track('proc-1-r0', 'proc:running', 'x_root', [[1, 1], [2, 0]]);
  assert.equal(paint(10, { start: 3, end: 20 }, empty, early).area.size, 0);
});

test('a box covers pixels by their shares, also at the edges of the picture', () => {
  Object.assign(globalThis, {
    ImageData: class {
      readonly data: Uint8ClampedArray;
      constructor(width: number, height: number) { this.data = new Uint8ClampedArray(4 * width * height); }
    }
  });
  for (const [left, right] of [[1, 3], [0, 12]]) {
    const pixels = new Pixels(12, 6);
    pixels.clear(0x000000);
    pixels.box(left, right, 0.5, 2.25, 0x80ff40);
    pixels.box(left, right, 3.25, 3.75, 0x80ff40);
    pixels.box(left, right, 5, 9, 0x80ff40);
    pixels.box(left, right, -4, -1, 0xffffff);
    const { data } = pixels.image;
    const column = (x: number) => Array.from(
        { length: 6 }, (_, y) => [...data.subarray(4 * (12 * y + x), 4 * (12 * y + x) + 4)].join());
    assert.deepEqual(
        column(left),
        ['64,128,32,255', '128,255,64,255', '32,64,16,255', '64,128,32,255', '0,0,0,255', '128,255,64,255']);
    assert.deepEqual(column(right - 1), column(left));
    if (left > 0) assert.deepEqual(column(right), Array(6).fill('0,0,0,255'));
  }
});
