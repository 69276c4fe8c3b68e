import type { Clock } from './Clock';

/** What a generator gives in the end, where nobody waits for a turn in between. */
export function drain<Value>(work: Generator<undefined, Value>): Value {
  for (;;) {
    const step = work.next();
    if (step.done === true) return step.value;
  }
}

/** So long at a stretch. */
const stretch = 10;

/** The same, but whatever else is due is done in between, such as taking answers of the spreadsheet. */
export async function drainBetween<Value>(
  work: Generator<undefined, Value>,
  clock: Clock,
): Promise<Value> {
  for (;;) {
    const until = Date.now() + stretch;
    do {
      const step = work.next();
      if (step.done === true) return step.value;
    } while (Date.now() < until);
    await new Promise<void>((resolve) => clock.after(0, resolve));
  }
}
