import { expect, test } from 'vitest';

import { quittingSentences } from '../../../src/core/quitting/sentences';

const none = { cells: 0, names: 0, rows: 0, columns: 0 };

test.each([
  [{ ...none, cells: 1 }, '1 marked cell'],
  [{ ...none, cells: 1_048_576 }, '1,048,576 marked cells'],
  [{ ...none, rows: 1, columns: 2 }, '1 shown row and 2 shown columns'],
  [
    { cells: 12, names: 1, rows: 3, columns: 1 },
    '12 marked cells, 1 marked name, 3 shown rows and 1 shown column',
  ],
])('says of %j that %s are taken back', (left, what) => {
  expect(quittingSentences(left, 'Calc')).toEqual({
    title: 'Quorin is quitting.',
    doing: `Taking back ${what} in Calc…`,
    end: 'This takes two seconds at most. What Calc does not give back in time is taken back when Quorin starts the next time.',
  });
});
