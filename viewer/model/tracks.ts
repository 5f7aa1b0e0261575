import type {Entry} from '../document/timechart';
import {Steps} from './steps';

/** On or off, a value, or moments. */
export type Shape = 'state'|'level'|'marks';

/** Seconds that a task waits, by what for. */
export type Waits = Record<'waitIo'|'waitCpu'|'waitGpu', number>;

/** What drawing and statistics distinguish; all else is `other`. */
export type Role = 'busy'|'interrupt'|'running'|keyof Waits|'counter'|'other';

export const noWaits: Readonly<Waits> = {
  waitIo: 0,
  waitCpu: 0,
  waitGpu: 0
};

export const isWait = (role: Role): role is keyof Waits => role in noWaits;

const rolesOfClass = new Map<string, Role>([
  ['cpu:busy', 'busy'],
  ['irq', 'interrupt'],
  ['proc:running', 'running'],
  ['ctr:', 'counter'],
]);

/** What is waited for, by the last letter of a wait's id. */
const rolesOfWait = new Map<string, Role>([
  ['d', 'waitIo'],
  ['w', 'waitCpu'],
  ['g', 'waitGpu'],
]);

function roleOf({ id, class: kind }: Entry): Role {
  return (kind === 'proc:wait' ? rolesOfWait.get(id.slice(-1)) : rolesOfClass.get(kind)) ?? 'other';
}

/** Soft interrupts have the numbers from here on. */
const firstSoft = 1000;

/** An entry of the document with what drawing and statistics need. */
export class Track {
  declare readonly shape: Shape;
  declare readonly role: Role;
  declare readonly steps: Steps;
  /** The task, core or interrupt that the entry's id names; -1 if it names none. */
  declare readonly subject: number;
  /** The core of a core's own series, of a task's running time or of an interrupt; else -1. */
  declare readonly cpu: number;

  #knownPeak: number|null = null;

  constructor(readonly entry: Entry) {
    this.shape = entry.type === 'binary' ? 'state' : entry.type === 'bar' ? 'level' : 'marks';
    this.role = roleOf(entry);
    this.steps = new Steps(entry.times, entry.values);
    this.subject = numberIn(/^(?:cpu|irq|proc)-(\d+)-/, entry.id);
    this.cpu = numberIn(/^(?:cpu-|irq-\d+-|proc-\d+-r)(\d+)/, entry.id);
  }

  /** The entry's name; interrupts of one name are distinguished by their numbers, as tasks are. */
  get label(): string {
    if (this.role !== 'interrupt') return this.entry.name;
    const number = this.subject < firstSoft ? this.subject : `soft ${this.subject - firstSoft}`;
    return `${number} - ${this.entry.name}`;
  }

  /** The greatest value. */
  get peak(): number {
    this.#knownPeak ??= this.entry.values.reduce((most, value) => Math.max(most, value), 0);
    return this.#knownPeak;
  }

  get isCounter(): boolean { return this.role === 'counter'; }
}

function numberIn(pattern: RegExp, text: string): number {
  const found = pattern.exec(text);
  return found ? Number(found[1]) : -1;
}
