import {PlaceKind} from '../document/profile';
import {everything} from '../model/filter';
import {differ} from '../model/maps';

import type {Direction} from '../model/axis';
import type {ProfileModel} from '../model/ProfileModel';
import {isEverything, type Selection} from '../model/Selection';
import {button, div, element, isDark, searchField, span, swatch} from './dom';
import {FlamePane} from './FlamePane';
import {folded} from './folded';
import {kindColour, kindNames} from './placeColours';
import {formatCount, formatPart} from './placeLook';
import type {RowTable} from './RowTable';
import type {State} from './store';
import type {App, View} from './View';

/** What a view consists of: each has keys and takes part in the search. */
type Part = FlamePane|RowTable;

/** A colour on a light or a dark page, and what it means. */
export type LegendEntry = readonly[(dark: boolean) => string, string];

const kindLegend =
    kindNames.map((meaning, kind: PlaceKind): LegendEntry => [(dark) => kindColour(kind, dark), meaning]);

/**
 * A view of the selected samples, below a line with their number, with the filters, the legend and
 * the view's own controls.
 */
export abstract class ProfileView implements View {
  abstract readonly id: string;
  abstract readonly title: string;
  protected declare app: App;
  protected declare model: ProfileModel;
  protected declare selection: Selection;
  /** The parts that `fill` made; the first one gets the keys unless another has the focus. */
  protected parts: readonly Part[] = [];
  /** Own controls and legend. */
  protected controls: readonly Node[] = [];
  protected legend: readonly LegendEntry[] = kindLegend;
  /** What the view depends on besides profile, filter and search. */
  protected more: (state: State) => unknown = () => null;
  readonly #counted = span('counted');
  readonly #found = span('quiet');
  readonly #legendLine = span('legend');
  readonly #text = searchField('Only stacks with…', (text) => this.app.store.refine({ text: text.trim() }));
  readonly #clear = button(
      'Clear selection and filters', null, () => this.app.store.set({ filter: everything, run: null }));

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    this.app = app;
    host.classList.add('column');
    host.append(
        div('bar', ...this.controls, this.#text, this.#counted, this.#clear, this.#found, span('fill'),
            this.#legendLine));
    this.fill(host);
  }

  draw(state: State, painted: State|null): void {
    const subjects = (one: State) => [one.profile, one.filter, one.search, this.more(one)];
    if (painted && !differ(subjects(state), subjects(painted))) return;
    const before = this.selection as Selection | undefined;
    this.model = state.profile!;
    this.selection = this.model.selection(state.filter);
    this.#drawBar(state);
    this.show(state, before);
  }

  key(event: KeyboardEvent): boolean {
    return (this.parts.find((part) => part.hasFocus) ?? this.parts[0]).key(event);
  }

  find(direction: Direction): string|null {
    let found: string|null = null;
    for (const part of this.parts) found ??= part.find(direction);
    return found;
  }

  get picture(): FlamePane|undefined {
    return this.parts.find((part): part is FlamePane => part instanceof FlamePane);
  }

  folded(): string {
    const { profile, filter } = this.app.store.state;
    return folded(profile!.selection(filter));
  }

  /** Adds what is below the line. */
  protected abstract fill(host: HTMLElement): void;

  /** Shows `selection`, which was `before` when this was called last. */
  protected abstract show(state: State, before: Selection|undefined): void;

  /** Number of selected samples of the document, which those of its picture represent. */
  protected get whole(): number { return this.selection.count * this.model.profile.weight; }

  #drawBar({ filter, search }: State): void {
    const { weight } = this.model.profile;
    const all = this.model.profile.samples.count * weight;
    const about = weight > 1 ? 'about ' : '';
    const picked = !isEverything(filter);
    this.#counted.textContent =
        `${about}${picked ? `${formatPart(this.whole, all)} of ` : ''}${formatCount(all)} samples`;
    this.#clear.hidden = !picked;
    if (document.activeElement !== this.#text) this.#text.value = filter.text;
    const matched = this.model.matchedSamples(filter, search);
    this.#found.textContent =
        matched === null ? '' : `${formatPart(matched * weight, this.whole)} match the search`;
    this.#legendLine.replaceChildren(
        ...this.legend.map(([colour, meaning]) => element('span', {}, swatch(colour(isDark())), meaning)));
  }
}
