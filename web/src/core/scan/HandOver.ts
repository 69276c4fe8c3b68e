// Hands what was read to the model while the spreadsheet works on the next question. One piece is
// under way at a time: whoever gives another waits until the one before was taken.

import type { Clock } from '../time/Clock';

export class HandOver {
  private last: Promise<unknown> = Promise.resolve();

  constructor(private readonly clock: Clock) {}

  /** Rejects where the piece before was not taken. */
  async give(work: () => Promise<unknown>): Promise<void> {
    await this.done();
    // A moment later, so that the next question is asked first.
    const begun = new Promise<void>((resolve) => this.clock.after(0, resolve));
    this.last = begun.then(work);
    // Told to whoever gives the next, or waits for the end.
    this.last.catch(() => undefined);
  }

  /** All that was given was taken; rejects, once, where it was not. */
  async done(): Promise<void> {
    const { last } = this;
    this.last = Promise.resolve();
    await last;
  }
}
