import { expect, test } from 'vitest';

import { succeeded } from '../../../src/core/protocol/Outcome';
import { atWorkFor, PacedErrands } from '../../../src/core/scan/PacedErrands';
import { FakeClock } from '../../fakes/FakeClock';

test('a scan rests as long as it asked while the user is at work, and never otherwise', async () => {
  const clock = new FakeClock();
  let now = 0;
  const advance = (milliseconds: number) => {
    now += milliseconds;
    clock.advance(milliseconds);
  };
  const paced = new PacedErrands({ clock, now: () => now, wake: () => undefined });
  const ask = () =>
    paced.ask(() => {
      advance(80);
      return Promise.resolve(succeeded(null));
    });
  for (let i = 0; i < 4; i++) void ask();
  await paced.next()?.();
  // Nobody is at work.
  const second = paced.next();
  expect(second).toBeDefined();
  paced.userAtWork();
  await second?.();
  expect(paced.next()).toBeUndefined();
  advance(79);
  expect(paced.next()).toBeUndefined();
  advance(1);
  await paced.next()?.();
  advance(atWorkFor);
  await paced.next()?.();
  void ask();
  expect(paced.next()).toBeDefined();
});

test('a scan has two questions open, and one while the user is at work', () => {
  let now = 0;
  const paced = new PacedErrands({
    clock: new FakeClock(),
    now: () => now,
    wake: () => undefined,
  });
  expect(paced.atOnce).toBe(2);
  paced.userAtWork();
  expect(paced.atOnce).toBe(1);
  now = atWorkFor;
  expect(paced.atOnce).toBe(1);
  now += 1;
  expect(paced.atOnce).toBe(2);
});
