// A browser with the page, and helpers for tests.
import {execFileSync} from 'node:child_process';
import {mkdirSync} from 'node:fs';
import {createRequire} from 'node:module';
import {join, resolve} from 'node:path';
import {after, before} from 'node:test';
import {pathToFileURL} from 'node:url';

const root = resolve(import.meta.dirname ?? new URL('.', import.meta.url).pathname, '../../..');
const { chromium } = createRequire(join(root, 'build/viewer/package.json'))('playwright-core');

export const page = join(root, 'build/viewer/viewer.html');
export const documents = join(root, 'build/viewer/documents');
const pictures = join(root, 'out/viewer');

let browser;

/** Starts the browser, which openPage uses. */
export async function startBrowser() {
  const executablePath = execFileSync('which', ['chromium'], { encoding: 'utf8' }).trim();
  // Chromium's own sandbox needs a user other than root.
  browser = await chromium.launch({ executablePath, args: process.getuid() === 0 ? ['--no-sandbox'] : [] });
}

export const endBrowser = async () => await browser?.close();

/** Starts the browser before a file's tests and ends it after them. */
export function useBrowser() {
  before(startBrowser);
  after(endBrowser);
}

/**
 * Opens the page in a window of its own; `complaints` holds what went wrong there, and any request that it
 * made.
 */
export async function openPage(
    {fragment = '', file = page, url = pathToFileURL(file).href, ...options} = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 720 }, ...options });
  await context.addInitScript(watchFrames);
  await context.addInitScript(watchTimers);
  const opened = await context.newPage();
  opened.complaints = [];
  opened.on('pageerror', (error) => opened.complaints.push(error.message));
  opened.on('console', (message) => message.type() === 'error' && opened.complaints.push(message.text()));
  opened.on('request', (request) => {
    if (!/^(blob|data):/.test(request.url()) && !request.url().startsWith(url))
      opened.complaints.push(request.url());
  });
  await opened.goto(url + fragment);
  return opened;
}

/** Opens files in the page and waits until all are read. */
export async function openDocuments(opened, ...files) {
  await opened.setInputFiles('input[type=file]', files);
  await opened.locator('.reading').nth(files.length - 1).waitFor();
  await opened.waitForFunction(
      () => document.querySelector('.reading.reading') === null ||
          document.querySelectorAll('.reading progress').length === 0);
  await frame(opened);
}

/** Runs in the page: `settled` calls back once two frames have passed and the page asks for no more. */
function watchFrames() {
  const { requestAnimationFrame: ask, cancelAnimationFrame: cancel } = window;
  const asked = new Set();
  window.requestAnimationFrame = (callback) => {
    const id = ask((time) => {
      asked.delete(id);
      callback(time);
    });
    asked.add(id);
    return id;
  };
  window.cancelAnimationFrame = (id) => {
    asked.delete(id);
    cancel(id);
  };
  window.settled = (done) => {
    const look = () => (asked.size === 0 ? done() : ask(look));
    ask(() => ask(look));
  };
}

/** Runs in the page: `timers` holds what the page still waits for. */
function watchTimers() {
  const { setTimeout: start, clearTimeout: stop } = window;
  const timers = (window.timers = new Set());
  window.setTimeout = (callback, delay) => {
    const id = start(() => {
      timers.delete(id);
      callback();
    }, delay);
    timers.add(id);
    return id;
  };
  window.clearTimeout = (id) => {
    timers.delete(id);
    stop(id);
  };
}

/** Waits until what was done is drawn. */
export const frame = (opened) => opened.evaluate(() => new Promise((done) => window.settled(done)));

/** Returns what the URL says of the page's state, once it has followed what was done. */
export async function stateOf(opened) {
  await frame(opened);
  await opened.waitForFunction(() => window.timers.size === 0);
  return new URLSearchParams(new URL(opened.url()).hash.slice(1));
}

/** Returns a table of the page as rows of texts, found by its caption. */
export const tableOf = (opened, caption) => opened.evaluate((wanted) => {
  const table = [...document.querySelectorAll('table')].find(
      (candidate) => candidate.caption?.textContent.startsWith(wanted));
  return table === undefined ? null :
                               [...table.rows].map((row) => [...row.cells].map((cell) => cell.textContent));
}, caption);

/** Keeps a picture of the page for a person to look at. */
export async function keepPicture(opened, name) {
  mkdirSync(pictures, { recursive: true });
  await opened.screenshot({ path: join(pictures, `${name}.png`) });
}

/** Returns what one of the example programs prints about a document. */
export const example = (program, file) =>
    execFileSync(join(root, 'build/dev/examples', program), [file], {encoding: 'utf8'});
