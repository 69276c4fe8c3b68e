import { describe, expect, test } from 'vitest';

import { Code, hueCount } from '../../../src/core/map/codes';
import { Hues } from '../../../src/core/map/Hues';
import { frameOf, samplesOf, tileExtent, tileSize, type Tile } from '../../../src/core/map/tiles';
import { SheetCells, Texts } from '../../../src/core/model/SheetCells';
import type { Grid } from '../../../src/core/protocol/json';
import { drain } from '../../../src/core/time/drain';

const formulas = new Texts();
const texts = new Texts();

/** A piece for each list of rows, one below the other from row `top` on. */
function sheet(
  ...pieces: { top: number; left?: number; rows: (string | number)[][] }[]
): SheetCells {
  const cells = new SheetCells(formulas, texts);
  for (const { top, left = 1, rows } of pieces) {
    const width = rows[0]?.length ?? 0;
    const values: Grid = rows.map((row) =>
      row.map((one) => (typeof one === 'string' && one.startsWith('=') ? 1 : one)),
    );
    const own = rows.map((row) =>
      row.map((one) => (typeof one === 'string' && one.startsWith('=') ? one : '')),
    );
    const area = { top, left, bottom: top + rows.length - 1, right: left + width - 1 };
    cells.add(area, own, values);
  }
  return cells;
}

function picture(cells: SheetCells, more: Partial<Tile> = {}): string[] {
  const hues = new Hues();
  drain(hues.add(cells, formulas.count));
  const frame = drain(frameOf(cells, 1));
  const tile = { rowLevel: 0, colLevel: 0, row: 0, col: 0, ...more };
  const { width, height, codes } = drain(samplesOf(cells, frame, tile, hues));
  const signs = ['.', 't', 'n', 'E', 'a', 'b', 'c', 'd', 'e', 'f'];
  return Array.from({ length: height }, (_, i) =>
    [...codes.subarray(i * width, (i + 1) * width)].map((code) => signs[code] ?? '?').join(''),
  );
}

describe('a tile', () => {
  test('shows what each cell is', () => {
    const cells = sheet({
      top: 1,
      rows: [
        ['Name', 5, '=RC[-1]', '#REF!'],
        ['', 0, '=RC[-1]', '=1'],
      ],
    });
    expect(picture(cells)).toEqual(['tnaE', '.nab']);
  });

  test('shows an error that a formula gives as an error', () => {
    const cells = new SheetCells(formulas, texts);
    cells.add({ top: 1, left: 1, bottom: 1, right: 2 }, [['=1/0', '=1/0']], [['#DIV/0!', 3]]);
    expect(picture(cells)).toEqual(['Ea']);
  });

  test('is put together from pieces, with long blank stretches folded', () => {
    const cells = sheet(
      { top: 2, rows: [['x', 1]] },
      {
        top: 500,
        rows: [
          ['y', 2],
          ['', 3],
        ],
      },
      { top: 500, left: 200, rows: [[7]] },
    );
    expect(picture(cells)).toEqual([
      '......',
      'tn....',
      '......',
      '......',
      '......',
      'tn...n',
      '.n....',
    ]);
  });

  test('shows of several cells what most filled ones are, and any error', () => {
    const cells = sheet({
      top: 1,
      rows: [
        [1, 2, 'x', 'y', '', '', '#N/A', 1],
        [3, 'z', 'x', 4, '', 5, 2, 1],
      ],
    });
    expect(picture(cells, { rowLevel: 1, colLevel: 1 })).toEqual(['ntnE']);
    expect(picture(cells, { rowLevel: 1 })).toEqual(['nntt.nEn']);
  });

  test('has what is left at the edges', () => {
    const rows = Array.from({ length: 300 }, (_, i) => [i]);
    const cells = sheet({ top: 1, rows });
    const frame = drain(frameOf(cells, 1));
    const tile = { rowLevel: 0, colLevel: 0, row: 1, col: 0 };
    expect(tileExtent(frame, tile)).toEqual({ width: 1, height: 300 - tileSize });
    expect(picture(cells, { row: 1 })).toHaveLength(300 - tileSize);
    expect(tileExtent(frame, { ...tile, rowLevel: 1, row: 0 })).toEqual({ width: 1, height: 150 });
  });

  test('of a sheet with nothing on it has nothing', () => {
    expect(picture(sheet())).toEqual([]);
  });
});

describe('hues', () => {
  test('are the same for the same formula, on every sheet, and others beside it', () => {
    const hues = new Hues();
    const own = new Texts();
    const make = (names: string[][]) => {
      const cells = new SheetCells(own, texts);
      const area = { top: 1, left: 1, bottom: names.length, right: names[0]?.length ?? 0 };
      cells.add(
        area,
        names,
        names.map((row) => row.map(() => 1)),
      );
      drain(hues.add(cells, own.count));
      return (row: number, col: number) => hues.of(cells.formulaAt(row, col));
    };
    const first = make([
      ['=A', '=B', '=A'],
      ['=C', '=A', '=D'],
    ]);
    expect(first(1, 1)).toBe(first(2, 2));
    expect(new Set([first(1, 1), first(1, 2), first(2, 1), first(2, 3)]).size).toBe(4);
    const before = [first(1, 1), first(1, 2)];
    const second = make([['=B', '=E', '=F', '=G', '=H', '=I', '=A']]);
    expect([second(1, 7), second(1, 1)]).toEqual(before);
    for (let col = 2; col <= 7; col++) expect(second(1, col)).not.toBe(second(1, col - 1));
    // Every hue has been used as often: the first one would be next, which stands beside it.
    const all = make([['=J', '=K', '=L']]);
    expect(new Set([all(1, 1), all(1, 2), all(1, 3)]).size).toBe(3);
    const used = Array.from({ length: 60 }, (_, i) => [`=A`, `=Z${String(i)}`]);
    const third = make(used);
    for (let row = 1; row <= 60; row++) expect(third(row, 2)).not.toBe(third(row, 1));
    expect(Code.Formula + hueCount).toBeLessThanOrEqual(256);
  });
});
