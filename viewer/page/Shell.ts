import type { View } from '../views/View';
import type { Opener } from './Opener';
import type { State, Store } from '../views/store';

/** The page's frame: opening, the zones of views, the status line. */
export class Shell {
  constructor(
    body: HTMLElement,
    store: Store,
    private readonly opener: Opener,
    private readonly views: readonly View[],
  ) {
    body.addEventListener('dragover', (event) => event.preventDefault());
    body.addEventListener('drop', (event) => {
      event.preventDefault();
      if (event.dataTransfer !== null) this.opener.openFiles(event.dataTransfer.files);
    });
    store.onCommit((state, changed) => this.commit(state, changed));
  }

  private commit(state: State, changed: ReadonlySet<keyof State>): void {
    for (const view of this.views) if (view.available(state)) view.draw(state, changed);
  }
}
