/** The Worker's entry: reads one document and posts it. */

import type { FromWorker, ToWorker } from './messages';

const post = (message: FromWorker) => postMessage(message);

onmessage = (event: MessageEvent<ToWorker>) => {
  if (event.data.type === 'open') post({ type: 'failed', message: `${event.data.source.name}: cannot be read yet` });
};
