import type { Timechart } from '../document/timechart';

/** A timechart document with what the views ask of it. */
export class TimechartModel {
  constructor(readonly timechart: Timechart) {}
}
