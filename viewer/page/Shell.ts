import {clamped, type Direction} from '../model/axis';
import {button, darkness, div, element, equip, placeIn, searchField, shortName, span} from '../views/dom';
import type {Reading, State, Store} from '../views/store';
import {axisWidth, brushOf, describeSpan, gutter, scaleOf, setBrush, timeKey} from '../views/timeAxis';
import {type App, perform, type View} from '../views/View';
import {copyText, savePicture} from './copy';
import {helpDialog} from './help';
import {History} from './History';
import type {Opener} from './Opener';

interface Mounted {
  readonly view: View;
  readonly host: HTMLElement;
  /** The tab of a detail view. */
  readonly tab: HTMLElement|null;
  /** The state that the view has painted; null if it has to paint all. */
  painted: State|null;
  /** Draws the view unless it is hidden. */
  readonly paint: () => void;
}

/**
 * Least heights of the time views and of the rest, in pixels of the page, and what a key moves the edge by.
 */
const leastTime = 80;
const leastDetail = 120;
const splitStep = 20;
/** Pixels between the pointer and the lines about what is under it. */
const tipGap = 14;

/** The page's frame: opening, the zones of views, menus, keys and the status line. */
export class Shell implements App {
  readonly #mounted: readonly Mounted[];
  readonly #openInput: HTMLInputElement = element('input', {
    type: 'file',
    multiple: true,
    hidden: true,
    accept: '.json,.gz',
    change:
        () => {
          this.opener.openFiles(this.#openInput.files ?? []);
          this.#openInput.value = '';
        },
  });
  readonly #readings = element('div', { class: 'readings', role: 'status' });
  readonly #search = searchField('Search ( / )', (search) => this.store.set({ search }));
  readonly #found = element('span', { class: 'found', role: 'status' });
  readonly #brush = button(
      '', 'Select everything (Escape)', () => setBrush(this.store, null), { class: 'brush', hidden: true });
  readonly #timeZone = div('time');
  readonly #splitter = element(
      'div', { class: 'splitter', role: 'separator', 'aria-label': 'Height of the time views', tabIndex: 0 });
  readonly #tabs = element('div', { class: 'tabs', role: 'tablist', 'aria-label': 'Views' });
  readonly #detailZone = div('detail');
  readonly #status = element('div', { class: 'status', role: 'status' });
  readonly #tip = element('div', { class: 'tip', role: 'tooltip', hidden: true });
  readonly #crosshair = element('div', { class: 'crosshair', hidden: true });
  readonly #welcome =
      div('welcome', element('h1', {}, 'zelconv viewer'),
          element('p', {}, 'Drop profiles and timecharts here, gzipped or not.'),
          this.#keyButton('Open documents (O)', null, 'o', 'primary'),
          element(
              'p', { class: 'quiet' },
              'They stay on this machine: the page can request nothing. Press ? for help.'));
  readonly #main =
      element('main', { hidden: true }, this.#timeZone, this.#splitter, this.#tabs, this.#detailZone);
  readonly #help = helpDialog();
  readonly #history: History;
  /** The keys of the page; the help lists them. */
  readonly #keys: Readonly<Record<string, () => void>> = {
    '/': () => {
      this.#search.focus();
      this.#search.select();
    },
    '?': () => this.#help.showModal(),
    'n': () => this.#find(1),
    'N': () => this.#find(-1),
    'z': () => this.#undo(),
    'o': () => this.#openInput.click(),
    'c': () => this.#copy('table'),
    'C': () => this.#copy('folded'),
    'Escape': () => setBrush(this.store, null),
  };

  constructor(
      body: HTMLElement,
      readonly store: Store,
      private readonly opener: Opener,
      views: readonly View[],
  ) {
    this.#history = new History(store);
    this.#mounted = views.map((view) => this.#mount(view));
    this.#tabs.append(span('fill'), this.#brush);
    this.#timeZone.append(this.#crosshair);
    body.append(this.#header(), this.#welcome, this.#main, this.#status, this.#tip, this.#help);
    this.#listen(body);
    store.onCommit((state, before) => this.#commit(state, before));
    const refresh = () => store.refresh();
    new ResizeObserver(refresh).observe(this.#main);
    darkness().addEventListener('change', refresh);
    refresh();
  }

  announce(text: string): void { this.#status.textContent = text; }

  tooltip(lines: readonly string[]|null, event: MouseEvent|null = null): void {
    const tip = this.#tip;
    tip.hidden = !lines || !event;
    if (!lines || !event) return;
    tip.replaceChildren(...lines.map((line) => div('', line)));
    // Next to the pointer, on the side that has room.
    const place = (at: number, size: number, all: number) =>
        Math.max(0, at + tipGap + size > all ? at - tipGap - size : at + tipGap);
    tip.style.transform = `translate(${place(event.clientX, tip.offsetWidth, innerWidth)}px, ${
        place(event.clientY, tip.offsetHeight, innerHeight)}px)`;
  }

  hover(time: number|null): void {
    const x = time === null ? -1 : scaleOf(this.store.state, this.#timeZone).x(time);
    this.#crosshair.hidden = x < 0 || x > axisWidth(this.#timeZone);
    this.#crosshair.style.transform = `translateX(${gutter + x}px)`;
  }

  /** Returns a button that does what a key does. */
  #keyButton(label: string, title: string|null, key: string, style = ''): HTMLButtonElement {
    return button(label, title, () => this.#keys[key](), { class: style });
  }

  #header(): HTMLElement {
    const picture = (kind: 'svg'|'png') => () => void this.#picture(kind);
    return element(
        'header', {}, this.#keyButton('Open…', 'Open documents (O)', 'o'), this.#readings, span('fill'),
        this.#search, this.#keyButton('‹', 'Previous match (Shift+N)', 'N'),
        this.#keyButton('›', 'Next match (N)', 'n'), this.#found,
        this.#keyButton('Undo', 'Undo the selection (Z)', 'z'),
        element(
            'details', { class: 'menu' }, element('summary', {}, 'Save'),
            div('', this.#keyButton('Copy table (C)', null, 'c'),
                this.#keyButton('Copy folded stacks (Shift+C)', null, 'C'),
                button('Save as SVG', null, picture('svg')), button('Save as PNG', null, picture('png')))),
        this.#keyButton('?', 'Help (?)', '?'), this.#openInput);
  }

  #mount(view: View): Mounted {
    const { id } = view;
    const host = element(
        'section', { id: `view-${id}`, class: 'view', 'aria-label': view.title, tabIndex: -1, hidden: true });
    let tab: HTMLElement|null = null;
    if (view.zone === 'time')
      this.#timeZone.append(host);
    else {
      const click = () => this.store.set({ panel: id });
      tab = element('button', { role: 'tab', 'aria-controls': host.id, click }, view.title);
      equip(host, { role: 'tabpanel' });
      this.#tabs.append(tab);
      this.#detailZone.append(host);
    }
    view.mount(host, this);
    const paint = () => {
      if (host.hidden) return;
      view.draw(this.store.state, mounted.painted);
      mounted.painted = this.store.state;
    };
    const mounted: Mounted = { view, host, tab, painted: null, paint };
    return mounted;
  }

  #commit(state: State, before: State|null): void {
    const appears = this.#main.hidden;
    this.#main.hidden = !state.profile && !state.timechart;
    this.#welcome.hidden = !this.#main.hidden;
    if (state.readings !== before?.readings) this.#drawReadings(state.readings);
    if (document.activeElement !== this.#search) this.#search.value = state.search;
    if (state.profile !== before?.profile || state.timechart !== before?.timechart)
      this.#compareClocks(state);
    const brush = brushOf(state);
    this.#brush.hidden = !brush;
    if (brush) this.#brush.textContent = `${describeSpan(brush)} ✕`;
    const panel = this.#panel();
    let resized = false;
    for (const mounted of this.#mounted) {
      const { tab } = mounted;
      const hidden = !mounted.view.available(state) || (tab !== null && mounted !== panel);
      if (tab) {
        tab.hidden = !mounted.view.available(state);
        equip(tab, { 'aria-selected': !hidden, tabIndex: hidden ? -1 : 0 });
      }
      // A view that appears takes room from the others.
      if (mounted.host.hidden !== hidden) resized = true;
      mounted.host.hidden = hidden;
    }
    for (const mounted of this.#mounted) {
      if (!before || (resized && !mounted.tab)) mounted.painted = null;
      // Once the views have their sizes, the observer has them painted.
      if (mounted.painted !== state && !appears) this.store.repaint(mounted.paint);
    }
  }

  #compareClocks({ profile, timechart }: State): void {
    if (!profile || !timechart || (profile.start <= timechart.end && timechart.start <= profile.end)) return;
    this.announce('Profile and timechart share no time: have they the same time scale?');
  }

  /** The views that have something to show. */
  #available(): Mounted[] {
    return this.#mounted.filter((mounted) => mounted.view.available(this.store.state));
  }

  #details(): Mounted[] { return this.#available().filter((mounted) => mounted.tab !== null); }

  /** The detail view that is shown: the chosen one, or the first that has something to show. */
  #panel(): Mounted|undefined {
    const details = this.#details();
    return details.find((mounted) => mounted.view.id === this.store.state.panel) ?? details[0];
  }

  #drawReadings(readings: readonly Reading[]): void {
    const chips = readings.map(({ id, name, bytes, total, state, message }) => {
      const chip = span(`reading ${state}`, shortName(message || name));
      if (state === 'reading') {
        const value = total > 0 ? bytes / total : 0;
        chip.append(
            element('progress', { max: 1, value, 'aria-label': `Reading ${shortName(name)}` }),
            button('✕', `Stop reading ${shortName(name)}`, () => this.opener.cancel(id)),
        );
      }
      return chip;
    });
    this.#readings.replaceChildren(...chips);
  }

  #listen(body: HTMLElement): void {
    equip(body, {
      dragover: (event: DragEvent) => event.preventDefault(),
      drop: (event: DragEvent) => {
        event.preventDefault();
        if (event.dataTransfer) this.opener.openFiles(event.dataTransfer.files);
      },
      // A menu closes once something is chosen, here or elsewhere.
      click: (event: MouseEvent) => {
        for (const menu of body.querySelectorAll<HTMLDetailsElement>('details[open]'))
          if (!(event.target as Element).matches('summary')) menu.open = false;
      },
      keydown: (event: KeyboardEvent) => {
        if (!this.#help.open && this.#key(event)) event.preventDefault();
      },
    });
    equip(this.#search, {
      keydown: (event: KeyboardEvent) => {
        event.stopPropagation();
        if (event.key === 'Enter') this.#find(event.shiftKey ? -1 : 1);
        if (event.key !== 'Escape') return;
        this.#search.value = '';
        this.#search.blur();
        this.store.set({ search: '' });
      },
    });
    const splitter = this.#splitter;
    equip(splitter, {
      pointerdown: (event: PointerEvent) => splitter.setPointerCapture(event.pointerId),
      pointermove: (event: PointerEvent) => {
        if (splitter.hasPointerCapture(event.pointerId)) this.#split(placeIn(this.#timeZone, event).y);
      },
    });
  }

  #split(height: number): void {
    const most = this.#main.clientHeight - leastDetail;
    this.#timeZone.style.flexBasis = `${clamped(height, leastTime, most)}px`;
  }

  #key(event: KeyboardEvent): boolean {
    const { target, key } = event;
    const command = event.ctrlKey || event.metaKey;
    if (target instanceof HTMLInputElement || target instanceof HTMLSelectElement) return false;
    if (command && key.toLowerCase() === 'z') return this.#undo();
    if (command || event.altKey) return false;
    // A pressed button acts by itself.
    if (target instanceof HTMLButtonElement && (key === 'Enter' || key === ' ')) return false;
    if (target === this.#splitter && (key === 'ArrowUp' || key === 'ArrowDown')) {
      this.#split(this.#timeZone.clientHeight + (key === 'ArrowDown' ? splitStep : -splitStep));
      return true;
    }
    if (this.#tabKey(event) || this.#focused()?.view.key?.(event) === true) return true;
    return perform(key, this.#keys) || this.#digitKey(key) || timeKey(event, this.store);
  }

  /** A digit goes to the detail view of that number. */
  #digitKey(key: string): boolean {
    const detail = this.#details()[Number(key) - 1];
    if (!detail) return false;
    this.store.set({ panel: detail.view.id });
    detail.host.hidden = false;
    detail.host.focus();
    return true;
  }

  /** Arrows go from tab to tab. */
  #tabKey({ target, key }: KeyboardEvent): boolean {
    const step = key === 'ArrowRight' ? 1 : key === 'ArrowLeft' ? -1 : 0;
    const tabs = this.#details().map((mounted) => mounted.tab!);
    const at = tabs.indexOf(target as HTMLElement);
    if (at < 0 || step === 0) return false;
    const next = tabs[(at + step + tabs.length) % tabs.length];
    next.click();
    next.focus();
    return true;
  }

  #focused(): Mounted|undefined {
    return this.#mounted.find((mounted) => mounted.host.contains(document.activeElement));
  }

  /**
   * The views in sight, in the order of what search, copying and pictures are about: the one with the focus,
   * the detail view, all others.
   */
  #asked(): View[] {
    const shown = this.#mounted.filter((mounted) => !mounted.host.hidden);
    const first = [this.#focused(), this.#panel()].filter((mounted) => mounted !== undefined);
    return [...new Set([...first, ...shown])].map((mounted) => mounted!.view);
  }

  #find(direction: Direction): void {
    const { search } = this.store.state;
    let match: string|null = null;
    if (search !== '')
      for (const view of this.#asked()) match ??= view.find?.(direction) ?? null;
    this.#found.textContent = search === '' ? '' : shortName(match ?? 'no match');
  }

  #undo(): true {
    this.announce(this.#history.undo() ? 'Selection undone' : 'Nothing to undo');
    return true;
  }

  #copy(what: 'table'|'folded'): void {
    // The samples are the same in every view, shown or not.
    const views = what === 'table' ? this.#asked() : this.#available().map((mounted) => mounted.view);
    const view = views.find((candidate) => candidate[what] !== undefined);
    const text = what === 'folded' ?
        view?.folded!() :
        view?.table!().map((cells) => cells.map(cellText).join('\t') + '\n').join('');
    if (text === undefined)
      this.announce('This view has nothing to copy');
    else if (copyText(text))
      this.announce(`Copied ${text.split('\n').length - 1} lines`);
    else
      this.announce('The browser refused to copy');
  }

  async #picture(kind: 'svg'|'png'): Promise<void> {
    const view = this.#asked().find(({ picture }) => (kind === 'svg' ? picture?.svg : picture) !== undefined);
    this.announce(view ? `Saved ${await savePicture(view, kind)}` : 'This view has no picture');
  }
}

/** A cell contains no tab and no line end. */
const cellText = (cell: string|number) => String(cell).replace(/[\t\r\n]/g, ' ');
