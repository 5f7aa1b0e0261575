import assert from 'node:assert/strict';
import { test } from 'node:test';
import { everything } from '../../../viewer/model/filter';

test('the filter of a fresh page keeps every time', () => {
  assert(everything.start < -1e300 && everything.end > 1e300);
});
