import { expect, test } from 'vitest';

import { highlight } from '../../../src/core/formula/highlight';

test('names the class of every piece', () => {
  expect(highlight('=IF(B4>0, SUM(\'My data\'!C:C)*1.5,"a"&Rate&TRUE)+#N/A')).toEqual([
    { text: '=', class: 'plain' },
    { text: 'IF', class: 'function' },
    { text: '(', class: 'plain' },
    { text: 'B4', class: 'reference' },
    { text: '>', class: 'plain' },
    { text: '0', class: 'number' },
    { text: ', ', class: 'plain' },
    { text: 'SUM', class: 'function' },
    { text: '(', class: 'plain' },
    { text: "'My data'!C:C", class: 'reference' },
    { text: ')*', class: 'plain' },
    { text: '1.5', class: 'number' },
    { text: ',', class: 'plain' },
    { text: '"a"', class: 'text' },
    { text: '&', class: 'plain' },
    { text: 'Rate', class: 'name' },
    { text: '&', class: 'plain' },
    { text: 'TRUE', class: 'logical' },
    { text: ')+', class: 'plain' },
    { text: '#N/A', class: 'error' },
  ]);
});

test.each(['', '=', '="open', "='open", '=[open', '=A1 \n', '=\u0000€~|¬', '=Table1[[#All],[a]]'])(
  'loses nothing of %j',
  (formula) => {
    expect(
      highlight(formula)
        .map((piece) => piece.text)
        .join(''),
    ).toBe(formula);
  },
);
