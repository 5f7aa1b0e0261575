// Names with markup, and truncated documents.
import assert from 'node:assert/strict';
import {readFileSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {documents, frame, openDocuments, openPage, useBrowser} from './browser.mjs';

useBrowser();

const names = [
  '<img src=x onerror=window.harmed=1>',
  '</script><script>window.harmed=1</script>',
  '\u202egnp.exe\u200b',
  '&lt;b&gt;\\u0000nul',
  'n'.repeat(10000),
  '__proto__',
  '"><svg onload=window.harmed=1>',
];
const quoted = (name) => `"${name.replaceAll('"', '\\"').replaceAll('/', '\\/')}"`;

function hostileTimechart() {
  const entries = names.flatMap((name, i) => {
    const head = `"name":${quoted(name)},"treeId":${quoted(`${name}_proc_root`)},"show":1,"tip":${
        quoted(name)},"hints":{"white":${quoted(name)},"black":"#12345"}`;
    return [
      `{"id":"proc-${i}-r0",${
          head},"type":"binary","class":"proc:running","data":[[0.000000, 1],[1.000000, 0]]}`,
      `{"id":"proc-${i}-e",${head},"type":"events","class":"proc:events","data":[[0.5,1,${quoted(name)},${
          quoted(name)},],]}`,
      `{"id":"cpu-${i}-b",${head},"type":"binary","class":"cpu:busy","data":[[0.000000,1]]}`,
    ];
  });
  return `{"entries":[\n${entries.join('\n,')},]}`;
}

function hostileProfile() {
  const section = (name, rows) =>
      `"${name}":{"descriptions":{},"data":[${rows.map((row) => `${row},`).join('')}]}`;
  return `{"Description":{"Version":"1.0","Target Chip":${
      quoted(names[0])},"Start Time":0,"First Sample Time":0,"duration":1},${
          [section('processes', names.map((name, i) => `[${i + 1},${i},${i},${quoted(name)},]`)),
           section('libraries', names.map((name, i) => `[${i + 10},1,${quoted(name)},${65536 * i},4096,]`)),
           section('files', names.map((name, i) => `[${i + 1},${quoted(name)},[[${i + 30},1,],],]`)),
           section(
               'functions',
               names.map((name, i) => `[${i + 30},${quoted(name)},${65536 * i},256,[${i + 10},],]`)),
           section(
               'samples',
               names.map(
                   (_, i) => `[${i + 1},${65536 * i},${i + 30},${i / 10},0,${i + 1},${i},[[${65536 * i},${
                       i + 30},],],]`)),
  ].join(',')}}`;
}

test('names with markup, marks of direction, NULs and 10,000 characters do no harm', async () => {
  const profile = join(documents, `hostile-<img src=x onerror=window.harmed=1>-profile.json`);
  const timechart = join(documents, 'hostile-timechart.json');
  writeFileSync(profile, hostileProfile());
  writeFileSync(timechart, hostileTimechart());
  const page = await openPage();
  await openDocuments(page, profile, timechart);
  assert.deepEqual(await page.locator('.reading:not(.complete)').allInnerTexts(), []);
  const elements = await page.evaluate(() => document.querySelectorAll('img, svg, iframe, script').length);
  for (let view = 1; view <= 6; ++view) {
    await page.keyboard.press(String(view));
    await frame(page);
    for (let y = 60; y < 700; y += 40) await page.mouse.move(500, y);
  }
  await page.locator('#view-lanes .labels').focus();
  for (let i = 0; i < 12; ++i) await page.keyboard.press('ArrowDown');
  await page.keyboard.press('/');
  await page.keyboard.type('<img');
  await page.keyboard.press('Enter');
  await frame(page);
  assert.equal(await page.evaluate(() => window.harmed), undefined);
  assert.equal(
      await page.evaluate(() => document.querySelectorAll('img, svg, iframe, script').length), elements,
      'no element came of a name');
  const shown = await page.evaluate(() => document.body.innerText);
  assert(shown.includes('<img src=x'), 'names are shown as they are');
  assert(!/[\u200b\u202e\u0000]/.test(shown), 'marks that hide or turn text are not');
  assert.deepEqual(page.complaints, []);
});

test('a document cut at any byte shows what came before and says where it broke', async () => {
  const whole = readFileSync(join(documents, 'timechart.json'), 'latin1');
  const lines = whole.split('\n');
  // Two rows of the demo with few points each, and the list of markers.
  const small = [
    '{"entries":[', lines.find((line) => line.includes('"cpu-0-f"')).replace(/^,/, ''),
    lines.find((line) => line.includes('"evt"'))
  ].join('\n');
  assert(small.length < 1200, `${small.length}`);
  const page = await openPage();
  const outcomes = await page.evaluate(async (text) => {
    const results = [];
    const input = document.querySelector('input[type=file]');
    for (let size = 0; size < text.length; ++size) {
      const transfer = new DataTransfer();
      transfer.items.add(new File([text.slice(0, size)], `cut-${size}.json`));
      input.files = transfer.files;
      input.dispatchEvent(new Event('change'));
      for (;;) {
        await new Promise((done) => requestAnimationFrame(done));
        const chips = document.querySelectorAll('.reading');
        const chip = [...chips].find(({ textContent }) => textContent.includes(`cut-${size}.json`));
        if (chip !== undefined && chip.querySelector('progress') === null) {
          results.push([chip.className, chip.textContent]);
          break;
        }
      }
    }
    return results;
  }, small);
  assert.equal(outcomes.length, small.length);
  outcomes.forEach(([state, told], size) => {
    assert.match(state, /damaged|failed/, `${size}: ${told}`);
    assert(told.includes(`cut-${size}.json`), told);
    if (state.includes('damaged')) assert.match(told, new RegExp(`at byte ${size}$`));
  });
  assert(outcomes.filter(([state]) => state.includes('damaged')).length > small.length * 0.9);
  assert.deepEqual(page.complaints, []);
});
