import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { findingsOf, sentencesOfStyle, toldOfStyle } from './findings';

describe('what is decided at run time', () => {
  it.each<[string, Written, string[]]>([
    ['one function as one', { A1: 1, B1: '=TODAY()-A1', B5: '=TODAY()+A1' }, ['run-time B1 B5']],
    [
      'two functions as two',
      { A1: 1, B1: '=INDIRECT("A"&A1)', B5: '=OFFSET(A1,A1,0)' },
      ['run-time B1', 'run-time B5'],
    ],
    ['the name of one in a text', { A1: 'x', B1: '=A1&"NOW()"' }, []],
    ['a function that is called alike', { A1: 1, B1: '=ROUND(A1,0)' }, []],
  ])('%s', (_, cells, expected) => {
    expect(toldOfStyle(cells)).toEqual(expected);
  });

  it('says what it means and which formula it is', () => {
    expect(sentencesOfStyle({ A1: 1, B1: '=TODAY()-A1', B5: '=TODAY()+A1' })).toEqual([
      'TODAY in B1 and 1 other cell of the sheet gives another date on another day: =TODAY()-A1.',
    ]);
  });
});

describe('nests', () => {
  const choices = (depth: number): string =>
    `=${Array.from({ length: depth }, (_, i) => `IF(A1>${String(10 ** i)},${String(i)},`).join('')}0${')'.repeat(depth)}`;

  it.each<[string, Written, string[]]>([
    ['five choices in each other', { A1: 1, B1: choices(5) }, ['nest B1']],
    ['four', { A1: 1, B1: choices(4) }, []],
    [
      'seven calls in each other',
      { A1: 1, B1: '=ROUND(ABS(MAX(MIN(SUM(INT(SQRT(A1)),1),2),3)),4)' },
      ['nest B1'],
    ],
    [
      'many beside each other',
      { A1: 1, B1: '=ABS(A1)+INT(A1)+ABS(A1)+INT(A1)+ABS(A1)+INT(A1)+ABS(A1)' },
      [],
    ],
    ['brackets that call nothing', { A1: 1, B1: '=((((((((A1+1)+1)+1)+1)+1)+1)+1)+1)' }, []],
    ['brackets in a text', { A1: 'x', B1: '=A1&"((((((((((("' }, []],
  ])('%s', (_, cells, expected) => {
    expect(toldOfStyle(cells)).toEqual(expected);
  });

  it('are one for a whole column of a form', () => {
    const cells: Written = { 'A1:A30': 3, 'B1:B30': choices(6) };
    expect(toldOfStyle(cells)).toEqual(['nest B1:B30']);
    expect(sentencesOfStyle(cells)).toEqual([
      'B1:B30 call 6 functions in each other (6 × IF) over 6 references.',
    ]);
  });
});

describe('numbers inside formulas', () => {
  it.each<[string, Written, string[]]>([
    ['one in a formula', { A1: 4, B1: '=A1*1.19' }, ['inside B1']],
    ['in a column of one formula', { 'A1:A9': 4, 'B1:B9': '=A1*1.19' }, ['inside B1:B9']],
    [
      'one in different formulas, and the others together',
      { A1: 4, B1: '=A1*1.19', C1: '=1.19+A1', B5: '=A1/3.6', B7: '=A1-5.5' },
      ['inside B1 C1', 'inside B5 B7'],
    ],
    [
      'two in the same formulas',
      { A1: 4, B1: '=A1*1.19+5.5', C1: '=A1/1.19-5.5' },
      ['inside B1 C1', 'inside B1 C1'],
    ],
    ['a threshold', { A1: 4, B1: '=IF(A1>4500,A1,0)' }, ['inside B1']],
    ['in brackets, with a sign', { A1: 4, B1: '=A1*(-(0.35))' }, ['inside B1']],
    ['a share', { A1: 4, B1: '=A1*19%' }, ['inside B1']],
    ['units, halves and months', { A1: 4, B1: '=A1*1000/12+A1/2-1', B3: '=A1*24*60' }, []],
    ['places, columns and modes', { A1: 4, B1: '=ROUND(A1,3)', B3: '=VLOOKUP(A1,A1:C9,3,0)' }, []],
    ['distances of references', { A5: 4, B8: '=A5-A3', B9: '=B8*A5' }, []],
    ['a cell that is a number', { B1: '=1600*1.19' }, []],
    ['in a text', { A1: 'x', B1: '=A1&"*1.19"' }, []],
  ])('%s', (_, cells, expected) => {
    expect(toldOfStyle(cells)).toEqual(expected);
  });

  it('says which and where', () => {
    expect(sentencesOfStyle({ A1: 4, B1: '=A1*1.19', C1: '=1.19+A1', B5: '=A1/3.6' })).toEqual([
      '1.19 is written into 2 different formulas of the sheet (B1 and 1 other cell, =A1*1.19); to change it, each of them has to be found.',
      '3.6 is written into formulas of the sheet and stands in no cell of its own: B5, =A1/3.6.',
    ]);
  });
});

describe('findings of style', () => {
  it('stand below all others, however weak these are', () => {
    const found = findingsOf({
      Sheet: {
        ...{ 'A1:A9': 2, 'B1:B9': '=A1*2', B5: '=A4*2' },
        ...{ D1: '=NOW()', D3: '#DIV/0!', D5: '=RAND()' },
      },
    });
    const levels = found.map(({ level }) => level);
    expect(levels).toEqual(
      [...levels].sort((a, b) => Number(a === 'style') - Number(b === 'style')),
    );
    expect(levels).toContain('style');
  });
});
