import { describe, expect, test } from 'vitest';

import { flowPath, lineWidth, overviewOf } from '../../../src/core/map/Overview';
import type { Flow } from '../../../src/core/map/told';

/** "A>B 5": five cells of B take from A. */
function flows(...written: string[]): Flow[] {
  return written.map((text) => {
    const [, from = '', to = '', cells = ''] = /^(\w+)>(\w+) (\d+)$/.exec(text) ?? [];
    return { from, to, cells: Number(cells) };
  });
}

function rows(sheets: string, written: string[], most = 9): string[] {
  const { nodes, rows } = overviewOf(sheets.split(''), flows(...written), most);
  return Array.from({ length: rows }, (_, row) =>
    nodes
      .filter((node) => node.row === row)
      .sort((a, b) => a.place - b.place)
      .map(({ name }) => name)
      .join(''),
  );
}

describe('sheets', () => {
  test.each([
    ['stand below those that they take from', 'ABC', ['C>B 1', 'B>A 1'], ['C', 'B', 'A']],
    ['stand below all of them', 'ABCD', ['A>B 9', 'B>C 1', 'A>D 5', 'C>D 1'], ['A', 'B', 'C', 'D']],
    ['stand side by side in their own order', 'ABC', ['C>A 1', 'C>B 1'], ['C', 'AB']],
    [
      'that take from each other: the one that gives more first',
      'AB',
      ['A>B 2', 'B>A 7'],
      ['B', 'A'],
    ],
    ['in a circle break it where least flows', 'ABC', ['A>B 9', 'B>C 8', 'C>A 1'], ['A', 'B', 'C']],
    ['without a flow come last', 'ABCD', ['D>B 1'], ['D', 'B', 'AC']],
    ['none of which takes from another stand together', 'ABC', [], ['ABC']],
  ] as const)('%s', (_, sheets, written, expected) => {
    expect(rows(sheets, [...written])).toEqual(expected);
  });

  test('go on in the next row where one is full', () => {
    expect(rows('ABCDEFG', ['A>B 1', 'A>C 1', 'A>D 1', 'A>E 1'], 3)).toEqual([
      'A',
      'BC',
      'DE',
      'FG',
    ]);
    expect(overviewOf(['A', 'B', 'C', 'D', 'E'], [], 3).width).toBe(3);
  });

  test('are laid out quickly, however many there are', () => {
    const names = Array.from({ length: 500 }, (_, i) => `S${String(i)}`);
    const all = Array.from({ length: 3_000 }, (_, i) => ({
      from: names[(i * 31) % 500] as string,
      to: names[(i * 17 + 1) % 500] as string,
      cells: (i % 97) + 1,
    }));
    const { nodes } = overviewOf(names, all, 4);
    expect(new Set(nodes.map(({ row, place }) => row * 4 + place)).size).toBe(500);
    expect(overviewOf([], [], 4)).toEqual({ nodes: [], width: 0, rows: 0 });
  });
});

describe('a flow', () => {
  test('is wider the more cells it is of, up to a point', () => {
    expect([1, 10, 1_000, 1e9].map((cells) => Number(lineWidth(cells).toFixed(1)))).toEqual([
      1, 2.2, 4.6, 6,
    ]);
  });

  test('leads down in a bend', () => {
    expect(flowPath({ x: 10, y: 20 }, { x: 50, y: 80 })).toBe(
      'M10.0 20.0C10.0 50.0 50.0 50.0 50.0 80.0',
    );
  });
});
