// One question to the spreadsheet at a time, the most urgent first. Whoever has questions is a
// source; when nothing is asked, the first source that has one is taken at its word.

import type { Outcome } from './Outcome';

export type Job = () => Promise<void>;

export type Source = {
  /** The source's most urgent question now, or nothing. */
  next(): Job | undefined;
};

export class Conveyor {
  private busy = false;

  /** `sources`: the most urgent first. */
  constructor(
    private readonly sources: readonly Source[],
    private readonly report: (where: string, error: unknown) => void,
  ) {}

  /** A source may have something new to ask. */
  wake(): void {
    if (this.busy) return;
    let job: Job | undefined;
    for (const source of this.sources) {
      job = source.next();
      if (job) break;
    }
    if (!job) return;
    this.busy = true;
    job()
      .catch((error: unknown) => {
        this.report('question', error);
      })
      .finally(() => {
        this.busy = false;
        this.wake();
      });
  }
}

/** Single questions in the order in which they came. */
export class Errands implements Source {
  private waiting: Job[] = [];
  private wake: () => void = () => undefined;

  attach(conveyor: Conveyor): void {
    this.wake = () => {
      conveyor.wake();
    };
  }

  next(): Job | undefined {
    return this.waiting.shift();
  }

  ask<T>(question: () => Promise<Outcome<T>>): Promise<Outcome<T>> {
    return new Promise((resolve, reject) => {
      this.waiting.push(() => question().then(resolve, reject));
      this.wake();
    });
  }
}
