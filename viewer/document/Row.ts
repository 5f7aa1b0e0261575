import type {Value} from './json';
import type {Reader} from './Reader';

/** A row with checked access to its values. */
export class Row {
  private readonly values: readonly Value[];

  constructor(
      private readonly reader: Reader,
      private readonly start: number,
      private readonly section: string,
      value: Value,
  ) {
    if (!Array.isArray(value)) this.fail();
    this.values = value;
  }

  whole(position: number): number { return this.checked(this.values[position]); }

  text(position: number): string {
    const value = this.values[position];
    return typeof value === 'string' ? value : this.fail();
  }

  number(position: number): number {
    const value = this.values[position];
    return typeof value === 'number' || typeof value === 'bigint' ? Number(value) : this.fail();
  }

  address(position: number): number|bigint { return this.checkedAddress(this.values[position]); }

  list(position: number): readonly Value[] {
    const value = this.values[position];
    return Array.isArray(value) ? value : this.fail();
  }

  part(entry: Value, position: number): number {
    return this.checked(Array.isArray(entry) ? entry[position] : null);
  }

  /** Returns a value that must be a whole number of 32 bits, below the highest, which no key ever is. */
  checked(value: Value|undefined): number {
    const fits = typeof value === 'number' && Number.isInteger(value) && value >= 0 && value < 2 ** 32;
    return fits ? value : this.fail();
  }

  checkedAddress(value: Value|undefined): number|bigint {
    if (typeof value === 'number' && Number.isInteger(value) && value >= 0) return value;
    return typeof value === 'bigint' && value >= 0n && value < 2n ** 64n ? value : this.fail();
  }

  fail(): never {
    this.reader.pos = this.start;
    return this.reader.fail(`a row of "${this.section}" is malformed`);
  }
}
