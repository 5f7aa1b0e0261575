// Makes the pictures of the documentation from the demo's page: make_pictures.mjs PAGE FOLDER
import {join, resolve} from 'node:path';

import {endBrowser, frame, openPage, startBrowser} from '../tests/viewer/browser/browser.mjs';

const [file, folder] = process.argv.slice(2).map((path) => resolve(path));
const pictures = {
  viewer: '#view=flame&shown=5,5.6&selected=5.2,5.4&folded=kgsl&pinned=proc_300',
  timechart: '#view=span&shown=5.018,5.052&selected=5.020827,5.023867&folded=irq&at=5.0215,proc_300_301',
  functions: '#view=functions&selected=5.1,5.3',
};

await startBrowser();
for (const [name, fragment] of Object.entries(pictures)) {
  const page = await openPage({ file, fragment, viewport: { width: 1100, height: 640 } });
  await page.locator('.reading.complete').nth(1).waitFor();
  await frame(page);
  await page.screenshot({ path: join(folder, `${name}.png`) });
}
await endBrowser();
