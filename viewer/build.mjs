// Builds the page, one file without requests: node build.mjs OUTPUT
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';

const room = dirname(fileURLToPath(import.meta.url));
const output = process.argv[2];

function bundle(entry, ...options) {
  const command = [join(room, entry), '--bundle', '--minify', '--format=iife', '--target=es2022', '--charset=utf8'];
  return execFileSync('esbuild', [...command, '--log-level=warning', ...options], { encoding: 'utf8' }).trim();
}

const hash = (text) => `sha256-${createHash('sha256').update(text).digest('base64')}`;

// The script element ends at the first of these, wherever it stands.
const closed = (script) => script.replaceAll('</script', '<\\/script').replaceAll('<!--', '<\\!--');

const worker = bundle('document/worker.ts');
const script = closed(bundle('page/main.ts', `--define:WORKER_SOURCE=${JSON.stringify(worker)}`));
const style = bundle('page/page.css');
const parts = { SCRIPT: script, STYLE: style, SCRIPT_HASH: hash(script), STYLE_HASH: hash(style) };
const page = readFileSync(join(room, 'page/page.html'), 'utf8').replace(/@([A-Z_]+)@/g, (_, part) => parts[part]);

mkdirSync(dirname(output), { recursive: true });
writeFileSync(output, page);
console.log(`${output}: ${Buffer.byteLength(page)} bytes, ${gzipSync(page, { level: 9 }).length} compressed`);
