import assert from 'node:assert/strict';
import {test} from 'node:test';
import type {Profile} from '../../../viewer/document/profile';
import {DocumentReading} from '../../../viewer/document/readDocument';
import {latin1, pieces, profileText, stackText} from '../support';

test('pictures of a document that is being read grow into it', async () => {
  // No period: every n-th sample must tell of all.
  const key = (i: number) => (Math.imul(i, 0x9e3779b1) >>> 16) % 3 === 0 ? 8 : 6;
  const row = (i: number) => `[${i},1,${key(i)},${i},${i % 2},4,7,[[2,${key(i)},],[1,7,],],],`;
  const text = profileText({ samples: Array.from({ length: 90000 }, (_, i) => row(i)).join('') });
  const bytes = latin1(text);
  const supply = pieces(bytes, 1 << 20);
  const pictures: Profile[] = [];
  const reading: DocumentReading = new DocumentReading('test.json', async () => {
    const picture = reading.picture();
    if (picture !== null) pictures.push(picture);
    return supply();
  });
  const whole = await reading.read();
  assert(whole.kind === 'profile' && pictures.length >= 3);
  let before = 0;
  for (const { samples, stacks, places, weight, threads } of pictures) {
    assert(samples.count <= 20000 && samples.count * weight > before);
    before = samples.count * weight;
    assert.equal(stacks.totals[0], samples.count);
    assert.deepEqual(places.names, whole.places.names);
    assert.equal(threads.length, 1);
  }
  const last = pictures[pictures.length - 1];
  assert(last.weight > 1);
  const share = (profile: Profile) => {
    const node =
        Array.from(profile.stacks.parents.keys()).find((at) => stackText(profile, at) === 'main;schedule')!;
    return profile.stacks.totals[node] / profile.stacks.totals[0];
  };
  assert(Math.abs(share(last) - share(whole)) < 0.02);
});
