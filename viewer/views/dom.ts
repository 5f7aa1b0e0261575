/** Elements of the page. Text is only ever set as text. */

type Attributes = Readonly<Record<string, string|boolean|((event: never) => void)>>;

/** Returns a new element: functions become listeners of the event of that name, all else attributes. */
export function element<K extends keyof HTMLElementTagNameMap>(
    name: K, attributes: Attributes = {}, ...content: readonly(Node | string)[]): HTMLElementTagNameMap[K] {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (typeof value === 'function')
      made.addEventListener(key, value as EventListener);
    else if (value !== false)
      made.setAttribute(key, value === true ? '' : value);
  }
  made.append(...content);
  return made;
}

/** Returns a button whose label is also what screen readers say. */
export function button(
    label: string, title: string, press: () => void, more: Attributes = {}): HTMLButtonElement {
  return element('button', { type: 'button', title, 'aria-label': title, click: press, ...more }, label);
}

const longest = 300;

/**
 * Returns a name of bearable length: a longer one loses its middle. Readers of documents have made it
 * visible.
 */
export const shortName = (name: string): string =>
    name.length <= longest ? name : `${name.slice(0, longest - 60)}…${name.slice(-59)}`;

/** Returns a colour of the page's style sheet by its name there, such as `ground` or `text`. */
export const pageColour = (name: string): string =>
    getComputedStyle(document.documentElement).getPropertyValue(`--${name}`);

/** Returns whether the page is dark. */
export const isDark = () => matchMedia('(prefers-color-scheme: dark)').matches;

/** Makes the canvas as large as its box, in device pixels; returns their number for one pixel of the page. */
export function fitCanvas(canvas: HTMLCanvasElement, width: number, height: number): number {
  const scale = devicePixelRatio;
  const [columns, rows] = [Math.max(1, Math.round(width * scale)), Math.max(1, Math.round(height * scale))];
  if (canvas.width !== columns) canvas.width = columns;
  if (canvas.height !== rows) canvas.height = rows;
  canvas.style.width = `${columns / scale}px`;
  canvas.style.height = `${rows / scale}px`;
  return scale;
}
