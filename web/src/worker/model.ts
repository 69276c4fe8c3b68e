// The model in a worker: questions in, answers out. Between the steps of a long answer it takes what
// has come meanwhile.

import type { Answer, Question } from '../core/model/messages';
import { ModelHost } from '../core/model/ModelHost';
import { Turns } from '../core/model/Turns';

type Scope = {
  onmessage: (event: { data: Question }) => void;
  postMessage(answer: Answer): void;
};

/** So long nothing that comes is looked at. */
const stretch = 12;

const scope = self as unknown as Scope;
const turns = new Turns(new ModelHost(), (answer) => {
  scope.postMessage(answer);
});
// A message to itself comes at once, where a timer would wait.
const channel = new MessageChannel();
let running = false;

function run(): void {
  const end = performance.now() + stretch;
  do {
    if (turns.step()) continue;
    running = false;
    return;
  } while (performance.now() < end);
  channel.port2.postMessage(0);
}
channel.port1.onmessage = run;

scope.onmessage = ({ data: question }) => {
  turns.add(question);
  if (running) return;
  running = true;
  run();
};
