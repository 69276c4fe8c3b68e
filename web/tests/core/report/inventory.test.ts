import { describe, expect, it } from 'vitest';

import { inventoryOf } from '../../../src/core/report/inventory';
import { drain } from '../../../src/core/time/drain';
import { book, Reader } from '../model/written';

describe('What a workbook consists of', () => {
  const reader = new Reader(
    {
      Plan: {
        A1: 'Costs',
        A2: 'Rent',
        B2: 1_200,
        D5: 7,
        D6: 8,
        F1: '=B2*2 -> 2400',
        F2: '=B2*D5 -> 8400',
        F3: '=1/0 -> #DIV/0!',
        G4: '=[Rates.xlsx]Year!$A$1+B2 -> 3',
      },
      'A b': {
        A1: "='C:\\old\\[Rent''s.xlsx]Q 1'!$B$2 -> 5",
        A2: '=[Rates.xlsx]Year!$A$1+A1 -> 8',
      },
      Empty: {},
    },
    [
      { name: 'Area', refersTo: '=Plan!$B$2' },
      { name: 'Index', refersTo: "='[Prices.xlsx]All'!$A$1" },
      { name: 'Own', refersTo: `='[${book}]Plan'!$A$1` },
    ],
  );
  const { sheets, names, links, unlabelled } = drain(inventoryOf(reader.host.model(book)));

  it('is its sheets with what they hold', () => {
    expect(sheets).toEqual([
      { name: 'Plan', area: 'A1:G6', cells: 9, formulas: 4, distinctFormulas: 4, errors: 1 },
      { name: 'A b', area: 'A1:A2', cells: 2, formulas: 2, distinctFormulas: 2, errors: 0 },
      { name: 'Empty', area: 'A1', cells: 0, formulas: 0, distinctFormulas: 0, errors: 0 },
    ]);
  });

  it('is its names', () => {
    expect(names.all).toBe(3);
    expect(names.listed[0]).toEqual({ name: 'Area', refersTo: '=Plan!$B$2' });
  });

  it('is the other workbooks that its formulas and names lead to, but not itself', () => {
    expect(links).toEqual([
      { workbook: 'Rates.xlsx', formulas: 2, sheets: ['Plan', 'A b'] },
      { workbook: "Rent's.xlsx", formulas: 1, sheets: ['A b'] },
      { workbook: 'Prices.xlsx', formulas: 0, sheets: [] },
    ]);
  });

  it('is the numbers that formulas use and nothing names', () => {
    // B2 has a label, D6 no use.
    expect(unlabelled).toEqual({ all: 1, listed: [{ sheet: 'Plan', address: 'D5', value: 7 }] });
  });

  it('counts them no further than it helps', () => {
    const many = new Reader({ Wall: { 'B3:CW102': 7, A103: '=SUM(B3:CW102) -> 70000' } });
    const { all, listed } = drain(inventoryOf(many.host.model(book))).unlabelled;
    expect([all, listed.length]).toEqual([5_000, 100]);
  });
});
