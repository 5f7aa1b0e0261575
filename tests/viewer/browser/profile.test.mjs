// The views of a profile, and those of both kinds of documents together, driven by mouse and by keyboard.
import assert from 'node:assert/strict';
import {readFileSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {documents, example, frame, keepPicture, openDocuments, openPage, useBrowser} from './browser.mjs';

useBrowser();

const file = join(documents, 'profile.json');

async function openProfile(fragment = '', ...more) {
  const page = await openPage({ fragment });
  await openDocuments(page, file, ...more);
  return page;
}

const counted = (page) => page.locator('.view:not([hidden]) .counted').first().innerText();

test('every view is reached by a digit and by its tab, and shows the same selection', async () => {
  const page = await openProfile();
  const tabs = ['Flame graph', 'Call tree', 'Functions', 'Callers and callees'];
  assert.deepEqual(await page.locator('[role=tab]:visible').allInnerTexts(), tabs);
  for (const [index, title] of tabs.entries()) {
    await page.keyboard.press(String(index + 1));
    await frame(page);
    assert.equal(await page.getByRole('tab', { selected: true }).innerText(), title);
    assert.equal(await counted(page), '600 samples');
    await keepPicture(page, `profile-${index + 1}`);
  }
  await page.getByRole('tab', { name: 'Functions' }).click();
  await frame(page);
  assert(await page.locator('#view-functions').isVisible());
  await page.getByRole('tab', { name: 'Functions' }).press('ArrowLeft');
  await frame(page);
  assert(await page.locator('#view-tree').isVisible());
  assert.deepEqual(page.complaints, []);
});

test('a brush over the time line, a core and a thread select samples for all views', async () => {
  const page = await openProfile('#view=functions');
  const line = await page.locator('#view-timeline').boundingBox();
  const axis = { left: 230, width: 1280 - 230 - 14 };
  await page.mouse.move(axis.left, line.y + 10);
  await page.mouse.down();
  await page.mouse.move(axis.left + axis.width / 2, line.y + 10, { steps: 4 });
  await page.mouse.up();
  await frame(page);
  const half = parseInt(await counted(page), 10);
  assert(Math.abs(half - 300) <= 3, `${half}`);
  await page.keyboard.press('2');
  await frame(page);
  assert.equal(parseInt(await counted(page), 10), half);
  await page.keyboard.press('Escape');
  await page.getByRole('listbox').focus();
  await page.keyboard.press('Enter');
  await frame(page);
  assert.equal(parseInt(await counted(page), 10), 300, 'one core of two');
  await page.keyboard.press('z');
  await frame(page);
  assert.equal(parseInt(await counted(page), 10), 600, 'undone');
});

test('flame graph, call tree and callers are walked by keys', async () => {
  const page = await openProfile('#view=flame');
  await page.locator('#view-flame .flame').focus();
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowRight');
  await frame(page);
  assert.match(await page.locator('.status').innerText(), /^pick_apple, total 98 /);
  await page.keyboard.press('Enter');
  await frame(page);
  await keepPicture(page, 'flame-focused');
  await page.keyboard.press('Home');
  await page.keyboard.press('2');
  await page.locator('#view-tree .rows').focus();
  await frame(page);
  const current = page.locator('#view-tree .current');
  const lookAfter = async (key) => {
    await page.keyboard.press(key);
    await frame(page);
    return [
      (await current.getAttribute('aria-label')).split(',')[0], await current.getAttribute('aria-expanded')
    ];
  };
  assert.deepEqual(await lookAfter('ArrowDown'), ['cut off here: the callers are unknown', 'true']);
  assert.deepEqual(await lookAfter('ArrowDown'), ['pick_apple', 'true']);
  const openRows = await page.locator('#view-tree [role=row]').count();
  assert.deepEqual(await lookAfter('ArrowLeft'), ['pick_apple', 'false']);
  assert(await page.locator('#view-tree [role=row]').count() < openRows);
  assert.deepEqual(await lookAfter('ArrowRight'), ['pick_apple', 'true']);
  assert.equal(await page.locator('#view-tree [role=row]').count(), openRows);
  assert.deepEqual(page.complaints, []);
});

test('search finds in the view that is shown', async () => {
  const page = await openProfile('#view=functions');
  await page.keyboard.press('/');
  await page.keyboard.type('count_b');
  await page.keyboard.press('Enter');
  await frame(page);
  assert.match(await page.locator('.found').innerText(), /count_bees/);
});

test('two profiles are compared', async () => {
  const changed = join(documents, 'changed-profile.json');
  // The same recording, had all samples of pick_apple been taken in pick_pear.
  const text = readFileSync(file, 'utf8');
  const keyOf = (name) => new RegExp(`\\[(\\d+),"${name}"`).exec(text)[1];
  writeFileSync(
      changed,
      text.replace(
          /"samples"[^]*/,
          (rows) => rows.replaceAll(
              new RegExp(`(\\[\\d+,\\d+),${keyOf('pick_apple')},`, 'g'), `$1,${keyOf('pick_pear')},`)));
  const page = await openPage({ fragment: '#view=difference' });
  await openDocuments(page, file);
  await openDocuments(page, changed);
  await page.getByRole('tab', { name: 'Difference' }).click();
  await frame(page);
  assert.deepEqual(await page.locator('.reading').allInnerTexts(), ['profile.json', 'changed-profile.json']);
  const rows = await page.locator('#view-difference [role=row]').allInnerTexts();
  const [, share] = /([\d.]+)%  pick_apple$/m.exec(example('hottest_functions', file));
  assert(rows.find((row) => row.includes('pick_pear')).includes(`+${share}%`));
  assert(rows.find((row) => row.includes('pick_apple')).replace('−', '-').includes(`-${share}%`));
  await keepPicture(page, 'difference');
  await openDocuments(page, file);
  await frame(page);
  assert.deepEqual(
      await page.locator('.reading').allInnerTexts(), ['changed-profile.json', 'profile.json'],
      'a third takes the place of the first');
});

test('folded stacks hold every selected sample', async () => {
  const page = await openPage({ permissions: ['clipboard-read', 'clipboard-write'] });
  await openDocuments(page, file);
  await page.keyboard.press('Shift+C');
  await page.waitForFunction(() => document.querySelector('.status').textContent.startsWith('Copied'));
  const lines = (await page.evaluate(() => navigator.clipboard.readText())).trimEnd().split('\n');
  assert.equal(lines.reduce((sum, line) => sum + Number(/ (\d+)$/.exec(line)[1]), 0), 600);
});

test('one brush selects in both documents, and a run of a task selects its samples', async () => {
  const folder = join(documents, 'joint');
  // Task 11 runs on core 0 from 1 s to 2 s and from 3 s to 4 s; both cores are sampled every 100 ms,
  // and task 12 is what runs else.
  const samples = Array.from({ length: 100 }, (_, i) => {
    const core = i % 2;
    const time = (i - core) / 20 + 0.05;
    const runs = core === 0 && ((time > 1 && time < 2) || (time > 3 && time < 4));
    return `[${i + 1},65796,6,${time},${core},${runs ? 4 : 5},${runs ? 11 : 12},[],]`;
  });
  const section = (name, rows) => `"${name}":{"descriptions":{},"data":[${rows}]}`;
  const profile =
      `{"Description":{"Version":"1.0","Target Chip":"x","Start Time":0,"First Sample Time":0,"duration":5},${
              [section('processes', '[1,0,0,"kernel",],[4,11,11,"eleven",],[5,12,12,"twelve",],'),
               section(
                   'libraries',
                   '[2,2,"lostAndFound",0,0,],[3,1,"kernel",3221258240,28672,],[7,4,"/app/tool",65536,4096,],'),
               section('files', ''),
               section('functions', '[6,"work",65792,256,[7,],],'),
               section('samples', `${samples.join(',')},`),
  ].join(',')}}`;
  const timechart = `{"entries":[
{"id":"proc-11-r0","name":"11 - eleven","treeId":"11_proc_root","type":"binary","class":"proc:running","show":1,"tip":"Running on CPU 0","hints":{"white":"#000000","black":"#ffffff"},"data":[[1.000000, 1],[2.000000, 0],[3.000000, 1],[4.000000, 0]]}
,]}`;
  writeFileSync(`${folder}-profile.json`, profile);
  writeFileSync(`${folder}-timechart.json`, timechart);
  const page = await openPage({ fragment: '#view=functions' });
  await openDocuments(page, `${folder}-profile.json`, `${folder}-timechart.json`);
  assert.equal(await counted(page), '100 samples');
  const row = await page.locator('.lane', { hasText: '11 - eleven' }).boundingBox();
  const x = (time) => 230 + ((time - 0.05) / (4.95 - 0.05)) * (1280 - 230 - 14);
  await page.mouse.click(x(1.5), row.y + row.height / 2);
  await frame(page);
  assert.match(await counted(page), /^10 \(10\.0%\)/, 'those of task 11 within its first run');
  await page.keyboard.press(']');
  await frame(page);
  assert.match(await counted(page), /^10 \(10\.0%\)/);
  await keepPicture(page, 'both');
  await page.mouse.move(x(0.5), row.y + 5);
  await page.mouse.down();
  await page.mouse.move(x(1.5), row.y + 5, { steps: 4 });
  await page.mouse.up();
  await frame(page);
  assert(Math.abs(parseInt(await counted(page), 10) - 20) <= 2, 'a brush is about all tasks again');
  await page.keyboard.press('z');
  await frame(page);
  assert.match(await counted(page), /^10 \(10\.0%\)/, 'undo brings the run back');
  assert.match(await page.locator('.brush').innerText(), /^1 s from 3\.0/);
  assert.deepEqual(page.complaints, []);
});

test('documents of different time scales are told apart', async () => {
  const page = await openProfile('', join(documents, 'timechart.json'));
  assert.match(await page.locator('.status').innerText(), /share no time/);
});
