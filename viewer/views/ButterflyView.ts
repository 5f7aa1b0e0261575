import {MergedTree} from '../model/MergedTree';
import type {Selection} from '../model/Selection';
import {element, shortName} from './dom';
import {FlamePane} from './FlamePane';
import {folded} from './folded';
import {describePlace} from '../model/groupings';
import {formatPart, placeLook} from './placeLook';
import {ProfileBar} from './ProfileBar';
import type {State} from './store';
import {type App, type Direction, samplesChanged, type View} from './View';

/** One function: what called it stands above it, what it called below. */
export class ButterflyView implements View {
  readonly id = 'butterfly';
  readonly title = 'Callers and callees';
  readonly zone = 'detail';
  private bar!: ProfileBar;
  private readonly name = element('div', { class: 'butterfly-name', role: 'heading', 'aria-level': '2' });
  private callers!: FlamePane;
  private callees!: FlamePane;
  private callersHost = element('div', { class: 'half' });
  private selection: Selection|null = null;
  private place = -1;

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    host.classList.add('column');
    this.bar = new ProfileBar(host, app);
    const calleesHost = element('div', { class: 'half' });
    host.append(this.callersHost, this.name, calleesHost);
    const open = (pane: () => FlamePane) => (node: number) => {
      const tree = pane().shown;
      if (tree !== null) app.store.set({ place: tree.places[node] });
    };
    this.callers = new FlamePane(this.callersHost, app, true, open(() => this.callers), 'Callers');
    this.callees = new FlamePane(calleesHost, app, false, open(() => this.callees), 'Callees');
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    if (!samplesChanged(changed, 'place')) return;
    const model = state.profile!;
    const selection = model.selection(state.filter);
    const { places, weight } = model.profile;
    const place = state.place >= 0 && state.place < places.count ? state.place : heaviest(selection);
    const same = selection === this.selection && place === this.place;
    this.selection = selection;
    this.place = place;
    const name = places.names[place] ?? '';
    for (const [pane, direction] of [[this.callers, 'callers'], [this.callees, 'callees']] as const) {
      const tree = same ? pane.shown! : MergedTree.of(selection, place, direction);
      pane.show(tree, placeLook(model, tree, selection, name, state.search), same);
    }
    const total = this.callees.shown!.totals[0] * weight;
    const where = describePlace(model.profile, place);
    this.name.replaceChildren(
        element('strong', {}, shortName(name)),
        ` total ${formatPart(total, selection.count * weight)} `,
        element('span', { class: 'quiet' }, shortName(where)),
    );
    this.bar.draw(state);
    this.callers.draw();
    this.callees.draw();
  }

  key(event: KeyboardEvent): boolean {
    return (this.callersHost.contains(document.activeElement) ? this.callers : this.callees).key(event);
  }

  find(direction: Direction): string|null {
    return this.callees.find(direction) ?? this.callers.find(direction);
  }

  table(): string[][] {
    const rows: string[][] = [['direction', 'samples', 'function']];
    for (const [pane, direction] of [[this.callers, 'caller'], [this.callees, 'callee']] as const) {
      const tree = pane.shown;
      if (tree === null || this.selection === null) continue;
      tree.expand(0);
      const { names } = this.selection.profile.places;
      for (let node = tree.childStart[0]; node < tree.childEnd[0]; ++node) {
        rows.push(
            [direction, String(tree.totals[node] * this.selection.profile.weight), names[tree.places[node]]]);
      }
    }
    return rows;
  }

  folded(): string { return this.selection === null ? '' : folded(this.selection); }

  svg(): string { return this.callees.svg(); }

  canvas(): HTMLCanvasElement { return this.callees.canvas; }
}

/** Returns the place in which most samples were taken. */
function heaviest({ selves, places, profile }: Selection): number {
  const byPlace = new Uint32Array(profile.places.count);
  for (let node = 1; node < selves.length; ++node) byPlace[places[node]] += selves[node];
  return byPlace.reduce((best, samples, place) => (samples > byPlace[best] ? place : best), 0);
}
