// Measures the page beside speedscope: measure.mjs PAGE FOLDER MODULES [CASE...]
//
// FOLDER holds million.json, three.json, their .speedscope.json, different.json and trace.json; MODULES the
// two packages of the lock file. CPU seconds and peak memory are those of the renderer, threads of workers
// included, above an empty page's.
import {execFileSync} from 'node:child_process';
import {readFileSync, statSync} from 'node:fs';
import {createRequire} from 'node:module';
import {join, resolve} from 'node:path';
import {pathToFileURL} from 'node:url';

const [pagePath, folder, modules] = process.argv.slice(2, 5).map((path) => resolve(path));
/** Names of the rows to measure; all if there are none. */
const cases = process.argv.slice(5);
const { chromium } = createRequire(join(modules, 'package.json'))('playwright-core');
const speedscope = join(modules, 'node_modules/speedscope/dist/release/index.html');
const ticksPerSecond = Number(execFileSync('getconf', ['CLK_TCK'], { encoding: 'utf8' }));

/** Watches the page from within: when what appeared, and the longest time between two frames. */
function watch() {
  const seen = { gap: 0, last: 0, start: 0, when: {} };
  window.seen = seen;
  const marks = {
    rows: () =>
        document.querySelector('main:not([hidden]) .counted')?.textContent || document.querySelector('.lane'),
    picture: () => [...document.querySelectorAll('.flame canvas, #view-lanes canvas')].some(
        ({ width }) => width > 300),
    complete: () => document.querySelector('.reading.complete'),
    // speedscope names the profile in its title once it is shown.
    titled: () => document.title.startsWith('million'),
  };
  addEventListener('change', () => (seen.start = seen.last = performance.now()), true);
  const look = () => {
    const now = performance.now();
    if (seen.start > 0) {
      if (seen.when.complete === undefined) seen.gap = Math.max(seen.gap, now - seen.last);
      for (const [name, there] of Object.entries(marks))
        if (seen.when[name] === undefined && there()) seen.when[name] = now - seen.start;
    }
    seen.last = now;
    requestAnimationFrame(look);
  };
  requestAnimationFrame(look);
}

/**
 * Calls `body` with a page in a browser of its own, and a function that returns what its renderer has used
 * so far.
 */
async function withPage(url, body) {
  const executablePath = execFileSync('which', ['chromium'], { encoding: 'utf8' }).trim();
  const browser =
      await chromium.launch({ executablePath, args: process.getuid() === 0 ? ['--no-sandbox'] : [] });
  try {
    const page = await browser.newPage({ viewport: { width: 1640, height: 1400 } });
    await page.addInitScript(watch);
    await page.goto(url);
    // The browser's own start goes on after the page's.
    await page.waitForTimeout(2500);
    const session = await browser.newBrowserCDPSession();
    const { processInfo } = await session.send('SystemInfo.getProcessInfo');
    const renderers = processInfo.filter(({ type }) => type === 'renderer').map(({ id }) => id);
    const used = () => {
      const sums = renderers.map((id) => {
        const fields = readFileSync(`/proc/${id}/stat`, 'utf8').replace(/^.*\) /, '').split(' ');
        const peak = /VmHWM:\s+(\d+)/.exec(readFileSync(`/proc/${id}/status`, 'utf8'))[1];
        return { cpu: (Number(fields[11]) + Number(fields[12])) / ticksPerSecond, peak: Number(peak) / 1024 };
      });
      return sums.reduce((a, b) => ({ cpu: a.cpu + b.cpu, peak: Math.max(a.peak, b.peak) }));
    };
    return await body(page, used);
  } finally {
    await browser.close();
  }
}

const ours = pathToFileURL(pagePath).href;
const whole = (number) => (number === undefined ? '' : number.toFixed(0));

function row(...cells) { console.log(`| ${cells.join(' | ')} |`); }

/** Opens a file and reports what that took. */
async function opening(label, url, name, done) {
  await withPage(url, async (page, used) => {
    const path = join(folder, name);
    const before = used();
    await page.setInputFiles('input[type=file]', path);
    await page.waitForFunction(
        (mark) => window.seen.when[mark] !== undefined, done, { timeout: 300_000, polling: 50 });
    await page.waitForTimeout(1500);
    const after = used();
    const { gap, when } = await page.evaluate(() => window.seen);
    const size = `${(statSync(path).size / 1e6).toFixed(0)} MB`;
    row(label, size, whole(when.rows), whole(when.picture), whole(when[done]),
        (after.cpu - before.cpu).toFixed(2), whole(after.peak), whole(before.peak),
        done === 'complete' ? whole(gap) : '');
  });
}

/**
 * Sends an event a frame, and returns the times between frames and the script's time in one, in
 * milliseconds.
 */
const frames = (page, selector, count, kind) => page.evaluate(
    async ([wanted, total, what]) => {
      const target = document.querySelector(wanted);
      const box = target.getBoundingClientRect();
      const times = [];
      let script = 0;
      const { requestAnimationFrame: ask } = window;
      window.requestAnimationFrame = (callback) => ask((time) => {
        const start = performance.now();
        callback(time);
        script += performance.now() - start;
      });
      const next = () => new Promise((done) => ask(done));
      let last = await next();
      for (let i = 0; i < total; ++i) {
        const place = {
          clientX: box.left + 300 + ((i * 7) % 900),
          clientY: box.top + 40 + ((i * 3) % 60),
          bubbles: true,
          cancelable: true
        };
        const start = performance.now();
        if (what === 'hover')
          target.dispatchEvent(new PointerEvent('pointermove', place));
        else if (what === 'pan')
          target.dispatchEvent(
              new WheelEvent('wheel', {...place, shiftKey: true, deltaY: i % 40 < 20 ? 30 : -30 }));
        else
          target.dispatchEvent(
              new WheelEvent('wheel', {...place, ctrlKey: true, deltaY: i % 60 < 30 ? -60 : 60 }));
        script += performance.now() - start;
        const now = await next();
        times.push(now - last);
        last = now;
      }
      window.requestAnimationFrame = ask;
      times.sort((a, b) => a - b);
      return { median: times[total >> 1], late: times[Math.floor(total * 0.95)], script: script / total };
    },
    [selector, count, kind],
);

const frameCount = 120;

async function moving(label, name, selector) {
  await withPage(ours, async (page, used) => {
    await page.setInputFiles('input[type=file]', join(folder, name));
    await page.waitForFunction(() => window.seen.when.complete !== undefined, null, { timeout: 300_000 });
    await page.waitForTimeout(2500);
    for (const kind of ['zoom', 'pan', 'hover']) {
      const before = used().cpu;
      const { median, late, script } = await frames(page, selector, frameCount, kind);
      const cpu = (1000 * (used().cpu - before)) / frameCount;
      row(`${label}, ${kind}`, median.toFixed(1), late.toFixed(1), script.toFixed(2), cpu.toFixed(1));
    }
  });
}

/** Selects spans of a document, and reports the script's time to the new figures. */
async function brushing(name) {
  await withPage(ours, async (page) => {
    await page.setInputFiles('input[type=file]', join(folder, name));
    await page.waitForFunction(() => window.seen.when.complete !== undefined, null, { timeout: 300_000 });
    await page.waitForTimeout(1500);
    const times = await page.evaluate(async () => {
      const target = document.querySelector('#view-ruler');
      const box = target.getBoundingClientRect();
      const { requestAnimationFrame: ask } = window;
      let script = 0;
      window.requestAnimationFrame = (callback) => ask((time) => {
        const start = performance.now();
        callback(time);
        script += performance.now() - start;
      });
      const send = (type, x) => target.dispatchEvent(new PointerEvent(
          type, { clientX: box.left + x, clientY: box.top + 20, bubbles: true, pointerId: 1, buttons: 1 }));
      target.setPointerCapture = () => {};
      const found = [];
      send('pointerdown', 400);
      for (let i = 0; i < 30; ++i) {
        script = 0;
        send('pointermove', 450 + i * 25);
        await new Promise((done) => ask(() => ask(done)));
        found.push(script);
      }
      send('pointerup', 1200);
      return found.sort((a, b) => a - b);
    });
    row(`brush, ${name}`, times[15].toFixed(1), times[28].toFixed(1));
  });
}

/** Tables: a title, the columns, and by name what each row measures. */
const tables = [
  [
    'Opening: first rows, first picture, complete in ms; CPU in s, peak and empty memory in MB of the renderer; longest gap in ms',
    ['what', 'size', 'rows', 'picture', 'complete', 'CPU', 'peak', 'empty', 'gap'], {
      million: () => opening('the page, 10^6 samples', ours, 'million.json', 'complete'),
      speedscope: () => opening(
          'speedscope, the same samples', pathToFileURL(speedscope).href, 'million.speedscope.json',
          'titled'),
      three: () => opening('the page, 3.2 10^6 samples', ours, 'three.json', 'complete'),
      trace: () => opening('the page, 10^6 trace-points', ours, 'trace.json', 'complete'),
    }
  ],
  [
    'Moving: ms from frame to frame, median and 95th percentile, ms of script a frame, and ms of the renderer\'s CPU a frame',
    ['what', 'median', '95 %', 'script', 'CPU'], {
      'move-million': () => moving('flame graph of 10^6 samples', 'million.json', '#view-ruler'),
      'move-trace': () => moving('rows of 10^6 trace-points', 'trace.json', '#view-lanes .stage'),
    }
  ],
  [
    'Brush to new figures: ms of script, median and worst of 30', ['what', 'median', 'worst'], {
      'brush-million': () => brushing('million.json'),
      'brush-different': () => brushing('different.json'),
    }
  ],
];

for (const [title, columns, rows] of tables) {
  const chosen = Object.keys(rows).filter((name) => cases.length === 0 || cases.includes(name));
  if (chosen.length === 0) continue;
  console.log(`${title}\n`);
  row(...columns);
  row(...columns.map(() => '---'));
  for (const name of chosen) await rows[name]();
  console.log('');
}
