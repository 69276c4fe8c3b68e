import { describe, expect, test } from 'vitest';

import {
  foldFrom,
  trackAtPlace,
  tracksOf,
  placeOfTrack,
  placesOfTracks,
  runsOf,
} from '../../../src/core/map/Tracks';

describe('tracks', () => {
  test.each([
    ['nothing', [], [], 0],
    ['from the first track on', [[1, 3]], [[1, 3, 0, 3]], 3],
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
    const tracks = tracksOf(filled.map(([first, last]) => ({ first, last })));
    expect(
      tracks.stretches.map(({ first, last, at, places }) => [first, last, at, places]),
    ).toEqual(stretches);
    expect(tracks.count).toBe(count);
  });

  const folded = tracksOf([
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
  ])('track %i stands at place %d', (track, place) => {
    expect(placeOfTrack(folded, track)).toBe(place);
    expect(trackAtPlace(folded, place)).toBe(track);
  });

  test('behind the end go on without a fold', () => {
    expect(trackAtPlace(folded, 8.9)).toBe(105);
    expect(trackAtPlace(tracksOf([]), 4.2)).toBe(5);
    expect(placeOfTrack(tracksOf([]), 5)).toBe(4);
  });

  test('are told many at a time, those in a fold as none', () => {
    expect([...placesOfTracks(folded, 3, 6)]).toEqual([2, 3, -1, -1]);
    expect([...placesOfTracks(folded, 103, 106)]).toEqual([-1, 7, 8, -1]);
  });

  test('are found in runs', () => {
    expect(runsOf(Uint8Array.of(1, 0, 0, 1, 1), 7)).toEqual([
      { first: 7, last: 7 },
      { first: 10, last: 11 },
    ]);
  });
});
