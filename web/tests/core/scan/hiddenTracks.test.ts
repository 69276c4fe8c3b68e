import { describe, expect, test } from 'vitest';

import { parseArea } from '../../../src/core/address/area';
import { failed, succeeded } from '../../../src/core/protocol/Outcome';
import { findHidden } from '../../../src/core/scan/hiddenTracks';

type Sheet = { rows?: number[]; cols?: number[]; blank?: number[]; aside?: number[] };

/** A sheet with one filled cell, in A or B, in each row but the blank ones; rows `aside` hold a SUBTOTAL alone. */
function spreadsheet({ rows = [], cols = [], blank = [], aside = [] }: Sheet) {
  const asked: string[] = [];
  const ask = (expression: string) => {
    asked.push(expression);
    const values = expression.split('&"|"&').map((term) => {
      const found = [...term.matchAll(/!([A-Z]+\d+(?::[A-Z]+\d+)?)(?=[,)])/g)];
      const areas = found.flatMap(([, address = '']) => parseArea(address) ?? []);
      const [first] = areas;
      if (!first) throw new Error(term);
      if (term.startsWith('SUM(CELL("width",')) return cols.includes(first.left) ? 0 : 10;
      const isShown = (row: number) => !rows.includes(row) && !aside.includes(row);
      let count = 0;
      for (const { top, bottom, left, right } of areas) {
        for (let row = top; row <= bottom; row++) {
          const col = (row % 2) + 1; // A and B by turns
          if (blank.includes(row) || col < left || col > right) continue;
          if (term.startsWith('COUNTA(') || isShown(row)) count += 1;
        }
      }
      return count;
    });
    return Promise.resolve(succeeded(values.join('|')));
  };
  return { asked, ask };
}

const area = (address: string) => parseArea(address) as NonNullable<ReturnType<typeof parseArea>>;

describe('hidden tracks', () => {
  test.each<[string, Sheet, [number, number][], [number, number][]]>([
    ['none', {}, [], []],
    [
      'single ones',
      { rows: [5, 20], cols: [1, 9] },
      [
        [5, 5],
        [20, 20],
      ],
      [
        [1, 1],
        [9, 9],
      ],
    ],
    ['runs', { rows: [7, 8, 9, 10], cols: [2, 3, 4] }, [[7, 10]], [[2, 4]]],
    ['all rows', { rows: Array.from({ length: 32 }, (_, i) => i + 1) }, [[1, 32]], []],
    [
      'runs with blank rows in them',
      { rows: [7, 8, 10], blank: [9] },
      [
        [7, 8],
        [10, 10],
      ],
      [],
    ],
  ])('are found: %s', async (_, sheet, rows, cols) => {
    const { ask } = spreadsheet(sheet);
    const found = await findHidden('Book.xlsx', "It's", area('A1:J32'), [], ask);
    expect(found?.rows.map(({ first, last }) => [first, last])).toEqual(rows);
    expect(found?.cols.map(({ first, last }) => [first, last])).toEqual(cols);
    expect(found?.partly).toBe(false);
  });

  test('cost little where there are none, and no question is too long', async () => {
    const { ask, asked } = spreadsheet({});
    await findHidden(
      'A workbook with quite a long name.xlsx',
      'Cash flow',
      area('A1:J9999'),
      [],
      ask,
    );
    expect(asked.filter((text) => text.startsWith('COUNTA'))).toHaveLength(1);
    expect(asked.length).toBeLessThanOrEqual(6);
    expect(Math.max(...asked.map((text) => text.length))).toBeLessThanOrEqual(255);
  });

  test('are asked of the columns that cover the rows, where that is not too long', async () => {
    const sheet = { rows: [4, 5, 31] };
    const asks = async (book: string, cover: number[]) => {
      const { ask, asked } = spreadsheet(sheet);
      const found = await findHidden(book, 'Data', area('A1:J32'), cover, ask);
      expect(found?.rows).toEqual([
        { first: 4, last: 5 },
        { first: 31, last: 31 },
      ]);
      expect(Math.max(...asked.map((text) => text.length))).toBeLessThanOrEqual(255);
      return asked.find((text) => text.startsWith('COUNTA'));
    };
    expect(await asks('B.xlsx', [1, 2])).toContain("COUNTA('[B.xlsx]Data'!A1:B32)&");
    expect(await asks('B.xlsx', [1, 2, 4])).toContain(
      "SUBTOTAL(103,'[B.xlsx]Data'!A1:B32,'[B.xlsx]Data'!D1:D32)",
    );
    const long = `A workbook with a name that is ${'very '.repeat(6)}long.xlsx`;
    expect(await asks(long, [1, 2])).toContain('!A1:B32)');
    expect(await asks(long, [1, 2, 4])).toContain('!A1:J32)');
    expect(await asks('B.xlsx', [])).toContain('!A1:J32)');
  });

  test('are told in part where there are too many', async () => {
    const rows = Array.from({ length: 500 }, (_, i) => i * 2 + 1);
    const { ask, asked } = spreadsheet({ rows });
    const found = await findHidden('Book.xlsx', 'Data', area('A1:B1000'), [], ask);
    expect(found?.partly).toBe(true);
    expect(asked.length).toBeLessThanOrEqual(120);
    const wide = await findHidden('Book.xlsx', 'Data', area('A1:XX2'), [], spreadsheet({}).ask);
    expect(wide?.partly).toBe(true);
  });

  test('are not told where the spreadsheet does not answer', async () => {
    const silent = () => Promise.resolve(failed('transport', 'no'));
    expect(await findHidden('B', 'S', area('A1:B9'), [], silent)).toBeUndefined();
    const odd = () => Promise.resolve(succeeded('#VALUE!'));
    expect(await findHidden('B', 'S', area('A1:B9'), [], odd)).toBeUndefined();
  });
});
