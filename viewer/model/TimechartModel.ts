import type {Timechart} from '../document/timechart';
import {Lane, laneTree} from './lanes';
import {reckonSpan, SpanUse} from './span';
import {Tasks} from './tasks';
import {Track} from './tracks';

/** A timechart document with what the views ask of it. */
export class TimechartModel {
  declare readonly tracks: readonly Track[];
  declare readonly tree: readonly Lane[];
  declare readonly tasks: Tasks;
  /** Time of the first and of the last point, in seconds. */
  declare readonly start: number;
  declare readonly end: number;

  /** `before` is the model of a part of the document, whose tracks are used again. */
  constructor(readonly timechart: Timechart, before: TimechartModel|null = null) {
    this.tracks = timechart.entries.map((entry, index) => {
      const known = before?.tracks[index];
      return known?.entry === entry ? known : new Track(entry);
    });
    this.tree = laneTree(this.tracks);
    // Markers may have another time scale than the trace; they count only if there is nothing else.
    const timed =
        this.tracks.filter((track) => track.entry.type !== 'events' && track.entry.times.length > 0);
    const all = timed.length > 0 ? timed : this.tracks.filter((track) => track.entry.times.length > 0);
    this.start = all.reduce((start, track) => Math.min(start, track.entry.times[0]), Infinity);
    this.end = all.reduce((end, { entry }) => Math.max(end, entry.times[entry.times.length - 1]), -Infinity);
    if (all.length === 0) this.start = this.end = 0;
    this.tasks = new Tasks(this.tracks, this.end);
  }

  /** Computes what happened within [start, end), limited to the document's time. */
  reckon(start: number, end: number): Generator<void, SpanUse, void> {
    return reckonSpan(this.tracks, Math.max(start, this.start), Math.min(end, this.end));
  }

  /** Returns the texts of point `index` of a series of markers, or null. */
  markerText({ entry }: Track, index: number): { name: string; detail: string }|null {
    if (index >= entry.names.length) return null;
    const { strings } = this.timechart;
    return { name: strings[entry.names[index]], detail: strings[entry.details[index]] };
  }
}
