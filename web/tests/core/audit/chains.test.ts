import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { told } from './findings';

/** A loan over columns B to J; its rows of formulas are filled from the first year on. */
const loan: Written = {
  A1: 500,
  'B2:J2': '=100',
  B3: '=A1',
  'C3:J3': '=B4',
  'B4:J4': '=B3-B2',
  'B5:J5': '=B4*0.05',
};

describe('the first of a chain', () => {
  it.each<[string, Written]>([
    ['an opening balance at the left edge of its rows', loan],
    ['one behind a label', { ...loan, A4: 'Closing balance' }],
    ['one that is typed in', { ...loan, B3: 500 }],
    [
      'one below a heading, where the formula is of the same form',
      { A1: 'Closing', F1: 500, 'C2:C9': 100, B2: '=F1', 'B3:B9': '=A2', 'A2:A9': '=B2-C2' },
    ],
    [
      'one in the first column of the sheet',
      { M1: 500, A3: '=M1', 'B3:J3': '=A4', 'A4:J4': '=A3-7', 'A5:J5': '=A4*0.05' },
    ],
    [
      'one of three like blocks',
      Object.fromEntries(
        [0, 10, 20].flatMap((down) => [
          [`A${String(1 + down)}`, 500 + down],
          [`B${String(3 + down)}`, `=A${String(1 + down)}`],
          [`C${String(3 + down)}:J${String(3 + down)}`, `=B${String(4 + down)}`],
          [`B${String(4 + down)}:J${String(4 + down)}`, `=B${String(3 + down)}-1`],
          [`B${String(5 + down)}:J${String(5 + down)}`, `=B${String(4 + down)}*0.05`],
        ]),
      ),
    ],
  ])('is left alone: %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });

  it.each<[string, Written, string[]]>([
    ['where a number stands before it, too', { ...loan, A4: 480 }, ['differs B3 =A4']],
    [
      'where what is taken is no earlier place of the row',
      { 'A1:A12': 3, 'B1:D12': '=$A1*2', C1: '=$A2*2' },
      ['differs C1 =$A1*2'],
    ],
    ['in the midst of the chain', { ...loan, F3: '=D4' }, ['elsewhere F3 =E4']],
  ])('is told %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });
});
