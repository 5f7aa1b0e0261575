/** What the page and the Worker say to each other. One Worker reads one document. */

import type {Profile} from './profile';
import type {Timechart} from './timechart';

export type ZelDocument = Profile|Timechart;

/** Bytes of a document: a file, or the text of an element of the page (gzip in base64). */
export interface Source {
  readonly name: string;
  readonly file?: Blob;
  readonly base64?: string;
}

export type ToWorker = {
  type: 'open'; source: Source; layout: Source | null
}|{type: 'cancel'};

export type FromWorker =|{
  type: 'progress';
  bytes: number;
  total: number;
  /** A small profile that stands for all, or the entries of a timechart that are new. */
  picture: ZelDocument|null
}
|{
  type: 'document';
  /** Of a timechart what no picture has brought. */
  document: ZelDocument
}
|{
  type: 'failed';
  message: string
};
