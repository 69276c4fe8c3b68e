import { describe, expect, test } from 'vitest';

import {
  foldFrom,
  lineAtPlace,
  linesOf,
  placeOfLine,
  placesOfLines,
  runsOf,
} from '../../../src/core/map/Lines';

describe('lines', () => {
  test.each([
    ['nothing', [], [], 0],
    ['from the first line on', [[1, 3]], [[1, 3, 0, 3]], 3],
    [
      'short gaps as they are',
      [
        [3, 4],
        [60, 60],
      ],
      [[1, 60, 0, 60]],
      60,
    ],
    [
      'a long gap folded',
      [
        [1, 2],
        [1000, 1001],
      ],
      [
        [1, 2, 0, 2],
        [3, 999, 2, 3],
        [1000, 1001, 5, 2],
      ],
      7,
    ],
    [
      'a long gap at the top',
      [[500, 500]],
      [
        [1, 499, 0, 3],
        [500, 500, 3, 1],
      ],
      4,
    ],
    [
      'the corner of a sheet',
      [
        [1, 1],
        [1_048_576, 1_048_576],
      ],
      [
        [1, 1, 0, 1],
        [2, 1_048_575, 1, 3],
        [1_048_576, 1_048_576, 4, 1],
      ],
      5,
    ],
    [
      'no gap but the longest one that stays',
      [
        [1, 1],
        [foldFrom + 2, foldFrom + 2],
      ],
      [[1, foldFrom + 2, 0, foldFrom + 2]],
      foldFrom + 2,
    ],
  ] as const)('have %s', (_, filled, stretches, count) => {
    const lines = linesOf(filled.map(([first, last]) => ({ first, last })));
    expect(lines.stretches.map(({ first, last, at, places }) => [first, last, at, places])).toEqual(
      stretches,
    );
    expect(lines.count).toBe(count);
  });

  const folded = linesOf([
    { first: 2, last: 4 },
    { first: 104, last: 105 },
  ]);

  test.each([
    [1, 0],
    [4, 3],
    [5, 4],
    [38, 5],
    [104, 7],
    [105, 8],
    [106, 9],
    [206, 109],
  ])('line %i stands at place %d', (line, place) => {
    expect(placeOfLine(folded, line)).toBe(place);
    expect(lineAtPlace(folded, place)).toBe(line);
  });

  test('behind the end go on without a fold', () => {
    expect(lineAtPlace(folded, 8.9)).toBe(105);
    expect(lineAtPlace(linesOf([]), 4.2)).toBe(5);
    expect(placeOfLine(linesOf([]), 5)).toBe(4);
  });

  test('are told many at a time, those in a fold as none', () => {
    expect([...placesOfLines(folded, 3, 6)]).toEqual([2, 3, -1, -1]);
    expect([...placesOfLines(folded, 103, 106)]).toEqual([-1, 7, 8, -1]);
  });

  test('are found in runs', () => {
    expect(runsOf(Uint8Array.of(1, 0, 0, 1, 1), 7)).toEqual([
      { first: 7, last: 7 },
      { first: 10, last: 11 },
    ]);
  });
});
