// Starts the model's worker, whose text is part of the page. Where none can be had the model works on
// the page's own thread.

import type { Carrier } from '../core/model/ModelClient';
import type { Answer } from '../core/model/messages';
import ModelWorker from './model?worker&inline';

/** Nothing where the web view gives no worker. */
export function startWorker(): Carrier | undefined {
  let worker: Worker;
  try {
    worker = new ModelWorker();
  } catch {
    return undefined;
  }
  const carrier: Carrier = {
    send(question) {
      worker.postMessage(question);
    },
    hear: () => undefined,
  };
  worker.onmessage = (event: MessageEvent<Answer>) => {
    carrier.hear(event.data);
  };
  worker.onerror = () => {
    worker.terminate();
    carrier.hear(undefined);
  };
  return carrier;
}
