import { describe, expect, test } from 'vitest';

import { parse } from '../../../src/core/formula/Parser';
import { print, printInStyle } from '../../../src/core/formula/print';
import { shape } from './shape';

describe('print', () => {
  test.each([
    ['= IF( A1 > 0 , SUM( B1:B3 , {1,2;3,4} ) , "a""b" )', 'IF(A1>0,SUM(B1:B3,{1,2;3,4}),"a""b")'],
    ['=true', 'TRUE'],
    ['=A1  B2', 'A1 B2'],
    ['=SUM((A1 , B2))', 'SUM((A1,B2))'],
    ['=LAMBDA( x , [y] , x )( 1 )', 'LAMBDA(x,[y],x)(1)'],
    ["='My sheet'!A1#%", "'My sheet'!A1#%"],
    ['=IF(A1,,)', 'IF(A1,,)'],
    ['=A : C', 'A : C'],
    ['=1 : 3', '1 : 3'],
    ['=SUM(1 2', '?'],
  ])('%s', (text, printed) => {
    const formula = parse(text);
    const out = print(formula.root);
    if (printed !== '?') expect(out).toBe(printed);
    expect(shape(parse(out).root)).toBe(shape(formula.root));
  });

  test('writes the other separator between arguments and in unions, not in arrays', () => {
    const { root } = parse('=IF(A1,(B1,C1),{1,2;3,4})');
    const text = print(root, { separator: ';' });
    expect(text).toBe('IF(A1;(B1;C1);{1,2;3,4})');
    expect(shape(parse(text).root)).toBe(shape(root));
  });
});

describe('printInStyle', () => {
  const origin = { row: 5, col: 3 };

  test.each([
    ['C5', 'RC'],
    ['$A$1', 'R1C1'],
    ['B4', 'R[-1]C[-1]'],
    ['$D9', 'R[4]C4'],
    ['A$1:D9', 'R1C[-2]:R[4]C[1]'],
    ['A:A', 'C[-2]'],
    ['$B:D', 'C2:C[1]'],
    ['5:5', 'R'],
    ['$1:$3', 'R1:R3'],
    ["SUM('S 1'!B4,Rate)*2", "SUM('S 1'!R[-1]C[-1],Rate)*2"],
  ])('takes %s to %s and back', (a1, r1c1) => {
    expect(printInStyle(parse(a1, 'a1'), 'r1c1', origin)).toBe(r1c1);
    expect(printInStyle(parse(r1c1, 'r1c1'), 'a1', origin)).toBe(a1);
  });

  test('keeps the style it has', () => {
    expect(printInStyle(parse('=A1', 'a1'), 'a1', origin)).toBe('A1');
  });

  test('comes in at the other edge of the sheet', () => {
    expect(printInStyle(parse('=R[-5]C[-3]', 'r1c1'), 'a1', origin)).toBe('XFD1048576');
    expect(printInStyle(parse('=R[1048572]C', 'r1c1'), 'a1', origin)).toBe('C1');
  });
});
