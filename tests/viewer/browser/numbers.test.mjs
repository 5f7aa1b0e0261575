// Compares the numbers on the page with those of the example programs for the same documents.
import assert from 'node:assert/strict';
import {existsSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {documents, example, frame, openDocuments, openPage, tableOf, useBrowser} from './browser.mjs';

useBrowser();

for (const name of ['timechart.json', 'arm-timechart.json']) {
  const file = join(documents, name);
  test(`the busy time of each core in ${name}`, { skip: !existsSync(file) }, async () => {
    const lines = example('cpu_load', file).split('\n');
    const expected = lines.flatMap((line) => {
      const found = /^(CPU \d+ Busy) +([\d.]+) s of/.exec(line);
      return found === null ? [] : [[found[1], (1000 * Number(found[2])).toFixed(3)]];
    });
    assert(expected.length >= 2);
    const page = await openPage();
    await openDocuments(page, file);
    const cores = await tableOf(page, 'Cores');
    for (const [label, busy] of expected) {
      const row = cores.find(([core]) => core === label);
      assert.equal(row?.[1], busy, label);
    }
    assert.deepEqual(page.complaints, []);
  });
}

test('sums of a selection follow from the recording', async () => {
  // The demo's game runs for 4.01 ms from 190 µs on, and moves its counter by 4,000,000 meanwhile.
  const page = await openPage({ fragment: '#selected=0.00019,0.002195' });
  await openDocuments(page, join(documents, 'timechart.json'));
  const [head, ...rows] = await tableOf(page, 'Tasks');
  const game = rows.find(([task]) => task === '300 - game');
  assert.equal(game[head.indexOf('Running, ms')], '2.005');
  assert.equal(game[head.indexOf('Share')], '100.0%');
  assert.equal(game[head.indexOf('L1 data cache accesses')], '100,000');
  await page.goto(page.url().replace(/#.*/, '#selected=0.0001,0.00015'));
  await frame(page);
  assert.deepEqual(
      (await tableOf(page, 'Interrupts')).slice(1).map(([label, count, time]) => [label, count, time]), [
        ['29 - timer', '1', '0.050'],
        ['soft 1 - TIMER', '1', '0.025'],
      ]);
});

for (const name of ['profile.json', 'arm-profile.json']) {
  const file = join(documents, name);
  test(`the hottest functions of ${name}`, { skip: !existsSync(file) }, async () => {
    const printed = example('hottest_functions', file);
    const [, samples] = /^samples +(\d+)$/m.exec(printed);
    const expected =
        [...printed.matchAll(/^ +(\d+) +[\d.]+%  (.+)$/gm)].map(([, count, label]) => [label, Number(count)]);
    assert(expected.length >= 8, printed);
    const page = await openPage({ fragment: '#view=functions' });
    await openDocuments(page, file);
    assert.equal(
        await page.locator('#view-functions .counted').innerText(),
        `${Number(samples).toLocaleString('en')} samples`);
    const rows =
        await page.locator('#view-functions .rows [role=row]')
            .evaluateAll(
                (all) => all.map(
                    (row) =>
                        [row.querySelector('.name').textContent,
                         parseInt(row.querySelector('.number').textContent.replaceAll(',', ''), 10)]),
            );
    const shown = new Map(rows);
    for (const [label, count] of expected)
      assert.equal(shown.get(label.replace(/^\[in (.*)\]$/, '$1')), count, label);
    assert.deepEqual(page.complaints, []);
  });
}
