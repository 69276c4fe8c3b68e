import { expect, test } from 'vitest';

import { formulaAt } from '../../../src/core/formula/relative';

test.each([
  ['=RC[-1]*R2C2', 7, 4, '=C7*$B$2'],
  ["=SUM('My sheet'!R[-2]C:R[-1]C)", 9, 3, "=SUM('My sheet'!C7:C8)"],
  ['=C[-2]', 1, 3, '=A:A'],
])('%s in one cell', (formula, row, col, text) => {
  expect(formulaAt(formula, { row, col })).toBe(text);
});
