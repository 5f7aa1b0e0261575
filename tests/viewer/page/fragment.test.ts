import assert from 'node:assert/strict';
import {test} from 'node:test';

import {everything} from '../../../viewer/model/filter';
import {readFragment, writeFragment} from '../../../viewer/page/fragment';

import type {State} from '../../../viewer/views/store';

const start = {
  visible: null,
  filter: everything,
  search: '',
  place: -1,
  panel: 'flame',
  lanes: { folded: new Set(), hidden: new Set(), pinned: new Set() },
  cursor: null,
  run: null,
  mark: null,
} as unknown as State;

test('an address leads back to what was seen', () => {
  const seen: Partial<State> = {
    visible: { start: -1.5, end: 2e-6 },
    filter:
        {...everything, start: 0.1, end: 0.25, cores: new Set([0, 3]), threads: new Set(), text: 'a&b=c,#' },
    search: '<img> \u202e ü',
    place: 7,
    panel: 'span',
    lanes: { folded: new Set(['a,b', 'c&d']), hidden: new Set(['']), pinned: new Set(['proc_10_12']) },
    cursor: { lane: 'x,y', time: 0.5 },
    mark: -3,
  };
  const read = readFragment(writeFragment({...start, ...seen }), start);
  for (const key of Object.keys(seen) as (keyof State)[]) assert.deepEqual(read[key], seen[key], key);
});

test('what an address does not say, or says wrongly, is as from the start', () => {
  assert.equal(readFragment('', start).filter, everything);
  const wrong = 'shown=2,1&selected=a,b&place=x&at=5&mark=&cores=1,x,-2,1.5&view=';
  const read = readFragment(wrong, start);
  assert.equal(read.visible, null);
  assert.deepEqual([read.filter?.start, read.filter?.end], [-Infinity, Infinity]);
  assert.deepEqual([...read.filter?.cores ?? []], [1]);
  assert.deepEqual([read.place, read.cursor, read.mark], [-1, null, null]);
});
