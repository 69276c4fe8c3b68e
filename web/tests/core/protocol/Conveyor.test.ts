import { expect, test } from 'vitest';

import { Conveyor, Errands, type Job } from '../../../src/core/protocol/Conveyor';
import { succeeded } from '../../../src/core/protocol/Outcome';

const turn = () => new Promise((resolve) => setImmediate(resolve));

class Queue {
  readonly jobs: Job[] = [];
  next(): Job | undefined {
    return this.jobs.shift();
  }
}

test('the most urgent source is heard first, one question at a time', async () => {
  const urgent = new Queue();
  const idle = new Queue();
  const order: string[] = [];
  let finish: () => void = () => undefined;
  idle.jobs.push(
    () =>
      new Promise((resolve) => {
        order.push('first');
        finish = resolve;
      }),
    () => Promise.resolve(void order.push('last')),
  );
  const conveyor = new Conveyor([urgent, idle], () => undefined);
  conveyor.wake();
  urgent.jobs.push(() => Promise.resolve(void order.push('urgent')));
  conveyor.wake();
  await turn();
  expect(order).toEqual(['first']);
  finish();
  await turn();
  expect(order).toEqual(['first', 'urgent', 'last']);
});

test('a question that throws is reported and stops nothing', async () => {
  const queue = new Queue();
  const reports: string[] = [];
  let done = false;
  queue.jobs.push(
    () => Promise.reject(new Error('broken')),
    () => {
      done = true;
      return Promise.resolve();
    },
  );
  new Conveyor([queue], (_, error) => reports.push(String(error))).wake();
  await turn();
  expect(reports).toEqual(['Error: broken']);
  expect(done).toBe(true);
});

test('errands are answered in order', async () => {
  const errands = new Errands();
  errands.attach(new Conveyor([errands], () => undefined));
  const answers = [
    errands.ask(() => Promise.resolve(succeeded(1))),
    errands.ask(() => Promise.resolve(succeeded(2))),
  ];
  expect(await Promise.all(answers)).toEqual([succeeded(1), succeeded(2)]);
});
