// Other programs open zelkit's exports and count the same samples.
import assert from 'node:assert/strict';
import {readFileSync, writeFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {tmpdir} from 'node:os';
import {basename, join} from 'node:path';
import {test} from 'node:test';
import {pathToFileURL} from 'node:url';
import {gunzipSync} from 'node:zlib';

import {keepPicture, openPage, useBrowser} from '../viewer/browser/browser.mjs';

import {exported, functionsOf, modules, profiles, root, run, samplesByName, samplesOf, timecharts, zelkit} from './exports.mjs';

useBrowser();
const Ajv = createRequire(join(modules, 'index.js'))('ajv');

const sum = (numbers) => numbers.reduce((total, number) => total + number, 0);

for (const document of profiles) {
  const name = basename(document);

  test(`zelkit's own formats count the same samples of ${name}`, () => {
    const samples = samplesOf(document);
    assert(samples > 0);
    const folded = readFileSync(exported(document, 'folded'), 'utf8').trim().split('\n');
    assert.equal(sum(folded.map((line) => Number(line.slice(line.lastIndexOf(' '))))), samples);
    assert.equal(sum(functionsOf(document).map(({ self }) => self)), samples);
  });

  test(`go tool pprof counts the samples of ${name} and of its hottest functions`, () => {
    const file = exported(document, 'pprof', 'pb.gz');
    const environment = {...process.env, HOME: tmpdir(), GOFLAGS: '-mod=mod' };
    const top = run('go', ['tool', 'pprof', '-top', '-nodecount=100000', file], { env: environment });
    assert.equal(Number(/ of (\d+) total/.exec(top)[1]), samplesOf(document), top.slice(0, 300));
    const expected = samplesByName(document);
    const rows = [...top.matchAll(/^ *(\d+) +[\d.]+% +[\d.]+% +(\d+) +[\d.]+%  (.+?)( \(inline\))?$/gm)];
    assert(rows.length >= Math.min(10, expected.size), top);
    for (const [, flat, , label] of rows.slice(0, 10)) assert.equal(Number(flat), expected.get(label), label);
  });

  test(`protoc decodes the pprof file of ${name}`, () => {
    const bytes = gunzipSync(readFileSync(exported(document, 'pprof', 'pb.gz')));
    const text =
        run('protoc', ['--decode=Profile', `--proto_path=${join(root, 'tests/foreign')}`, 'profile.proto'],
            { input: bytes });
    const values = [...text.matchAll(/^  value: (\d+)$/gm)].map(([, value]) => Number(value));
    assert.equal(sum(values), samplesOf(document));
    // A field that the description does not know is printed by its number.
    assert.doesNotMatch(text, /^ *\d+[:{ ]/m);
  });

  test(`speedscope opens ${name}, and its schema allows the file`, async () => {
    const file = exported(document, 'speedscope', 'speedscope.json');
    const release = join(modules, 'speedscope/dist/release');
    const schema = JSON.parse(readFileSync(join(release, 'file-format-schema.json'), 'utf8'));
    const valid = new (Ajv.default ?? Ajv)({ strict: false }).compile(schema);
    const content = JSON.parse(readFileSync(file, 'utf8'));
    assert(valid(content), JSON.stringify(valid.errors?.slice(0, 3)));
    assert.equal(sum(content.profiles.map((profile) => sum(profile.weights))), samplesOf(document));

    const script = `${file}.js`;
    const base64 = readFileSync(file).toString('base64');
    writeFileSync(script, `speedscope.loadFileFromBase64(${JSON.stringify(name)}, "${base64}")`);
    const page = await openPage(
        { file: join(release, 'index.html'), fragment: `#localProfilePath=${script.slice(1)}` });
    await page.waitForFunction(
        (title) => globalThis.document.title === title, `${content.name} - speedscope`);
    await page.locator('canvas').first().waitFor();
    await keepPicture(page, `speedscope-${name}`);
    assert.deepEqual(page.complaints.filter((line) => !line.startsWith(pathToFileURL('/').href)), []);
  });

  test(`the page of zelkit view shows the samples of ${name}`, async () => {
    const file = join(root, 'build/foreign', `${name}.html`);
    zelkit('view', document, '-o', file, '--page', join(root, 'build/viewer/viewer.html'));
    const page = await openPage({ file, fragment: '#view=functions' });
    // While a document is read, the page counts fewer.
    await page.waitForFunction(
        (counted) => document.querySelector('#view-functions .counted')?.textContent === counted,
        `${samplesOf(document).toLocaleString('en')} samples`);
    assert.deepEqual(page.complaints, []);
  });
}

test('a strict parser takes every JSON format', () => {
  for (const format of ['json', 'speedscope', 'cpuprofile', 'firefox'])
    for (const document of profiles) run('jq', ['-e', 'type == "object"', exported(document, format)]);
  for (const format of ['json', 'trace-event', 'firefox'])
    for (const document of timecharts) run('jq', ['-e', 'type == "object"', exported(document, format)]);
});
