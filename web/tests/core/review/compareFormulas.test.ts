import { expect, test } from 'vitest';

import { compareFormulas } from '../../../src/core/review/compareFormulas';

/** The formula with what differs in brackets. */
function marked(own: string, expected: string): [string, string] {
  const compared = compareFormulas(own, expected);
  const text = (parts: typeof compared.own) =>
    parts
      .map((part) => (part.differs ? `«${part.text}»` : part.text))
      .join('')
      .replaceAll('»«', '');
  return [text(compared.own), text(compared.expected)];
}

test.each<[string, string, [string, string]]>([
  ['=SUM(B2:B11)', '=SUM(B2:B12)', ['=SUM(B2:«B11»)', '=SUM(B2:«B12»)']],
  ['=A1*B1', '=A1+B1', ['=A1«*»B1', '=A1«+»B1']],
  ['=MIN(A1:A9)', '=MAX(A1:A9)', ['=«MIN»(A1:A9)', '=«MAX»(A1:A9)']],
  ['=A1 * 2', '=A1*2', ['=A1 * 2', '=A1*2']],
  ['=sum(a1)', '=SUM(A1)', ['=sum(a1)', '=SUM(A1)']],
  ['=A1*2', '=A1*2+$C$1', ['=A1*2', '=A1*2«+$C$1»']],
  ['=IF(A1>0,B1,C1)', '=IF(A1>0,C1)', ['=IF(A1>0,«B1,»C1)', '=IF(A1>0,C1)']],
  ['=Costs!B2', '=Prices!B2', ['=«Costs!»B2', '=«Prices!»B2']],
  ['=A1+A2+A3', '=A1+A9+A3', ['=A1+«A2»+A3', '=A1+«A9»+A3']],
  ['="a b"', '="a c"', ['=«"a b"»', '=«"a c"»']],
])('marks of %s beside %s what differs', (own, expected, result) => {
  expect(marked(own, expected)).toEqual(result);
});

test('takes longest formulas apart in no time worth a word, and gives them whole', () => {
  const sum = (first: number) =>
    `=${Array.from({ length: 1_000 }, (_, i) => `A${String(first + i)}`).join('+')}`;
  const { own, expected } = compareFormulas(sum(1), sum(2));
  expect(own.map(({ text }) => text).join('')).toBe(sum(1));
  expect(expected.map(({ text }) => text).join('')).toBe(sum(2));
  expect(own.some(({ differs }) => differs)).toBe(true);
});
