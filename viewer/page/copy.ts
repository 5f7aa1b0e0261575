/** What leaves the page: text to the clipboard and pictures to files. */

import type {View} from '../views/View';

/** Returns whether the text reached the clipboard. */
export async function copyText(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    // A page from a file may not have the clipboard's newer interface.
    const area = document.createElement('textarea');
    area.value = text;
    document.body.append(area);
    area.select();
    const copied = document.execCommand('copy');
    area.remove();
    return copied;
  }
}

/** Saves what a view shows; returns the file's name. */
export async function savePicture(view: View, kind: 'svg'|'png'): Promise<string> {
  const name = `${view.id}.${kind}`;
  const link = document.createElement('a');
  const content = kind === 'svg' ? new Blob([view.picture!.svg!()], { type: 'image/svg+xml' }) :
                                   await pixels(view.picture!.canvas);
  link.href = URL.createObjectURL(content);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
  return name;
}

const pixels = (canvas: HTMLCanvasElement) => new Promise<Blob>(
    (done, failed) => canvas.toBlob((blob) => (blob ? done(blob) : failed(new Error('no picture')))));
