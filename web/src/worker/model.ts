// The model in a worker: questions in, answers out, one after the other.

import type { Answer, Question } from '../core/model/messages';
import { ModelHost } from '../core/model/ModelHost';

type Scope = {
  onmessage: (event: { data: Question }) => void;
  postMessage(answer: Answer): void;
};

const scope = self as unknown as Scope;
const host = new ModelHost();

scope.onmessage = ({ data: question }) => {
  const { id } = question;
  try {
    const steps = host.answer(question);
    for (;;) {
      const step = steps.next();
      if (step.done !== true) continue;
      scope.postMessage({ id, answer: step.value });
      return;
    }
  } catch (error) {
    scope.postMessage({ id, failed: error instanceof Error ? error.message : String(error) });
  }
};
