import {MergedTree} from '../model/MergedTree';
import type {Selection} from '../model/Selection';
import {pathTo, type Tree} from '../model/tree';
import {button} from './dom';
import {FlamePane} from './FlamePane';
import {folded} from './folded';
import {placeLook, formatPart} from './placeLook';
import {ProfileBar} from './ProfileBar';
import type {State} from './store';
import {type App, type Direction, samplesChanged, type View} from './View';

/**
 * All selected samples by their stacks: by caller from the root, or inverted, by what called the places that
 * took them.
 */
export class FlameView implements View {
  readonly id = 'flame';
  readonly title = 'Flame graph';
  readonly zone = 'detail';
  private app!: App;
  private bar!: ProfileBar;
  private pane!: FlamePane;
  private inverted = false;
  private upward = false;
  private tree: Tree|null = null;
  private selection: Selection|null = null;

  available(state: State): boolean { return state.profile !== null; }

  mount(host: HTMLElement, app: App): void {
    this.app = app;
    host.classList.add('column');
    const toggle = (label: string, title: string, flip: () => boolean) => {
      const made = button(label, title, () => {
        made.setAttribute('aria-pressed', String(flip()));
        app.store.refresh();
      });
      made.setAttribute('aria-pressed', 'false');
      return made;
    };
    this.bar = new ProfileBar(host, app, [
      toggle(
          'Inverted', 'By what called the places that took the samples',
          () => (this.inverted = !this.inverted)),
      toggle(
          'Root at bottom', 'Grow from the bottom to the top',
          () => {
            this.upward = !this.upward;
            this.pane.setUpward(this.upward);
            return this.upward;
          }),
    ]);
    this.pane = new FlamePane(
        host, app, false, (node) => this.openNode(node), 'Flame graph; arrow keys walk it, Enter zooms');
  }

  draw(state: State, changed: ReadonlySet<keyof State>): void {
    if (!samplesChanged(changed)) return;
    const model = state.profile!;
    const selection = model.selection(state.filter);
    const before = this.tree;
    if (selection !== this.selection || before === null || this.inverted === (before === this.selection)) {
      this.tree = this.inverted ? MergedTree.inverted(selection) : selection;
      const sameNodes = this.tree === selection && before === this.selection &&
          selection.profile === this.selection?.profile;
      this.selection = selection;
      this.show(state, sameNodes);
    } else
      this.show(state, true);
    this.bar.draw(state);
    this.pane.draw();
  }

  key(event: KeyboardEvent): boolean {
    if (event.key === 'Escape' && this.app.store.state.search === '') return false;
    return this.pane.key(event);
  }

  find(direction: Direction): string|null { return this.pane.find(direction); }

  table(): string[][] {
    const { tree, selection } = this;
    if (tree === null || selection === null) return [];
    const { names } = selection.profile.places;
    const rows: string[][] = [['depth', 'total', 'share', 'name']];
    this.pane.forEachBox((node) => {
      const total = tree.totals[node] * selection.profile.weight;
      const share = (100 * tree.totals[node]) / selection.count;
      rows.push([
        String(pathTo(tree, node).length), String(total), `${share.toFixed(3)}%`,
        node === 0 ? 'all' : names[tree.places[node]]
      ]);
    });
    return rows;
  }

  folded(): string { return this.selection === null ? '' : folded(this.selection); }

  svg(): string { return this.pane.svg(); }

  canvas(): HTMLCanvasElement { return this.pane.canvas; }

  private show(state: State, sameNodes: boolean): void {
    const model = state.profile!;
    const whole = formatPart(
        this.selection!.count * model.profile.weight, model.profile.samples.count * model.profile.weight);
    this.pane.show(
        this.tree!, placeLook(model, this.tree!, this.selection!, `all samples: ${whole}`, state.search),
        sameNodes);
  }

  private openNode(node: number): void {
    if (node > 0) this.app.store.set({ place: this.tree!.places[node], panel: 'butterfly' });
  }
}
