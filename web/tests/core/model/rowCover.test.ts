import { describe, expect, test } from 'vitest';

import { Reader, type Written } from './written';

const coverOf = (cells: Written) => new Reader({ Data: cells }).ask('rowCover', { sheet: 'Data' });

describe('columns that cover the rows', () => {
  test.each<[string, Written, number[]]>([
    ['one that is full', { 'A1:A3': 'x', 'B1:B9': 2, 'C1:C9': '=B1', D4: 1 }, [2]],
    [
      'those that the others leave rows to',
      { A1: 'Title', 'B3:B9': 2, C9: 1, D10: 'x' },
      [1, 2, 4],
    ],
    ['errors and texts count', { 'B1:B4': '=1/0 -> #DIV/0!', 'B5:B6': 'x', A1: 1 }, [2]],
    [
      'rather one without subtotals',
      { 'A1:A8': 1, A9: '=SUBTOTAL(9,A1:A8)', 'B1:B8': 2, C1: 1 },
      [2],
    ],
    ['what stands beside one', { 'A1:A8': 1, A9: '=SUBTOTAL(9,A1:A8)', B9: 'All' }, [1, 2]],
    [
      'none for rows of subtotals alone',
      { 'B1:B8': 1, B9: '=SUBTOTAL(9,B1:B8)', C10: '=AGGREGATE(9,5,B1:B8)' },
      [2],
    ],
    ['formulas that show nothing last of all', { 'A1:A9': '=IF(1,"") -> ', 'B1:B8': 1 }, [1, 2]],
    ['nothing for a blank sheet', {}, []],
    [
      'nothing where it takes many',
      Object.fromEntries(['A', 'B', 'C', 'D', 'E', 'F', 'G'].map((at, i) => [`${at}${i + 1}`, 1])),
      [],
    ],
  ])('%s', (_, cells, columns) => {
    expect(coverOf(cells)).toEqual(columns);
  });

  test('of a sheet that there is not', () => {
    expect(new Reader({ Data: {} }).ask('rowCover', { sheet: 'Gone' })).toEqual([]);
  });
});
