/** Which samples the figures are about. A filter never changes; a change makes a new one. */
export interface Filter {
  /** The brush [start, end) in seconds; infinite without one. */
  readonly start: number;
  readonly end: number;
  /** Cores and threads (index into Profile.threads) that count; null for all. */
  readonly cores: ReadonlySet<number>|null;
  readonly threads: ReadonlySet<number>|null;
  /** Only samples with a frame whose name contains this text; empty for all. */
  readonly text: string;
}

export const everything: Filter = {
  start: -Infinity,
  end: Infinity,
  cores: null,
  threads: null,
  text: '',
};
