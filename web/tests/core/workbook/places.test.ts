import { describe, expect, test } from 'vitest';

import { argumentSeparator } from '../../../src/core/workbook/conventions';
import { mapRows } from '../../../src/core/map/listRows';
import type { PlaceRow } from '../../../src/core/workbook/PlaceList';
import { placeOf } from '../../../src/core/workbook/places';

describe('a place', () => {
  test.each([
    ['$G$12', { sheet: undefined, address: 'G12', first: 'G12' }],
    ["'It''s'!$B$4:$D$9", { sheet: "It's", address: 'B4:D9', first: 'B4' }],
    ['=Data!$C:$C', { sheet: 'Data', address: 'C:C', first: 'C1' }],
    ["'[Book.xlsx]My sheet'!$A$1", { sheet: 'My sheet', address: 'A1', first: 'A1' }],
    ['$Sheet2.$A$1', { sheet: 'Sheet2', address: 'A1', first: 'A1' }],
    ["$'My sheet'.$A$1", { sheet: 'My sheet', address: 'A1', first: 'A1' }],
  ])('%s', (text, place) => {
    expect(placeOf(text)).toMatchObject(place);
  });

  test.each(['=#REF!$A$1', '=0.21', '=OFFSET(A1,1,1)', '', 'Sheet!', 'A1,B2'])('not %s', (text) => {
    expect(placeOf(text)).toBeUndefined();
  });
});

describe('lists', () => {
  test('of a workbook mark what is broken and what leads out of it', () => {
    const rows = mapRows({
      book: 'Model.xlsx',
      sheets: [
        { name: 'Data', usedRange: '$A$1:$B$9' },
        { name: 'Late', usedRange: null },
      ],
      sheetsTruncated: true,
      names: [
        { name: 'Rate', refersTo: '=Data!$B$1' },
        { name: 'Old', refersTo: '=#REF!$A$1' },
        { name: 'Out', refersTo: "='[Prices.xlsx]2024'!$A$1" },
        { name: 'Fixed', refersTo: '=0.21' },
        { name: 'Odd', refersTo: null },
      ],
    });
    const all = rows.flatMap((row) => [row, ...((row.inner?.() ?? []) as PlaceRow[])]);
    expect(all.map(({ text, tag, place }) => [text, tag, place?.address])).toEqual([
      ['Sheets', '', undefined],
      ['Data', '', 'A1:B9'],
      ['Late', '', undefined],
      ['Names', '', undefined],
      ['Rate', '', 'B1'],
      ['Old', 'Broken', undefined],
      ['Out', 'External link', undefined],
      ['Fixed', '', undefined],
      ['Odd', '', undefined],
    ]);
    expect(rows[0]?.detail).toBe('2 sheets, used ranges of the first 50 only');
  });
});

test('tell of a sheet what was read of it', () => {
  const data = {
    name: 'Data',
    area: 'A1:B9',
    cells: 17,
    inputs: 8,
    formulas: 9,
    distinctFormulas: 2,
    errors: 1,
    links: 3,
  };
  const rows = mapRows(
    {
      book: 'Model.xlsx',
      sheets: [
        { name: 'Data', usedRange: '$A$1:$C$9' },
        { name: 'Late', usedRange: '$A$1:$C$7' },
      ],
      sheetsTruncated: false,
      names: [],
    },
    {
      sheets: [data],
      flows: [
        { from: 'Data', to: 'Late', cells: 4 },
        { from: 'Late', to: 'Data', cells: 1 },
      ],
      links: [
        { workbook: 'Prices.xlsx', formulas: 3, sheets: ['Data'] },
        { workbook: 'Old.xlsx', formulas: 0, sheets: [] },
      ],
    },
  );
  const inner = (row: PlaceRow | undefined) => (row?.inner?.() ?? []) as PlaceRow[];
  const say = ({ text, detail }: PlaceRow) => `${text}: ${detail}`;
  const [sheets, , links] = rows;
  expect(inner(sheets).map(say)).toEqual([
    'Data: A1:C9 · 9 formulas · 1 error · 3 links',
    'Late: A1:C7 · 7 rows × 3 columns',
  ]);
  expect(inner(inner(sheets)[0]).map(say)).toEqual([
    'Used range: A1:C9 · 9 rows × 3 columns',
    'Filled: 17 cells',
    'Inputs: 8 cells',
    'Formulas: 9 cells',
    'Formulas that are not alike: 2 formulas',
    'Errors: 1 cell',
    'Links to other workbooks: 3 formulas',
    'Takes from Late: 1 formula',
    'Gives to Late: 4 formulas',
  ]);
  expect(links && [say(links), ...inner(links).map(say)]).toEqual([
    'Other workbooks: 2 workbooks',
    'Prices.xlsx: 3 formulas on Data',
    'Old.xlsx: by name only',
  ]);
});

describe("the user's separator", () => {
  test.each([
    ['=SUM(A1,B1)', '=SUMME(A1;B1)', ';'],
    ['=SUM(A1,B1)', '=SUM(A1,B1)', ','],
    ['=SUM(A1,1.5)', '=SUMME(A1;1,5)', ';'],
    ['=IF(A1=",",1,2)', '=WENN(A1=",";1;2)', ';'],
    ["=SUM('a,b'!A1,{1,2})", "=SUMME('a,b'!A1;{1.2})", ';'],
    ['=SUM(A1)', '=SUMME(A1)', undefined],
    ['=A1+1.5', '=A1+1,5', undefined],
    ['', '', undefined],
  ])('%s, %s', (formula, local, separator) => {
    expect(argumentSeparator(formula, local)).toBe(separator);
  });
});
