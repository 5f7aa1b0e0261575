/** What the tests use of node, for the check of types. */
declare module 'node:test' {
  export function test(name: string, body: () => void|Promise<void>): void;
  export function describe(name: string, body: () => void): void;
}
declare module 'node:assert/strict' {
  interface Assert {
    (value: unknown, message?: string): asserts value;
    equal(actual: unknown, expected: unknown, message?: string): void;
    deepEqual(actual: unknown, expected: unknown, message?: string): void;
    ok(value: unknown, message?: string): asserts value;
    match(text: string, pattern: RegExp, message?: string): void;
    throws(body: () => unknown, expected?: RegExp): void;
    rejects(body: Promise<unknown>, expected?: RegExp, message?: string): Promise<void>;
    fail(message: string): never;
  }
  const assert: Assert;
  export default assert;
}
declare module 'node:fs' {
  export function readFileSync(path: string): Uint8Array;
  export function readFileSync(path: string, encoding: string): string;
  export function existsSync(path: string): boolean;
  export function readdirSync(path: string): string[];
}
declare module 'node:zlib' { export function gzipSync(data: Uint8Array|string): Uint8Array; }
declare const process: { readonly env: Record<string, string|undefined>};
