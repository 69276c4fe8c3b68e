import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { findingsOf, sentences, told } from './findings';

const table: Written = { 'A1:A9': 4, 'B1:B9': 5, 'C1:C9': '=A1*B1' };

describe('blank cells that are calculated with', () => {
  it.each<[string, Written, string[]]>([
    ['one among numbers', { ...table, B4: null }, ['empty C4']],
    ['one that stands alone', { A1: 4, C1: '=A1*B7' }, ['empty C1']],
    ['one for all cells that take it', { 'A1:A9': 4, 'C1:C9': '=A1*$F$1' }, ['empty C1:C9']],
    ['one that two formulas take', { A1: 4, C1: '=A1*B7', E9: '=A1/B7' }, ['empty C1 E9']],
    ['one after a sign', { A1: 4, C1: '=A1*-(B7)' }, ['empty C1']],
  ])('tells %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });

  it.each<[string, Written]>([
    ['where the formula tests for it', { ...table, B4: null, 'C1:C9': '=IF(B1="","",A1*B1)' }],
    ['where errors are caught', { ...table, B4: null, 'C1:C9': '=IFERROR(A1/B1,0)' }],
    ['in a range', { ...table, B4: null, 'C1:C9': '=SUM(A1:B1)' }],
    ['in a text', { ...table, B4: null, 'C1:C9': '=A1&B1' }],
    ['in a single sum, where a row was left empty', { A1: 4, A3: 5, C1: '=A1+A2+A3' }],
    ['that a formula leaves blank', { ...table, B4: '=IF(A4>3,"","") -> ' }],
  ])('leaves alone one %s', (_, cells) => {
    expect(told(cells).filter((one) => one.startsWith('empty'))).toEqual([]);
  });

  it('tells a form that nobody has filled in once, and as weak', () => {
    const cells: Written = { 'A1:A9': 4, 'C1:C9': '=A1*B1', 'E1:E9': '=A1/B1' };
    const found = findingsOf({ Sheet: cells });
    expect(found.map(({ kind, confidence }) => [kind, confidence])).toEqual([['empty', 'low']]);
    expect(found[0]?.sentence).toBe(
      'C1 and 17 other cells of the sheet calculate with B1 and 8 other cells that are blank: =A1*B1.',
    );
  });

  it('says which one, and what it was compared with', () => {
    expect(sentences({ ...table, B4: null })).toEqual([
      'C4 calculates with B4, which is blank; 8 cells with the same formula take a number there: =A4*B4.',
    ]);
  });
});

describe('texts that are calculated with', () => {
  it.each<[string, Written, string[]]>([
    ['one among numbers', { ...table, B4: 'n/a', C4: '=A4*B4 -> #VALUE!' }, ['text C4']],
    ['a heading', { B1: 'Price', B2: 5, A3: 4, C3: '=A3*B1 -> #VALUE!' }, ['text C3']],
    ['a number that is one', { A1: 4, B1: '12 ', C1: '=A1*B1' }, ['text C1']],
    [
      'one that a formula gives, where the result is an error',
      { A1: 4, B1: '=A1&"x" -> 4x', C1: '=A1*B1 -> #VALUE!' },
      ['text C1'],
    ],
    ['a column of them as one', { 'A1:A9': 4, 'B1:B9': '12', 'C1:C9': '=A1*B1' }, ['text C1:C9']],
  ])('tells %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });

  it.each<[string, Written]>([
    ['that is made a number of', { B1: '12', C1: '=B1*1', C2: '=0+B1', C3: '=--B1' }],
    ['that is only compared', { A1: 4, B1: 'x', C1: '=IF(B1="x",A1*7,A1)' }],
    ['that is joined', { A1: 4, B1: 'x', C1: '=A1&B1' }],
    [
      'that a formula gives and another takes for a number',
      { B1: '=TEXT(12,"0") -> 12', A1: 4, C1: '=A1*B1' },
    ],
  ])('leaves alone one %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });

  it('says which text it is, and what the others take', () => {
    expect(sentences({ ...table, B4: 'n/a', C4: '=A4*B4 -> #VALUE!' })).toEqual([
      'C4 calculates with B4, which holds the text “n/a”; 8 cells with the same formula take a number there: =A4*B4.',
    ]);
  });
});
