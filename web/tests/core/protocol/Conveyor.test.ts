import { describe, expect, test } from 'vitest';

import {
  Conveyor,
  Errands,
  type ConveyorPorts,
  type Job,
} from '../../../src/core/protocol/Conveyor';
import { succeeded } from '../../../src/core/protocol/Outcome';
import { FakeClock } from '../../fakes/FakeClock';

const turn = () => new Promise((resolve) => setImmediate(resolve));

const ports = (clock = new FakeClock()): ConveyorPorts => ({
  clock,
  slow: () => undefined,
  report: () => undefined,
});

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
  const conveyor = new Conveyor([urgent, idle], ports());
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
  new Conveyor([queue], {
    ...ports(),
    report: (_, error) => void reports.push(String(error)),
  }).wake();
  await turn();
  expect(reports).toEqual(['Error: broken']);
  expect(done).toBe(true);
});

test('errands are answered in order', async () => {
  const errands = new Errands();
  errands.attach(new Conveyor([errands], ports()));
  const answers = [
    errands.ask(() => Promise.resolve(succeeded(1))),
    errands.ask(() => Promise.resolve(succeeded(2))),
  ];
  expect(await Promise.all(answers)).toEqual([succeeded(1), succeeded(2)]);
});

describe('a question without an answer', () => {
  test('lets only more urgent ones pass, and only after a while', async () => {
    const clock = new FakeClock();
    const [urgent, idle] = [new Queue(), new Queue()];
    const order: string[] = [];
    const add = (word: string) => () => Promise.resolve(void order.push(word));
    idle.jobs.push(() => new Promise(() => undefined), add('idle'));
    const conveyor = new Conveyor([urgent, idle], ports(clock));
    conveyor.wake();
    urgent.jobs.push(add('one'), add('two'));
    conveyor.wake();
    clock.advance(1_999);
    await turn();
    expect(order).toEqual([]);
    clock.advance(1);
    await turn();
    expect(order).toEqual(['one', 'two']);
  });

  test('is announced until an answer comes soon, or none is awaited', async () => {
    const clock = new FakeClock();
    const queue = new Queue();
    const said: boolean[] = [];
    const finish: (() => void)[] = [];
    const open: Job = () => new Promise((resolve) => finish.push(resolve));
    queue.jobs.push(open, open, open);
    new Conveyor([queue], { ...ports(clock), slow: (slow) => void said.push(slow) }).wake();
    clock.advance(399);
    expect(said).toEqual([]);
    clock.advance(1);
    expect(said).toEqual([true]);
    finish[0]?.();
    await turn();
    expect(said).toEqual([true]);
    finish[1]?.();
    await turn();
    expect(said).toEqual([true, false]);
  });
});

describe('a source that lets others pass', () => {
  const held = (name: string, order: string[], finish: (() => void)[]): Job => {
    return () =>
      new Promise((resolve) => {
        order.push(name);
        finish.push(resolve);
      });
  };

  test('has as many questions open as it may, and others are asked at once', async () => {
    const urgent = new Queue();
    const patient = Object.assign(new Queue(), { atOnce: 2 });
    const order: string[] = [];
    const finish: (() => void)[] = [];
    for (const name of ['1', '2', '3', '4']) patient.jobs.push(held(name, order, finish));
    const conveyor = new Conveyor([urgent, patient], ports());
    conveyor.wake();
    expect(order).toEqual(['1', '2']);
    urgent.jobs.push(held('a', order, finish), held('b', order, finish));
    conveyor.wake();
    expect(order).toEqual(['1', '2', 'a']);
    // While another's is open nothing more is asked.
    finish[0]?.();
    finish[1]?.();
    await turn();
    expect(order).toEqual(['1', '2', 'a']);
    finish[2]?.();
    await turn();
    expect(order).toEqual(['1', '2', 'a', 'b']);
    finish[3]?.();
    await turn();
    expect(order).toEqual(['1', '2', 'a', 'b', '3', '4']);
  });

  test('has one open where it may have one, and is asked last', async () => {
    const urgent = new Queue();
    const patient = Object.assign(new Queue(), { atOnce: 1 });
    const order: string[] = [];
    const finish: (() => void)[] = [];
    for (const name of ['1', '2']) patient.jobs.push(held(name, order, finish));
    const conveyor = new Conveyor([urgent, patient], ports());
    conveyor.wake();
    expect(order).toEqual(['1']);
    urgent.jobs.push(held('a', order, finish));
    finish[0]?.();
    await turn();
    expect(order).toEqual(['1', 'a']);
  });
});
