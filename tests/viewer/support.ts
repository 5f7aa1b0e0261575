import type {LayoutFile} from '../../viewer/document/layoutFile';
import type {ZelDocument} from '../../viewer/document/messages';
import type {Profile} from '../../viewer/document/profile';
import {DocumentReading} from '../../viewer/document/readDocument';
import type {Supply} from '../../viewer/document/Reader';
import type {Timechart} from '../../viewer/document/timechart';

/** Text as bytes; `\xNN` characters stand for themselves, so that bytes that are no UTF-8 can be written. */
export const latin1 = (text: string) => Uint8Array.from(text, (c) => c.charCodeAt(0));

/** Supplies the bytes in pieces of at most a size. */
export function pieces(bytes: Uint8Array, size = Infinity): Supply {
  let at = 0;
  return async (into) => {
    const piece = bytes.subarray(at, at + Math.min(size, into.length));
    at += piece.length;
    into.set(piece);
    return into.subarray(0, piece.length);
  };
}

export function read(bytes: Uint8Array, size?: number, layout: LayoutFile|null = null): Promise<ZelDocument> {
  return new DocumentReading('test.json', pieces(bytes, size), layout).read();
}

export async function readProfile(text: string, layout: LayoutFile|null = null): Promise<Profile> {
  const document = await read(latin1(text), undefined, layout);
  if (document.kind !== 'profile') throw new Error('no profile');
  return document;
}

export async function readTimechart(text: string): Promise<Timechart> {
  const document = await read(latin1(text));
  if (document.kind !== 'timechart') throw new Error('no timechart');
  return document;
}

/** Two processes, a kernel, a gap of addresses; the last row of each section can be replaced by more. */
export interface Parts {
  readonly processes?: string;
  readonly libraries?: string;
  readonly files?: string;
  readonly functions?: string;
  readonly samples: string;
}

export const rows = {
  processes: '[1,0,0,"kernel",],[2,4294967295,4294967295,"lostAndFound",],[4,7,7,"tool",],[5,7,8,"worker",],',
  libraries: '[2,2,"lostAndFound",0,0,],[3,1,"kernel",3221258240,28672,],[5,4,"/app/tool",65536,4096,],',
  functions: '[8,"schedule",3221258496,256,[3,],],[7,"main\\n",65536,256,[5,],],[6,"work",65792,256,[5,],],' +
      '[9,"{tool-40a20000}",1084358656,65536,[2,],],',
};

export function profileText(parts: Parts): string {
  const section = (name: string, data: string) =>
      ` "${name}": {\n  "descriptions": {"key": "k"},\n  "data": [${data}]}`;
  const { processes, libraries, functions } = {...rows, ...parts };
  const head =
      '{"Description":{"Version":"1.0","Target Chip":"chip","Start Time":5,"First Sample Time":1.5,"duration":1}';
  return [
    head,
    section('processes', processes),
    section('libraries', libraries),
    section('files', parts.files ?? ''),
    section('functions', functions),
    section('samples', parts.samples),
  ].join(',\n')
      .concat('}\n');
}

/** The stack of a sample as text, outermost first. */
export function stackText(profile: Profile, node: number): string {
  const { stacks, places } = profile;
  const names: string[] = [];
  for (; node > 0; node = stacks.parents[node]) names.push(places.names[stacks.places[node]]);
  return names.reverse().join(';');
}

/** One line a sample: time, core, thread, stack. */
export function sampleLines(profile: Profile): string[] {
  const { samples, threads } = profile;
  return Array.from({ length: samples.count }, (_, i) => {
    const thread = threads[samples.threads[i]];
    const stack = stackText(profile, samples.stacks[i]);
    return `${samples.times[i]} core${samples.cores[i]} ${thread.name}/${thread.tid} ${stack}`;
  });
}
