// What the user types to find a row: characters that follow each other soon belong together.

import type { Cancel, Clock } from '../time/Clock';

/** A search ends when no key follows for this long. */
export const typingPause = 700;

export class TypeAhead {
  private typed = '';
  private cancel: Cancel | undefined;

  constructor(private readonly clock: Clock) {}

  get active(): boolean {
    return this.typed !== '';
  }

  /** What was typed so far, with this character. */
  add(character: string): string {
    this.typed += character;
    this.cancel?.();
    this.cancel = this.clock.after(typingPause, () => {
      this.typed = '';
    });
    return this.typed;
  }
}
