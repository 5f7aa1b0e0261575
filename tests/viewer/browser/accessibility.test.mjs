// What a screen reader gets of the page: roles, names and states, as the browser tells them.
import assert from 'node:assert/strict';
import {join} from 'node:path';
import {test} from 'node:test';

import {documents, frame, openDocuments, openPage, useBrowser} from './browser.mjs';

useBrowser();

/**
 * Returns the accessibility tree as lines such as `tree "Rows of the timechart"`, without what is ignored.
 */
async function spokenParts(page) {
  const session = await page.context().newCDPSession(page);
  const { nodes } = await session.send('Accessibility.getFullAXTree');
  const state = ({ properties = [] }) =>
      properties
          .filter(
              ({ name, value }) => ['level', 'expanded', 'selected', 'pressed'].includes(name) &&
                  value.value !== false)
          .map(({ name, value }) => ` ${name}=${value.value}`)
          .join('');
  return nodes.filter(({ ignored }) => !ignored)
      .map((node) => ({
             role: node.role.value,
             name: node.name?.value ?? '',
             line: `${node.role.value} "${node.name?.value ?? ''}"${state(node)}`
           }));
}

/** Roles of which no part may be without a name. */
const named = [
  'button', 'checkbox', 'combobox', 'searchbox', 'tree', 'treeitem', 'grid', 'treegrid', 'listbox', 'option',
  'tab', 'tablist', 'tabpanel', 'img', 'application', 'columnheader', 'separator', 'dialog', 'heading'
];

const views = {
  flame: [
    'application "Flame graph; arrow keys walk it, Enter zooms"',
    'button "Callers of the places that took the samples"'
  ],
  tree: [
    'treegrid "Call tree"', 'columnheader "Total"',
    'row "all samples, total 600 100.0%" level=1 expanded=true'
  ],
  functions: ['grid "Functions"', 'columnheader "Self"', 'combobox "Rows are"', 'gridcell "schedule"'],
  butterfly: ['application "Callers"', 'application "Callees"'],
  difference: ['application "Difference flame graph"', 'grid "Changes"', 'columnheader "Function (self)"'],
  span: ['table "Cores"', 'columnheader "Busy, ms"', 'rowheader "CPU 0 Busy"'],
};

test('each view has roles, names and states', async () => {
  const page = await openPage();
  const [profile, timechart] = ['profile.json', 'timechart.json'].map((name) => join(documents, name));
  await openDocuments(page, profile);
  await openDocuments(page, profile, timechart);
  for (const [view, expected] of Object.entries(views)) {
    await page.evaluate((id) => (location.hash = `#view=${id}`), view);
    await frame(page);
    const parts = await spokenParts(page);
    const lines = parts.map(({ line }) => line);
    for (const line
             of [...expected, 'tree "Rows of the timechart"', 'treeitem "CPU 0 Busy" level=2 expanded=true',
                 'option "Core 0 300"', 'tablist "Views"', 'separator "Height of the time views"',
                 'searchbox "Search ( / )"'])
      assert(
          lines.some((found) => found.startsWith(line)),
          `${view}: ${line} is not among\n${lines.join('\n')}`);
    assert(lines.some((line) => /^tab "[^"]+" selected=true/.test(line)), `${view}: a tab is selected`);
    const nameless = parts.filter(({ role, name }) => named.includes(role) && name.trim() === '');
    assert.deepEqual(nameless.map(({ line }) => line), [], view);
  }
  assert.deepEqual(page.complaints, []);
});

test('what gets the focus tells what it is and where in it', async () => {
  const page = await openPage();
  await openDocuments(page, join(documents, 'profile.json'), join(documents, 'timechart.json'));
  const status = page.locator('.status');
  await page.locator('#view-flame .flame').focus();
  assert.match(await status.innerText(), /^Flame graph; .*; all samples: 600 \(100\.0%\)/);
  await page.keyboard.press('ArrowDown');
  assert.match(await status.innerText(), /^cut off here/);
  await page.locator('#view-lanes .labels').focus();
  for (const key of ['Home', 'ArrowDown']) await page.keyboard.press(key);
  assert.match(await status.innerText(), /^CPU 0 Busy; \d+\.\d% here; 0\.000000 s/);
});

test('rows tell their columns, and what stays is left alone', async () => {
  const page = await openPage({ fragment: '#view=tree' });
  await openDocuments(page, join(documents, 'profile.json'));
  const grid = page.getByRole('treegrid');
  await grid.focus();
  // A text that is set again is told again, though nothing is new.
  await grid.evaluate((rows) => {
    window.changed = [];
    new MutationObserver((list) => window.changed.push(...list.map(({ target }) => target.outerHTML)))
        .observe(rows, { childList: true, characterData: true, subtree: true });
  });
  for (const key of ['ArrowDown', 'ArrowDown']) await page.keyboard.press(key);
  await frame(page);
  assert.deepEqual(await page.evaluate(() => window.changed), []);
  const row = page.locator(`[id="${await grid.getAttribute('aria-activedescendant')}"]`);
  assert.equal(await row.getAttribute('aria-label'), 'pick_apple, total 44  7.3%, library /usr/bin/orchard');
  assert.match(await row.getAttribute('class'), /\bcurrent\b/);
});

test('rows without rows below them do not fold', async () => {
  const page = await openPage();
  await openDocuments(page, join(documents, 'timechart.json'));
  const rows = () => page.locator('.lane').evaluateAll(
      (lanes) => lanes.map((lane) => `${lane.ariaLabel} ${lane.getAttribute('aria-expanded')}`));
  await page.locator('.lane', { hasText: 'CPU 0 Frequency' }).click();
  await frame(page);
  const before = await rows();
  assert(before.includes('CPU 0 Frequency null'), before.join('\n'));
  await page.keyboard.press('Space');
  await frame(page);
  assert.deepEqual(await rows(), before);
  assert.doesNotMatch(await page.locator('.status').innerText(), /folded/);
});

test('the figures of a span are reached by Tab', async () => {
  const page = await openPage({ fragment: '#view=span' });
  await openDocuments(page, join(documents, 'timechart.json'));
  await page.getByRole('tab', { name: 'Span' }).focus();
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'view-span');
});

test('rows out of sight are reached and scrolled by keys alone', async () => {
  const page = await openPage();
  await openDocuments(page, join(documents, 'timechart.json'));
  const top = () => page.evaluate(() => document.querySelector('#view-lanes .scroll').scrollTop);
  const labels = page.locator('#view-lanes .labels');
  const cursor = () => labels.getAttribute('aria-activedescendant');
  await labels.focus();
  for (const key of ['Home', 'ArrowDown']) await page.keyboard.press(key);
  await frame(page);
  const before = await cursor();
  assert.equal(before, 'lane-cpu_0');
  await page.keyboard.press('PageDown');
  await frame(page);
  const scrolled = await top();
  assert(scrolled > 50, `${scrolled}`);
  await page.keyboard.press('PageUp');
  await frame(page);
  assert.equal(await top(), 0);
  assert.equal(await cursor(), before, 'the cursor stays');
  for (const key of ['Home', 'End']) await page.keyboard.press(key);
  await frame(page);
  const last = await page.locator('.lane').last().getAttribute('aria-selected');
  assert.equal(last, 'true');
  assert(await top() >= scrolled);
});

test('a counter that is not below its task tells whose it is', async () => {
  const page = await openPage();
  await openDocuments(page, join(documents, 'timechart.json'));
  const names = () => page.locator('.lane .label-name').allInnerTexts();
  assert((await names()).includes('L1 data cache accesses'));
  await page.locator('.lane', { hasText: '300 - game' }).click();
  await page.keyboard.press('p');
  await frame(page);
  assert((await names()).includes('L1 data cache accesses, 300 - game'));
  await page.locator('.lane', { hasText: 'L1 data cache accesses, 300 - game' }).click();
  await page.keyboard.press('p');
  await frame(page);
  assert.deepEqual((await names()).slice(0, 2), ['300 - game', 'L1 data cache accesses, 300 - game']);
});
