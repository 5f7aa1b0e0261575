import {DifferenceTree, unite, type Union} from '../model/difference';
import type {ProfileModel} from '../model/ProfileModel';
import type {Selection} from '../model/Selection';
import {button, element, isDark, shortName} from './dom';
import {FlamePane, type FlameLook} from './FlamePane';
import {formatShare} from '../model/axis';
import {type LegendEntry, ProfileBar} from './ProfileBar';
import {cellsOf, RowList} from './RowList';
import type {State} from './store';
import {type App, type Direction, samplesChanged, type View} from './View';

/** A place's share of either profile's samples. */
interface Change {
  /** Joint place of the union. */
  readonly place: number;
  readonly before: number;
  readonly after: number;
}

/** Steps between "all gone" and "all new". */
const steps = 8;

const legend: readonly LegendEntry[] = [
  [(dark) => palette(dark)[0], 'less than before'],
  [(dark) => palette(dark)[steps], 'the same'],
  [(dark) => palette(dark)[2 * steps], 'more than before'],
];

/** What changed from one profile to another: red is more than before, blue is less. */
export class DifferenceView implements View {
  readonly id = 'difference';
  readonly title = 'Difference';
  readonly zone = 'detail';
  private bar!: ProfileBar;
  private pane!: FlamePane;
  private list!: RowList;
  private union: Union|null = null;
  private models: readonly[ProfileModel, ProfileModel]|null = null;
  private selections: readonly[Selection, Selection]|null = null;
  private tree: DifferenceTree|null = null;
  private changes: Change[] = [];

  available(state: State): boolean { return state.profile !== null && state.baseline !== null; }

  mount(host: HTMLElement, app: App): void {
    host.classList.add('column');
    const swap = button(
        'Swap',
        'Exchange before and after',
        () => app.store.set({ profile: app.store.state.baseline, baseline: app.store.state.profile }),
    );
    this.bar = new ProfileBar(host, app, [swap], legend);
    const halves = element('div', { class: 'side-by-side' });
    const flame = element('div', { class: 'half' });
    const table = element('div', { class: 'half column difference-table' });
    table.append(
        element(
            'div', { class: 'row head', 'aria-hidden': 'true' },
            ...['Before', 'After', 'Change'].map((title) => element('span', { class: 'number' }, title)),
            element('span', { class: 'name' }, 'Function (self)')),
    );
    halves.append(flame, table);
    host.append(halves);
    this.pane = new FlamePane(flame, app, false, () => undefined, 'Difference flame graph');
    const repaint = () => app.store.repaint(this.paint);
    this.list = new RowList(table, 'grid', 'Changes', repaint, (row, index) => this.fill(row, index), {
      choose: (index) => app.announce(this.describe(this.changes[index])),
      open: (index) => {
        const place = this.union!.currentPlaces[this.changes[index].place];
        if (place >= 0) app.store.set({ place, panel: 'butterfly' });
      },
    });
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    if (!samplesChanged(changed, 'baseline')) return;
    const after = state.profile!;
    const before = state.baseline!;
    if (this.models?.[0] !== after || this.models[1] !== before) {
      this.union = unite(after.profile, before.profile);
      this.models = [after, before];
    }
    // Threads, cores and times of one recording mean nothing in the other.
    const text = before.textFilter(state.filter.text);
    const selections = [after.selection(state.filter), before.selection(text)] as const;
    const same = this.selections?.[0] === selections[0] && this.selections[1] === selections[1];
    if (!same || this.tree === null) {
      this.selections = selections;
      this.tree = new DifferenceTree(this.union!, ...selections);
      this.changes = this.listChanges();
    }
    this.pane.show(this.tree, this.look(state.search), same);
    this.bar.draw(state);
    this.pane.draw();
    this.paint();
  }

  key(event: KeyboardEvent): boolean {
    return this.list.scroller.contains(document.activeElement) ? this.list.key(event) : this.pane.key(event);
  }

  find(direction: Direction): string|null { return this.pane.find(direction); }

  table(): string[][] {
    const rows = this.changes.map(
        (change) =>
            [(100 * change.before).toFixed(3),
             (100 * change.after).toFixed(3),
             (100 * (change.after - change.before)).toFixed(3),
             this.nameOf(change.place),
    ]);
    return [['before %', 'after %', 'change', 'function'], ...rows];
  }

  svg(): string { return this.pane.svg(); }

  canvas(): HTMLCanvasElement { return this.pane.canvas; }

  private readonly paint = () => this.list.draw(this.changes.length);

  /** Name of a joint place, from whichever profile has it. */
  private nameOf(place: number): string {
    const [after, before] = this.models!;
    const current = this.union!.currentPlaces[place];
    return current >= 0 ? after.profile.places.names[current] :
                          before.profile.places.names[this.union!.baselinePlaces[place]];
  }

  private look(search: string): FlameLook {
    const tree = this.tree!;
    const [after, before] = this.models!;
    const found = [after.matches(search), before.matches(search)];
    const { currentPlaces, baselinePlaces } = this.union!;
    const whole = this.selections![0].count || 1;
    const nameOf = (node: number) =>
        (node === 0 ? `${before.profile.name} → ${after.profile.name}` : this.nameOf(tree.places[node]));
    return {
      palette: palette(isDark()),
      name: nameOf,
      colour(node) {
        const change = tree.current[node] - tree.baseline[node];
        const part = change / Math.max(tree.current[node], tree.baseline[node], 1);
        return steps + Math.round(part * steps);
      },
      matches(node) {
        if (found[0] === null || found[1] === null) return null;
        const place = tree.places[node];
        return node !== 0 && (found[0][currentPlaces[place]] === 1 || found[1][baselinePlaces[place]] === 1);
      },
      describe(node) {
        const [now, then] = [tree.current[node] / whole, tree.baseline[node] / whole];
        const change = `${now >= then ? '+' : '−'}${formatShare(Math.abs(now - then))}`;
        return [
          shortName(nameOf(node)), `before ${formatShare(then)}, after ${formatShare(now)}, change ${change}`
        ];
      },
    };
  }

  /** Returns every place's share of the samples that were taken in it, the largest change first. */
  private listChanges(): Change[] {
    const { currentPlaces } = this.union!;
    const shares = this.selections!.map((selection, index) => {
      const weights = this.models![index].grouping('function').weigh(selection);
      return (place: number) => (place < 0 ? 0 : weights.selves[place] / (selection.count || 1));
    });
    const changes = Array.from(currentPlaces, (current, place) => ({
                                                place,
                                                after: shares[0](current),
                                                before: shares[1](this.union!.baselinePlaces[place]),
                                              }));
    const size = ({ before, after }: Change) => Math.abs(after - before);
    return changes.filter(({ before, after }) => before > 0 || after > 0).sort((a, b) => size(b) - size(a));
  }

  private describe({ place, before, after }: Change): string {
    return `${shortName(this.nameOf(place))}, before ${formatShare(before)}, after ${formatShare(after)}`;
  }

  private fill(row: HTMLElement, index: number): void {
    const { place, before, after } = this.changes[index];
    const [beforeCell, afterCell, changeCell, nameCell] =
        cellsOf(row, ['number', 'number', 'number', 'name']);
    beforeCell.textContent = formatShare(before);
    afterCell.textContent = formatShare(after);
    const change = after - before;
    changeCell.textContent = `${change > 0 ? '+' : change < 0 ? '−' : ''}${formatShare(Math.abs(change))}`;
    changeCell.className = `number ${change > 0 ? 'more' : change < 0 ? 'less' : ''}`;
    nameCell.textContent = shortName(this.nameOf(place));
  }
}

/** Blue for less, grey for the same, red for more. */
function palette(dark: boolean): string[] {
  return Array.from({ length: 2 * steps + 1 }, (_, index) => {
    const part = Math.abs(index - steps) / steps;
    const hue = index <= steps ? 215 : 5;
    const lightness = dark ? 32 + 10 * part : 90 - 24 * part;
    return `hsl(${hue} ${Math.round(6 + 74 * part)}% ${lightness}%)`;
  });
}
