import { beforeEach, describe, expect, test } from 'vitest';

import { parseArea } from '../../../src/core/address/area';
import { eachPrint } from '../../../src/core/model/prints';
import type { Cells } from '../../../src/core/model/messages';
import type { ModelClient } from '../../../src/core/model/ModelClient';
import { failed, succeeded, type Outcome } from '../../../src/core/protocol/Outcome';
import type { Json } from '../../../src/core/protocol/json';
import type { ReviewedBook } from '../../../src/core/review/reviewed';
import { emptyReview, seenLimit, withSeen } from '../../../src/core/review/said';
import { Sayings } from '../../../src/core/review/Sayings';
import { Seen } from '../../../src/core/review/Seen';
import { FakeClock } from '../../fakes/FakeClock';
import { settled } from '../evaluation/bench';
import { Reader } from '../model/written';

const of: ReviewedBook = { book: 'Model.xlsx', path: 'p', marks: 'm' };

let clock: FakeClock;
let reader: Reader;
let loaded: Outcome<Json>;
let saved: { of: ReviewedBook; review: Json }[];
let sayings: Sayings;
let seen: Seen;

beforeEach(() => {
  clock = new FakeClock();
  reader = new Reader({ Data: { 'A1:A9': 2, 'B1:B9': '=A1*2', C1: '=B1+1', D1: '=C1/4' } });
  loaded = succeeded<Json>(null);
  saved = [];
  const model: ModelClient = {
    ask: (_book, ask, args) => Promise.resolve(reader.ask(ask, args)),
  };
  sayings = new Sayings(() => undefined, {
    load: () => Promise.resolve(loaded),
    save: (book, review) => {
      saved.push({ of: book, review });
      return Promise.resolve(succeeded(null));
    },
    now: () => '2026-11-20T10:00:00.000Z',
    clock,
  });
  seen = new Seen(sayings, () => undefined, model);
});

const cells = (address: string): Cells => {
  const area = parseArea(address);
  if (!area) throw new Error(address);
  return { sheet: 'Data', area };
};

async function know(book = of): Promise<void> {
  sayings.look(book.book);
  await sayings.settle([], [], book);
  await seen.settle(book.book);
}

async function see(address: string, book = of.book): Promise<void> {
  seen.add(book, [cells(address)]);
  await settled();
}

describe('distinct formulas that were seen', () => {
  test('are counted, each once', async () => {
    await know();
    expect(seen.progress(of.book)).toBe('0 of 3 distinct formulas seen');
    await see('B2');
    await see('B7');
    expect(seen.progress(of.book)).toBe('1 of 3 distinct formulas seen');
    await see('C1');
    await see('A4');
    expect(seen.of(of.book)).toEqual({ seen: 2, distinct: 3 });
    expect(seen.progress('Other.xlsx')).toBe('');
  });

  test('count that were seen before the workbook was read', async () => {
    await see('D1');
    expect(seen.progress(of.book)).toBe('');
    await know();
    expect(seen.progress(of.book)).toBe('1 of 3 distinct formulas seen');
  });

  test('are saved a little later, several at once, and are there again', async () => {
    await know();
    await see('B2');
    await see('C1');
    expect(saved).toEqual([]);
    clock.advance(2_000);
    await settled();
    expect(saved).toHaveLength(1);
    const [{ of: book, review } = { of, review: null }] = saved;
    expect(book).toBe(of);
    loaded = succeeded(review);
    sayings.look('Other.xlsx');
    await know();
    expect(seen.progress(of.book)).toBe('2 of 3 distinct formulas seen');
    await see('B3');
    clock.advance(2_000);
    await settled();
    expect(saved).toHaveLength(1);
  });

  test('are saved at once when another workbook is looked at', async () => {
    await know();
    await see('B2');
    sayings.look('Other.xlsx');
    await settled();
    expect(saved.map(({ of: { book } }) => book)).toEqual(['Model.xlsx']);
    clock.advance(10_000);
    await settled();
    expect(saved).toHaveLength(1);
  });

  test('are not told where what was kept cannot be read', async () => {
    loaded = failed('transport', 'malformed');
    await know();
    await see('B2');
    clock.advance(10_000);
    await settled();
    expect([seen.progress(of.book), saved]).toEqual(['', []]);
  });

  test('are those that there are: one that changed is to be seen again', async () => {
    await know();
    await see('A1:D9');
    expect(seen.progress(of.book)).toBe('3 of 3 distinct formulas seen');
    reader.read('Data', { 'B1:B9': '=A1*2', C1: '=B1+2' });
    await seen.settle(of.book);
    expect(seen.progress(of.book)).toBe('1 of 2 distinct formulas seen');
  });

  test('are kept up to a limit; the first go', () => {
    const print = (number: number) => String(number).padStart(5, '0');
    const numbers = Array.from({ length: seenLimit }, (_, i) => print(i)).join('');
    const more = withSeen(withSeen(emptyReview, numbers), print(3) + print(seenLimit));
    const all = eachPrint(more.seen);
    expect([all.length, all[0], all.at(-1)]).toEqual([seenLimit, print(1), print(seenLimit)]);
  });
});
