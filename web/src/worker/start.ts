// Starts the model's worker, whose text is part of the page. Where none can be had the model works on
// the page's own thread.

import type { Carrier } from '../core/model/ModelClient';
import type { Answer } from '../core/model/messages';
import ModelWorker from './model?worker&inline';

/** True if a worker ended before it had answered anything: another one would, too. */
let refused = false;

/** Nothing where the web view gives no worker. `failed` hears that this one never began to work. */
export function startWorker(failed: () => void): Carrier | undefined {
  if (refused) return undefined;
  let answered = false;
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
    answered = true;
    carrier.hear(event.data);
  };
  worker.onerror = () => {
    worker.terminate();
    refused ||= !answered;
    carrier.hear(undefined);
    if (!answered) failed();
  };
  return carrier;
}
