import assert from 'node:assert/strict';
import {test} from 'node:test';

import {Store} from '../../../viewer/views/store';

let frames: (() => void)[] = [];
let now = 0;
let painted: string[] = [];

/** Runs the frames that were asked for, and those that they ask for; returns what each has painted. */
function run(): string[] {
  const all: string[] = [];
  for (let frame; (frame = frames.shift());) {
    painted = [];
    frame();
    all.push(painted.join(''));
  }
  return all;
}

/** Returns a painting that takes so many milliseconds. */
const painting = (name: string, took: number) => () => {
  now += took;
  painted.push(name);
};

/** Returns a painting in parts. */
const inParts = (names: string, took: number) => function*() {
  for (const name of names) {
    yield;
    painting(name, took)();
  }
};

function newStore(): Store {
  frames = [];
  Object.assign(globalThis, { requestAnimationFrame: (frame: () => void) => frames.push(frame) });
  performance.now = () => now;
  return new Store({} as never);
}

test('what takes longer than its part of a frame is painted with the next ones', () => {
  const store = newStore();
  for (const [name, took] of [['a', 1], ['b', 9], ['c', 3], ['d', 4], ['e', 1]] as const)
    store.repaint(painting(name, took));
  assert.deepEqual(run(), ['ab', 'cde']);
});

test('a painting in parts goes on with the next frames, and nothing else begins before its end', () => {
  const store = newStore();
  const long = inParts('1234', 5);
  store.repaint(long);
  store.repaint(painting('x', 1));
  // Asked for again while it is being painted: all of it is painted once more, after what came first.
  frames.unshift(() => (frames.shift()!(), store.repaint(long)));
  assert.deepEqual(run(), ['12', '34', 'x12', '34']);
});
