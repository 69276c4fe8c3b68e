import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { findingsOf, line, sentences, told } from './findings';

/** Lookups that stand apart, so that no neighbour tells what is expected. */
function lookups(odd: string): Written {
  const cells: Written = { 'J1:M30': 4 };
  for (let row = 1; row <= 17; row += 4) {
    cells[`B${String(row)}`] = `=VLOOKUP(A${String(row)},$J$1:$M$20,2,FALSE)`;
    cells[`A${String(row)}`] = 4;
  }
  cells['B9'] = odd;
  return cells;
}

describe('formulas of one form', () => {
  it.each<[string, string]>([
    ['a range shorter than theirs', '=VLOOKUP(A9,$J$1:$M$19,2,FALSE)'],
    ['another column of the table', '=VLOOKUP(A9,$J$1:$M$20,3,FALSE)'],
    ['the cell above', '=VLOOKUP(A8,$J$1:$M$20,2,FALSE)'],
    ['other dollar signs', '=VLOOKUP($A9,$J$1:$M$20,2,FALSE)'],
  ])('finds %s', (_, formula) => {
    expect(told(lookups(formula))).toEqual(['kin B9']);
  });

  it('says what the others have in common', () => {
    expect(sentences(lookups('=VLOOKUP(A9,$J$1:$M$19,2,FALSE)'))).toEqual([
      'B9 ends in row 19, 4 formulas of the same form end in row 20: =VLOOKUP(A9,$J$1:$M$19,2,FALSE).',
    ]);
  });

  it('leaves alone what three of them have and two have not', () => {
    const cells = lookups('=VLOOKUP(A9,$J$1:$M$19,2,FALSE)');
    cells['B13'] = '=VLOOKUP(A13,$J$1:$M$18,2,FALSE)';
    expect(told(cells)).toEqual([]);
  });

  it('finds a cell that one formula writes in two ways', () => {
    const cells: Written = { A1: 4, A2: 5, C5: '=IF($A$1>3,$A$1*2,A1/$A$2)' };
    expect(told(cells)).toEqual(['mixed C5']);
    expect(told({ ...cells, C5: '=IF($A$1>3,$A$1*2,$A$1/A2)' })).toEqual([]);
  });
});

describe('labels', () => {
  const fuels = ['Hydrogen', 'Ammonia', 'Methanol', 'Methane', 'Petroleum gas', 'Diesel'];
  const parameters: Written = {};
  [
    'Liquid hydrogen',
    'Ammonia',
    'Methanol',
    'Methane (compressed)',
    'Propane',
    'Diesel oil',
  ].forEach((name, i) => {
    parameters[`A${String(i + 2)}`] = name;
    parameters[`B${String(i + 2)}`] = i + 1;
    parameters[`C${String(i + 2)}`] = i * 7;
  });

  function blocks(rowOf: (fuel: number) => number): Written {
    const cells: Written = {};
    fuels.forEach((fuel, i) => {
      const top = 1 + i * 8;
      cells[`A${String(top)}`] = 'Activity';
      cells[`B${String(top)}`] = `transport by ship, ${fuel}`;
      cells[`A${String(top + 3)}`] = 'work';
      cells[`B${String(top + 3)}`] = `=parameters!B${String(rowOf(i))}`;
      cells[`A${String(top + 4)}`] = 'loss';
      cells[`B${String(top + 4)}`] = `=parameters!C${String(rowOf(i))}`;
    });
    return cells;
  }

  it('finds the block that still takes another block’s row', () => {
    const found = findingsOf({ Sheet: blocks((i) => (i === 4 ? 5 : i + 2)), parameters });
    expect(found.map(line)).toEqual(['label B36 B37']);
    expect(found[0]?.sentence).toBe(
      'B36 stands under “transport by ship, Petroleum gas” and takes parameters!B5, the row “Methane (compressed)”, which names “transport by ship, Methane”; 5 of 6 formulas like it take rows that are called like them.',
    );
  });

  it('says nothing where each takes a row of its own, whatever that is called', () => {
    expect(findingsOf({ Sheet: blocks((i) => i + 2), parameters })).toEqual([]);
  });

  it('says nothing where labels tell nothing', () => {
    expect(findingsOf({ Sheet: blocks((i) => ((i * 5) % 6) + 2), parameters })).toEqual([]);
  });
});
