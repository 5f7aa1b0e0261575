import assert from 'node:assert/strict';
import {test} from 'node:test';

import {Lane, laneTree, visibleLanes} from '../../../viewer/model/lanes';
import {track} from '../tracks';

const none = new Set<string>();
const points: [number, number][] = [[1, 1]];

/** The tree as text: a row a line, indented, with its number of tracks. */
function drawn(lanes: readonly Lane[]): string[] {
  return lanes.flatMap(
      (lane) => [`${' '.repeat(lane.depth)}${lane.label} ${lane.tracks.length}`, ...drawn(lane.children)]);
}

const tree = laneTree([
  track('cpu-0-b', 'cpu:busy', 'b_0_cpu_root', points, { name: 'CPU 0 Busy', show: 1 }),
  track('cpu-0-f', 'cpu:freq', 'f_0_cpu_root', points, { name: 'CPU 0 Frequency', show: 1 }),
  track('cpu-0-s-0', 'cpu:idle', 's_0_cpu_root', points, { name: 'CPU 0 Idle State', show: 1 }),
  track('cpu-0-s-2', 'cpu:idle', 's_0_cpu_root', points, { name: 'CPU 0 Idle State', show: 1 }),
  track('irq-29-0', 'irq', '29_irq_root', points, { name: 'timer' }),
  track('irq-1001-0', 'irq', '1001_irq_root', points, { name: 'TIMER' }),
  track('proc-9-r0', 'proc:running', '9_proc_root', points, { name: '9 - idle child' }),
  track('proc-12-r0', 'proc:running', '12_10_proc_root', points, { name: '12 - thread', show: 1 }),
  track('proc-10-r1', 'proc:running', '10_proc_root', points, { name: '10 - game', show: 1 }),
  track('proc-10-ctr0', 'ctr:', '0_10_proc_root', points, { name: '10 - game', tip: 'cycles', show: 1 }),
  track('proc-0-r0', 'proc:running', '0_10_proc_root', points, { name: '0 - named like a counter' }),
  track('proc-31-r1', 'proc:running', '31_30_proc_root', points, { name: '31 - orphan' }),
  track('evt', 'proc:events', 'evt_root', points, { name: 'FTrace Events', type: 'events', show: 1 }),
]);

test('tasks lie under their processes and shown rows come first', () => {
  assert.deepEqual(drawn(tree), [
    'Cores 0',
    ' CPU 0 Busy 1',
    '  CPU 0 Frequency 1',
    '  CPU 0 Idle State 2',
    'Tasks 0',
    ' 10 - game 1',
    '  12 - thread 1',
    '  cycles 1',
    '  0 - named like a counter 1',
    ' 9 - idle child 1',
    ' 30 0',
    '  31 - orphan 1',
    'FTrace Events 1',
    'Interrupts 0',
    ' 29 - timer 1',
    ' soft 1 - TIMER 1',
  ]);
});

test('folded rows keep their children back and pinned ones come first', () => {
  const rows = visibleLanes(tree, {
    folded: new Set(['cpu', 'proc_10']),
    hidden: new Set(['irq']),
    pinned: new Set(['proc_10_12', 'cpu_0'])
  });
  assert.deepEqual(rows.pinned.map((lane) => lane.label), ['CPU 0 Busy', '12 - thread']);
  assert.deepEqual(
      rows.rest.map((lane) => lane.label),
      ['Cores', 'Tasks', '10 - game', '9 - idle child', '30', '31 - orphan', 'FTrace Events']);
});

test('hostile tree ids make rows like any other', () => {
  const ids = ['__proto___root', 'constructor_proc_root', '', '_', '_'.repeat(10000), 'x_root_root'];
  const odd = laneTree(ids.map((treeId, i) => track(`proc-${i}-r0`, 'proc:running', treeId, points)));
  const rows = visibleLanes(odd, { folded: none, hidden: none, pinned: none }).rest;
  assert.equal(rows.reduce((sum, lane) => sum + lane.tracks.length, 0), ids.length, 'no series is lost');
  assert.equal(new Set(rows.map((lane) => lane.path)).size, rows.length, 'paths are unique');
  assert.ok(Math.max(...rows.map((lane) => lane.depth)) < 8);
});
