import {button, element} from '../views/dom';

/** The commands of keys and pointer, in the order of the help. */
const sections: readonly(readonly[string, readonly(readonly[string, string])[]])[] = [
  [
    'Page',
    [
      ['O', 'open documents'],
      ['1 … 9', 'show that view'],
      ['/', 'search; N, Shift+N: next, previous match'],
      ['Z', 'undo the selection'],
      ['Escape', 'select everything'],
      ['C, Shift+C', 'copy the table, the samples as folded stacks'],
      ['Tab', 'next part of the page'],
    ],
  ],
  [
    'Time',
    [
      ['W, S', 'zoom in, out; also Ctrl and wheel'],
      ['A, D', 'move left, right; also Shift and wheel or drag'],
      ['drag', 'select a span; a double click shows it'],
      ['F, 0', 'show the selection, show all'],
    ],
  ],
  [
    'Timechart rows',
    [
      ['↑, ↓, Home, End', 'row above, below, first, last row'],
      ['Page up, Page down', 'scroll the rows'],
      ['←, →', 'previous, next point in time; with Shift, select up to it'],
      ['Enter, click', 'select what the row shows there, such as a run and its samples'],
      ['[, ]', 'select the previous, next run of the task'],
      ['M', 'measure from here'],
      ['Space, P, H, U', 'fold, pin, hide a row; show the hidden ones'],
    ],
  ],
];

/** Returns the dialog that lists keys and gestures. */
export function helpDialog(): HTMLDialogElement {
  const dialog = element('dialog', { 'aria-label': 'Help', autofocus: true }, element('h1', {}, 'Help'));
  for (const [title, keys] of sections) {
    const rows = keys.map(
        ([key, meaning]) => element(
            'tr', {}, element('th', { scope: 'row' }, element('kbd', {}, key)), element('td', {}, meaning)));
    dialog.append(element('h2', {}, title), element('table', {}, element('tbody', {}, ...rows)));
  }
  dialog.append(button('Close', null, () => dialog.close()));
  return dialog;
}
