import { describe, expect, test, vi } from 'vitest';

import { drain, drainBetween } from '../../../src/core/time/drain';
import { FakeClock } from '../../fakes/FakeClock';

/** Steps that take so long each, and gives how many there were. */
function* work(steps: number, takes: (step: number) => void): Generator<undefined, number> {
  for (let step = 0; step < steps; step++) {
    takes(step);
    yield undefined;
  }
  return steps;
}

describe('work in steps', () => {
  test('is done at once where nobody waits', () => {
    expect(drain(work(5, () => undefined))).toBe(5);
  });

  test('is done a few milliseconds at a time, and what else is due comes between', async () => {
    const now = vi.spyOn(Date, 'now').mockReturnValue(0);
    try {
      const clock = new FakeClock();
      const order: string[] = [];
      const done = drainBetween(
        work(4, (step) => {
          order.push(String(step));
          now.mockReturnValue((step + 1) * 6);
        }),
        clock,
      );
      clock.after(0, () => order.push('answer'));
      for (let i = 0; i < 9; i++) {
        clock.advance(0);
        await Promise.resolve();
      }
      expect(await done).toBe(4);
      expect(order).toEqual(['0', '1', 'answer', '2', '3']);
    } finally {
      now.mockRestore();
    }
  });

  test('fails as the work fails', async () => {
    const failing = work(1, () => {
      throw new Error('no');
    });
    await expect(drainBetween(failing, new FakeClock())).rejects.toThrow('no');
  });
});
