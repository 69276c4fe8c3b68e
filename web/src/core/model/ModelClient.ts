// Asks the model, wherever it is: in a worker, or on this thread a little at a time.

import type { Clock } from '../time/Clock';
import type { Answer, Question, QuestionName, Questions } from './messages';
import { ModelHost } from './ModelHost';
import { Turns } from './Turns';

export type ModelClient = {
  /** Rejects where the model cannot answer. */
  ask<N extends QuestionName>(
    book: string,
    ask: N,
    args: Questions[N]['args'],
  ): Promise<Questions[N]['answer']>;
};

export type Carrier = {
  /** Brings a question; its answer comes to `hear`. */
  send(question: Question): void;
  /** Whoever has the answers. Undefined: the carrier is lost, and with it everything it was told. */
  hear: (answer: Answer | undefined) => void;
};

type Waiting = { resolve: (answer: unknown) => void; reject: (error: Error) => void };

export class CarriedModel implements ModelClient {
  private readonly waiting = new Map<number, Waiting>();
  private last = 0;

  /** `lost` hears that the carrier is gone. */
  constructor(
    private readonly carrier: Carrier,
    lost: () => void,
  ) {
    carrier.hear = (answer) => {
      if (answer) this.settle(answer);
      else {
        for (const { reject } of this.waiting.values()) reject(new Error('The model was lost.'));
        this.waiting.clear();
        lost();
      }
    };
  }

  ask<N extends QuestionName>(book: string, ask: N, args: Questions[N]['args']) {
    this.last += 1;
    const id = this.last;
    return new Promise<Questions[N]['answer']>((resolve, reject) => {
      this.waiting.set(id, { resolve: resolve as (answer: unknown) => void, reject });
      this.carrier.send({ id, book, ask, args } as Question);
    });
  }

  private settle(answer: Answer): void {
    const waiting = this.waiting.get(answer.id);
    this.waiting.delete(answer.id);
    if ('failed' in answer) waiting?.reject(new Error(answer.failed));
    else waiting?.resolve(answer.answer);
  }
}

/** So long the thread is kept at a stretch. */
export const slice = 8;

/** The model on this thread: works until its time is over, then lets others go first. */
export class SlicedCarrier implements Carrier {
  hear: (answer: Answer | undefined) => void = () => undefined;
  private readonly turns = new Turns(new ModelHost(), (answer) => {
    this.hear(answer);
  });
  private running = false;

  constructor(
    private readonly clock: Clock,
    private readonly now: () => number,
  ) {}

  send(question: Question): void {
    this.turns.add(question);
    if (this.running) return;
    this.running = true;
    this.runSoon();
  }

  private run(): void {
    const end = this.now() + slice;
    while (this.now() < end) {
      if (this.turns.step()) continue;
      this.running = false;
      return;
    }
    this.runSoon();
  }

  private runSoon(): void {
    this.clock.after(0, () => {
      this.run();
    });
  }
}
