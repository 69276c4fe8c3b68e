import { describe, expect, test } from 'vitest';

import { pathPrint, whereIs } from '../../../src/core/review/reviewed';

describe('where a workbook lies', () => {
  test('leaves a print that the sheet in front has no part in', () => {
    const print = pathPrint('/home/me/[Model.xlsx]Plan');
    expect(print).toMatch(/^[\w-]{8}$/);
    expect(pathPrint('/home/me/[Model.xlsx]Other')).toBe(print);
    expect(pathPrint('/home/you/[Model.xlsx]Plan')).not.toBe(print);
    expect(pathPrint('/home/me/[Model 2.xlsx]Plan')).not.toBe(print);
  });

  test.each(['https://a.example/b/[M.xlsx]S', 'C:\\b\\[M.xlsx]S', 'Disk:b:[M.xlsx]S'])(
    'however it is written: %s',
    (told) => {
      expect(pathPrint(told)).not.toBe('');
    },
  );

  test.each(['', '[Untitled 1]Sheet1', 'Sheet1', '/home/me', '#N/A', 1, null, undefined])(
    'is not known of %j',
    (told) => {
      expect(pathPrint(told)).toBe('');
    },
  );

  test('is asked of a cell', () => {
    expect(whereIs("'[A]B'!A1")).toBe(`CELL("filename",'[A]B'!A1)`);
  });
});
