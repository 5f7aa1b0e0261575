import {PlaceKind} from '../document/profile';
import {everything} from '../model/filter';
import {isEverything} from '../model/Selection';

import {button, element, isDark} from './dom';
import {kindColour, kindNames} from './placeColours';
import {formatCount, formatPart} from './placeLook';

import type {State} from './store';
import type {App} from './View';

const shownKinds =
    [PlaceKind.Kernel, PlaceKind.User, PlaceKind.Unresolved, PlaceKind.Synthetic, PlaceKind.Cut];

/** A colour on a light or a dark page, and what it means. */
export type LegendEntry = readonly[(dark: boolean) => string, string];

const kindLegend = shownKinds.map((kind): LegendEntry => [(dark) => kindColour(kind, dark), kindNames[kind]]);

/**
 * The line above every profile view: what is counted, the filters, the legend, and the view's own controls.
 */
export class ProfileBar {
  private readonly counted = element('span', { class: 'counted' });
  private readonly found = element('span', { class: 'quiet' });
  private readonly clear: HTMLButtonElement;
  private readonly text: HTMLInputElement;
  private darkLegend: boolean|null = null;
  private readonly legend = element('span', { class: 'legend' });

  constructor(
      host: HTMLElement,
      app: App,
      controls: readonly Node[] = [],
      private readonly entries: readonly LegendEntry[] = kindLegend,
  ) {
    const { store } = app;
    this.text = element('input', {
      type: 'search',
      class: 'filter',
      placeholder: 'Only stacks with…',
      'aria-label': 'Only stacks that hold a function with this text',
      spellcheck: 'false',
      input: () => store.set({ filter: {...store.state.filter, text: this.text.value.trim() } }),
    });
    this.clear = button(
        'All samples', 'Give up the selection and all filters',
        () => store.set({ filter: everything, run: null }));
    host.append(
        element(
            'div', { class: 'bar' }, ...controls, this.text, this.counted, this.clear, this.found,
            element('span', { class: 'fill' }), this.legend),
    );
  }

  draw(state: State): void {
    const model = state.profile!;
    const { weight, samples } = model.profile;
    const selection = model.selection(state.filter);
    const all = samples.count * weight;
    const about = weight > 1 ? 'about ' : '';
    const picked = !isEverything(state.filter);
    this.counted.textContent = picked ?
        `${about}${formatPart(selection.count * weight, all)} of ${formatCount(all)} samples` :
        `${about}${formatCount(all)} samples`;
    this.clear.hidden = !picked;
    if (document.activeElement !== this.text) this.text.value = state.filter.text;
    const matched = model.matchedSamples(state.filter, state.search);
    this.found.textContent =
        matched === null ? '' : `${formatPart(matched * weight, selection.count * weight)} match the search`;
    this.drawLegend();
  }

  private drawLegend(): void {
    const dark = isDark();
    if (dark === this.darkLegend) return;
    this.darkLegend = dark;
    const items = this.entries.map(([colour, meaning]) => {
      const swatch = element('i', { class: 'swatch' });
      swatch.style.background = colour(dark);
      return element('span', {}, swatch, meaning);
    });
    this.legend.replaceChildren(...items);
  }
}
