import assert from 'node:assert/strict';
import {test} from 'node:test';
import type {ZelDocument} from '../../../viewer/document/messages';
import type {Profile} from '../../../viewer/document/profile';
import {DocumentReading} from '../../../viewer/document/readDocument';
import type {Timechart} from '../../../viewer/document/timechart';
import {latin1, pieces, profileText, read, stackText} from '../support';

test('pictures of a document that is being read grow into it', async () => {
  // No period: every n-th sample must tell of all.
  const key = (i: number) => (Math.imul(i, 0x9e3779b1) >>> 16) % 3 === 0 ? 8 : 6;
  const row = (i: number) => `[${i},1,${key(i)},${i},${i % 2},4,7,[[2,${key(i)},],[1,7,],],],`;
  const text = profileText({ samples: Array.from({ length: 90000 }, (_, i) => row(i)).join('') });
  const bytes = latin1(text);
  const supply = pieces(bytes, 1 << 20);
  const pictures: Profile[] = [];
  const reading: DocumentReading = new DocumentReading('test.json', async (into) => {
    const picture = reading.picture();
    if (picture?.kind === 'profile') pictures.push(picture);
    return supply(into);
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

test('the parts of a timechart come to the whole, wherever they are cut', async () => {
  const series = (id: number, points: string) => `{"id":"proc-${id}-r0","name":"n","treeId":"t","type":"${
      id % 3 === 0 ? 'events' : 'binary'}","data":[${points}]}`;
  const points = (id: number) => Array.from(
      { length: 40 }, (_, i) => id % 3 === 0 ? `[${i},1,"m${i % 5}","d${id}"]` : `[0.0000${10 + i},${id}]`);
  const ids = Array.from({ length: 12 }, (_, id) => id);
  const bytes = latin1(`{"entries":[${ids.map((id) => series(id, points(id).join(','))).join(',')}]}`);
  const shown = (parts: readonly Timechart[]) => {
    const strings = parts.flatMap((part) => part.strings);
    const texts = (indices: Uint32Array) => Array.from(indices, (index) => strings[index]);
    return parts.flatMap((part) => part.entries)
        .map(({ id,
                times,
                values,
                names,
                details }) => [id, [...times], [...values], texts(names), texts(details)]);
  };
  const whole = await read(bytes);
  assert(whole.kind === 'timechart');
  for (const size of [1, 97, 5000]) {
    const supply = pieces(bytes, size);
    const parts: Timechart[] = [];
    const take = (part: ZelDocument|null) => part?.kind === 'timechart' && parts.push(part);
    const reading: DocumentReading = new DocumentReading('test.json', async (into) => {
      take(reading.picture());
      return supply(into);
    });
    take(await reading.read());
    assert(parts.length >= Math.min(12, bytes.length / size - 1), `${size}`);
    assert.deepEqual(shown(parts), shown([whole]), `${size}`);
  }
});
