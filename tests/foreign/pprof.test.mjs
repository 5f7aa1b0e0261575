// The pages of `go tool pprof` show what zelkit exports.
import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {tmpdir} from 'node:os';
import {basename} from 'node:path';
import {createInterface} from 'node:readline';
import {test} from 'node:test';

import {keepPicture, openPage, useBrowser} from '../viewer/browser/browser.mjs';

import {exported, profiles, samplesByName, samplesOf} from './exports.mjs';

useBrowser();

/** Starts pprof's server, on a port that it chooses; returns the process and the address of its pages. */
async function serve(file) {
  const server = spawn(
      'go', ['tool', 'pprof', '-http=127.0.0.1:', '-no_browser', file],
      { env: {...process.env, HOME: tmpdir() }, stdio: ['ignore', 'ignore', 'pipe'], detached: true });
  for await (const line of createInterface({ input: server.stderr })) {
    const [, url] = /^Serving web UI on (.*)$/.exec(line) ?? [];
    if (url) return { server, url };
  }
  throw new Error(`pprof does not serve ${file}`);
}

for (const document of profiles) {
  const name = basename(document);

  test(`the pages of go tool pprof show ${name}`, async () => {
    const { server, url } = await serve(exported(document, 'pprof', 'pb.gz'));
    try {
      const page = await openPage({ url, fragment: '/ui/flamegraph' });
      // Labels appear when the frames have grown into their places.
      await page.getByText('root', { exact: true }).first().waitFor();
      await keepPicture(page, `pprof-${name}`);

      await page.goto(`${url}/ui/top`);
      const [flat, share] = await page.locator('tbody tr').first().locator('td').allInnerTexts();
      const hottest = Math.max(...samplesByName(document).values());
      assert.deepEqual([flat, share], [`${hottest}`, `${(100 * hottest / samplesOf(document)).toFixed(2)}%`]);
    } finally {
      // `go` and the tool that it has started.
      process.kill(-server.pid);
      await once(server, 'close');
    }
  });
}
