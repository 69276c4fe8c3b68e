import { describe, expect, test } from 'vitest';

import {
  boxOf,
  cellAt,
  clamped,
  coarseTile,
  foldsInSight,
  largest,
  levelOf,
  moved,
  scaleOf,
  showing,
  tilesInSight,
  whole,
  zoomed,
} from '../../../src/core/map/Camera';
import { tracksOf } from '../../../src/core/map/Tracks';
import { ticks } from '../../../src/core/map/ticks';
import { tileSize, type Frame } from '../../../src/core/map/tiles';

const frame = (rows: number, cols: number): Frame => ({
  stamp: 1,
  rows: tracksOf(rows === 0 ? [] : [{ first: 1, last: rows }]),
  cols: tracksOf(cols === 0 ? [] : [{ first: 1, last: cols }]),
});
const pane = { width: 400, height: 300 };

describe('the scale', () => {
  test.each([
    ['a small sheet as large as cells get', 5, 4, largest.x, largest.y],
    ['a sheet that fills the pane', 100, 50, 8, 3],
    ['a long one, not narrower than it can be seen', 1_000_000, 20, 12, 0.0003],
    ['a wide one, not much higher than it is wide', 3, 16_000, 0.025, 6],
    ['an empty one', 0, 0, largest.x, largest.y],
  ])('shows %s', (_, rows, cols, x, y) => {
    const scale = scaleOf(frame(rows, cols), pane, whole);
    expect(scale.x).toBeCloseTo(x, 6);
    expect(scale.y).toBeCloseTo(y, 6);
  });

  test('comes to the largest in both directions at once', () => {
    expect(scaleOf(frame(10_000, 50), pane, { zoom: 1, x: 0, y: 0 })).toEqual(largest);
  });
});

describe('zooming', () => {
  const sheet = frame(3_000, 40);

  test('keeps the cell under the pointer there', () => {
    const at = { x: 210, y: 130 };
    let camera = whole;
    const before = cellAt(sheet, camera, scaleOf(sheet, pane, camera), at);
    for (let i = 0; i < 6; i++) camera = zoomed(sheet, pane, camera, 1.5, at);
    const after = cellAt(sheet, camera, scaleOf(sheet, pane, camera), at);
    expect(camera.zoom).toBeGreaterThan(0.4);
    expect(Math.abs((after?.row ?? 0) - (before?.row ?? 0))).toBeLessThanOrEqual(1);
    expect(after?.col).toBe(before?.col);
  });

  test('ends where all is in sight, and at the largest', () => {
    expect(zoomed(sheet, pane, { zoom: 0.4, x: 3, y: 99 }, 1e-9, { x: 9, y: 9 })).toEqual(whole);
    expect(zoomed(sheet, pane, whole, 1e9, { x: 0, y: 0 }).zoom).toBe(1);
  });

  test('does nothing where all cells are as large as they get', () => {
    expect(zoomed(frame(2, 2), pane, whole, 2, { x: 5, y: 5 })).toEqual(whole);
  });
});

describe('moving', () => {
  const sheet = frame(3_000, 40);
  const close = { zoom: 1, x: 10, y: 500 };

  test('goes with the pointer, as far as the sheet goes', () => {
    expect(moved(sheet, pane, close, { x: -72, y: 44 })).toEqual({ zoom: 1, x: 11, y: 498 });
    expect(moved(sheet, pane, close, { x: 1e6, y: 1e6 })).toEqual({ zoom: 1, x: 0, y: 0 });
    const end = moved(sheet, pane, close, { x: -1e6, y: -1e6 });
    expect(end.x).toBeCloseTo(40 - 400 / 72);
    expect(end.y).toBeCloseTo(3_000 - 300 / 22);
  });

  test('brings cells into sight and no further', () => {
    const cell = (row: number, col: number) => ({ top: row, left: col, bottom: row, right: col });
    expect(showing(sheet, pane, close, cell(505, 13))).toEqual(close);
    expect(showing(sheet, pane, close, cell(400, 13)).y).toBe(397);
    const below = showing(sheet, pane, close, cell(900, 13));
    expect(boxOf(sheet, below, largest, cell(900, 13)).top).toBeCloseTo(300 - 3 * 22);
    expect(clamped(sheet, pane, { zoom: 3, x: -1, y: 9e9 })).toEqual({
      zoom: 1,
      x: 0,
      y: 3_000 - 300 / 22,
    });
  });
});

describe('what is under a point', () => {
  test('is a cell, or nothing beside the sheet', () => {
    const sheet = frame(100, 50);
    const scale = scaleOf(sheet, pane, whole);
    expect(cellAt(sheet, whole, scale, { x: 0, y: 0 })).toEqual({ row: 1, col: 1 });
    expect(cellAt(sheet, whole, scale, { x: 399.9, y: 299.9 })).toEqual({ row: 100, col: 50 });
    expect(cellAt(frame(2, 2), whole, largest, { x: 200, y: 5 })).toBeUndefined();
    expect(cellAt(sheet, whole, scale, { x: -1, y: 5 })).toBeUndefined();
  });

  test('is drawn where it is found', () => {
    const sheet = frame(100, 50);
    const scale = scaleOf(sheet, pane, whole);
    const box = boxOf(sheet, whole, scale, { top: 7, left: 3, bottom: 9, right: 3 });
    expect(box).toEqual({ left: 16, top: 18, width: 8, height: 9 });
  });
});

describe('tiles', () => {
  test.each([
    [22, 1, 0],
    [1, 1, 0],
    [0.9, 1, 1],
    [0.5, 1, 1],
    [0.5, 2, 0],
    [0.3, 1, 2],
    [0.0003, 1, 12],
  ])('at %d points a track and %d pixels a point have level %i', (scale, pixels, level) => {
    expect(levelOf(scale, pixels)).toBe(level);
  });

  test('in sight are few, however large the sheet is', () => {
    const huge = frame(1_048_576, 16_384);
    for (const zoom of [0, 0.2, 0.5, 0.8, 1]) {
      const tiles = tilesInSight(huge, pane, { zoom, x: 800, y: 70_000 }, 1);
      expect(tiles.length).toBeLessThanOrEqual(9);
      expect(tiles.length).toBeGreaterThan(0);
    }
    expect(tilesInSight(frame(5, 4), pane, whole, 1)).toEqual([
      { rowLevel: 0, colLevel: 0, row: 0, col: 0 },
    ]);
  });

  test('have one that holds all of the sheet', () => {
    expect(coarseTile(frame(5, 4))).toEqual({ rowLevel: 0, colLevel: 0, row: 0, col: 0 });
    const { rowLevel, colLevel } = coarseTile(frame(1_048_576, 257));
    expect(1_048_576 / 2 ** rowLevel).toBeLessThanOrEqual(tileSize);
    expect([rowLevel, colLevel]).toEqual([12, 1]);
  });
});

describe('at the edge', () => {
  test('every track is named where there is room, else round ones', () => {
    const tracks = frame(100, 50).rows;
    expect(ticks(tracks, 2, 22, 60, 18).map(({ track, at }) => [track, at])).toEqual([
      [3, 0],
      [4, 22],
      [5, 44],
    ]);
    expect(ticks(tracks, 0, 3, 100, 18).map(({ track }) => track)).toEqual([10, 20, 30]);
    expect(ticks(tracks, 0, 0.3, 300, 18).map(({ track }) => track)).toEqual([100]);
    expect(ticks(tracksOf([]), 0, 3, 100, 18)).toEqual([]);
  });

  test('folded stretches are told that are in sight', () => {
    const { stretches } = tracksOf([
      { first: 1, last: 10 },
      { first: 500, last: 510 },
    ]);
    expect(foldsInSight(stretches, 0, 10, 200)).toEqual([{ at: 100, length: 30 }]);
    expect(foldsInSight(stretches, 20, 10, 200)).toEqual([]);
    expect(foldsInSight(stretches, 0, 10, 90)).toEqual([]);
  });
});
