const utf8 = new TextDecoder('utf-8', { fatal: true, ignoreBOM: true });

/** Characters that would break a line, change the direction of writing, or not show at all. */
const unseen = /[\x00-\x1f\x7f-\x9f\u00ad\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\ufff9-\ufffb]/g;

/** Returns the text of bytes that need not be UTF-8; each byte that is none becomes `\xNN`. */
export function decode(bytes: Uint8Array): string {
  try {
    return utf8.decode(bytes);
  } catch {
    return decodeLossless(bytes);
  }
}

function decodeLossless(bytes: Uint8Array): string {
  let text = '';
  let valid = 0;
  for (let i = 0; i < bytes.length;) {
    const size = sequenceSize(bytes, i);
    if (size > 0) {
      i += size;
      continue;
    }
    text += utf8.decode(bytes.subarray(valid, i)) + `\\x${bytes[i].toString(16).padStart(2, '0')}`;
    valid = ++i;
  }
  return text + utf8.decode(bytes.subarray(valid));
}

/** Returns the length of the well-formed UTF-8 sequence at `from`, or 0. */
function sequenceSize(bytes: Uint8Array, from: number): number {
  const lead = bytes[from];
  if (lead < 0x80) return 1;
  const size = lead < 0xc2 ? 0 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : lead < 0xf5 ? 4 : 0;
  const second = bytes[from + 1];
  // Overlong forms, surrogates and codes above Unicode's range are recognised by their second byte.
  if ((lead === 0xe0 && second < 0xa0) || (lead === 0xed && second > 0x9f)) return 0;
  if ((lead === 0xf0 && second < 0x90) || (lead === 0xf4 && second > 0x8f)) return 0;
  for (let i = 1; i < size; ++i)
    if ((bytes[from + i] & 0xc0) !== 0x80) return 0;
  return size;
}

/**
 * Returns a name as it is to be shown: without the line end that the first symbol of a list carries, and with
 * characters that hide or turn text written out as `\u{202e}`.
 */
export function shownName(name: string): string {
  return name.replace(/[\r\n]+$/, '').replace(unseen, (c) => `\\u{${c.charCodeAt(0).toString(16)}}`);
}
