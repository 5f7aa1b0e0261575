/** Where moved mappings were on the device, see docs/layout-file.md. */

interface Mapping {
  readonly pid: number;
  readonly start: bigint;
  readonly size: bigint;
  readonly original: bigint;
}

export class LayoutFile {
  private constructor(
      /** How many entries of a back-trace the document keeps, or null if the file does not say. */
      readonly depth: number|null,
      private readonly mappings: readonly Mapping[],
  ) {}

  /** Returns the contents of a layout file; fails on a text that is none. */
  static parse(text: string): LayoutFile {
    const file = JSON.parse(text) as Record<string, unknown>;
    const { 'mappings': rows, 'depth': depth } = file;
    if (!Array.isArray(rows)) throw new Error('it has no mappings');
    const mappings = rows.map(
        ({ 'pid': pid, 'start': start, 'size': size, 'original': original }: Record<string, unknown>) => ({
          pid: Number(pid),
          start: BigInt(String(start)),
          size: BigInt(String(size)),
          original: BigInt(String(original)),
        }));
    return new LayoutFile(typeof depth === 'number' ? depth : null, mappings);
  }

  /** Returns the device's address for one of the document. */
  original(pid: number, address: bigint): bigint {
    const mapping = this.mappings.find(
        (known) => known.pid === pid && known.start <= address && address < known.start + known.size);
    return mapping ? address - mapping.start + mapping.original : address;
  }
}
