/** Where and why the reading of a document ended early; what came before is shown. */
export interface Damage {
  /** Offset in the unpacked document, in bytes. */
  readonly offset: number;
  readonly reason: string;
}

/** Thrown by readers. The reason completes "NAME: ... at byte N". */
export class DocumentError extends Error {
  constructor(
      readonly offset: number,
      reason: string,
  ) {
    super(reason);
  }
}
