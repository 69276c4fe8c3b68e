import { describe, expect, test } from 'vitest';

import { parse } from '../../../src/core/formula/Parser';
import { outlineOf } from '../../../src/core/outline/Item';

/** One line an item: dots for its level, its role, its text. */
function listed(text: string): string[] {
  return outlineOf(parse(text).root).items.map(({ level, role, node }) =>
    ['.'.repeat(level - 1), role === '' ? '' : `${role}: `, text.slice(node.start, node.end)].join(
      '',
    ),
  );
}

describe('a formula is listed', () => {
  test.each([
    [
      '=IF(B4>0,SUM(Data!C:C)/B4,0)',
      [
        'IF(B4>0,SUM(Data!C:C)/B4,0)',
        '.test: B4>0',
        '..B4',
        '.then: SUM(Data!C:C)/B4',
        '..SUM(Data!C:C)',
        '...Data!C:C',
        '..÷: B4',
        '.else: 0',
      ],
    ],
    ['=A1-B1+2-C1', ['A1-B1+2-C1', '.A1', '.−: B1', '.−: C1']],
    ['=(A1+B1)*2', ['(A1+B1)*2', '.A1+B1', '..A1', '..+: B1']],
    ['=-A1%', ['-A1%', '.-A1', '..A1']],
    ['=SUM({1,2},3,)', ['SUM({1,2},3,)', '.{1,2}', '.3']],
    ['=A1:INDEX(B:B,3)', ['A1:INDEX(B:B,3)']],
    [
      '=SWITCH(A1,1,B1,C1)',
      ['SWITCH(A1,1,B1,C1)', '.of: A1', '.case: 1', '.then: B1', '.else: C1'],
    ],
    [
      '=SUMIFS(A:A,B:B,1,C:C,2)',
      ['SUMIFS(A:A,B:B,1,C:C,2)', '.sum: A:A', '.where: B:B', '.is: 1', '.where: C:C', '.is: 2'],
    ],
    ['=LET(x,A1,x+1)', ['LET(x,A1,x+1)', '.x =: A1', '.gives: x+1', '..x']],
    [
      '=MAP(A1:A2,LAMBDA(v,v*2))',
      [
        'MAP(A1:A2,LAMBDA(v,v*2))',
        '.array: A1:A2',
        '.each: LAMBDA(v,v*2)',
        '..gives first: v*2',
        '...v',
      ],
    ],
    ['=5', ['5']],
    ['=((A1))', ['A1']],
  ])('%s', (text, lines) => {
    expect(listed(text)).toEqual(lines);
  });

  test('flat where it is one long sum', () => {
    const { items } = outlineOf(parse(Array.from({ length: 2_000 }, () => 'A1').join('+')).root);
    expect(items).toHaveLength(2_001);
    expect(items.at(-1)?.level).toBe(2);
  });

  test('without end where a LAMBDA calls itself', () => {
    const { items } = outlineOf(parse('=LET(f,LAMBDA(f,f(f)),f(f))').root);
    expect(items.length).toBeLessThan(1_000);
  });
});
