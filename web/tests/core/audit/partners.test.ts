import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { findingsOf, sentences, told } from './findings';

/** Blocks of a quantity, a price and what is worked out of them by a formula of its own in each row. */
function blocks(columns: readonly string[], odd: Written): Written {
  const cells: Written = {};
  for (const own of columns) {
    const [a, b] = [1, 2].map((away) => String.fromCharCode(own.charCodeAt(0) - away)) as [
      string,
      string,
    ];
    Object.assign(cells, {
      [`${a}1:${b}8`]: 4,
      [`${own}1`]: `=${a}1*${b}1`,
      [`${own}2`]: `=${a}2+${b}2`,
      [`${own}3`]: `=${a}3-${b}3`,
      [`${own}4`]: `=${a}4/${b}4`,
      [`${own}5`]: `=${own}1+${own}2`,
      [`${own}6`]: `=${own}3*${own}4`,
      [`${own}7`]: `=${a}7^${b}7`,
    });
  }
  return { ...cells, ...odd };
}

describe('partner columns', () => {
  it('finds what one of two has otherwise', () => {
    const cells = blocks(['C', 'H'], { H6: '=H2*H4' });
    expect(told(cells)).toEqual(['partner H6 =H3*H4']);
    expect(sentences(cells)).toEqual([
      'H6 takes H2, its partner H3; column H is computed like column C in 6 of 7 rows, and there C6 has =C3*C4.',
    ]);
  });

  it('finds a number that was typed over a formula', () => {
    expect(told(blocks(['C', 'H'], { C6: 12 }))).toEqual(['partner C6 =C3*C4']);
  });

  it('finds it among three as a fact', () => {
    const found = findingsOf({ Sheet: blocks(['C', 'H', 'M'], { H6: '=H2*H4' }) });
    expect(found[0]).toMatchObject({ level: 'fact', expected: '=H3*H4' });
    expect(found[0]?.cells[0]?.area.left).toBe(8);
  });

  it('finds it in partner rows', () => {
    const rows: Written = {};
    for (const top of [1, 9]) {
      for (const [i, operator] of ['*', '+', '-', '/', '^', '&', '='].entries()) {
        const col = String.fromCharCode(65 + i);
        rows[`${col}${String(top)}:${col}${String(top + 1)}`] = 4;
        rows[`${col}${String(top + 2)}`] =
          `=${col}${String(top)}${operator}${col}${String(top + 1)}`;
      }
    }
    rows['C11'] = '=C9-C9';
    expect(told(rows)).toEqual(['partner C11 =C9-C10']);
  });

  it.each<[string, Written]>([
    ['columns that agree', blocks(['C', 'H'], {})],
    [
      'columns that differ in many rows',
      blocks(['C', 'H'], { H3: '=F3+1', H4: '=F4+2', H6: '=F6+3' }),
    ],
    ['a row that one of them has not', blocks(['C', 'H'], { H6: null })],
    ['a text in it', blocks(['C', 'H'], { H6: 'n/a' })],
  ])('leaves alone %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });
});

describe('formulas that stop before their data', () => {
  const table: Written = { 'A1:B12': 4, 'C1:C9': '=A1*B1' };

  it.each<[string, Written, string[]]>([
    ['down', table, ['stops C10:C12 =A10*B10']],
    ['across', { 'A1:L2': 4, 'A3:I3': '=A1*A2' }, ['stops J3:L3 =J1*J2']],
    [
      'where the data is worked out alike',
      { ...table, 'B1:B12': '=A1+A1' },
      ['stops C10:C12 =A10*B10'],
    ],
  ])('are told %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });

  it('are told with what goes on', () => {
    expect(sentences(table)).toEqual([
      'C1:C9 are filled with =A1*B1 and stop before C10, while the data that they take goes on in A10:A12 and B10:B12 for 3 rows more.',
    ]);
  });

  it.each<[string, Written]>([
    ['a total under the data', { 'A1:B9': 4, 'A10:B10': '=SUM(A1:A9)', 'C1:C9': '=A1*B1' }],
    ['a typed-in total', { 'A1:A10': 'Part', A10: 'Total', 'B1:B10': 4, 'C1:C9': '=B1*B1' }],
    ['data that goes on for long', { 'A1:B40': 4, 'C1:C9': '=A1*B1' }],
    ['data that begins before', { 'A1:B12': 4, 'C4:C9': '=A4*B4' }],
    ['something else below', { ...table, C10: 'see note' }],
    ['data of which only a part goes on', { ...table, 'B10:B12': null }],
  ])('leave alone %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });
});
