/** Elements of the page. Text is only ever set as text. */

/** Attributes and events, by their names. */
type Attributes = Readonly<Record<string, string|number|boolean|null|((event: never) => void)>>;
type Content = readonly(Node|string)[];

/**
 * Gives attributes and listeners to an element: functions become listeners of the event of that name. Those
 * of ARIA say `true` or `false`, all others are there or not; null takes one away.
 */
export function equip(made: Element, attributes: Attributes): void {
  for (const [key, value] of Object.entries(attributes)) {
    if (typeof value === 'function')
      made.addEventListener(key, value as EventListener);
    else if (value === null)
      made.removeAttribute(key);
    else if (key.startsWith('aria-'))
      made.setAttribute(key, String(value));
    else if (value !== false)
      made.setAttribute(key, value === true ? '' : String(value));
  }
}

/** Returns a new element. */
export function element<K extends keyof HTMLElementTagNameMap>(
    name: K, attributes: Attributes = {}, ...content: Content): HTMLElementTagNameMap[K] {
  const made = document.createElement(name);
  equip(made, attributes);
  made.append(...content);
  return made;
}

/** Returns a block of a class of the style sheet. */
export const div = (className: string, ...content: Content): HTMLDivElement =>
    element('div', {class: className}, ...content);

/** Returns a piece of a line, of a class of the style sheet. */
export const span = (className: string, ...content: Content): HTMLSpanElement =>
    element('span', {class: className}, ...content);

/** Returns a button whose title, if it has one, is also what screen readers say. */
export function button(
    label: string, title: string|null, press: () => void, more: Attributes = {}): HTMLButtonElement {
  return element('button', { title, 'aria-label': title, click: press, ...more }, label);
}

/** Returns a field for a text to look for; `change` gets the text. */
export function searchField(label: string, change: (text: string) => void): HTMLInputElement {
  const field: HTMLInputElement = element('input', {
    type: 'search',
    placeholder: label,
    'aria-label': label,
    spellcheck: 'false',
    input: () => change(field.value)
  });
  return field;
}

/** Sets the text of an element unless it has it already, so that screen readers speak only what changes. */
export function write(made: Element, text: string): void {
  if (made.textContent !== text) made.textContent = text;
}

/** Returns a sign of whether rows below are listed, or none for null. */
export const foldSign = (open: boolean|null): string => open === null ? '' : open ? '▾' : '▸';

/** Returns the element of such a sign. Screen readers get the state from the row itself. */
export const twisty = (sign = ''): HTMLElement =>
    element('span', {class: 'twisty', 'aria-hidden': true}, sign);

/** Returns a sample of a colour. */
export function swatch(colour: string): HTMLElement {
  const made = element('i', { class: 'swatch' });
  made.style.background = colour;
  return made;
}

/** Returns where the pointer is in an element, in pixels from its left and upper edge. */
export function placeIn(target: Element, event: MouseEvent): {x: number; y: number} {
  const { left, top } = target.getBoundingClientRect();
  return { x: event.clientX - left, y: event.clientY - top };
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
    getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();

/** Returns what tells whether the page is dark, and when that changes. */
export const darkness = () => matchMedia('(prefers-color-scheme: dark)');

export const isDark = () => darkness().matches;

/** Returns the device pixels of a length on the page. */
export const devicePixels = (length: number): number => Math.max(1, Math.round(length * devicePixelRatio));

/** Makes the canvas as large as its box, in device pixels; returns their number for one pixel of the page. */
export function fitCanvas(canvas: HTMLCanvasElement, width: number, height: number): number {
  const scale = devicePixelRatio;
  const [columns, rows] = [devicePixels(width), devicePixels(height)];
  if (canvas.width !== columns) canvas.width = columns;
  if (canvas.height !== rows) canvas.height = rows;
  canvas.style.width = `${columns / scale}px`;
  canvas.style.height = `${rows / scale}px`;
  return scale;
}
