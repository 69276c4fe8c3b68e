import { beforeEach, describe, expect, test } from 'vitest';

import { CarriedModel, SlicedCarrier } from '../../../src/core/model/ModelClient';
import { FakeClock } from '../../fakes/FakeClock';
import { area, book } from './written';

describe('a model on the thread of the page', () => {
  let clock: FakeClock;
  let time: number;
  /** Milliseconds that go by each time somebody looks. */
  let each: number;
  let model: CarriedModel;

  beforeEach(() => {
    clock = new FakeClock();
    time = 0;
    each = 0;
    model = new CarriedModel(new SlicedCarrier(clock, () => (time += each)), () => undefined);
  });

  /** Lets the thread go on once; gives how long it was kept. */
  function slice(): number {
    const before = time;
    clock.step();
    return time - before;
  }

  test('lets others go first after 8 milliseconds between two questions', async () => {
    each = 1.5;
    const answered: number[] = [];
    for (let i = 0; i < 12; i++) {
      const args = { book: String(i), sheets: ['Data'], names: [] };
      void model.ask(String(i), 'begin', args).then(() => answered.push(i));
    }
    const done: number[] = [];
    while (clock.waiting > 0) {
      slice();
      await Promise.resolve();
      await Promise.resolve();
      done.push(answered.length);
    }
    // Five looks at the clock fit into 8 ms, and each question has one.
    expect(done.slice(0, 3)).toEqual([5, 10, 12]);
  });

  test('answers what only looks before others, also in the middle of a long question', async () => {
    void model.ask(book, 'begin', { book, sheets: ['Data'], names: [] });
    const rows = 4_000;
    const formulas = Array.from({ length: rows }, (_, i) => [`=R[${String(i)}]C[2]`]);
    const values = formulas.map(() => [1]);
    const whole = { sheet: 'Data', area: area(`A1:A${String(rows)}`) };
    void model.ask(book, 'beginSheet', { sheet: 'Data' });
    void model.ask(book, 'piece', { ...whole, formulas, values });
    void model.ask(book, 'endSheet', { sheet: 'Data' });
    while (clock.waiting > 0) slice();
    each = 5;
    const answered: string[] = [];
    const noted = (name: string) => () => answered.push(name);
    void model.ask(book, 'state', {}).then(noted('state'));
    slice();
    void model.ask(book, 'errors', {}).then(noted('errors'));
    void model.ask(book, 'mapFrame', { sheet: 'Data' }).then(noted('frame'));
    void model.ask(book, 'mapCell', { sheet: 'Data', row: 1, col: 1 }).then(noted('cell'));
    while (clock.waiting > 0) {
      slice();
      for (let i = 0; i < 4; i++) await Promise.resolve();
    }
    expect(answered).toEqual(['frame', 'cell', 'state', 'errors']);
  });

  test('lets others go first in the middle of a long question, and answers it all the same', async () => {
    void model.ask(book, 'begin', { book, sheets: ['Data'], names: [] });
    const rows = 4_000;
    const formulas = Array.from({ length: rows }, (_, i) => [`=R[${String(i)}]C[2]`]);
    const values = formulas.map(() => [1]);
    const whole = { sheet: 'Data', area: area(`A1:A${String(rows)}`) };
    void model.ask(book, 'beginSheet', { sheet: 'Data' });
    void model.ask(book, 'piece', { ...whole, formulas, values });
    void model.ask(book, 'endSheet', { sheet: 'Data' });
    while (clock.waiting > 0) slice();
    each = 1;
    let told: number | undefined;
    void model.ask(book, 'users', { sheet: 'Data', area: area('C1') }).then(({ rows: found }) => {
      told = found.length;
    });
    let slices = 0;
    for (; clock.waiting > 0; slices++) expect(slice()).toBeLessThanOrEqual(9);
    await Promise.resolve();
    expect(told).toBe(1);
    expect(slices).toBeGreaterThan(1);
  });
});
