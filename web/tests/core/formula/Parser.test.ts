import { describe, expect, test } from 'vitest';

import { formulaLengthLimit, parse } from '../../../src/core/formula/Parser';
import { print } from '../../../src/core/formula/print';
import { plainName, walk } from '../../../src/core/formula/syntax';
import { shape } from './shape';

const read = (text: string, style: 'a1' | 'r1c1' = 'a1'): string => {
  const formula = parse(text, style);
  expect(formula.problems).toEqual([]);
  return shape(formula.root);
};

describe('operators bind', () => {
  test.each([
    ['=1+2*3', '(+ 1 (* 2 3))'],
    ['=1-2-3', '(- (- 1 2) 3)'],
    ['=2^3^2', '(^ (^ 2 3) 2)'],
    ['=-2^2', '(^ (- 2) 2)'],
    ['=2^-3', '(^ 2 (- 3))'],
    ['=-A1%', '((- A1) %)'],
    ['=50%%', '((50 %) %)'],
    ['=--A1', '(- (- A1))'],
    ['=1+-+2', '(+ 1 (- (+ 2)))'],
    ['="a"&1+2', '(& "a" (+ 1 2))'],
    ['=A1&B1=C1', '(= (& A1 B1) C1)'],
    ['=A1<>B1', '(<> A1 B1)'],
    ['=A1<=B1>=C1', '(>= (<= A1 B1) C1)'],
    ['=(1+2)*3', '(* [(+ 1 2)] 3)'],
    ['=-A1:B2', '(- A1:B2)'],
    ['=-(A1,B2)', '(- [(union A1 B2)])'],
    ['=A1 B2:B3', '(cross A1 B2:B3)'],
    ['=A1,B1 C1', '(union A1 (cross B1 C1))'],
    ['=A1:INDEX(B:B,3)', '(: A1 (INDEX B:B 3))'],
    ['=INDEX(A:A,1):INDEX(A:A,2):C3', '(: (: (INDEX A:A 1) (INDEX A:A 2)) C3)'],
    ['=@A1:A3+1', '(+ (@ A1:A3) 1)'],
    ['=A1#*2', '(* (A1 #) 2)'],
    ['=-@A1#', '(- (@ (A1 #)))'],
  ])('%s', (text, tree) => {
    expect(read(text)).toBe(tree);
  });
});

describe('operands', () => {
  test.each([
    ['=1.50', '1.50'],
    ['=.5', '.5'],
    ['=1E+3', '1E+3'],
    ['=1.e-3', '1.e-3'],
    ['="say ""hi"""', '"say \\"hi\\""'],
    ['=""', '""'],
    ['=true', 'TRUE'],
    ['=FALSE', 'FALSE'],
    ['=TRUE()', '(TRUE)'],
    ['=#N/A', '#N/A'],
    ['=#DIV/0!+1', '(+ #DIV/0! 1)'],
    ['={1,-2;"a",TRUE;#N/A,0}', '{1 (- 2) | "a" TRUE | #N/A 0}'],
    ['={1\\-2;"a"\\TRUE;FALSE\\0}', '{1 (- 2) | "a" TRUE | FALSE 0}'],
    ['={1\\2}+\\name', '(+ {1 2} \\name)'],
    ['=PI()', '(PI)'],
    ['=IF(A1,,2)', '(IF A1 _ 2)'],
    ['=IF(,)', '(IF _ _)'],
    ['=F(A1 , B1)', '(F A1 B1)'],
    ['=Rate_2024', 'Rate_2024'],
    ['=Größe+naïve', '(+ Größe naïve)'],
    ['=_xlfn.CONCAT(A1)', '(_xlfn.CONCAT A1)'],
    ['=MY.UDF(1)', '(MY.UDF 1)'],
    ['=LOG10(A1)', '(LOG10 A1)'],
    ['=\\a+b?', '(+ \\a b?)'],
  ])('%s', (text, tree) => {
    expect(read(text)).toBe(tree);
  });
});

describe('references', () => {
  test.each([
    ['=$A$1', '$A$1'],
    ['=a1:$B2', 'a1:$B2'],
    ['=A:C', 'A:C'],
    ['=$1:3', '$1:3'],
    ['=SUM(A:A,1:1)', '(SUM A:A 1:1)'],
    ['=XFD1048576', 'XFD1048576'],
    ['=Sheet1!A1', 'Sheet1!A1'],
    ["='It''s here'!A1:B2", "'It''s here'!A1:B2"],
    ['=[1]Sheet1!A1', '[1]Sheet1!A1'],
    ['=[Book.xlsx]Sheet1!$A:$A', '[Book.xlsx]Sheet1!$A:$A'],
    ["='C:\\dir\\[Book 1.xlsx]My sheet'!A1", "'C:\\dir\\[Book 1.xlsx]My sheet'!A1"],
    ["=['file:///tmp/a b.xlsx']Sheet1!A1", "['file:///tmp/a b.xlsx']Sheet1!A1"],
    ['=Jan:Dec!B2', 'Jan:Dec!B2'],
    ["=SUM('Jan 1:Dec 31'!B2)", "(SUM 'Jan 1:Dec 31'!B2)"],
    ['=2024!A1', '2024!A1'],
    ['=Sheet1!#REF!', 'Sheet1!#REF!'],
    ['=#REF!A1', '#REF!A1'],
    ['=#REF!$A$1:B2', '#REF!$A$1:B2'],
    ['=Sheet1!A1:Sheet1!B2', '(: Sheet1!A1 Sheet1!B2)'],
    ['=A1:Sheet2!B2', '(: A1 Sheet2!B2)'],
    ['=Sheet1!Rate', 'Sheet1!Rate'],
    ['=[0]!Rate', '[0]!Rate'],
    ['=[1]!Fn(A1)', '([1]!Fn A1)'],
    ['=A1 : B2', '(: A1 B2)'],
    ['=(A1) (B2)', '(cross [A1] [B2])'],
    // Beyond the sheet's edge words of that form are names.
    ['=XFE1+A1048577', '(+ XFE1 A1048577)'],
    ['=ABCD1', 'ABCD1'],
    ['=A0', 'A0'],
  ])('%s', (text, tree) => {
    expect(read(text)).toBe(tree);
  });

  test('tell cells from names', () => {
    const kind = (text: string) => parse(text).root.kind;
    expect(['=XFD1', '=XFE1', '=A1048576', '=A1048577', '=A1B', '=A'].map(kind)).toEqual([
      'reference',
      'name',
      'reference',
      'name',
      'name',
      'name',
    ]);
  });
});

describe('columns of tables', () => {
  test.each([
    ['=Sales[Amount]', 'Sales[Amount]'],
    ['=Sales[[#This Row],[Unit price]]*2', '(* Sales[[#This Row],[Unit price]] 2)'],
    ['=SUM(Sales[[#All],[a]:[c]])', '(SUM Sales[[#All],[a]:[c]])'],
    ['=[@Amount]+[@[Unit price]]', '(+ [@Amount] [@[Unit price]])'],
    ["=Sales['[odd'] name]", "Sales['[odd'] name]"],
    ["=Sales[one'] odd]+1", "(+ Sales[one'] odd] 1)"],
    ['=Book.xlsx!Sales[a]', 'Book.xlsx!Sales[a]'],
    ['=Sales[]', 'Sales[]'],
  ])('%s', (text, tree) => {
    expect(read(text)).toBe(tree);
  });
});

describe('LET and LAMBDA', () => {
  test.each([
    ['=LET(x,1,y,x+1,x*y)', '(LET <x> 1 <y> (+ x 1) (* x y))'],
    ['=_xlfn.LET(_xlpm.x,A1,_xlpm.x)', '(_xlfn.LET <_xlpm.x> A1 _xlpm.x)'],
    ['=LAMBDA(x,[y],x)', '(LAMBDA <x> <y?> x)'],
    ['=_xlfn.LAMBDA(_xlop.x,_xlpm.x)', '(_xlfn.LAMBDA <_xlop.x?> _xlpm.x)'],
    ['=LAMBDA(x,x+1)(2)', '(apply (LAMBDA <x> (+ x 1)) 2)'],
    ['=LAMBDA(x,LAMBDA(y,x+y))(1)(2)', '(apply (apply (LAMBDA <x> (LAMBDA <y> (+ x y))) 1) 2)'],
    ['=(LAMBDA(x,x))(1)', '(apply [(LAMBDA <x> x)] 1)'],
    ['=MAP(A1:A3,LAMBDA(v,v^2))', '(MAP A1:A3 (LAMBDA <v> (^ v 2)))'],
  ])('%s', (text, tree) => {
    expect(read(text)).toBe(tree);
  });

  test('have names without what files put before them', () => {
    expect(plainName('_xlfn._xlws.SORT')).toBe('SORT');
    expect(plainName('_xlpm.rate')).toBe('RATE');
    expect(plainName('_xlop.rate')).toBe('RATE');
    expect(plainName('sum')).toBe('SUM');
  });
});

describe('the other separator', () => {
  test.each([
    ['=IF(A1;B1;"no")', '(IF A1 B1 "no")'],
    ['=SUM((A1;B2);{1,2;3,4})', '(SUM [(union A1 B2)] {1 2 | 3 4})'],
    ['=IF(A1;;2)', '(IF A1 _ 2)'],
  ])('%s', (text, tree) => {
    expect(read(text)).toBe(tree);
  });
});

describe('R1C1', () => {
  test.each([
    ['=R1C1', 'R1C1'],
    ['=R[-1]C+RC[2]', '(+ R[-1]C RC[2])'],
    ['=SUM(R1C1:R[3]C[4])', '(SUM R1C1:R[3]C[4])'],
    ['=SUM(R1:R3,C[-1],R)', '(SUM R1:R3 C[-1] R)'],
    ["='My sheet'!R2C3", "'My sheet'!R2C3"],
    ['=Sheet1!RC', 'Sheet1!RC'],
    ['=COUNT(Rate,C_1)', '(COUNT Rate C_1)'],
    ['=R(1)+RC2(1)', '(+ (R 1) (RC2 1))'],
    ['=Rows:Cols!R1C1', 'Rows:Cols!R1C1'],
    ['=A1', 'A1'],
  ])('%s', (text, tree) => {
    expect(read(text, 'r1c1')).toBe(tree);
  });

  test('has no A1 references', () => {
    expect(parse('=A1', 'r1c1').root.kind).toBe('name');
    expect(parse('=RC', 'r1c1').root.kind).toBe('reference');
  });
});

describe('what cannot be read', () => {
  test.each([
    ['', '?""?', 'An operand is missing.'],
    ['=', '?""?', 'An operand is missing.'],
    ['=1+', '(+ 1 ?""?)', 'An operand is missing.'],
    ['=*2', '(* ?""? 2)', 'An operand is missing.'],
    ['=SUM(1,', '(SUM 1 ?""?)', 'An operand is missing.'],
    ['=SUM(A1', '(SUM A1)', 'A parenthesis is not closed.'],
    ['=(A1', '[A1]', 'A parenthesis is not closed.'],
    ['={1,2', '{1 2}', 'An array is not closed.'],
    ['=A1)', '?"A1)" A1 ?")"??', '“)” is not expected here.'],
    ['=1 2', '?"1 2" 1 ?"2"??', '“2” is not expected here.'],
    ['="open', '?"\\"open"?', '“"open” is not expected here.'],
    ["='open!A1", '?"\'open!A1"?', "“'open!A1” is not expected here."],
    ['=[open', '?"[open"?', '“[open” is not expected here.'],
    ['=Sheet1!', '?"Sheet1!"?', 'A sheet without a reference.'],
    ['=Sheet1! A1', undefined, 'A sheet without a reference.'],
    ['=SUM(1 2,B1)', '(SUM ?"1 2" 1 ?"2"?? B1)', '“2” is not expected here.'],
    ["=A1'S'!B2", undefined, "“'S'!” is not expected here."],
    ['=€', undefined, undefined],
    ['="x"\u2003', '?"\\"x\\"\u2003" "x" ?"\u2003"??', '“\u2003” is not expected here.'],
    ['=~', '?"~"?', '“~” is not expected here.'],
  ])('%s', (text, tree, message) => {
    const formula = parse(text);
    if (tree !== undefined) expect(shape(formula.root)).toBe(tree);
    if (message !== undefined) expect(formula.problems[0]?.message).toBe(message);
  });

  test('is no reason to throw, whatever it is', () => {
    const signs = [
      '(',
      ')',
      '{',
      '}',
      '[',
      ']',
      ',',
      ';',
      '"',
      "'",
      '!',
      '#',
      '@',
      '%',
      ':',
      ' ',
      '+',
      '-',
      '<',
      '=',
      '$',
      '.',
      '\\',
      'A1',
      'R[1]',
      'x',
      '1',
      'LET(',
      'LAMBDA(',
      '\n',
      '\u0000',
      '€',
    ];
    let seed = 1;
    const random = (limit: number): number => {
      seed = (seed * 48_271) % 2_147_483_647;
      return seed % limit;
    };
    for (let round = 0; round < 4_000; round++) {
      const text = Array.from({ length: 1 + random(12) }, () => signs[random(signs.length)]).join(
        '',
      );
      for (const style of ['a1', 'r1c1'] as const) {
        const { root } = parse(text, style);
        walk(root, (node) => {
          if (!(node.start >= 0 && node.start <= node.end && node.end <= text.length)) {
            throw new Error(`${JSON.stringify(text)} has a span outside of it`);
          }
        });
        print(root);
      }
    }
  });

  test.each([
    ['parentheses', '('.repeat(8_000)],
    ['signs', '-'.repeat(8_000)],
    ['calls', 'IF('.repeat(2_700)],
    ['arrays', '{'.repeat(8_000)],
    ['brackets', '['.repeat(8_000)],
  ])('goes to no depth that hurts: %s', (_, text) => {
    const formula = parse(`=${text}`);
    expect(formula.problems.length).toBeGreaterThan(0);
    expect(() => print(formula.root)).not.toThrow();
  });

  test('may be a long sum, which is none of that', () => {
    const sum = Array.from({ length: 4_000 }, () => 'A1').join('+');
    const formula = parse(`=${sum}`);
    expect(formula.problems).toEqual([]);
    expect(print(formula.root)).toBe(sum);
  });

  test('is any text that is longer than a formula can be', () => {
    const formula = parse('1'.repeat(formulaLengthLimit + 1));
    expect(formula.root.kind).toBe('invalid');
    expect(formula.problems[0]?.message).toBe('The formula is too long.');
    expect(parse('1'.repeat(formulaLengthLimit)).root.kind).toBe('number');
  });
});

describe('what is not closed', () => {
  test.each(['="open', "='open", '=[open'])('ends before the white space behind it: %s', (text) => {
    const { root, problems } = parse(`${text}  \n`);
    expect(root.end).toBe(text.length);
    walk(root, (node) => {
      expect(node.end).toBeLessThanOrEqual(text.length);
    });
    expect(problems[0]?.end).toBe(text.length);
  });
});

describe('spans', () => {
  test('hold exactly the text of their node', () => {
    const text = ' = (A1+B1) * 2 + SUM( 1 , x ) ';
    const spans: string[] = [];
    walk(parse(text).root, (node) => spans.push(text.slice(node.start, node.end)));
    expect(spans).toEqual([
      '(A1+B1) * 2 + SUM( 1 , x )',
      '(A1+B1) * 2',
      '(A1+B1)',
      'A1+B1',
      'A1',
      'B1',
      '2',
      'SUM( 1 , x )',
      '1',
      'x',
    ]);
  });
});
