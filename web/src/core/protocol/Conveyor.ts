// One question to the spreadsheet at a time, the most urgent first. Whoever has questions is a
// source; when nothing is asked, the first source that has one is taken at its word. A source that
// lets others pass may have several questions open, so that the spreadsheet need not wait for the
// page between two of them; a more urgent one is asked at once and answered after these.

import type { Clock } from '../time/Clock';
import type { Outcome } from './Outcome';

export type Job = () => Promise<void>;

export type Source = {
  /** The source's most urgent question now, or nothing. */
  next(): Job | undefined;
  /** Others need not wait for its answers, of which it may await so many at once. */
  readonly atOnce?: number;
};

/** A question open for longer than this is announced. */
export const slowAfter = 400;

/**
 * A question open for longer than this lets more urgent ones pass: its reply may have been lost. The
 * native side answers in turn, so passing costs nothing where it was only late.
 */
export const passAfter = 2_000;

type Question = { level: number; slow: boolean; late: boolean };

export type ConveyorPorts = {
  clock: Clock;
  /** True if an answer is awaited for so long that the user should know. */
  slow(slow: boolean): void;
  report(where: string, error: unknown): void;
};

export class Conveyor {
  private open: Question[] = [];
  private announced = false;

  /** `sources`: the most urgent first. */
  constructor(
    private readonly sources: readonly Source[],
    private readonly ports: ConveyorPorts,
  ) {}

  /** A source may have something new to ask. */
  wake(): void {
    while (this.askOne());
  }

  /** Gives whether another question may be asked beside it. */
  private askOne(): boolean {
    if (this.open.some(({ level, late }) => !late && !this.letsPass(level))) return false;
    const lowest = Math.min(this.sources.length, ...this.open.map(({ level }) => level));
    for (const [level, source] of this.sources.entries()) {
      const isBeside = level === lowest && this.open.length < (source.atOnce ?? 0);
      if (level >= lowest && !isBeside) return false;
      const job = source.next();
      if (!job) continue;
      this.put(job, level);
      return this.letsPass(level);
    }
    return false;
  }

  private letsPass(level: number): boolean {
    return this.sources[level]?.atOnce !== undefined;
  }

  private put(job: Job, level: number): void {
    const { clock, report } = this.ports;
    const question: Question = { level, slow: false, late: false };
    this.open.push(question);
    const cancels = [
      clock.after(slowAfter, () => {
        question.slow = true;
        this.announce(true);
      }),
      clock.after(passAfter, () => {
        question.late = true;
        this.wake();
      }),
    ];
    job()
      .catch((error: unknown) => {
        report('question', error);
      })
      .finally(() => {
        for (const cancel of cancels) cancel();
        this.open = this.open.filter((other) => other !== question);
        this.wake();
        // Between two slow answers the words stay, so that they do not flicker.
        if (this.open.length === 0 || !question.slow) {
          this.announce(this.open.some(({ slow }) => slow));
        }
      });
  }

  private announce(slow: boolean): void {
    if (slow === this.announced) return;
    this.announced = slow;
    this.ports.slow(slow);
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
