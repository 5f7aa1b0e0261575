/** What browsers have and the type checker's library lacks. */
declare class DecompressionStream {
  constructor(format: 'gzip');
  readonly readable: ReadableStream<Uint8Array>;
  readonly writable: WritableStream<Uint8Array>;
}

interface ReadableStream<R> {
  /** Reads into memory of the caller, which moves into `value`. */
  getReader(options: { mode: 'byob' }): { read(into: Uint8Array): Promise<{ value: Uint8Array | undefined }>};
}
