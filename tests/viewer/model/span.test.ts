import assert from 'node:assert/strict';
import {test} from 'node:test';

import {counted, longestGap, reckonSpan, SpanUse} from '../../../viewer/model/span';
import {Tasks} from '../../../viewer/model/tasks';
import {track} from '../tracks';

// Task 11 runs on core 0, sleeps for I/O, waits for a core, runs on core 1; task 0 is the idle one.
const tracks = [
  track('cpu-0-b', 'cpu:busy', 'b_0_cpu_root', [[1, 1], [2, 0], [4, 1], [6, 0]]),
  track('cpu-1-b', 'cpu:busy', 'b_1_cpu_root', [[4, 1], [5, 0]]),
  track('irq-29-0', 'irq', '29_irq_root', [[4, 1], [4.5, 0], [5, 1], [5.25, 0]]),
  track('irq-29-1', 'irq', '29_irq_root', [[9, 1], [9.5, 0]]),
  track('proc-0-r1', 'proc:running', '0_proc_root', [[5, 1]]),
  track('proc-11-r0', 'proc:running', '11_10_proc_root', [[1, 1], [2, 0], [7, 1], [8, 0]]),
  track('proc-11-r1', 'proc:running', '11_10_proc_root', [[4, 1], [5, 0]]),
  track('proc-11-d', 'proc:wait', '11_10_proc_root', [[2, 1], [3, 0]]),
  track('proc-11-w', 'proc:wait', '11_10_proc_root', [[3, 1], [4, 0], [6.5, 1], [7, 0]]),
  track(
      'proc-11-ctr0', 'ctr:', '0_11_10_proc_root', [[1, 100], [2, 0], [4, 60], [5, 0]],
      { tip: 'cycles', type: 'bar' }),
  track('proc-12-w', 'proc:wait', '12_10_proc_root', [[20, 1], [21, 0]]),
];

function spanUse(start: number, end: number): SpanUse {
  const work = reckonSpan(tracks, start, end);
  for (;;) {
    const step = work.next();
    if (step.done) return step.value;
  }
}

test('a span tells what cores tasks and interrupts did', () => {
  const use = spanUse(1.5, 8);
  assert.deepEqual(
      use.cores.map(({ cpu, busy, longestGap }) => [cpu, busy, longestGap]), [[0, 2.5, 2], [1, 1, 3]]);
  assert.deepEqual(use.interrupts, [{ label: '29 - irq-29-0', count: 2, seconds: 0.75 }]);
  assert.deepEqual(
      use.tasks.map(({ task, running, switches }) => [task, running, switches]), [[11, 2.5, 2], [0, 3, 1]]);
  const [task] = use.tasks;
  assert.deepEqual([task.waitIo, task.waitCpu, task.waitGpu, task.longestGap], [1, 1.5, 0, 2]);
  assert.equal(use.switches, 3);
  assert.deepEqual([...use.counters], [['cycles', 110]], 'half of the first run, all of the second');
});

test('the longest gap lies between the runs of all cores', () => {
  for (let round = 1; round <= 200; ++round) {
    // Numbers that repeat with every run of the test; times are whole, so that a second is on or off.
    const roll = (i: number) => Math.floor(Math.abs(Math.sin(round * 1e3 + i)) * 1e5) % 300;
    const cores = Array.from({ length: 3 }, (_, core) => {
      const times =
          Array.from({ length: roll(core) % 12 }, (_, i) => roll(10 * core + i)).sort((a, b) => a - b);
      return track(
          `proc-1-r${core}`, 'proc:running', '1_proc_root', times.map((time, i) => [time, (i + 1) % 2]));
    });
    const [start, end] = [roll(50), roll(51)].sort((a, b) => a - b);
    let longest = 0;
    for (let second = start, gap = 0; second < end; ++second) {
      gap = cores.some(({ steps }) => steps.use(second, second + 1).seconds > 0) ? 0 : gap + 1;
      longest = Math.max(longest, gap);
    }
    assert.equal(longestGap(cores, start, end), longest, `round ${round}`);
  }
});

test('counters of no length count where they stand', () => {
  const burst = track('proc-1-ctr0', 'ctr:', '0_1_proc_root', [[1, 5], [1, 7], [2, 0]], { type: 'bar' });
  assert.equal(counted(burst, 1, 2), 12);
  assert.equal(counted(burst, 1.5, 2), 3.5);
  assert.equal(counted(burst, 1, 1.25), 6.75);
  assert.equal(counted(burst, 0, 1), 0);
});

test('runs of a task follow each other over all cores', () => {
  const tasks = new Tasks(tracks, 10);
  const run = tasks.runOnCore(1, 4.5)!;
  assert.deepEqual([run.task, run.cpu, run.start, run.end], [11, 1, 4, 5]);
  assert.deepEqual(tasks.waitBefore(run), { total: 2, waitIo: 1, waitCpu: 1, waitGpu: 0 });
  assert.deepEqual(tasks.runBeside(11, run.start, 1)?.start, 7);
  assert.deepEqual(tasks.runBeside(11, run.start, -1)?.cpu, 0);
  assert.equal(tasks.waitBefore(tasks.runBeside(11, run.start, -1)!), null);
  assert.equal(tasks.runBeside(11, 1, 1)?.start, 4, 'the first of all cores');
  assert.equal(tasks.runBeside(11, 10, -1)?.start, 7, 'the last of all cores');
  assert.equal(tasks.runAt(11, 3), null);
  assert.deepEqual(tasks.runAt(0, 9)?.end, 10, 'a run without a last point ends with the document');
});

test('runs on a core are found by time, also those that start together', () => {
  const both = [20, 21].map(
      (task) => track(`proc-${task}-r5`, 'proc:running', `${task}_proc_root`, [[1, 1], [task / 10, 0]]));
  const tasks = new Tasks(both, 10);
  const found: number[] = [];
  tasks.forEachRunOnCore(5, 0, 10, 1.05, (run) => found.push(run.task));
  assert.deepEqual(found, [21], 'the short one is left out');
  tasks.forEachRunOnCore(5, 0, 10, 0, (run) => found.push(run.task));
  assert.deepEqual(found.slice(1).sort(), [20, 21]);
  assert.equal(tasks.runOnCore(5, 5), null);
  assert.equal(tasks.runOnCore(4, 1.5), null);
});
