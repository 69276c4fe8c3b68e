import { describe, expect, test } from 'vitest';

import { trackMap } from '../../../src/core/review/tracks';

/** A row for each word: "a1x" has the first value "a", the second "1" and the formulas "x"; "." is blank. */
function tracks(words: string): string {
  return words
    .split(' ')
    .filter(Boolean)
    .map((word) =>
      word === '.' ? '.' : [...word.padEnd(3, '-')].map((one) => one.repeat(3)).join(''),
    )
    .join('');
}

/** Where each track is now; "-" for one that is gone or not to be told. */
function moved(before: string, now: string): string {
  const count = (words: string) => words.split(' ').filter(Boolean).length;
  const map = trackMap(tracks(before), count(before), tracks(now), count(now));
  return Array.from({ length: count(before) }, (_, i) => map(i + 1) ?? '-').join(' ');
}

describe('tracks', () => {
  test.each([
    ['stay where nothing happened', 'A1 B2 C3', 'A1 B2 C3', '1 2 3'],
    ['move with what is inserted before them', 'A1 B2 C3', 'X9 A1 Y9 B2 C3', '2 4 5'],
    ['are gone when they are deleted', 'A1 B2 C3 D4', 'A1 D4', '1 - - 2'],
    ['move past a blank track', 'A1 B2 C3', 'A1 . B2 C3', '1 3 4'],
    ['may have another second value', 'A1 B2 C3', 'X1 A7 B8 C9', '2 3 4'],
    ['blocks alike are told by their formulas', 'A1x T1x A1y T1y', 'A1y T1y', '- - 1 2'],
    ['may have other formulas', 'A1x B2x C3x', 'N1 A1y B2y C3y', '2 3 4'],
    ['of numbers and names are told by all of them', 'b2 A1 A1 c3', 'x2 y2 A1 z3', '- - - -'],
    ['called otherwise are not told', 'A1 B2 C3', 'A1 X2 C3', '1 - 3'],
    ['of numbers stay in their places', 'A1 b2 c3 D4', 'A1 x5 y6 D4', '1 2 3 4'],
    ['of numbers are not told where one was inserted', 'A1 b2 c3 D4', 'A1 x5 y6 z7 D4', '1 - - 5'],
    ['blocks alike are told by what is theirs', 'N1 A1 T1 S1 A1 T1', 'S1 A1 T1', '- - - 1 2 3'],
    ['blocks alike move with all of them', 'A1 T1 A1 T1', 'X1 A1 T1 A1 T1', '2 3 4 5'],
    ['blocks alike are not told where one is gone', 'A1 T1 A1 T1', 'A1 T1', '- - - -'],
    ['blocks alike are not told where one is new', 'A1 T1', 'A1 T1 A1 T1', '- -'],
    ['in another order keep those in order', 'A1 B1 C1 D1', 'D1 A1 B1 C1', '2 3 4 -'],
    ['blank ones count among themselves', 'A1 . . B1', 'A1 . . B1 .', '1 2 3 4'],
    ['blank ones stay between their neighbours', 'a1 . b1 N1', 'x1 N1 a1 . b1', '- - - 2'],
    ['blank ones go with their neighbours', 'N1 a1 . b1', 'N1 . a1 . b1', '1 3 4 5'],
    ['numbers that moved up are not taken for others', 'a1 b1 c1', 'b1 c1 d1', '- - -'],
    ['of nothing', '', 'A1', ''],
  ])('%s', (_, before, now, expected) => {
    expect(moved(before, now)).toBe(expected);
  });

  test('without a print are told only where as many tracks are there', () => {
    expect(trackMap('.', 9, '.', 9)(7)).toBe(7);
    expect(trackMap('.', 9, '.', 10)(7)).toBeUndefined();
  });
});
