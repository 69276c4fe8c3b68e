import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { sentences, told } from './findings';

const column = { 'A1:A12': 3 };

describe('cells unlike their neighbours', () => {
  it.each<[string, Written, string[]]>([
    [
      'a range shorter by one',
      { 'A1:F9': 2, 'A10:F10': '=SUM(A1:A9)', D10: '=SUM(D1:D8)' },
      ['differs D10 =SUM(D1:D9)'],
    ],
    [
      'a reference to the row above',
      { ...column, 'B1:B12': '=A1*2', B6: '=A5*2' },
      ['differs B6 =A6*2'],
    ],
    ['a dollar sign', { ...column, 'B1:B12': '=A1*2', B6: '=A$6*2' }, ['differs B6 =A6*2']],
    ['another operator', { ...column, 'B1:B12': '=A1*2', B6: '=A6+2' }, ['differs B6 =A6*2']],
    [
      'another function',
      { 'A1:F9': 2, 'A10:F10': '=SUM(A1:A9)', D10: '=MAX(D1:D9)' },
      ['differs D10 =SUM(D1:D9)'],
    ],
    [
      'a number typed over a formula',
      { ...column, 'B1:B12': '=A1*2', B6: 6 },
      ['constant B6 =A6*2'],
    ],
    ['a blank', { ...column, 'B1:B12': '=A1*2', B6: null }, ['blank B6 =A6*2']],
    [
      'the last cell, where the rows beside it go on',
      { ...column, 'B1:D12': '=$A1*2', C12: '=$A11*2' },
      ['differs C12 =$A12*2'],
    ],
    [
      'the first cell, where the rows beside it begin with it',
      { ...column, 'B1:D12': '=$A1*2', C1: '=$A2*2' },
      ['differs C1 =$A1*2'],
    ],
    [
      'the first and the last cell of a row, one by cells with the same surroundings',
      { 'A1:J1': 3, 'A2:J4': '=A$1*2', A3: '=A$1*3 -> 9', J3: '=I$1*2' },
      ['elsewhere J3 =J$1*2', 'differs A3 =A$1*2'],
    ],
    [
      'several cells that break in the same way, as one',
      { ...column, 'B1:B12': '=A1*2', 'B5:B7': '=A5*3' },
      ['differs B5:B7 =A5*2'],
    ],
  ])('finds %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });

  it('says what is odd and what it was compared with', () => {
    expect(sentences({ 'A1:F9': 2, 'A10:F10': '=SUM(A1:A9)', D10: '=SUM(D1:D8)' })).toEqual([
      'D10 takes rows 1 to 8, the others rows 1 to 9; A10:C10 and E10:F10 are filled alike with =SUM(A1:A9).',
    ]);
  });

  it('says on which side of an odd first cell those stand that it was compared with', () => {
    expect(sentences({ ...column, 'B1:D12': '=$A1*2', C1: '=$A2*2' })).toEqual([
      'C1 takes $A2, the others $A1; C2:C12 after it are filled alike with =$A2*2, and the columns beside go on there.',
    ]);
  });

  it('shows a formula that is quite another one', () => {
    expect(sentences({ ...column, 'B1:B12': '=A1*2', B6: '=IF(A6>3,MAX(A1:A12),0)' })).toEqual([
      'B6 has =IF(A6>3,MAX(A1:A12),0); B1:B5 and B7:B12 are filled alike with =A1*2.',
    ]);
  });

  it.each<[string, Written]>([
    [
      'a column of totals within the months',
      { 'A1:C9': '=Z1', 'D1:D9': '=SUM(A1:C1)', 'E1:G9': '=Z1' },
    ],
    [
      'quarter totals that recur',
      {
        'A1:C1': '=A9',
        D1: '=SUM(A1:C1)',
        'E1:G1': '=E9',
        H1: '=SUM(E1:G1)',
        'I1:K1': '=I9',
        L1: '=SUM(I1:K1)',
        'M1:O1': '=M9',
      },
    ],
    [
      'a table with a total row',
      { A1: 'Sales', 'A2:A9': 4, 'B2:B9': '=A2*2', 'A10:B10': '=SUM(A2:A9)' },
    ],
    ['text and forms', { 'A1:A9': 'Name', B2: 'Please fill in', B7: 4 }],
    ['a formula that stands alone', { A1: 5, B9: '=A1*2' }],
    ['years over columns', { 'B1:F1': 2020, 'B2:F4': '=B$1*2' }],
    ['the first of a chain', { A1: 100, 'A2:A20': '=A1*1.05' }],
  ])('leaves alone %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });

  it('has nothing to say of a workbook without formulas, or without cells', () => {
    expect(told({ 'A1:C9': 3 })).toEqual([]);
    expect(told({})).toEqual([]);
  });
});
