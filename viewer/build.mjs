// Builds the page, one file without requests: node build.mjs OUTPUT [DOCUMENT...]; the page opens the
// documents in it at once
import {execFileSync} from 'node:child_process';
import {createHash} from 'node:crypto';
import {mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {basename, dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';
import {gzipSync} from 'node:zlib';

const room = dirname(fileURLToPath(import.meta.url));
const [output, ...documents] = process.argv.slice(2);

function bundle(entry) {
  const command =
      [join(room, entry), '--bundle', '--minify', '--format=iife', '--target=es2022', '--charset=utf8'];
  return execFileSync('esbuild', [...command, '--log-level=warning'], { encoding: 'utf8' }).trim();
}

const hash = (text) => `sha256-${createHash('sha256').update(text).digest('base64')}`;

// The script element ends at the first of these, wherever it stands.
const closed = (script) => script.replaceAll('</script', '<\\/script').replaceAll('<!--', '<\\!--');

const script = closed(bundle('page/main.ts'));
const style = bundle('page/page.css');
const parts = {
  SCRIPT: script,
  STYLE: style,
  SCRIPT_HASH: hash(script),
  STYLE_HASH: hash(style)
};
const page =
    readFileSync(join(room, 'page/page.html'), 'utf8').replace(/@([A-Z_]+)@/g, (_, part) => parts[part]);

const quoted = (text) => text.replace(/[&"<>]/g, (character) => `&#${character.charCodeAt(0)};`);
const held = documents.map((path) => {
  const content = gzipSync(readFileSync(path)).toString('base64');
  return `<script type="application/gzip;base64" data-name="${quoted(basename(path))}">${content}</script>\n`;
});

mkdirSync(dirname(output), { recursive: true });
// The mark stays: whoever puts further documents into the page finds it.
writeFileSync(output, page.replace('<!--documents-->', (mark) => held.join('') + mark));
console.log(`${output}: ${Buffer.byteLength(page)} bytes, ${gzipSync(page, { level: 9 }).length} compressed`);
