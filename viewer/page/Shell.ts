import {button, element, shortName} from '../views/dom';
import type {Reading, State, Store} from '../views/store';
import {axisWidth, brushOf, describeSpan, gutter, setBrush, shownExtent, timeKey} from '../views/timeAxis';
import type {App, Direction, View} from '../views/View';
import {copyText, savePicture} from './copy';
import {helpDialog} from './help';
import {History} from './History';
import type {Opener} from './Opener';

interface Mounted {
  readonly view: View;
  readonly host: HTMLElement;
  /** What changed since the view was drawn last; a hidden one is not drawn. */
  readonly stale: Set<keyof State>;
}

/** The page's frame: opening, the zones of views, menus, keys and the status line. */
export class Shell implements App {
  private readonly mounted: readonly Mounted[];
  private readonly openInput =
      element('input', { type: 'file', multiple: true, hidden: true, accept: '.json,.gz' });
  private readonly readings = element('div', { class: 'readings', role: 'status' });
  private readonly search = element(
      'input', { type: 'search', placeholder: 'Search ( / )', 'aria-label': 'Search', spellcheck: 'false' });
  private readonly found = element('span', { class: 'found', role: 'status' });
  private readonly brush = button(
      '', 'Select everything (Escape)', () => setBrush(this.store, null), { class: 'brush', hidden: true });
  private readonly timeZone = element('div', { class: 'zone time' });
  private readonly splitter = element('div', {
    class: 'splitter',
    role: 'separator',
    'aria-label': 'Height of the time views',
    'aria-orientation': 'horizontal',
    tabindex: '0'
  });
  private readonly tabs = element('div', { class: 'tabs', role: 'tablist', 'aria-label': 'Views' });
  private readonly detailZone = element('div', { class: 'zone detail' });
  private readonly status = element('div', { class: 'status', role: 'status', 'aria-live': 'polite' });
  private readonly tip = element('div', { class: 'tip', role: 'tooltip', hidden: true });
  private readonly crosshair = element('div', { class: 'crosshair', hidden: true });
  private readonly welcome: HTMLElement;
  private readonly main: HTMLElement;
  private readonly help = helpDialog();
  private readonly history: History;

  constructor(
      body: HTMLElement,
      readonly store: Store,
      private readonly opener: Opener,
      views: readonly View[],
  ) {
    this.history = new History(store);
    const choose = () => this.openInput.click();
    this.openInput.addEventListener('change', () => {
      opener.openFiles(this.openInput.files ?? []);
      this.openInput.value = '';
    });
    this.welcome = element(
        'div',
        { class: 'welcome' },
        element('h1', {}, 'zelconv viewer'),
        element(
            'p', {},
            'Drop documents here: a profile, a timechart, or both of one recording; gzipped ones, too.'),
        button('Open documents…', 'Open documents', choose, { class: 'primary' }),
        element(
            'p', { class: 'quiet' },
            'They stay on this machine: the page can request nothing. Press ? for the keys.'),
    );
    this.mounted = views.map((view) => this.mount(view));
    this.main = element('main', { hidden: true }, this.timeZone, this.splitter, this.tabs, this.detailZone);
    this.timeZone.append(this.crosshair);
    body.append(this.header(choose), this.welcome, this.main, this.status, this.tip, this.help);
    this.listen(body);
    store.onCommit((state, changed) => this.commit(state, changed));
    new ResizeObserver(() => store.refresh()).observe(this.main);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => store.refresh());
    store.refresh();
  }

  announce(text: string): void { this.status.textContent = text; }

  tooltip(lines: readonly string[]|null, event?: MouseEvent): void {
    this.tip.hidden = lines === null || event === undefined;
    if (lines === null || event === undefined) return;
    this.tip.replaceChildren(...lines.map((line) => element('div', {}, line)));
    const { offsetWidth, offsetHeight } = this.tip;
    const x =
        event.clientX + 14 + offsetWidth > innerWidth ? event.clientX - offsetWidth - 10 : event.clientX + 14;
    const y = event.clientY + 18 + offsetHeight > innerHeight ? event.clientY - offsetHeight - 10 :
                                                                event.clientY + 18;
    this.tip.style.transform = `translate(${Math.max(0, x)}px, ${Math.max(0, y)}px)`;
  }

  hover(time: number|null): void {
    const shown = shownExtent(this.store.state);
    const part = time === null ? -1 : (time - shown.start) / (shown.end - shown.start);
    this.crosshair.hidden = part < 0 || part > 1;
    this.crosshair.style.transform = `translateX(${gutter + part * axisWidth(this.timeZone)}px)`;
  }

  private header(choose: () => void): HTMLElement {
    const copy = (what: 'table'|'folded') => () => void this.copy(what);
    const picture = (kind: 'svg'|'png') => () => void this.picture(kind);
    return element(
        'header',
        {},
        button('Open…', 'Open documents (O)', choose),
        this.readings,
        element('span', { class: 'fill' }),
        this.search,
        button('‹', 'Previous match (Shift+N)', () => this.find(-1)),
        button('›', 'Next match (N)', () => this.find(1)),
        this.found,
        button('Undo', 'Undo the last selection (Z)', () => this.undo()),
        element(
            'details',
            { class: 'menu' },
            element('summary', {}, 'Save'),
            element(
                'div',
                {},
                button('Copy table (TSV)', 'Copy the view as a table (C)', copy('table')),
                button(
                    'Copy folded stacks', 'Copy the selected samples as folded stacks (Shift+C)',
                    copy('folded')),
                button('Picture (SVG)', 'Save the view as a vector picture', picture('svg')),
                button('Picture (PNG)', 'Save the view as pixels', picture('png')),
                ),
            ),
        button('?', 'Keys and help (?)', () => this.help.showModal()),
        this.openInput,
    );
  }

  private mount(view: View): Mounted {
    const host = element(
        'section',
        { id: `view-${view.id}`, class: 'view', 'aria-label': view.title, tabindex: '-1', hidden: true });
    if (view.zone === 'detail') {
      host.setAttribute('role', 'tabpanel');
      const tab = element(
          'button', {
            type: 'button',
            role: 'tab',
            id: `tab-${view.id}`,
            'aria-controls': host.id,
            click: () => this.store.set({ panel: view.id })
          },
          view.title);
      this.tabs.append(tab);
      this.detailZone.append(host);
    } else
      this.timeZone.append(host);
    view.mount(host, this);
    return { view, host, stale: new Set() };
  }

  private commit(state: State, changed: ReadonlySet<keyof State>): void {
    const opened = state.profile !== null || state.timechart !== null;
    this.main.hidden = !opened;
    this.welcome.hidden = opened;
    if (changed.has('readings')) this.drawReadings(state.readings);
    if (changed.has('search') && document.activeElement !== this.search) this.search.value = state.search;
    if (changed.has('profile') || changed.has('timechart')) this.compareClocks(state);
    const brush = brushOf(state);
    this.brush.hidden = brush === null;
    if (brush !== null) this.brush.textContent = `${describeSpan(brush)} ✕`;
    const panel = this.panel(state);
    // Sizes first: a view that appears takes room from the others.
    for (const { view, host } of this.mounted) {
      const visible = view.available(state) && (view.zone === 'time' || view === panel);
      if (host.hidden === visible) {
        host.hidden = !visible;
        this.store.refresh();
      }
    }
    for (const tab of this.tabs.querySelectorAll<HTMLElement>('[role=tab]')) {
      const mounted = this.mounted.find(({ view }) => tab.id === `tab-${view.id}`)!;
      tab.hidden = !mounted.view.available(state);
      tab.setAttribute('aria-selected', String(mounted.view === panel));
      tab.tabIndex = mounted.view === panel ? 0 : -1;
    }
    for (const { view, host, stale } of this.mounted) {
      for (const key of changed) stale.add(key);
      if (host.hidden || !view.available(state)) continue;
      view.draw(state, stale);
      stale.clear();
    }
  }

  private compareClocks({ profile, timechart }: State): void {
    if (profile === null || timechart === null ||
        (profile.start <= timechart.end && timechart.start <= profile.end))
      return;
    this.announce(
        'The profile and the timechart share no time: were both converted with the same time scale?');
  }

  /** The detail view that is shown: the chosen one, or the first that has something to show. */
  private panel(state: State): View|undefined {
    const details = this.mounted.map(({ view }) => view)
                        .filter((view) => view.zone === 'detail' && view.available(state));
    return details.find(({ id }) => id === state.panel) ?? details[0];
  }

  private drawReadings(readings: readonly Reading[]): void {
    const chips = readings.map(({ id, name, bytes, total, state, message }) => {
      const chip = element(
          'span', { class: `reading ${state}` },
          state === 'failed' || state === 'damaged' ? shortName(message) : shortName(name));
      if (state === 'reading') {
        const done = total > 0 ? bytes / total : 0;
        chip.append(
            element(
                'progress', { max: '1', value: String(done), 'aria-label': `Reading ${shortName(name)}` }),
            button('✕', `Stop reading ${shortName(name)}`, () => this.opener.cancel(id)),
        );
      }
      return chip;
    });
    this.readings.replaceChildren(...chips);
  }

  private listen(body: HTMLElement): void {
    body.addEventListener('dragover', (event) => event.preventDefault());
    body.addEventListener('drop', (event) => {
      event.preventDefault();
      if (event.dataTransfer !== null) this.opener.openFiles(event.dataTransfer.files);
    });
    // A menu closes once something is chosen, here or elsewhere.
    body.addEventListener('click', (event) => {
      for (const menu of body.querySelectorAll<HTMLDetailsElement>('details.menu[open]')) {
        if (!(event.target as Element).matches('summary')) menu.open = false;
      }
    });
    body.addEventListener('keydown', (event) => {
      if (this.help.open || !this.key(event)) return;
      event.preventDefault();
    });
    this.search.addEventListener('input', () => this.store.set({ search: this.search.value }));
    this.search.addEventListener('keydown', (event) => {
      event.stopPropagation();
      if (event.key === 'Enter')
        this.find(event.shiftKey ? -1 : 1);
      else if (event.key === 'Escape') {
        this.store.set({ search: '' });
        this.search.value = '';
        this.search.blur();
      }
    });
    this.splitter.addEventListener(
        'pointerdown', (event) => this.splitter.setPointerCapture(event.pointerId));
    this.splitter.addEventListener('pointermove', (event) => {
      if (this.splitter.hasPointerCapture(event.pointerId))
        this.split(event.clientY - this.timeZone.getBoundingClientRect().top);
    });
    this.tabs.append(element('span', { class: 'fill' }), this.brush);
  }

  private split(height: number): void {
    this.timeZone.style.flexBasis = `${Math.max(80, Math.min(height, this.main.clientHeight - 120))}px`;
  }

  private key(event: KeyboardEvent): boolean {
    if (event.target instanceof HTMLInputElement || event.target instanceof HTMLSelectElement) return false;
    if (event.target === this.splitter && (event.key === 'ArrowUp' || event.key === 'ArrowDown')) {
      this.split(this.timeZone.clientHeight + (event.key === 'ArrowDown' ? 20 : -20));
      return true;
    }
    if (event.target instanceof Element && event.target.getAttribute('role') === 'tab' && this.tabKey(event))
      return true;
    if ((event.ctrlKey || event.metaKey) && event.key.toLowerCase() === 'z') return this.undo();
    if (event.ctrlKey || event.metaKey || event.altKey) return false;
    // A pressed button acts by itself.
    if (event.target instanceof HTMLButtonElement && (event.key === 'Enter' || event.key === ' '))
      return false;
    const focused = this.mounted.find(({ host }) => host.contains(document.activeElement));
    if (focused?.view.key(event) === true) return true;
    return this.pageKey(event) || timeKey(event, this.store);
  }

  private pageKey(event: KeyboardEvent): boolean {
    switch (event.key) {
      case '/':
        this.search.focus();
        this.search.select();
        return true;
      case '?':
        this.help.showModal();
        return true;
      case 'n':
      case 'N':
        this.find(event.key === 'n' ? 1 : -1);
        return true;
      case 'z':
        return this.undo();
      case 'o':
        this.openInput.click();
        return true;
      case 'c':
      case 'C':
        void this.copy(event.key === 'c' ? 'table' : 'folded');
        return true;
      case 'Escape':
        setBrush(this.store, null);
        return true;
    }
    const number = '123456789'.indexOf(event.key);
    const details =
        this.mounted.filter(({ view }) => view.zone === 'detail' && view.available(this.store.state));
    if (number < 0 || details[number] === undefined) return false;
    this.store.set({ panel: details[number].view.id });
    details[number].host.hidden = false;
    details[number].host.focus();
    return true;
  }

  private tabKey(event: KeyboardEvent): boolean {
    const step = event.key === 'ArrowRight' ? 1 : event.key === 'ArrowLeft' ? -1 : 0;
    const tabs = [...this.tabs.querySelectorAll<HTMLElement>('[role=tab]')].filter((tab) => !tab.hidden);
    const next = tabs[(tabs.indexOf(event.target as HTMLElement) + step + tabs.length) % tabs.length];
    if (step === 0 || next === undefined) return false;
    next.click();
    next.focus();
    return true;
  }

  /** The view that copying, pictures and search are about: the one with the focus, else the detail view. */
  private current(): View|undefined {
    const focused = this.mounted.find(({ host }) => host.contains(document.activeElement));
    return focused?.view ?? this.panel(this.store.state);
  }

  private find(direction: Direction): void {
    const { state } = this.store;
    const first = this.current();
    const views = this.mounted.filter(({ view, host }) => !host.hidden && view.available(state))
                      .map(({ view }) => view);
    if (first !== undefined) views.sort((a, b) => Number(b === first) - Number(a === first));
    for (const view of views) {
      const match = state.search === '' ? null : view.find?.(direction) ?? null;
      if (match === null) continue;
      this.found.textContent = shortName(match);
      return;
    }
    this.found.textContent = state.search === '' ? '' : 'no match';
  }

  private undo(): boolean {
    const undone = this.history.undo();
    this.announce(undone ? 'Selection undone' : 'Nothing to undo');
    return true;
  }

  private async copy(what: 'table'|'folded'): Promise<void> {
    const views = [this.current(), ...this.mounted.map(({ view }) => view)];
    const view =
        views.find((candidate) => candidate?.[what] !== undefined && candidate.available(this.store.state));
    const text = what === 'folded' ?
        view?.folded?.() :
        view?.table?.().map((cells) => cells.map(cellText).join('\t') + '\n').join('');
    if (text === undefined)
      this.announce('This view has nothing to copy');
    else
      this.announce(
          (await copyText(text)) ? `Copied ${text.split('\n').length - 1} lines` :
                                   'The browser refused to copy');
  }

  private async picture(kind: 'svg'|'png'): Promise<void> {
    const able = (view: View|undefined) =>
        (kind === 'svg' ? view?.svg : view?.canvas) !== undefined && view!.available(this.store.state);
    const view = [this.current(), ...this.mounted.map((mounted) => mounted.view)].find(able);
    if (view === undefined)
      this.announce('This view has no picture');
    else
      this.announce(`Saved ${await savePicture(view, kind)}`);
  }
}

/** A cell holds no tabulator and no line end. */
const cellText = (cell: string) => cell.replace(/[\t\r\n]/g, ' ');
