// The questions of a scan: asked when nobody else has one, two at once so that the spreadsheet is
// not idle between them. Where the user is at work one by one, and only after the spreadsheet had as
// much time for the user as it gave to the last question.

import type { Job, Source } from '../protocol/Conveyor';
import type { Outcome } from '../protocol/Outcome';
import type { Clock } from '../time/Clock';

export type PacePorts = {
  clock: Clock;
  /** Milliseconds from some moment on. */
  now(): number;
  wake(): void;
};

/** So long after the last sign of the user counts as being at work. */
export const atWorkFor = 10_000;

export class PacedErrands implements Source {
  private waiting: Job[] = [];
  private resting = false;
  private lastSign = -Infinity;

  constructor(private readonly ports: PacePorts) {}

  /** The user did something in the spreadsheet or here. */
  userAtWork(): void {
    this.lastSign = this.ports.now();
  }

  get atOnce(): number {
    return this.isUserAtWork() ? 1 : 2;
  }

  next(): Job | undefined {
    if (this.resting) return undefined;
    return this.waiting.shift();
  }

  ask<T>(question: () => Promise<Outcome<T>>): Promise<Outcome<T>> {
    return new Promise((resolve, reject) => {
      this.waiting.push(async () => {
        const began = this.ports.now();
        await question().then(resolve, reject);
        this.rest(this.ports.now() - began);
      });
      this.ports.wake();
    });
  }

  private isUserAtWork(): boolean {
    return this.ports.now() - this.lastSign <= atWorkFor;
  }

  private rest(milliseconds: number): void {
    if (!this.isUserAtWork()) return;
    this.resting = true;
    this.ports.clock.after(milliseconds, () => {
      this.resting = false;
      this.ports.wake();
    });
  }
}
