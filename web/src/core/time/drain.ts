/** What a generator gives in the end, where nobody waits for a turn in between. */
export function drain<Value>(work: Generator<undefined, Value>): Value {
  for (;;) {
    const step = work.next();
    if (step.done === true) return step.value;
  }
}
