import { describe, expect, test } from 'vitest';

import { blocksOf } from '../../../src/core/workbook/blocks';

const at = (top: number, left: number, bottom: number, right: number) => ({
  top,
  left,
  bottom,
  right,
});

describe('blocks', () => {
  test('are rectangles of the same relative formula', () => {
    const down = ['=RC[-1]', '=RC[-1]', '=R1C1'];
    expect(blocksOf(at(5, 2, 7, 4), [down, down, ['=RC[-1]', '=R1C1', '=R1C1']])).toEqual([
      { area: at(5, 2, 6, 3), formula: '=RC[-1]' },
      { area: at(5, 4, 6, 4), formula: '=R1C1' },
      { area: at(7, 2, 7, 2), formula: '=RC[-1]' },
      { area: at(7, 3, 7, 4), formula: '=R1C1' },
    ]);
  });

  test('leave out cells without a formula, and do not reach across them', () => {
    expect(blocksOf(at(1, 1, 3, 1), [['=RC[1]'], [''], ['=RC[1]']])).toEqual([
      { area: at(1, 1, 1, 1), formula: '=RC[1]' },
      { area: at(3, 1, 3, 1), formula: '=RC[1]' },
    ]);
    expect(blocksOf(at(1, 1, 1, 1), [['']])).toEqual([]);
  });
});
