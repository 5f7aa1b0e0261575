import type {Entry} from '../../viewer/document/timechart';
import {Track} from '../../viewer/model/tracks';

/** Builds a track from points written as `[seconds, value]`. */
export function track(
    id: string, kind: string, treeId: string, points: [number, number][], more: Partial<Entry> = {}): Track {
  return new Track({
    id,
    name: id,
    treeId,
    type: 'binary',
    class: kind,
    show: 0,
    tip: '',
    white: '',
    black: '',
    times: Float64Array.from(points, ([time]) => time),
    values: Float64Array.from(points, ([, value]) => value),
    names: new Uint32Array(),
    details: new Uint32Array(),
    exact: null,
    ...more,
  });
}
