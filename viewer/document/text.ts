const utf8 = new TextDecoder('utf-8', { fatal: true, ignoreBOM: true });
/** Replaces what is no UTF-8 by U+FFFD; as quick for such bytes as for others, which throwing is not. */
const lossy = new TextDecoder();

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
    const lead = bytes[i];
    const size = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    if (size === 1 || !lossy.decode(bytes.subarray(i, i + size)).includes('\ufffd')) {
      i += size;
      continue;
    }
    text += utf8.decode(bytes.subarray(valid, i)) + `\\x${lead.toString(16)}`;
    valid = ++i;
  }
  return text + utf8.decode(bytes.subarray(valid));
}

/**
 * Returns a name as it is to be shown: without the line end that the first symbol of a list carries, and with
 * characters that hide or turn text written out as `\u{202e}`.
 */
export function shownName(name: string): string {
  return name.replace(/[\r\n]+$/, '').replace(unseen, (c) => `\\u{${c.charCodeAt(0).toString(16)}}`);
}
