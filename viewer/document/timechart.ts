/**
 * The contents of a timechart document, as columns. docs/timechart-document.md describes the bytes that they
 * come from.
 */

import type {Damage} from './damage';

/** One entry of the document. Its columns are views of memory that all series share. */
export interface Entry {
  readonly id: string;
  readonly name: string;
  readonly treeId: string;
  /** `binary`, `bar`, `marker` or `events`. */
  readonly type: string;
  readonly class: string;
  readonly show: number;
  readonly tip: string;
  /** The hints: `#rrggbb` on a white and on a black background, or empty. */
  readonly white: string;
  readonly black: string;
  /** Seconds, ascending. */
  readonly times: Float64Array;
  /** Value of each point; for `events` its code. */
  readonly values: Float64Array;
  /** For `events`: name and arguments of each point, as indices into Timechart.strings; empty otherwise. */
  readonly names: Uint32Array;
  readonly details: Uint32Array;
  /** Values that a double would round, by point. */
  readonly exact: ReadonlyMap<number, bigint>|null;
}

export interface Timechart {
  readonly kind: 'timechart';
  readonly name: string;
  readonly entries: readonly Entry[];
  readonly strings: readonly string[];
  readonly damage: Damage|null;
}
