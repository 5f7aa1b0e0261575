// The Performance panel of Chromium opens what zelkit exports.
import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {createServer} from 'node:net';
import {basename, join} from 'node:path';
import {after, before, test} from 'node:test';

import {keepPicture} from '../viewer/browser/browser.mjs';

import {exported, profiles, root, timecharts} from './exports.mjs';

const { chromium } = createRequire(join(root, 'build/viewer/package.json'))('playwright-core');
let browser;
let port;

/** Returns a port that nobody uses just now. */
const freePort = () => new Promise((resolve) => {
  const server = createServer().listen(0, '127.0.0.1', () => {
    const { port: free } = server.address();
    server.close(() => resolve(free));
  });
});

before(async () => {
  port = await freePort();
  const executablePath = execFileSync('which', ['chromium'], { encoding: 'utf8' }).trim();
  const args = [`--remote-debugging-port=${port}`, '--remote-allow-origins=*'];
  if (process.getuid() === 0) args.push('--no-sandbox');
  browser = await chromium.launch({ executablePath, args });
});
after(async () => await browser?.close());

/** All that the panel has as text, in its shadow trees too. */
const textOf = (page) => page.evaluate(() => {
  const texts = [];
  const walk = (node) => {
    if (node.nodeType === Node.TEXT_NODE && !['STYLE', 'SCRIPT'].includes(node.parentNode.tagName))
      texts.push(node.textContent.trim());
    if (node.shadowRoot) walk(node.shadowRoot);
    for (const child of node.childNodes) walk(child);
  };
  walk(document.body);
  return texts.filter(Boolean).join(' | ');
});

/** Opens the file in the panel; returns the panel with its text once the text matches. */
async function openInPanel(file, wanted, tries = 100) {
  const page = await browser.newPage({ viewport: { width: 1400, height: 800 } });
  page.complaints = [];
  page.on('pageerror', (error) => page.complaints.push(error.message));
  await page.goto(`http://127.0.0.1:${port}/devtools/devtools_app.html?panel=timeline`);
  const input = page.locator('input[type=file]').first();
  await input.waitFor({ state: 'attached' });
  await input.setInputFiles(file);
  for (let i = 0; i < tries; ++i) {
    page.text = await textOf(page);
    if (wanted.test(page.text)) return page;
    await page.waitForTimeout(200);
  }
  throw new Error(`${file}: not shown: ${page.text.slice(-900)}`);
}

const shown = /Summary \| Bottom-up \| Call tree/;

test('the panel does not show what is no trace', async () => {
  const file = join(root, 'build/foreign/exports/none.json');
  mkdirSync(join(root, 'build/foreign/exports'), { recursive: true });
  writeFileSync(file, '{"traceEvents":');
  await assert.rejects(openInPanel(file, shown, 20), /not shown/);
});

for (const document of timecharts) {
  test(`the trace of ${basename(document)}`, async () => {
    const file = exported(document, 'trace-event', 'trace.json');
    assert(JSON.parse(readFileSync(file, 'utf8')).traceEvents.length > 0);
    const page = await openInPanel(file, shown);
    await keepPicture(page, `panel-${basename(document)}`);
    assert.deepEqual(page.complaints, []);
    await page.close();
  });
}

for (const document of profiles) {
  test(`the CPU profile of ${basename(document)}`, async () => {
    const file = exported(document, 'cpuprofile');
    const { startTime, endTime } = JSON.parse(readFileSync(file, 'utf8'));
    const page = await openInPanel(file, /Range:\s+[\d.]+\s+ms – [\d.]+\s+m?s/);
    const [, range, unit] = /Range:\s+[\d.]+\s+ms – ([\d.]+)\s+(m?s)/.exec(page.text);
    const milliseconds = (endTime - startTime) / 1000;
    assert(
        Math.abs(Number(range) * (unit === 's' ? 1000 : 1) - milliseconds) <= 0.01 * milliseconds, page.text);
    await keepPicture(page, `panel-${basename(document)}`);
    assert.deepEqual(page.complaints, []);
    await page.close();
  });
}
