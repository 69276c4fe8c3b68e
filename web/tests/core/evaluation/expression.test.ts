import { describe, expect, test } from 'vitest';

import { expressionFor } from '../../../src/core/evaluation/expression';
import { routeOf, sheetOfPrefix } from '../../../src/core/evaluation/routes';
import { scratchPlan } from '../../../src/core/evaluation/scratchPlan';
import { parse } from '../../../src/core/formula/Parser';

const home = { book: "Bob's.xlsx", sheet: "It's", row: 12, col: 6 };
const written = (text: string): unknown => {
  const expression = expressionFor(parse(text).root, undefined, home);
  return 'refused' in expression ? `refused: ${expression.refused}` : expression.text;
};

describe('an expression that is asked for alone', () => {
  test.each([
    ['=A1+Data!B2', "'It''s'!A1+Data!B2"],
    ['=SUM(A1:B2,Rate)', "SUM('It''s'!A1:B2,Rate)"],
    ['=ROW()+COLUMN()+ROW(A3)', "12+6+ROW('It''s'!A3)"],
    ['=@A1:A20', "'It''s'!$A$12"],
    ['=@Data!A12:H12', 'Data!$F$12'],
    ['=@A1:A3', '#VALUE!'],
    ['=@B:B*2', "'It''s'!$B$12*2"],
    ['=Sales[[#This Row],[Net]]*2', 'INDEX(Sales[Net],12-MIN(ROW(Sales))+1)*2'],
    ['=Sales[@Net]', 'INDEX(Sales[Net],12-MIN(ROW(Sales))+1)'],
    ['=SUM(Sales[Net])', 'SUM(Sales[Net])'],
    ['=[@Net]*2', 'refused: The table is not named here.'],
    ['=LET(x,A1+1,y,x*2,x+y)', "(('It''s'!A1+1)+(('It''s'!A1+1)*2))"],
    ['=LET(f,LAMBDA(a,b,a-b),f(5,2))', '(5-2)'],
    ['=LAMBDA(x,x+1)(A1)', "('It''s'!A1+1)"],
    ['=MAP(A1:A2,LAMBDA(x,x+B1))', "MAP('It''s'!A1:A2,LAMBDA(x,x+'It''s'!B1))"],
    ['=SUM({1\\2;3\\4})', 'SUM({1,2;3,4})'],
    ['=SUM(1;A1)', "SUM(1,'It''s'!A1)"],
    ['=A1+', 'refused: This part cannot be read.'],
  ])('%s', (text, expected) => {
    expect(written(text)).toBe(expected);
  });

  test('stops where names stand for names without end', () => {
    const names = Array.from(
      { length: 40 },
      (_, i) => `n_${String(i + 1)},n_${String(i)}+n_${String(i)}`,
    );
    expect(written(`=LET(n_0,A1,${names.join(',')},n_40)`)).toBe(
      'refused: Too long to be asked for.',
    );
  });
});

describe('a sheet before a reference', () => {
  test.each([
    ['Data!', 'Data'],
    ["'It''s'!", "It's"],
    ['[Other.xlsx]Data!', undefined],
    ["'[Other.xlsx]Data'!", undefined],
    ['Jan:Dec!', undefined],
    ['#REF!', undefined],
  ])('%s', (prefix, sheet) => {
    expect(sheetOfPrefix(prefix)).toBe(sheet);
  });

  test('of another workbook is evaluated, not read', () => {
    const { route } = routeOf(parse('=[Other.xlsx]Data!A1').root, undefined, home);
    expect(route).toMatchObject({ by: 'expression', text: '[Other.xlsx]Data!A1' });
  });
});

describe('a scratch workbook', () => {
  test('is given references with their workbook', () => {
    expect(scratchPlan(parse('=SUM(A1,Data!B2,Rate)').root, undefined, home)).toEqual([
      "SUM('[Bob''s.xlsx]It''s'!A1,'[Bob''s.xlsx]Data'!B2,'Bob''s.xlsx'!Rate)",
    ]);
  });

  test('is given parts of arithmetic, never what may be cells', () => {
    const long = Array.from({ length: 8 }, (_, i) => `LEN(A${String(i + 1)})`).join('+');
    const plan = scratchPlan(
      parse(`=IF(${long}>9,${long},INDEX(B1:B9,${long}))`).root,
      undefined,
      home,
    );
    expect(plan?.length).toBeGreaterThan(2);
    for (const entry of plan ?? []) expect(entry.length).toBeLessThanOrEqual(254);
    expect(plan?.at(-1)).toMatch(/^IF\(A\d+>9,A\d+,INDEX\('\[Bob''s\.xlsx\]It''s'!B1:B9,A\d+\)\)$/);
  });

  test.each([
    ['INDIRECT', `=SUM(INDIRECT("A1"),${'1,'.repeat(200)}1)`],
    ['a text longer than an entry', `=LEN("${'x'.repeat(300)}")`],
    ['more than forty entries', `=${Array.from({ length: 900 }, () => 'LEN(A1)').join('+')}`],
  ])('cannot work out %s', (_, text) => {
    expect(scratchPlan(parse(text).root, undefined, home)).toBeUndefined();
  });
});
