import assert from 'node:assert/strict';
import {readdirSync, readFileSync} from 'node:fs';
import {test} from 'node:test';

/** From the ground up: a room knows those before it only. */
const rooms = ['document', 'model', 'views', 'page'];

test('each room of the viewer knows those below it only', () => {
  let imports = 0;
  for (const [floor, room] of rooms.entries()) {
    for (const file of readdirSync(`viewer/${room}`).filter((name) => name.endsWith('.ts'))) {
      for (const [, from] of readFileSync(`viewer/${room}/${file}`, 'utf8')
               .matchAll(/from '\.\.\/(\w+)\//g)) {
        const below = rooms.indexOf(from);
        assert(below >= 0 && below < floor, `${room}/${file} imports from ${from}`);
        ++imports;
      }
    }
  }
  assert(imports > 20, 'the imports are found');
});

test('no name can become markup or code', () => {
  const unsafe =
      /innerHTML|outerHTML|insertAdjacentHTML|document\.write|\beval\b|new Function\(|\.srcdoc|\son\w+="/;
  for (const room of rooms) {
    for (const file of readdirSync(`viewer/${room}`).filter((name) => /\.(ts|html)$/.test(name))) {
      const found = unsafe.exec(readFileSync(`viewer/${room}/${file}`, 'utf8'));
      assert.equal(found, null, `${room}/${file}: ${found?.[0]}`);
    }
  }
});
