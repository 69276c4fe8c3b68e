import { describe, expect, test } from 'vitest';

import { formatByCell, parseCellFormat } from '../../../src/core/format/cellFormat';
import { valueView } from '../../../src/core/format/value';

const shown = (value: number, code: string) => formatByCell(value, parseCellFormat(code));

describe('a number in its cell’s format', () => {
  test.each([
    [1234.5, 'F2', '1234.50'],
    [1234.5, ',0', '1,235'],
    [-1234.5, ',2-', '-1,234.50'],
    [1234.5, 'C2()', '1,234.50'],
    [0.125, 'P1', '12.5%'],
    [12.5, 'P0', '1,250%'],
    [1234.5, 'S2', '1.23E+3'],
    [45363, 'D1', '12 Mar 2024'],
    [45363.604224537, 'D4', '12 Mar 2024 14:30:05'],
    [45363.5, 'D4', '12 Mar 2024 12:00'],
    [45363, 'D2', '12 Mar'],
    [45363, 'D3', 'Mar 2024'],
    [0.25, 'D9', '06:00'],
    [0.99999999, 'D8', '00:00:00'],
  ])('%d as %s is %s', (value, code, text) => {
    expect(shown(value, code)).toBe(text);
  });

  test('around the day that never was', () => {
    expect([1, 59, 60, 61].map((serial) => shown(serial, 'D1'))).toEqual([
      '1 Jan 1900',
      '28 Feb 1900',
      '29 Feb 1900',
      '1 Mar 1900',
    ]);
    expect(formatByCell(0, { kind: 'date', parts: 'date' }, 1904)).toBe('1 Jan 1904');
  });

  test.each([
    [5, 'G'],
    [5, 'unheard of'],
    [5, ''],
    [-1, 'D1'],
    [2958466, 'D1'],
    [1e20, 'F2'],
  ])('%d as "%s" has no form of its own', (value, code) => {
    expect(shown(value, code)).toBeUndefined();
  });

  test('keeps every digit in the note and in a copy', () => {
    const format = parseCellFormat('P0');
    expect(valueView({ value: 0.125, formula: '', shown: { format } })).toMatchObject({
      text: '13%',
      note: 'exactly 0.125',
      copy: '0.125',
    });
    expect(
      valueView({ value: 1250, formula: '', shown: { format: parseCellFormat(',0') } }),
    ).toMatchObject({
      text: '1,250',
      note: '',
    });
  });
});
