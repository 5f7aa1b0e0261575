import assert from 'node:assert/strict';
import {test} from 'node:test';

import {pixelBounds, RowSamples, timeRows} from '../../../viewer/model/density';
import {DifferenceTree, unite} from '../../../viewer/model/difference';

import {everything, type Filter} from '../../../viewer/model/filter';
import {boxAt, layOut} from '../../../viewer/model/flameLayout';
import {functionRows, type Order} from '../../../viewer/model/functionRows';
import {MergedTree} from '../../../viewer/model/MergedTree';
import {ProfileModel} from '../../../viewer/model/ProfileModel';
import {childrenOf, type Tree} from '../../../viewer/model/tree';
import {profileText, readProfile} from '../support';

const key: Record<string, number> = {
  s: 8,
  m: 7,
  w: 6
};
const process: Record<string, number> = {
  tool: 4,
  worker: 5
};

/** A model of samples given as lines: time, core, process, and the stack as letters, outermost first. */
async function modelOf(lines: readonly string[]): Promise<ProfileModel> {
  const samples = lines.map((line, index) => {
    const [time, core, name, stack] = line.split(' ');
    const frames = [...stack].reverse().map((letter) => `[1,${key[letter]},]`);
    return `[${index + 1},1,${key[stack.at(-1)!]},${time},${core},${process[name]},${process[name] + 3},[${
        frames.join(',')},],],`;
  });
  const files = '[20,"main.cc",[[7,1,],],],[21,"work.cc",[[6,12,],],],';
  return new ProfileModel(await readProfile(profileText({ samples: samples.join(''), files })));
}

const names: Record<string, string> = {
  schedule: 's',
  main: 'm',
  work: 'w'
};

/**
 * A tree as text: `m3(w2 s1)` is main with three samples, of which two are below work and one below
 * schedule.
 */
function treeText(model: ProfileModel, tree: Tree, node = 0): string {
  const children = childrenOf(tree, node).map((child) => treeText(model, tree, child));
  const below = children.length === 0 ? '' : `(${children.join(' ')})`;
  const name = node === 0 ? '' : names[model.profile.places.names[tree.places[node]]];
  return `${name}${tree.totals[node]}${below}`;
}

const lines = ['1 0 tool m', '2 0 tool mw', '3 1 worker mw', '4 1 tool mws', '5 0 worker s', '6 1 tool wmw'];
const changed = (change: Partial<Filter>): Filter => ({...everything, ...change });

test('a filter changes what every node weighs', async () => {
  const model = await modelOf(lines);
  const cases: [Partial<Filter>, string][] = [
    [{}, '6(m4(w3(s1)) s1 w1(m1(w1)))'],
    [{ start: 2, end: 4 }, '2(m2(w2))'],
    [{ start: 2, end: 4.1 }, '3(m3(w3(s1)))'],
    [{ cores: new Set([1]) }, '3(m2(w2(s1)) w1(m1(w1)))'],
    [{ threads: new Set([1]) }, '2(m1(w1) s1)'],
    [{ text: 'SCHED' }, '0'],
    [{ text: 'sched' }, '2(m1(w1(s1)) s1)'],
  ];
  for (const [change, expected] of cases) {
    const selection = model.selection(changed(change));
    assert.equal(treeText(model, selection), expected, JSON.stringify(change));
    assert.equal(selection.selves.reduce((a, b) => a + b, 0), selection.count);
  }
});

test('inverted, callers and callees count each sample once', async () => {
  const model = await modelOf(lines);
  const selection = model.selection(everything);
  assert.equal(treeText(model, MergedTree.inverted(selection)), '6(w3(m3(w1)) s2(w1(m1)) m1)');
  const work = model.profile.places.names.indexOf('work');
  assert.equal(treeText(model, MergedTree.of(selection, work, 'callers')), '4(m3)');
  assert.equal(treeText(model, MergedTree.of(selection, work, 'callees')), '4(s1 m1(w1))');
  const brushed = model.selection(changed({ start: 4 }));
  assert.equal(treeText(model, MergedTree.inverted(brushed)), '3(s2(w1(m1)) w1(m1(w1)))');
});

test('tables group by function, library, file, process, thread and core', async () => {
  const model = await modelOf(lines);
  const table =
      (by: string, filter = everything, text = '', order: Order = { key: 'total', descending: true }) => {
        const grouping = model.grouping(by);
        const weights = grouping.weigh(model.selection(filter));
        return functionRows(grouping, weights, text, order)
            .map(
                (group) => `${grouping.groups[group].name} ${weights.selves[group]}/${weights.totals[group]}`)
            .join(', ');
      };
  assert.equal(table('function'), 'main 1/5, work 3/4, schedule 2/2');
  assert.equal(
      table('function', everything, '', { key: 'self', descending: false }),
      'main 1/5, schedule 2/2, work 3/4');
  assert.equal(
      table('function', everything, 'APP/', { key: 'name', descending: false }), 'main 1/5, work 3/4');
  assert.equal(table('library'), '/app/tool 4/5, kernel 2/2');
  assert.equal(table('file'), 'main.cc 1/5, work.cc 3/4, no source file known 2/2');
  assert.equal(table('process'), 'tool 6/6');
  assert.equal(table('thread'), 'tool 4/4, worker 2/2');
  assert.equal(table('core', changed({ start: 3 })), 'Core 1 3/3, Core 0 1/1');
});

test('a flame graph has the boxes that can be seen, each below its caller', async () => {
  const model = await modelOf(lines);
  const tree = model.selection(everything);
  const boxes = (start: number, end: number, least: number) => {
    const laid = layOut(tree, 0, start, end, 600, least).map(({ node, depth, left, width }) => {
      const name = node === 0 ? '' : names[model.profile.places.names[tree.places[node]]];
      return `${depth}${name}@${left}+${width}`;
    });
    return laid.join(' ');
  };
  assert.equal(boxes(0, 6, 150), '0@0+600 1m@0+400 2w@0+300');
  assert.equal(
      boxes(0, 6, 1), '0@0+600 1m@0+400 1s@400+100 1w@500+100 2w@0+300 2m@500+100 3s@0+100 3w@500+100');
  assert.equal(boxes(4, 5, 1), '0@-2400+3600 1s@0+600');
  const laid = layOut(tree, 0, 0, 6, 600, 1);
  assert.equal(boxAt(laid, 550, 2)?.depth, 2);
  assert.equal(boxAt(laid, 350, 2), undefined);
});

test('the time line counts each sample once in its core and once in its thread', async () => {
  const model = await modelOf(lines);
  const rowsOfAll = timeRows(model.profile);
  assert.deepEqual(
      rowsOfAll.map(({ kind, subject, samples }) => `${kind} ${subject}: ${samples}`),
      ['core 0: 3', 'core 1: 3', 'thread 0: 4', 'thread 1: 2'],
  );
  const counted = (filter: Filter, start: number, end: number, pixels: number) => {
    const index =
        new RowSamples(model.profile, rowsOfAll, (visit) => model.selection(filter).forEachSample(visit));
    const bounds = pixelBounds(model.profile, { start, end }, pixels);
    return rowsOfAll.map((_, row) => index.count(row, bounds).join('')).join(' ');
  };
  assert.equal(counted(everything, 1, 6, 5), '11001 00111 11011 00101');
  assert.equal(counted(changed({ text: 'sched' }), 1, 6, 5), '00001 00010 00010 00001');
  assert.equal(counted(everything, 0, 9, 3), '210 021 211 020');
  assert.equal(counted(everything, 2, 6, 2), '11 12 12 11', 'the last sample of all is within');
});

test('a difference tree has room for what either profile spends', async () => {
  const after = await modelOf(['1 0 tool mw', '2 0 tool mw', '3 0 tool mw', '4 0 tool m']);
  const before = await modelOf(['1 0 tool ms', '2 0 tool mw']);
  const selections = [after.selection(everything), before.selection(everything)] as const;
  const tree = new DifferenceTree(unite(after.profile, before.profile), ...selections);
  const figures = (node: number) => [tree.current[node], tree.baseline[node], tree.totals[node]];
  const [joint] = childrenOf(tree, 0);
  // Three samples of one child and two of the other, scaled to four samples, have no room in a box of four.
  assert.deepEqual(figures(joint), [4, 4, 5]);
  assert.deepEqual(childrenOf(tree, joint).map(figures), [
    [3, 2, 3],
    [0, 2, 2],
  ]);
});

test('a search is for places and tells its share of the samples', async () => {
  const model = await modelOf(lines);
  assert.equal(model.matchedSamples(everything, ''), null);
  assert.equal(model.matchedSamples(everything, 'work'), 4);
  assert.equal(model.matchedSamples(changed({ start: 4 }), 'work'), 2);
  assert.equal(model.matchedSamples(everything, 'nowhere'), 0);
});
