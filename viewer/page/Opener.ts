import type {FromWorker, Source, ToWorker, ZelDocument} from '../document/messages';
import type {Timechart} from '../document/timechart';
import {ProfileModel} from '../model/ProfileModel';
import {TimechartModel} from '../model/TimechartModel';
import type {Reading, Store} from '../views/store';

/** Reads documents in Workers and puts the results into the store. */
export class Opener {
  readonly #workers = new Map<number, Worker>();
  readonly #url: string;
  /** What came of timecharts that are being read. */
  readonly #parts = new Map<number, Timechart>();
  #nextId = 1;
  /** Kinds of the documents of readings, as far as they are known. */
  readonly #kinds = new Map<number, ZelDocument['kind']>();
  /** The reading of the state's profile. */
  #latest = 0;

  /** `script` is what the Workers run. */
  constructor(
      private readonly store: Store,
      script: string,
  ) {
    this.#url = URL.createObjectURL(new Blob([script], { type: 'text/javascript' }));
  }

  /** Opens what was dropped or chosen together; a `.layout.json` belongs to the document of that name. */
  openFiles(files: Iterable<File>): void {
    this.#openSources(Array.from(files, (file) => ({ name: file.name, file })));
  }

  /** Opens the documents embedded in the page, see docs/viewer.md. */
  openEmbedded(page: Document): void {
    const slots = page.querySelectorAll<HTMLElement>('script[type="application/gzip;base64"]');
    this.#openSources(
        Array.from(
            slots, (slot) => ({ name: slot.dataset['name'] ?? 'document', base64: slot.textContent ?? '' })),
    );
  }

  /** Ends a reading; what was read by then is shown. */
  cancel(id: number): void { this.#post(id, { type: 'cancel' }); }

  #openSources(sources: readonly Source[]): void {
    const layouts = new Map(sources.map((source) => [source.name, source]));
    const taken = new Set<Source>();
    const documents = sources.map((source): [Source, Source|null] => {
      const layout = layouts.get(`${source.name.replace(/\.gz$/, '')}.layout.json`) ?? null;
      if (layout) taken.add(layout);
      return [source, layout];
    });
    // A layout file without its document is opened like a document, and refused by the reader.
    for (const [source, layout] of documents)
      if (!taken.has(source)) this.#open(source, layout);
  }

  #open(source: Source, layout: Source|null): void {
    const id = this.#nextId++;
    const worker = new Worker(this.#url);
    this.#workers.set(id, worker);
    const total = source.file?.size ?? source.base64?.length ?? 0;
    const reading: Reading = { id, name: source.name, bytes: 0, total, state: 'reading', message: '' };
    this.store.set({ readings: [...this.store.state.readings, reading] });
    worker.onmessage = (event: MessageEvent<FromWorker>) => this.#receive(id, event.data);
    worker.onerror = (event) =>
        this.#receive(id, { type: 'failed', message: `${source.name}: ${event.message}` });
    this.#post(id, { type: 'open', source, layout });
  }

  #post(id: number, message: ToWorker): void { this.#workers.get(id)?.postMessage(message); }

  #receive(id: number, message: FromWorker): void {
    switch (message.type) {
      case 'progress':
        this.#update(id, { bytes: message.bytes, total: message.total });
        if (message.picture) this.#show(id, this.#joined(id, message.picture));
        return;
      case 'document': {
        const { document } = message;
        const { damage } = document;
        this.#update(id, {
          state: damage ? 'damaged' : 'complete',
          message: damage ? `${document.name}: ${damage.reason} at byte ${damage.offset}` : '',
        });
        this.#show(id, this.#joined(id, document));
        break;
      }
      case 'failed':
        this.#update(id, { state: 'failed', message: message.message });
        break;
    }
    this.#workers.get(id)?.terminate();
    this.#workers.delete(id);
    this.#parts.delete(id);
  }

  /** Returns all that was read of a document: timecharts come in parts. */
  #joined(id: number, document: ZelDocument): ZelDocument {
    if (document.kind === 'profile') return document;
    const before = this.#parts.get(id);
    const entries = [...before?.entries ?? [], ...document.entries];
    const whole = {...document, entries, strings: [...before?.strings ?? [], ...document.strings] };
    this.#parts.set(id, whole);
    return whole;
  }

  #update(id: number, change: Partial<Reading>): void {
    const readings =
        this.store.state.readings.map((reading) => (reading.id === id ? {...reading, ...change } : reading));
    this.store.set({ readings });
  }

  /**
   * The latest timechart is shown, and the latest profile; the one before it is what it can be compared
   * with.
   */
  #show(id: number, document: ZelDocument): void {
    const { readings, timechart, profile, baseline } = this.store.state;
    this.#kinds.set(id, document.kind);
    const alike = readings.filter((reading) => this.#kinds.get(reading.id) === document.kind);
    const shown = alike.slice(document.kind === 'profile' ? -2 : -1);
    this.store.set({ readings: readings.filter((one) => !alike.includes(one) || shown.includes(one)) });
    if (!shown.some((reading) => reading.id === id)) return;
    if (document.kind === 'timechart')
      this.store.set({ timechart: new TimechartModel(document, timechart) });
    else if (shown.at(-1)!.id !== id)
      this.store.set({ baseline: new ProfileModel(document) });
    else {
      this.store.set(
          { profile: new ProfileModel(document), baseline: this.#latest === id ? baseline : profile });
      this.#latest = id;
    }
  }
}
