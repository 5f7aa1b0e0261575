// Cores and tasks are as busy in every form of a timechart: as `zelkit top` adds them up, as the page does,
// and as the slices of its exports last.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {basename} from 'node:path';
import {test} from 'node:test';

import {openDocuments, openPage, tableOf, useBrowser} from '../viewer/browser/browser.mjs';

import {exported, timecharts, zelkit} from './exports.mjs';

useBrowser();

/** Milliseconds of each core and task by name, as `zelkit top` prints them. */
function printedLoad(document) {
  const load = new Map();
  const printed = zelkit('top', document, '-n', '1000000').split('\n');
  const end = printed.findIndex((line) => line.startsWith('  wait ms'));
  for (const line of printed.slice(0, end)) {
    const found = /^ *([\d.]+) +[\d.]+  (CPU \d+ Busy)$|^ *([\d.]+)(?: +[\d.]+){4}  (.+)$/.exec(line);
    if (found !== null) load.set(found[2] ?? found[4], Number(found[1] ?? found[3]));
  }
  return load;
}

/** Adds a time to what the map has under that name. */
const add = (load, name, time) => load.set(name, (load.get(name) ?? 0) + time);

/** The same of the slices of a Trace Event file, those without an end to the last moment. */
function slicesLoad(document) {
  const { traceEvents } = JSON.parse(readFileSync(exported(document, 'trace-event', 'trace.json'), 'utf8'));
  const last = Math.max(...traceEvents.filter(({ ts }) => ts).map(({ ts, dur = 0 }) => ts + dur));
  const names = new Map(traceEvents.filter(({ name }) => name === 'thread_name')
                            .map(({ pid, tid, args }) => [`${pid} ${tid}`, args.name]));
  const load = new Map();
  for (const { ph, cat, pid, tid, ts, dur = last - ts } of traceEvents)
    if ('XB'.includes(ph) && (cat === 'cpu:busy' || cat === 'proc:running'))
      add(load, names.get(`${pid} ${tid}`), dur / 1000);
  return load;
}

/** The same of the markers of a Firefox profile. */
function markersLoad(document) {
  const { threads, shared } = JSON.parse(readFileSync(exported(document, 'firefox'), 'utf8'));
  const last = Math.max(...threads.flatMap(({ markers }) => [...markers.startTime, ...markers.endTime]));
  const load = new Map();
  for (const { name, markers } of threads) {
    for (let i = 0; i < markers.length; ++i) {
      if (markers.phase[i] === 0 || !/^Running on|^CPU \d+ Busy/.test(shared.stringArray[markers.name[i]]))
        continue;
      add(load, name, (markers.endTime[i] ?? last) - markers.startTime[i]);
    }
  }
  return load;
}

/** The same of the page's tables. */
async function shownLoad(document) {
  const page = await openPage();
  await openDocuments(page, document);
  const [, ...cores] = await tableOf(page, 'Cores');
  const [head, ...tasks] = await tableOf(page, 'Tasks');
  const column = head.indexOf('Running, ms');
  const number = (text) => Number(text.replaceAll(',', ''));
  return new Map([
    ...cores.map((row) => [row[0], number(row[1])]), ...tasks.map((row) => [row[0], number(row[column])])
  ]);
}

for (const document of timecharts) {
  test(`every form of ${basename(document)} tells the same load`, async () => {
    const printed = printedLoad(document);
    assert(printed.size > 4 && printed.has('CPU 0 Busy'), [...printed.keys()].join());
    const forms = {
      slices: slicesLoad(document),
      markers: markersLoad(document),
      shown: await shownLoad(document)
    };
    for (const [form, load] of Object.entries(forms))
      for (const [name, time] of printed)
        assert(
            Math.abs((load.get(name) ?? 0) - time) < 0.002,
            `${form}: ${name}: ${load.get(name)} and not ${time} ms`);
  });
}
