/** What browsers have and the type checker's library lacks. */
declare class DecompressionStream {
  constructor(format: 'gzip');
  readonly readable: ReadableStream<Uint8Array>;
  readonly writable: WritableStream<Uint8Array>;
}
