/** What browsers have and the compiler's declarations of them lack. */

interface Element {
  role: string|null;
}
