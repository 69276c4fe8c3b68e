// What stands in ordinary workbooks and is no mistake, and lists of many findings.

import { describe, expect, it } from 'vitest';
import { findingsLimit, Findings, partSize } from '../../../src/core/audit/answer';
import { drain } from '../model/RandomWorkbook';
import type { Written } from '../model/written';
import { findingsOf, modelOf, told } from './findings';

const months: Written = { A1: 'Month', B1: 'Cost', C1: 'Cost with tax', 'B2:B13': 4 };
for (let row = 2; row <= 13; row++) months[`A${String(row)}`] = `Month ${String(row - 1)}`;

const items: Written = { A1: 'Item', B1: 'Price', C1: 'Pieces' };
for (let row = 2; row <= 33; row++) items[`A${String(row)}`] = `Item ${String(row * 37)}`;

/** Twelve months with a total after every three. */
const quarters: Written = {};
for (let quarter = 0; quarter < 4; quarter++) {
  const top = 2 + quarter * 4;
  quarters[`B${String(top)}:B${String(top + 2)}`] = 4;
  quarters[`C${String(top)}:C${String(top + 2)}`] = `=B${String(top)}*$H$1`;
  for (const col of ['B', 'C'])
    quarters[`${col}${String(top + 3)}`] = `=SUM(${col}${String(top)}:${col}${String(top + 2)})`;
}

describe('ordinary sheets', () => {
  it.each<[string, Written]>([
    ['texts alone', { A1: 'Notes', A2: 'One', A3: 'Two', C4: 'Three' }],
    ['numbers alone', { 'A1:D9': 4, B5: 'n/a', C7: null }],
    [
      'a form: merged cells leave all but the first blank',
      {
        A1: 'Name',
        'B1:D1': null,
        A3: 'Net',
        D3: 4,
        A5: 'Tax',
        D5: '=D3*$H$1',
        H1: 2,
        A7: 'Due',
        D7: '=D3+D5',
      },
    ],
    [
      'a table with a total row',
      {
        ...months,
        'C2:C13': '=B2*$H$1',
        H1: 2,
        A14: 'Total',
        B14: '=SUM(B2:B13)',
        C14: '=SUM(C2:C13)',
      },
    ],
    [
      'a list with its total, beside which nothing goes on',
      {
        ...items,
        D1: 'Amount',
        'B2:B33': 5,
        'C2:C33': 3,
        'D2:D33': '=B2*C2 -> 15',
        A34: 'Total',
        D34: '=SUM(D2:D33) -> 480',
      },
    ],
    [
      'what a pivot table leaves: texts, numbers and totals without a formula',
      {
        A1: 'Row Labels',
        B1: 'Sum of Cost',
        A2: 'North',
        B2: 4,
        A3: 'South',
        B3: 5,
        A4: 'Grand Total',
        B4: 9,
      },
    ],
    ['cells of which each stands alone', { A1: 4, C3: '=A1*A1', F9: '=C3+A1', H2: '=F9-C3' }],
    ['a total after every three months', { ...quarters, H1: 2 }],
    [
      'years as headings over sums',
      { B1: 2023, C1: 2024, D1: 2025, 'B2:D6': 4, 'B7:D7': '=SUM(B2:B6)' },
    ],
    [
      'dates as headings over sums',
      { B1: 45292, C1: 45323, D1: 45352, 'B3:D6': 4, 'B7:D7': '=SUM(B3:B6)' },
    ],
    [
      'dates as headings right over the numbers',
      { B1: 45292, C1: '=B1+31 -> 45323', D1: 45352, 'B2:D6': 4, 'B7:D7': '=SUM(B2:B6)' },
    ],
    [
      'dates before the numbers of each row',
      { A2: 45292, A3: 45323, A4: 45352, A5: 45383, 'B2:D5': 4, 'E2:E5': '=SUM(B2:D2)' },
    ],
    ['one formula all over', { 'A1:F20': 4, 'H1:M20': '=A1*$O$1', O1: 2 }],
  ])('%s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });

  it('has nothing to say of a workbook without formulas or without cells', () => {
    expect(
      findingsOf({ Data: { 'A1:D9': 4, A10: 'Total', D10: 36 }, Notes: { A1: 'Read me' } }),
    ).toEqual([]);
    expect(findingsOf({ Empty: {} })).toEqual([]);
  });

  it('has nothing to say of another formula in every fourth cell', () => {
    const cells: Written = { 'A1:A24': 4, 'C1:C24': '=A1*$H$1', H1: 2 };
    for (const row of [4, 8, 12, 16, 20]) cells[`C${String(row)}`] = `=A${String(row)}+$H$1`;
    expect(told(cells)).toEqual([]);
  });

  it('has nothing to say of another formula that recurs three times in a long column', () => {
    const cells: Written = { 'A1:A124': 4, 'C1:C124': '=A1*$H$1', H1: 2 };
    const breaks = (...rows: number[]) =>
      told({
        ...cells,
        ...Object.fromEntries(
          rows.map((row) => [`C${String(row)}`, `=A${String(row)}+$H$1`] as const),
        ),
      });
    expect(breaks(31, 62)).toEqual(['differs C62 C31 =A62*$H$1']);
    expect(breaks(31, 62, 93)).toEqual([]);
  });

  it('tells what breaks regularly only where it breaks otherwise', () => {
    const cells: Written = { ...quarters, H1: 2, C9: '=SUM(C6:C7)' };
    expect(told(cells)).toHaveLength(1);
    expect(told(cells)[0]).toMatch(/ C9/);
  });
});

describe('a mistake in many cells', () => {
  it('is one finding', () => {
    const cells: Written = { 'A1:A90': 4, 'B1:B90': 3, 'C1:C90': '=A1*B1' };
    for (let row = 30; row < 50; row++) cells[`C${String(row)}`] = `=A${String(row)}*$B$3`;
    expect(told(cells)).toEqual(['differs C30:C49 =A30*B30']);
  });

  it('is one finding of several groups of cells, and what breaks otherwise is another', () => {
    const cells: Written = { 'A1:A90': 4, 'B1:B90': 3, 'C1:C90': '=A1*B1' };
    for (const row of [30, 60]) cells[`C${String(row)}`] = `=A${String(row)}+B${String(row)}`;
    cells['C75'] = '=A75-B75';
    expect(told(cells).sort()).toEqual(['differs C30 C60 =A30*B30', 'differs C75 =A75*B75']);
  });
});

describe('a list of more findings than anybody reads', () => {
  it('is told in parts, and the rest counted', () => {
    const sheet: Written = { A1: 5 };
    for (let row = 1; row <= 5_400; row++)
      sheet[`C${String(row)}`] = `=$A$1+ROUND($A$1,${String(row)})-A1`;
    const model = modelOf({ Sheet: sheet });
    const findings = new Findings();
    const first = drain(findings.answer(model, 0));
    expect([first.rows.length, first.told, first.total]).toEqual([partSize, findingsLimit, 5_400]);
    const last = drain(findings.answer(model, findingsLimit - 10));
    expect(last.rows.map(({ rank }) => rank)).toEqual(
      Array.from({ length: 10 }, (_, i) => 4_991 + i),
    );
  });
});
