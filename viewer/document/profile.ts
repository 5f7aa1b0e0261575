/**
 * The contents of a profile document, as columns. docs/profile-document.md describes the bytes that they come
 * from.
 */

import type {Damage} from './damage';

/** The colour of a place, and the reason why it has no better name. */
export const enum PlaceKind {
  /** A function of the kernel, or the kernel where no function is known. */
  Kernel,
  /** A function of a program or library. */
  User,
  /** A mapped file without a function at the address. */
  Unresolved,
  /** A stretch of addresses that no mapping covers, such as `{app-40a20000}`. */
  Synthetic,
  /**
     The root of back-traces that are as deep as the document keeps them, so that their callers are unknown.
   */
  Cut,
}

/** Functions and libraries in one numbering: what a sample or an entry of a back-trace refers to. */
export interface Places {
  readonly count: number;
  readonly names: readonly string[];
  readonly kinds: Uint8Array;
  /** The place of the library that holds a function; a library's own number for a library. */
  readonly libraries: Uint32Array;
  /** Index into Profile.files, or -1. */
  readonly files: Int32Array;
  /** Line of the function in its file, or 0. */
  readonly lines: Uint32Array;
}

export interface Process {
  readonly pid: number;
  readonly tid: number;
  readonly name: string;
}

/** One (process, tid) pair that was sampled. */
export interface Thread {
  /** Index into Profile.processes of the row that the samples refer to, or -1. */
  readonly process: number;
  readonly pid: number;
  readonly tid: number;
  readonly name: string;
}

/** The samples in the order of time. */
export interface Samples {
  readonly count: number;
  /** Seconds, relative to the document's start time. */
  readonly times: Float64Array;
  readonly cores: Uint16Array;
  /** Index into Profile.threads. */
  readonly threads: Uint32Array;
  /** Node of Profile.stacks: the innermost frame. */
  readonly stacks: Uint32Array;
}

/**
 * The prefix tree of all back-traces. Node 0 is the root and no place; a parent's number is below its
 * children's. children[firstChild[n]] to children[firstChild[n + 1] - 1] are the children of node n, the
 * heaviest first.
 */
export interface Stacks {
  readonly count: number;
  readonly parents: Uint32Array;
  readonly places: Uint32Array;
  /** Samples at or below the node in the whole document. */
  readonly totals: Uint32Array;
  readonly firstChild: Uint32Array;
  readonly children: Uint32Array;
}

export interface Profile {
  readonly kind: 'profile';
  readonly name: string;
  readonly processes: readonly Process[];
  readonly threads: readonly Thread[];
  readonly files: readonly string[];
  readonly places: Places;
  readonly samples: Samples;
  readonly stacks: Stacks;
  /**
   * How many samples of the document each one here stands for: 1, or more in a picture of a document that is
   * still being read.
   */
  readonly weight: number;
  readonly damage: Damage|null;
}
