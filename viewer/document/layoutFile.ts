/** Where moved mappings were on the device, see docs/layout-file.md. */

interface Mapping {
  readonly pid: number;
  readonly start: bigint;
  readonly size: bigint;
  readonly original: bigint;
}

export class LayoutFile {
  private readonly byProcess = new Map<number, Mapping[]>();

  private constructor(
      /** How many entries of a back-trace the document keeps, or null if the file does not say. */
      readonly depth: number|null,
      mappings: readonly Mapping[],
  ) {
    for (const mapping of mappings) {
      const known = this.byProcess.get(mapping.pid);
      if (known === undefined)
        this.byProcess.set(mapping.pid, [mapping]);
      else
        known.push(mapping);
    }
    for (const known of this.byProcess.values()) known.sort((a, b) => (a.start < b.start ? -1 : 1));
  }

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
    const mappings = this.byProcess.get(pid) ?? [];
    let from = 0;
    let to = mappings.length;
    while (from < to) {
      const middle = (from + to) >>> 1;
      if (mappings[middle].start <= address)
        from = middle + 1;
      else
        to = middle;
    }
    const mapping = mappings[from - 1];
    if (mapping === undefined || address >= mapping.start + mapping.size) return address;
    return address - mapping.start + mapping.original;
  }
}
