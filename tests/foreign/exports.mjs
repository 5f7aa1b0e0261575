// Exports of the page tests' documents, and what zelkit itself says of them.
import {execFileSync} from 'node:child_process';
import {existsSync, mkdirSync} from 'node:fs';
import {join, resolve} from 'node:path';

import {documents} from '../viewer/browser/browser.mjs';

export const root = resolve(import.meta.dirname ?? new URL('.', import.meta.url).pathname, '../..');
export const modules = join(root, 'build/foreign/node_modules');
const exportsFolder = join(root, 'build/foreign/exports');
const zelkitProgram = join(root, 'build/dev/kit/zelkit');

const large = {
  encoding: 'utf8',
  maxBuffer: 1 << 30
};

export const run = (program, words, options = {}) => execFileSync(program, words, {...large, ...options});
export const zelkit = (...words) => run(zelkitProgram, words);

export const profiles = ['profile.json', 'arm-profile.json']
                            .map((name) => join(documents, name))
                            .filter((path) => existsSync(path));
export const timecharts = ['timechart.json', 'arm-timechart.json']
                              .map((name) => join(documents, name))
                              .filter((path) => existsSync(path));

/** Exports a document; returns the path of the file. */
export function exported(document, format, ending = format) {
  mkdirSync(exportsFolder, { recursive: true });
  const path = join(exportsFolder, `${document.split('/').pop()}.${ending}`);
  zelkit('export', document, '--to', format, '-o', path);
  return path;
}

/** Samples as `zelkit top` counts them. */
export const samplesOf = (document) => Number(/^(\d+) samples/.exec(zelkit('top', document, '-n', '0'))[1]);

/** Functions with their own and total samples, the hottest first. */
export const functionsOf = (document) =>
    zelkit('export', document, '--to', 'tsv').trim().split('\n').slice(1).map((line) => {
      const [self, total, name] = line.split('\t');
      return { self: Number(self), total: Number(total), name };
    });

/** Own samples by name, as programs count them that take functions of one name for one. */
export function samplesByName(document) {
  const samples = new Map();
  for (const { self, name } of functionsOf(document)) samples.set(name, (samples.get(name) ?? 0) + self);
  return samples;
}
