// Makes large documents for the page's benchmark: make_documents.mjs FOLDER NAME SAMPLES FRAMES
// [all-different]
//
// FOLDER/NAME.json is a profile document of SAMPLES samples in 30 processes, whose back-traces are walks
// through a graph of 4,000 functions, FRAMES long at most; 40,000 different ones, some far more often than
// others. FOLDER/NAME.speedscope.json holds the same samples for speedscope. With `all-different` each sample
// has a walk of its own, FRAMES long, which makes trees of millions of nodes; speedscope gets no file then.
// The numbers are the same on every machine.
import {closeSync, openSync, writeSync} from 'node:fs';

const [folder, name, samples, longest, kind] = process.argv.slice(2);
const [sampleCount, most] = [Number(samples), Number(longest)];
const allDifferent = kind === 'all-different';
const processes = 30;
const functions = 4000;
const stackCount = allDifferent ? sampleCount : 40000;
const cores = 8;
const interval = 25e-6;
const firstFunctionKey = 100;
const functionSize = 256;
const textStart = 0x10000;

let state = 88172645463325252n;
/** Returns a random number below `limit`. */
function roll(limit) {
  state ^= (state << 13n) & 0xffffffffffffffffn;
  state ^= state >> 7n;
  state ^= (state << 17n) & 0xffffffffffffffffn;
  return Number((state >> 11n) % BigInt(limit));
}

const callees =
    Array.from({ length: functions }, () => Array.from({ length: 1 + roll(6) }, () => roll(functions)));
const stacks = Array.from({ length: stackCount }, (_, index) => {
  const owner = index % processes;
  const frames = [owner * 7];
  for (let depth = allDifferent ? most - 1 : 2 + roll(most - 2); depth > 0; --depth) {
    const next = callees[frames[frames.length - 1]];
    // The first callee is called most often, the last one seldom.
    const skewed = () => Math.min(roll(next.length + 1), roll(next.length + 1), next.length - 1);
    frames.push(next[allDifferent ? roll(next.length) : skewed()]);
  }
  return { owner, frames: frames.reverse() };
});
const chosen = allDifferent ?
    stacks :
    Array.from(
        { length: sampleCount }, () => stacks[Math.floor((roll(1 << 20) / (1 << 20)) ** 3 * stackCount)]);

const functionName = (index) => `ns::Class${index % 97}<int, std::string>::method_${index}(int, char const*)`;
const section = (label, rows) =>
    ` "${label}": {"descriptions": {},"data": [${rows.map((row) => `[${row}],`).join('')}]},\n`;
const range = (count, of) => Array.from({ length: count }, (_, index) => of(index));

/** Writes the parts of a file as they come, in pieces of bearable size. */
function write(path, head, count, row, tail) {
  const file = openSync(path, 'w');
  let text = head;
  for (let i = 0; i < count; ++i) {
    text += row(i);
    if (text.length > 1 << 20) {
      writeSync(file, text);
      text = '';
    }
  }
  writeSync(file, text + tail);
  closeSync(file);
}

const head =
    '{"Description":{"Version":"1.0","Target Chip":"unknown","Start Time":1,"First Sample Time":1,"duration":25},\n' +
    section(
        'processes',
        [
          '1,0,0,"kernel",', '2,4294967295,4294967295,"lostAndFound",',
          ...range(processes, (i) => `${i + 4},${100 + i},${100 + i},"proc${i}",`)
        ]) +
    section(
        'libraries',
        [
          '2,2,"lostAndFound",0,0,', '3,1,"kernel",3221258240,28672,',
          `4,4,"/usr/bin/program",${textStart},${functions * functionSize},`
        ]) +
    section('files', []) +
    section(
        'functions',
        range(
            functions,
            (i) => `${firstFunctionKey + i},"${functionName(i)}",${textStart + i * functionSize},${
                functionSize},[4,],`)) +
    ' "samples": {"descriptions": {},"data": [';

write(`${folder}/${name}.json`, head, sampleCount, (i) => {
  const { owner, frames } = chosen[i];
  const address = (frame) => 0x40000000 + textStart + frame * functionSize + ((frame * 37 + i) % 64) * 4;
  const trace = frames.map((frame) => `[${address(frame)},${frame + firstFunctionKey},],`).join('');
  const time = +(i * interval).toFixed(9);
  return `[${i + 1},${address(frames[0])},${frames[0] + firstFunctionKey},${time},${i % cores},${owner + 4},${
      owner + 100},[${trace}],],`;
}, ']}}\n');

if (allDifferent) process.exit();

// One profile a process, as exporters to speedscope write them.
const frames = JSON.stringify(range(functions, (index) => ({ name: functionName(index) })));
const schema = 'https://www.speedscope.app/file-format-schema.json';
write(
    `${folder}/${name}.speedscope.json`, `{"$schema":"${schema}","shared":{"frames":${frames}},"profiles":[`,
    processes, (owner) => {
      const own = chosen.filter((stack) => stack.owner === owner)
                      .map((stack) => JSON.stringify([...stack.frames].reverse()));
      const end = own.length * interval;
      const head =
          `{"type":"sampled","name":"${name} ${owner}","unit":"seconds","startValue":0,"endValue":${end}`;
      return `${owner > 0 ? ',' : ''}${head},"samples":[${own}],"weights":[${own.map(() => interval)}]}`;
    }, ']}');
