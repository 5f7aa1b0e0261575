import type {Value} from './json';
import type {Reader} from './Reader';

/** A row, and checked access to its values: each returns the value if it is of that kind. */
export class Row {
  readonly values: readonly Value[];

  constructor(
      private readonly reader: Reader,
      private readonly start: number,
      private readonly section: string,
      value: Value,
  ) {
    this.values = this.list(value);
  }

  /** A whole number of 32 bits, below the highest, which no key ever is. */
  whole(value?: Value): number {
    const fits = typeof value === 'number' && Number.isInteger(value) && value >= 0 && value < 2 ** 32;
    return fits ? value : this.fail();
  }

  text(value?: Value): string { return typeof value === 'string' ? value : this.fail(); }

  number(value?: Value): number {
    return typeof value === 'number' || typeof value === 'bigint' ? Number(value) : this.fail();
  }

  address(value?: Value): number|bigint {
    if (typeof value === 'number' && Number.isInteger(value) && value >= 0) return value;
    return typeof value === 'bigint' && value >= 0n && value < 2n ** 64n ? value : this.fail();
  }

  list(value?: Value): readonly Value[] { return Array.isArray(value) ? value : this.fail(); }

  fail(): never {
    this.reader.pos = this.start;
    return this.reader.fail(`a row of "${this.section}" is malformed`);
  }
}
