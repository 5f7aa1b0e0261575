/** What leaves the page: text to the clipboard and pictures to files. */

import {element} from '../views/dom';
import type {View} from '../views/View';

/**
 * Returns whether the text reached the clipboard; a page from anywhere may copy in answer to a key or click.
 */
export function copyText(text: string): boolean {
  const fill = (event: ClipboardEvent) => {
    event.clipboardData!.setData('text/plain', text);
    event.preventDefault();
  };
  document.addEventListener('copy', fill, { once: true });
  return document.execCommand('copy');
}

/** Saves what a view shows; returns the file's name. */
export async function savePicture(view: View, kind: 'svg'|'png'): Promise<string> {
  const name = `${view.id}.${kind}`;
  const link = element('a');
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
