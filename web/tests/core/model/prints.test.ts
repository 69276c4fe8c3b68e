import { describe, expect, test } from 'vitest';

import { eachPrint, markCount, markLength, printLength } from '../../../src/core/model/prints';
import { area, Reader, type Written } from './written';

const sheet: Written = { 'A1:A9': 2, 'B1:B9': '=A1*2', 'C1:C9': '=B1+1', D1: '=SUM(C1:C9)' };

/** Formulas that all differ, by the numbers in them. */
const many = (from: number, to: number): Written =>
  Object.fromEntries(
    Array.from({ length: to - from }, (_, i) => [
      `B${String(i + 1)}`,
      `=A${String(i + 1)}*${String(from + i)}`,
    ]),
  );

const prints = (reader: Reader, ...addresses: string[]): string =>
  reader.ask('prints', {
    cells: addresses.map((address) => ({ sheet: 'Data', area: area(address) })),
  });

describe('prints of formulas', () => {
  test('are one for each distinct formula of the cells', () => {
    const reader = new Reader({ Data: sheet });
    expect(eachPrint(prints(reader, 'B1:B9'))).toHaveLength(1);
    expect(prints(reader, 'B1')).toBe(prints(reader, 'B9'));
    expect(prints(reader, 'B1')).not.toBe(prints(reader, 'C1'));
    expect(eachPrint(prints(reader, 'A1:D9'))).toHaveLength(3);
    expect(eachPrint(prints(reader, 'B2', 'C2'))).toHaveLength(2);
    expect(prints(reader, 'A1:A9')).toBe('');
    expect(prints(reader, 'B1')).toMatch(/^[\w-]{5}$/);
    expect(printLength).toBe(5);
  });

  test('are the same in another workbook that has the formula', () => {
    const other = new Reader({ Data: { D20: '=C20*2', D21: '=E21' } });
    expect(prints(other, 'D20')).toBe(prints(new Reader({ Data: sheet }), 'B4'));
  });

  test('of no more cells than can be gone through at once', () => {
    const reader = new Reader({ Data: { 'A1:A2500': '=B1', A2001: '=B9', A2000: '=B7' } });
    expect(eachPrint(prints(reader, 'A1:A2500'))).toHaveLength(2);
  });
});

describe('how many formulas were seen', () => {
  test('is told of the distinct ones that there are', () => {
    const reader = new Reader({ Data: sheet });
    const seen = (text: string) => reader.ask('seen', { prints: text });
    expect(seen('')).toEqual({ seen: 0, distinct: 3 });
    expect(seen(prints(reader, 'B5'))).toEqual({ seen: 1, distinct: 3 });
    expect(seen(prints(reader, 'B5') + prints(reader, 'B6', 'D1'))).toEqual({
      seen: 2,
      distinct: 3,
    });
    expect(seen('AAAAA')).toEqual({ seen: 0, distinct: 3 });
  });

  test('is counted anew when a sheet was read again', () => {
    const reader = new Reader({ Data: sheet });
    const all = prints(reader, 'A1:D9');
    reader.read('Data', { 'B1:B9': '=A1*2', C1: '=B1/4' });
    expect(reader.ask('seen', { prints: all })).toEqual({ seen: 1, distinct: 2 });
    expect(reader.ask('state', {}).distinct).toBe(2);
  });
});

describe('marks of a workbook', () => {
  const marks = (sheets: Record<string, Written>): string[] =>
    new Reader(sheets).ask('marks', {}).match(/.{4}/g) ?? [];
  const common = (one: string[], other: string[]): number =>
    one.filter((mark, i) => mark === other[i]).length / one.length;

  test('are as many for any workbook', () => {
    for (const sheets of [{ Data: {} }, { Data: sheet }, { Data: many(0, 900) }]) {
      expect(marks(sheets)).toHaveLength(markCount);
    }
    expect(markLength).toBe(4);
    expect(marks({ Data: {} }).filter((mark) => mark !== '....')).toHaveLength(1);
  });

  test('agree as far as sheets and formulas do', () => {
    const one = marks({ Data: many(0, 900) });
    expect(common(one, marks({ Data: { ...many(0, 900), A1: 7 } }))).toBe(1);
    expect(common(one, marks({ Data: many(0, 890) }))).toBeGreaterThan(0.93);
    const half = common(one, marks({ Data: many(300, 1_200) }));
    expect(half).toBeGreaterThan(0.38); // 600 of 1,200 in all
    expect(half).toBeLessThan(0.62);
    expect(common(one, marks({ Data: many(1_000, 1_900) }))).toBeLessThan(0.05);
  });

  test('know sheets by their names, whatever the case', () => {
    expect(marks({ Data: {}, Plan: {} })).toEqual(marks({ PLAN: {}, data: {} }));
    expect(marks({ Data: {} })).not.toEqual(marks({ Date: {} }));
  });
});
