import { describe, expect, test } from 'vitest';

import { readReference, writeReference } from '../../../src/core/formula/reference';

describe('readReference', () => {
  test('of cells, areas, columns and rows', () => {
    expect(readReference('$B7', 'a1')).toEqual({
      from: { row: { at: 7, fixed: false }, col: { at: 2, fixed: true } },
    });
    expect(readReference('A:$C', 'a1')).toEqual({
      from: { col: { at: 1, fixed: false } },
      to: { col: { at: 3, fixed: true } },
    });
    expect(readReference('R[-2]C5', 'r1c1')).toEqual({
      from: { row: { at: -2, fixed: false }, col: { at: 5, fixed: true } },
    });
    expect(readReference('R12C[34]', 'r1c1')).toEqual({
      from: { row: { at: 12, fixed: true }, col: { at: 34, fixed: false } },
    });
    expect(readReference('C[-1]:c7', 'r1c1')).toEqual({
      from: { col: { at: -1, fixed: false } },
      to: { col: { at: 7, fixed: true } },
    });
    expect(readReference('R[-0]C', 'r1c1')).toEqual({
      from: { row: { at: 0, fixed: false }, col: { at: 0, fixed: false } },
    });
    expect(readReference('r', 'r1c1')).toEqual({ from: { row: { at: 0, fixed: false } } });
  });

  test.each(['', 'A', '1', 'A0', 'XFE1', 'A1048577', 'A1:B', 'A:1', 'A1:B2:C3', 'R1C1'])(
    'of "%s" in A1 is nothing',
    (text) => {
      expect(readReference(text, 'a1')).toBeUndefined();
    },
  );

  test.each(['', 'A1', 'R1C1:R2', 'R[x]', 'R[', 'R[]C', 'R[-]C', 'R[2C1', 'R[2]5', 'CR', 'R C'])(
    'of "%s" in R1C1 is nothing',
    (text) => {
      expect(readReference(text, 'r1c1')).toBeUndefined();
    },
  );

  test.each(['A1', '$A$1:B$2', 'A:C', '$1:1', 'XFD1048576'])(
    '%s is written back as it was',
    (text) => {
      const shape = readReference(text, 'a1');
      expect(shape && writeReference(shape, 'a1')).toBe(text);
    },
  );
});
