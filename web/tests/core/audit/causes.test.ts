import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { findingsOf, line, sentences, told } from './findings';

describe('dollar signs that change along a column', () => {
  it('finds from where on a table slides', () => {
    const cells: Written = {
      'A1:A20': 4,
      'F1:F9': 4,
      'B1:B12': '=A1*SUM($F$1:$F$9)',
      'B13:B16': '=A13*SUM($F1:$F9)',
      'B17:B20': null,
    };
    expect(told(cells)).toEqual(['signs B13:B16 =A13*SUM($F$1:$F$9)']);
  });

  it('leaves alone a change that recurs', () => {
    const cells: Written = { 'A1:A40': 4, 'F1:F9': 4 };
    for (let top = 1; top <= 31; top += 10) {
      cells[`B${String(top)}:B${String(top + 4)}`] = `=A${String(top)}*$F$1`;
      cells[`B${String(top + 5)}:B${String(top + 9)}`] = `=A${String(top + 5)}*F$1`;
    }
    expect(told(cells).filter((one) => one.startsWith('signs'))).toEqual([]);
  });
});

describe('lookups', () => {
  const table: Written = { F1: 1, F2: 5, F3: 3, F4: 8, 'G1:G4': 7, A1: 3 };

  it.each<[string, string, string[]]>([
    ['a column beyond the table', '=VLOOKUP(A1,F1:G4,3,FALSE)', ['lookup B1']],
    ['the nearest of keys that do not go up', '=VLOOKUP(A1,F1:G4,2)', ['lookup B1']],
    ['a table that ends before its last row', '=VLOOKUP(A1,F1:G3,2,FALSE)', ['lookup B1']],
    ['the same with MATCH', '=MATCH(A1,F1:F4,1)', ['lookup B1']],
  ])('finds %s', (_, formula, expected) => {
    expect(told({ ...table, B1: formula })).toEqual(expected);
  });

  it.each<[string, string]>([
    ['a key that must be the same', '=VLOOKUP(A1,F1:G4,2,FALSE)'],
    ['a key that must be the same, as 0', '=MATCH(A1,F1:F4,0)'],
    ['the nearest of keys that go up', '=MATCH(A1,F3:F4)'],
  ])('leaves alone %s', (_, formula) => {
    expect(told({ ...table, B1: formula })).toEqual([]);
  });

  it.each<[string, string[], number]>([
    ['do not go up, whatever the case', ['Name', 'apple', 'Pear', 'Banana'], 1],
    ['do not go up, with digits in them', ['Name', 'A2', 'a1', 'B'], 1],
    ['go up, whatever the case', ['Name', 'apple', 'Banana', 'pear'], 0],
    ['go up, as longer ones follow', ['Name', 'A', 'A1', 'AB', 'B1'], 0],
    ['go up below a heading', ['Key', 'Apple', 'Banana'], 0],
    ['every language may sort in its own way', ['Name', 'zebra', 'ähre', 'a-b', 'b c'], 0],
  ])('the nearest of texts that %s', (_, keys, findings) => {
    const cells: Written = { A1: 'x', B1: '=VLOOKUP(A1,F1:G5,2)' };
    for (const [i, key] of keys.entries()) {
      cells[`F${String(i + 1)}`] = key;
      cells[`G${String(i + 1)}`] = i;
    }
    expect(told(cells)).toHaveLength(findings);
  });

  it('says which table and which keys', () => {
    expect(sentences({ ...table, B1: '=MATCH(A1,F1:F4)' })).toEqual([
      'MATCH in B1 looks for the nearest key in F1:F4, and the keys do not go up in F3.',
    ]);
    expect(sentences({ ...table, B1: '=VLOOKUP(A1,F1:G4,3,FALSE)' })).toEqual([
      'VLOOKUP in B1 asks for column 3 of F1:G4, which has 2.',
    ]);
  });
});

describe('what does not work', () => {
  it('tells errors by their first cause, once for formulas alike', () => {
    const found = findingsOf({
      Sheet: {
        'A1:A3': 0,
        'B1:B3': '=1/A1 -> #DIV/0!',
        C1: '=SUM(B1:B3) -> #DIV/0!',
        C2: '=C1*2 -> #DIV/0!',
      },
    });
    expect(found.map(line)).toEqual(['error B1:B3']);
    expect(found[0]?.sentence).toBe(
      '#DIV/0! in B1:B3 and in 2 other cells alike comes of =1/A1; it uses no other error, and 2 errors come of it.',
    );
    expect(found[0]?.confidence).toBe('low');
  });

  it('tells circles', () => {
    const found = findingsOf({ Sheet: { A1: '=B1+1', B1: '=C1*2', C1: '=A1-3' } });
    expect(found.map(({ kind, level }) => [kind, level])).toEqual([['circle', 'fact']]);
    expect(found[0]?.sentence).toContain('rests on itself by way of 3 cells.');
  });
});
