import assert from 'node:assert/strict';
import {test} from 'node:test';

import {latin1, profileText, read, readProfile, sampleLines} from '../support';

const samples = [
  '[1,65796,6,1.5,0,4,7,[[65796,6,],[65544,7,],],]',
  '[2,3221258500,8,1.75,1,4,8,[],]',
  '[3,65800,6,1.875,1,4,7,[[18446744073709551488,0,],[65800,5,],[65544,7,],],]',
  '[4,18446744071562067968,8,1.9,0,4,7,[[65800,6,],[65544,7,],],]',
  '[5,1084358660,9,-0.25,15,1,0,[[1084358660,9,],[65544,7,],],]',
];
const whole = profileText({ samples: `${samples.join(',')},` });

/** The same samples in two blocks, of which the second uses what the first one brought. */
const blocks = [
  '[[4,7,4,8],[1,6,1,65796,3,8,1,3221258500,4,65800,3,18446744071562067968],' +
      '[1,5,1,7,1,6,4,0,5,7,1,7,1,5,8,4,1,7,1,6],' +
      '[1500000000,250000000,125000000,25000000],[0,1,1,0],[0,1,0,0],[2,4,5,6],[3,4,7,10]]',
  '[[1,0],[7,9,1,1084358660],[9,9],[-2150000000],[15],[2],[8],[11]]',
];
const packedText = (...rows: string[]) =>
    whole.slice(0, whole.indexOf(' "samples"')) + ` "blocks": {"data": [${rows.join(',')}]}}`;

test('a packed document gives what the document gives', async () => {
  const expected = await readProfile(whole);
  for (const size of [undefined, 1, 40]) {
    const packed = await read(latin1(packedText(...blocks)), size);
    assert(packed.kind === 'profile' && packed.damage === null);
    assert.deepEqual(sampleLines(packed), sampleLines(expected));
    assert.deepEqual(packed.samples, expected.samples);
  }
});

test('a block that refers to what is not there is refused, and what came before it stays', async () => {
  const damaged = [
    ['[8],[11]]', '[99],[11]]'],  // an address
    ['[8],[11]]', '[8],[99]]'],   // a back-trace
    ['[2],[8]', '[3],[8]'],       // a thread
    ['[15]', '[15,16]'],          // columns of different lengths
    ['[15]', '[65536]'],          // a core
    ['[9,9]', '[12,9]'],          // a parent before the root
    ['[9,9]', '[0,9]'],           // a node that is its own parent
    ['[9,9]', '[9,4294967295]'],  // the key that no document has
    ['[-2150000000]', '["soon"]'],
  ];
  for (const [from, to] of damaged) {
    const document = await read(latin1(packedText(blocks[0], blocks[1].replace(from, to))));
    assert(document.kind === 'profile', to);
    assert.match(document.damage?.reason ?? '', /a row of "blocks" is malformed/, to);
    assert.equal(document.samples.count, 4, to);
  }
});
