import { describe, expect, test } from 'vitest';

import { type Area, areaAddress, parseArea } from '../../../src/core/address/area';
import { planReads } from '../../../src/core/evaluation/readPlan';

const plan = (text: string): string[] =>
  planReads(text.split(' ').map((part) => parseArea(part) as Area)).map(areaAddress);

describe('cells are read together', () => {
  test.each([
    ['B4 C4', ['B4:C4']],
    ['B4 B6 D5', ['B4:D6']],
    ['A1 A4', ['A1:A4']],
    ['A1 Z99', ['A1', 'Z99']],
    ['A1 Z99 B1', ['A1:B1', 'Z99']],
    ['A1:A10 A5', ['A1:A10']],
    ['A:A', ['A:A']],
    ['3:4', ['3:4']],
  ])('%s', (areas, boxes) => {
    expect(plan(areas)).toEqual(boxes);
  });

  test('but never more than can be read at once', () => {
    for (const box of plan('A1:J1500 A1501:J3000')) {
      expect(box).not.toBe('A1:J3000');
    }
  });
});
