// Builds the page, one file without requests: node build.mjs OUTPUT [DOCUMENT...]; the page opens the
// documents in it at once
import {execFileSync} from 'node:child_process';
import {createHash} from 'node:crypto';
import {mkdirSync, readFileSync, realpathSync, writeFileSync} from 'node:fs';
import {basename, dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';
import {brotliCompressSync, constants, gzipSync} from 'node:zlib';

import {fixedNames} from './names.mjs';

const room = dirname(fileURLToPath(import.meta.url));
const [output, ...documents] = process.argv.slice(2);

/** Bytes that the page may have, as it is and as a web server sends it. */
const limit = {
  page: 98_000,
  brotli: 35_000
};

const run = (program, words, more) => execFileSync(program, words, { encoding: 'utf8', ...more });

/** For every call of esbuild. */
const language = ['--target=es2022', '--charset=utf8', '--log-level=warning'];

const bundle = (entry, ...more) =>
    run('esbuild', [join(room, entry), '--bundle', '--format=iife', ...language, ...more]);

/** Returns what terser makes of a script. */
function tersed(script, ...words) {
  const program = realpathSync(run('sh', ['-c', 'command -v terser']).trim());
  // Its modules lie beside it, where only Debian's own node looks for them.
  const env = {...process.env, NODE_PATH: join(dirname(program), '../..') };
  return run(program, [...words, '--ecma=2020', '--format=wrap_func_args=false'], { input: script, env });
}

/**
 * Returns the script of the page. esbuild finds more to shorten in what terser has made; names that terser
 * gives to variables are more alike and compress better.
 */
function script(entry) {
  const fixed =
      [...fixedNames(room)].filter((name) => /^[\w$]+$/.test(name)).join('|').replaceAll('$', '\\$');
  // Capitals begin the names of constants, whose values take their place.
  const whole = bundle(entry, '--minify', '--mangle-props=^[a-z]', `--reserve-props=^(${fixed})$`);
  // Functions stay where they are: a class inside the function that makes its objects would be a new one for
  // each. What is called unsafe is to take the platform's own functions for what they were.
  const small = tersed(
      whole,
      '--compress=passes=3,keep_fargs=false,pure_getters,reduce_funcs=false,hoist_funs,unsafe,unsafe_arrows,' +
          'ecma=2020');
  const again = run('esbuild', ['--minify-syntax', ...language], { input: small });
  return tersed(again, '--mangle');
}

const hash = (text) => `sha256-${createHash('sha256').update(text).digest('base64')}`;

// The script element ends at the first of these, wherever it stands.
const closed = (script) => script.replaceAll('</script', '<\\/script').replaceAll('<!--', '<\\!--');

const code = closed(script('page/main.ts').trim());
const style = bundle('page/page.css', '--minify').trim();
const parts = {
  SCRIPT: code,
  STYLE: style,
  SCRIPT_HASH: hash(code),
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

const size = {
  page: Buffer.byteLength(page),
  gzip: gzipSync(page, { level: 9 }).length,
  brotli: brotliCompressSync(page, { params: { [constants.BROTLI_PARAM_LGWIN]: 24 } }).length
};
console.log(`${output}: ${size.page} bytes, ${size.gzip} by gzip, ${size.brotli} by brotli`);
for (const [what, most] of Object.entries(limit))
  if (size[what] > most) throw new Error(`${what}: ${size[what]} bytes are more than ${most}`);
