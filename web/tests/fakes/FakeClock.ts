import type { Cancel, Clock } from '../../src/core/time/Clock';

type Timer = { at: number; action: () => void };

/** A clock whose hands the test turns. */
export class FakeClock implements Clock {
  private now = 0;
  private timers: Timer[] = [];

  get waiting(): number {
    return this.timers.length;
  }

  after(milliseconds: number, action: () => void): Cancel {
    const timer = { at: this.now + milliseconds, action };
    this.timers.push(timer);
    return () => {
      this.timers = this.timers.filter((other) => other !== timer);
    };
  }

  /** Lets only what comes next happen, when it is due. */
  step(): void {
    const [next] = [...this.timers].sort((a, b) => a.at - b.at);
    if (!next) return;
    this.timers = this.timers.filter((timer) => timer !== next);
    this.now = next.at;
    next.action();
  }

  advance(milliseconds: number): void {
    const end = this.now + milliseconds;
    for (;;) {
      const due = this.timers.filter((timer) => timer.at <= end).sort((a, b) => a.at - b.at)[0];
      if (!due) break;
      this.timers = this.timers.filter((timer) => timer !== due);
      this.now = due.at;
      due.action();
    }
    this.now = end;
  }
}
