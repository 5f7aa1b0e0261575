// The timechart driven by mouse and by keyboard.
import assert from 'node:assert/strict';
import {mkdtempSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {test} from 'node:test';

import {documents, frame, keepPicture, openDocuments, openPage, stateOf, tableOf, useBrowser} from './browser.mjs';

useBrowser();

const file = join(documents, 'timechart.json');
const gutter = 230;

async function openTimechart(options) {
  const page = await openPage(options);
  await openDocuments(page, file);
  return page;
}

/** Presses a key and waits for what comes of it. */
async function press(page, key) {
  await page.keyboard.press(key);
  await frame(page);
}

const spanOf = (text) => text.split(',').map(Number);
const near = (actual, expected, tolerance) =>
    assert(Math.abs(actual - expected) <= tolerance, `${actual}, expected ${expected}`);

/** The place of a row, by its label. */
async function rowOf(page, label) {
  const box = await page.locator('.lane', { hasText: label }).first().boundingBox();
  assert(box !== null, label);
  return box.y + box.height / 2;
}

/** Returns where a time is drawn while the whole document is shown. */
const xOf = (time) => gutter + (time / 1.00005) * (1280 - gutter - 14);

test('the mouse zooms, moves, selects and clears', async () => {
  const page = await openTimechart();
  const y = await rowOf(page, '300 - game');
  await page.mouse.move(xOf(0.5), y);
  await page.keyboard.down('Control');
  await page.mouse.wheel(0, -500);
  await page.keyboard.up('Control');
  let [start, end] = spanOf((await stateOf(page)).get('shown'));
  near(end - start, 1.00005 * Math.exp(-1), 1e-3);
  near(start + (end - start) * 0.5, 0.5, 2e-3);

  await page.keyboard.down('Shift');
  await page.mouse.move(700, y);
  await page.mouse.down();
  await page.mouse.move(600, y, { steps: 3 });
  await page.mouse.up();
  await page.keyboard.up('Shift');
  const moved = spanOf((await stateOf(page)).get('shown'));
  near(moved[0] - start, (100 * (end - start)) / (1280 - gutter - 14), 1e-3);

  await press(page, '0');
  await page.mouse.move(xOf(0.25), y);
  await page.mouse.down();
  await page.mouse.move(xOf(0.5), y, { steps: 5 });
  await page.mouse.up();
  [start, end] = spanOf((await stateOf(page)).get('selected'));
  near(start, 0.25, 1.1e-3);
  near(end, 0.5, 1.1e-3);
  assert.match(await page.locator('.brush').innerText(), /^2\d\d(\.\d+)? ms from 0\.2/);
  assert.match((await page.locator('#view-span .lead').innerText()), /^Selected: 2/);

  await page.locator('.brush').click();
  assert.equal((await stateOf(page)).get('selected'), null);
  assert.deepEqual(page.complaints, []);
});

test('the keyboard alone zooms to the microsecond, moves, measures and selects', async () => {
  const page = await openTimechart();
  await page.locator('#view-lanes .labels').focus();
  for (let i = 0; i < 7; ++i) await press(page, 'ArrowDown');
  const at = (await stateOf(page)).get('at');
  for (let i = 0; i < 60; ++i) await press(page, 'w');
  let [start, end] = spanOf((await stateOf(page)).get('shown'));
  near(end - start, 1e-6, 1e-9);
  await press(page, 's');
  await press(page, 'd');
  const [next] = spanOf((await stateOf(page)).get('shown'));
  assert(next > start);
  await press(page, '0');
  assert.equal((await stateOf(page)).get('shown'), null);
  assert.equal((await stateOf(page)).get('at'), at, 'zooming leaves the cursor alone');

  // From point to point of a row: the GPU's frequency changes at 5 µs, 333.345 ms and 666.685 ms.
  await page.evaluate(() => (location.hash = '#at=0,kgsl_GPU-3D0_freq'));
  await frame(page);
  await page.locator('#view-lanes .labels').focus();
  await press(page, 'ArrowRight');
  await press(page, 'm');
  await press(page, 'Shift+ArrowRight');
  let state = await stateOf(page);
  assert.deepEqual(spanOf(state.get('selected')), [0.000005, 0.333345]);
  assert.equal(state.get('mark'), '0.000005');
  assert.match(await page.locator('.status').innerText(), /MHz: 300; 0\.333345 s, 333\.3 ms from the mark/);
  await press(page, 'f');
  [start, end] = spanOf((await stateOf(page)).get('shown'));
  assert(start <= 0.000005 && end >= 0.333345 && end - start < 0.4);
  await press(page, 'Escape');
  assert.equal((await stateOf(page)).get('selected'), null);
  await press(page, 'z');
  assert.deepEqual(
      spanOf((await stateOf(page)).get('selected')), [0.000005, 0.333345], 'undo brings it back');
});

test('a click on a running slice tells the task, its waits, and leads to its next run', async () => {
  const page = await openTimechart();
  await page.evaluate(() => (location.hash = '#shown=0.02,0.03'));
  await frame(page);
  const x = gutter + 0.2 * (1280 - gutter - 14);
  await page.mouse.click(x, await rowOf(page, '301 - render'));
  const told = await page.locator('#view-span .run').innerText();
  assert.match(
      told,
      /^301 - render ran on CPU 1 for 3\.04 ms, from 0\.020827 s to 0\.023867 s; 13\.63 ms since it last ran, of which it waited 60 µs for a CPU \(0\.4%\), 13\.57 ms for I\/O \(99\.6%\), 1\.95 ms for the GPU \(14\.3%\)/);
  assert.deepEqual(spanOf((await stateOf(page)).get('selected')), [0.020827, 0.023867]);

  await press(page, ']');
  assert.deepEqual(spanOf((await stateOf(page)).get('selected')), [0.037494, 0.040534]);
  await press(page, '[');
  await page.getByRole('button', { name: 'Next run of this task' }).click();
  assert.deepEqual(spanOf((await stateOf(page)).get('selected')), [0.037494, 0.040534]);

  // On a core's row, the task that ran there.
  await page.evaluate(() => (location.hash = '#shown=0.02,0.03'));
  await frame(page);
  await page.mouse.click(x, await rowOf(page, 'CPU 1 Busy'));
  assert.match(await page.locator('#view-span .run').innerText(), /^301 - render ran on CPU 1/);
  assert.match(
      await page.locator('.status').innerText(), /^301 - render ran on CPU 1/, 'told to screen readers');
  assert.deepEqual(page.complaints, []);
});

test('rows fold, hide, pin and come back', async () => {
  const page = await openTimechart();
  const labels = async () => {
    await frame(page);
    return page.locator('.lane .label-name').allInnerTexts();
  };
  const all = await labels();
  assert.deepEqual(all.slice(0, 4), ['Cores', 'CPU 0 Busy', 'CPU 0 Frequency', 'CPU 0 Idle State']);
  await page.locator('.lane', { hasText: 'Cores' }).locator('.twisty').click();
  assert(!(await labels()).includes('CPU 0 Busy'));
  await page.locator('#view-lanes .labels').focus();
  await press(page, ' ');
  assert.deepEqual(await labels(), all, 'unfolded by key');

  await page.locator('.lane', { hasText: '300 - game' }).hover();
  await page.locator('.lane', { hasText: '300 - game' }).getByTitle('Pin to the top (P)').click();
  assert.equal((await labels())[0], '300 - game');
  await page.locator('.lane', { hasText: 'CPU 0 Frequency' }).click();
  await press(page, 'h');
  assert(!(await labels()).includes('CPU 0 Frequency'));
  await press(page, 'u');
  assert((await labels()).includes('CPU 0 Frequency'));
  await keepPicture(page, 'timechart-pinned');

  // Another page with the same address shows the same.
  await stateOf(page);
  const again = await openPage({ fragment: new URL(page.url()).hash });
  await openDocuments(again, file);
  assert.deepEqual(await again.locator('.lane .label-name').allInnerTexts(), await labels());
});

test('search goes through the rows, also those out of sight', async () => {
  const page = await openTimechart();
  await press(page, '/');
  await page.keyboard.type('L1 data');
  await press(page, 'Enter');
  const first = (await stateOf(page)).get('at');
  await press(page, 'Enter');
  const second = (await stateOf(page)).get('at');
  assert.notEqual(first, second);
  await press(page, 'Shift+Enter');
  assert.equal((await stateOf(page)).get('at'), first);
  await press(page, 'Escape');
  await press(page, '/');
  await page.keyboard.type('FTrace Ev');
  await press(page, 'Enter');
  assert.equal(await page.locator('.found').innerText(), 'FTrace Events');
  const box = await page.locator('.lane[aria-selected=true]').boundingBox();
  const view = await page.locator('#view-lanes').boundingBox();
  assert(box.y >= view.y && box.y + box.height <= view.y + view.height, 'scrolled into sight');
});

test('a screen reader finds the parts, and hovering repaints no row', async () => {
  const page = await openTimechart();
  const tree = page.getByRole('tree', { name: 'Rows of the timechart' });
  await tree.focus();
  await press(page, 'ArrowDown');
  await press(page, 'ArrowDown');
  const current = page.locator(`[id="${await tree.getAttribute('aria-activedescendant')}"]`);
  assert.equal(await current.getAttribute('aria-level'), '2');
  assert.equal(await current.getAttribute('aria-expanded'), 'true');
  assert.match(await page.getByRole('status').last().innerText(), /^CPU 0 Busy/);
  assert.equal(await page.getByRole('tab', { selected: true }).innerText(), 'Span');
  await press(page, '?');
  assert(await page.getByRole('dialog', { name: 'Help' }).isVisible());
  await press(page, 'Escape');

  const painted = await page.evaluate(() => {
    window.painted = 0;
    const { putImageData } = CanvasRenderingContext2D.prototype;
    CanvasRenderingContext2D.prototype.putImageData = function(...rest) {
      ++window.painted;
      return putImageData.apply(this, rest);
    };
  });
  assert.equal(painted, undefined);
  const y = await rowOf(page, '300 - game');
  for (let x = 300; x < 1200; x += 90) await page.mouse.move(x, y);
  await frame(page);
  assert(await page.locator('.tip').isVisible());
  assert.equal(await page.evaluate(() => window.painted), 0);
  await press(page, 'w');
  await frame(page);
  assert.equal(await page.evaluate(() => window.painted), 1, 'the counter counts');
});

test('a long table of figures grows when its end is scrolled to, and is copied whole', async () => {
  const file = join(mkdtempSync(join(tmpdir(), 'viewer-')), 'tasks.json');
  const tasks = Array.from({ length: 250 }, (_, i) => ({
                                              id: `proc-${i + 1}-r0`,
                                              name: `${i + 1} - task`,
                                              class: 'proc:running',
                                              type: 'binary',
                                              treeId: `${i + 1}_proc_root`,
                                              data: [[0, 1], [1 - i / 1000, 0], [2, 0]]
                                            }));
  writeFileSync(file, JSON.stringify({ entries: tasks }));
  const page = await openPage({ permissions: ['clipboard-read', 'clipboard-write'] });
  await openDocuments(page, file);
  const rows = page.locator('#view-span tbody tr');
  const few = await rows.count();
  assert(few < 100, `${few} rows out of sight`);
  for (let seen = few; seen < 200;) {
    await rows.last().scrollIntoViewIfNeeded();
    await page.waitForFunction(
        (before) => document.querySelectorAll('#view-span tbody tr').length > before, seen);
    seen = await rows.count();
  }
  assert.deepEqual((await rows.nth(199).innerText()).split('\t').slice(0, 2), ['200 - task', '801.000']);
  await rows.last().scrollIntoViewIfNeeded();
  await frame(page);
  assert.equal(await rows.count(), 200);
  await press(page, 'c');
  await page.waitForFunction(() => document.querySelector('.status').textContent === 'Copied 252 lines');
});

test('what is shown can be copied and saved', async () => {
  const page = await openTimechart({ permissions: ['clipboard-read', 'clipboard-write'] });
  await press(page, 'c');
  await page.waitForFunction(() => document.querySelector('.status').textContent.startsWith('Copied'));
  const text = await page.evaluate(() => navigator.clipboard.readText());
  assert.match(text, /^Core\tBusy, ms\tShare\tLongest gap, ms\nCPU 0 Busy\t243\.600\t24\.4%\t/m);
  const cores = await tableOf(page, 'Cores');
  for (const row of cores) assert(text.includes(row.join('\t') + '\n'), row[0]);
  for (const [kind, start] of [['PNG', '\x89PNG'], ['SVG', '<svg xmlns']]) {
    await page.locator('#view-lanes .labels').focus();
    await page.locator('summary', { hasText: 'Save' }).click();
    const [download] = await Promise.all(
        [page.waitForEvent('download'), page.getByRole('button', { name: `Save as ${kind}` }).click()]);
    const parts = [];
    for await (const part of await download.createReadStream()) parts.push(part);
    assert.equal(Buffer.concat(parts).toString('latin1').slice(0, start.length), start);
  }
});

for (const colorScheme of ['light', 'dark']) {
  test(`pictures on a ${colorScheme} page`, async () => {
    const page = await openTimechart({ colorScheme, reducedMotion: 'reduce' });
    await keepPicture(page, `timechart-${colorScheme}`);
    await page.evaluate(() => (location.hash = '#shown=0.02,0.045&selected=0.0205,0.0375'));
    await frame(page);
    await keepPicture(page, `timechart-zoomed-${colorScheme}`);
    const ground = await page.evaluate(() => {
      const canvas = document.querySelector('#view-lanes canvas');
      return [...canvas.getContext('2d').getImageData(5, 2, 1, 1).data.slice(0, 3)];
    });
    assert(colorScheme === 'dark' ? ground[0] < 80 : ground[0] > 200);
  });
}
