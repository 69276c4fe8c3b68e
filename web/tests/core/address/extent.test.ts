import { describe, expect, test } from 'vitest';

import { columnLetters, columnNumber, parseArea, qualified } from '../../../src/core/address/area';
import { extentOf } from '../../../src/core/address/extent';

describe('columns', () => {
  test.each([
    ['A', 1],
    ['Z', 26],
    ['AA', 27],
    ['AZ', 52],
    ['BA', 53],
    ['ZZ', 702],
    ['AAA', 703],
    ['XFD', 16384],
  ])('%s is %d', (letters, number) => {
    expect(columnNumber(letters)).toBe(number);
    expect(columnLetters(number)).toBe(letters);
  });
});

describe('parseArea', () => {
  test.each([
    ['$B$4:$D$9', { top: 4, left: 2, bottom: 9, right: 4 }],
    ['D9:B4', { top: 4, left: 2, bottom: 9, right: 4 }],
    ['c3', { top: 3, left: 3, bottom: 3, right: 3 }],
    ['$C:$C', { top: 1, left: 3, bottom: 1048576, right: 3 }],
    ['2:5', { top: 2, left: 1, bottom: 5, right: 16384 }],
    ['XFD1048576', { top: 1048576, left: 16384, bottom: 1048576, right: 16384 }],
  ])('reads %s', (text, area) => {
    expect(parseArea(text)).toEqual(area);
  });

  test.each(['', 'A', '7', 'A0', 'A1:B', 'A:1', 'XFE1', 'A1048577', 'A1:B2:C3', 'Rate', 'A1 '])(
    'refuses "%s"',
    (text) => {
      expect(parseArea(text)).toBeUndefined();
    },
  );
});

describe('extentOf', () => {
  test.each([
    ['$B$7', 'B7', 'one cell', true],
    ['$B$4:$D$9', 'B4:D9', '6 rows × 3 columns', false],
    ['$A$1:$A$2000', 'A1:A2000', '2,000 rows × 1 column', false],
    ['$C:$C', 'C:C', 'whole column', false],
    ['$C:$E', 'C:E', '3 whole columns', false],
    ['$2:$2', '2:2', 'whole row', false],
    ['$1:$1048576', '1:1048576', 'whole sheet', false],
    ['$A$1,$C$3:$D$4', 'A1,C3:D4', '2 areas', false],
    ["'a,b;c'!$A$1;$C$3", "'a,b;c'!A1;C3", '2 areas', false],
    ['[b,c]S!$A$1', '[b,c]S!A1', '', false],
    ['', '', '', false],
  ])('of %s', (text, address, size, single) => {
    expect(extentOf(text)).toEqual({ address, size, single });
  });
});

test('qualified quotes any sheet name', () => {
  expect(qualified("It's", '$A$1')).toBe("'It''s'!$A$1");
});
