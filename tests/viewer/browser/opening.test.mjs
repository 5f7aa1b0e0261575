// How documents come into the page: packed, damaged, in pieces, embedded in the page, and aborted.
import assert from 'node:assert/strict';
import {mkdtempSync, readFileSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {after, test} from 'node:test';
import {gzipSync} from 'node:zlib';

import {documents, frame, openDocuments, openPage, page as viewer, useBrowser} from './browser.mjs';

useBrowser();

const folder = mkdtempSync(join(tmpdir(), 'viewer-'));
after(() => rmSync(folder, { recursive: true }));

const profile = readFileSync(join(documents, 'profile.json'));
const timechart = readFileSync(join(documents, 'timechart.json'));

function written(name, content) {
  const path = join(folder, name);
  writeFileSync(path, content);
  return path;
}

const counted = (page) => page.locator('.view:not([hidden]) .counted').first().innerText();
const told = (page) => page.locator('.reading').allInnerTexts();

test('a packed document opens by what it is, not by its name', async () => {
  const page = await openPage();
  await openDocuments(page, written('packed.json', gzipSync(profile)));
  assert.equal(await counted(page), '600 samples');
  assert.deepEqual(page.complaints, []);
});

test('of a packed document that is cut off, all that can be unpacked is shown', async () => {
  const packed = gzipSync(profile);
  const page = await openPage();
  await openDocuments(page, written('cut.json.gz', packed.subarray(0, Math.floor(packed.length * 0.9))));
  const samples = parseInt(await counted(page), 10);
  assert(samples > 450 && samples < 600, `${samples}`);
  assert.match((await told(page))[0], /cut\.json\.gz: the document is cut off at byte \d+/);
});

test('wrong files get a clear line, and do not hinder a right one', async () => {
  const page = await openPage();
  const wrong = [
    written('perf.data', 'PERFILE2 and more'), written('page.html', '<html>'),
    written('other.json', '{"a":1}'), written('lone.json.layout.json', '{"Version":"1.0"}')
  ];
  await openDocuments(page, ...wrong, written('right.json', profile));
  const [recording, html, other, lone] = await told(page);
  assert.match(recording, /perf\.data: a recording, not a document/);
  assert.match(html, /page\.html: no document of zelconv/);
  assert.match(other, /other\.json: no document of zelconv: its first label is "a"/);
  assert.match(lone, /lone\.json\.layout\.json: no document of zelconv/);
  assert.equal(await counted(page), '600 samples');
});

test('documents in the page itself open at once, with their layout file', async () => {
  const slot = (name, content) => `<script type="application/gzip;base64" data-name="${name}">${
      gzipSync(content).toString('base64')}</script>`;
  const mappings = [{ pid: 100, start: '0x10000', size: '0x10000', original: '0x7f0000010000' }];
  const held = [
    slot('a.json', profile),
    slot('a.json.layout.json', JSON.stringify({ Version: '1.0', depth: 40, mappings })),
    slot('a.timechart.json', timechart),
  ];
  const file =
      written('held.html', readFileSync(viewer, 'utf8').replace('<!--documents-->', () => held.join('\n')));
  const page = await openPage({ file });
  await page.locator('.reading.complete').nth(1).waitFor();
  await frame(page);
  assert.equal(await counted(page), '600 samples');
  assert(await page.locator('#view-lanes').isVisible());
  // With 40 entries kept, no back-trace of this document was cut.
  await page.keyboard.press('2');
  await frame(page);
  const rows = await page.locator('#view-tree [role=row]').allInnerTexts();
  assert(rows.length > 3 && !rows.some((row) => row.includes('cut off')), rows.join('\n'));
  assert.deepEqual(page.complaints, []);
});

test('a large document grows while it is read and can be stopped', async () => {
  const [head, rest] = profile.toString('latin1').split('"samples": {');
  const at = rest.indexOf('[[') + 1;
  const row = '[1,69894,13,5.25,0,4,100,[[69894,13,],[69897,16,],],],';
  const large = Buffer.from(`${head}"samples": {${rest.slice(0, at)}${row.repeat(4_000_000)}]}}`, 'latin1');
  const page = await openPage();
  // The page's own clock: a late message must not make the test depend on the machine's speed.
  await page.evaluate(() => {
    window.seen = [];
    new MutationObserver(() => {
      const text = document.querySelector('.view:not([hidden]) .counted')?.textContent ?? '';
      if (!text.startsWith('about') || window.seen.includes(text)) return;
      if (window.seen.push(text) === 2) document.querySelector('.reading button').click();
    }).observe(document.body, { subtree: true, childList: true, characterData: true });
  });
  await page.setInputFiles('input[type=file]', written('large.json', large));
  await page.locator('.reading.damaged, .reading.complete').waitFor();
  await frame(page);
  const seen = await page.evaluate(() => window.seen.map((text) => Number(text.replace(/\D/g, ''))));
  assert(seen.length >= 2 && seen[1] > seen[0], seen.join(' '));
  assert.match((await told(page))[0], /large\.json: reading was stopped at byte \d+/);
  const samples = Number((await counted(page)).replace(/\D/g, ''));
  // Each sample of a picture stands for as many, also the last one.
  assert(samples > seen[0] && samples < 4_000_000, `${samples}`);
});
