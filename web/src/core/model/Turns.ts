// Whose turn it is at the model: one question after the other, but those that only look at what was
// read go first, also while a long one is worked on. So a picture is drawn while the audit works.

import type { Answer, Question, QuestionName } from './messages';
import type { ModelHost } from './ModelHost';

/** Answered from what was read, without the index and without changing anything. */
const looking: ReadonlySet<QuestionName> = new Set<QuestionName>([
  'mapFrame',
  'mapTile',
  'mapCell',
  'labels',
]);

type Work = { id: number; steps: Generator<undefined, unknown> };

export class Turns {
  private readonly quick: Question[] = [];
  private readonly queue: Question[] = [];
  private quickWork: Work | undefined;
  private work: Work | undefined;

  constructor(
    private readonly host: ModelHost,
    private readonly hear: (answer: Answer) => void,
  ) {}

  add(question: Question): void {
    (looking.has(question.ask) ? this.quick : this.queue).push(question);
  }

  /** One step of the work; gives whether there was any. */
  step(): boolean {
    this.quickWork ??= this.begin(this.quick);
    if (this.quickWork) {
      if (this.isDone(this.quickWork)) this.quickWork = undefined;
      return true;
    }
    this.work ??= this.begin(this.queue);
    if (!this.work) return false;
    if (this.isDone(this.work)) this.work = undefined;
    return true;
  }

  private begin(queue: Question[]): Work | undefined {
    const question = queue.shift();
    return question && { id: question.id, steps: this.host.answer(question) };
  }

  private isDone({ id, steps }: Work): boolean {
    try {
      const step = steps.next();
      if (step.done !== true) return false;
      this.hear({ id, answer: step.value });
    } catch (error) {
      this.hear({ id, failed: error instanceof Error ? error.message : String(error) });
    }
    return true;
  }
}
