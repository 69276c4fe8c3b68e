// Cells of a sheet with the same relative formula, as rectangles. Pure.

import { maxColumns, maxRows, type Area } from '../address/area';
import type { SheetCells } from './SheetCells';

export type RegionFound = (
  top: number,
  left: number,
  bottom: number,
  right: number,
  formula: number,
) => void;

type Run = { top: number; left: number; bottom: number; right: number; formula: number };

/** Tells each rectangle once; runs of a row first, then rows under each other, across pieces. */
export function findRegions(cells: SheetCells, found: RegionFound): void {
  const blocks = [...cells.blocks].sort(
    (a, b) => a.area.left - b.area.left || a.area.top - b.area.top,
  );
  let open = new Map<number, Run>();
  let above: Area | undefined;
  const close = (): void => {
    for (const run of open.values()) found(run.top, run.left, run.bottom, run.right, run.formula);
    open = new Map();
  };
  for (const { area, formulas } of blocks) {
    const goesOn =
      above?.left === area.left && above.right === area.right && above.bottom + 1 === area.top;
    if (!goesOn) close();
    above = area;
    const width = area.right - area.left + 1;
    for (let row = area.top; row <= area.bottom; row++) {
      const start = (row - area.top) * width;
      for (let at = 0; at < width;) {
        const formula = formulas[start + at] as number;
        let end = at + 1;
        if (formula === 0) {
          at = end;
          continue;
        }
        while (end < width && formulas[start + end] === formula) end++;
        const left = area.left + at;
        const right = area.left + end - 1;
        at = end;
        const upper = open.get(left);
        if (upper?.formula === formula && upper.right === right && upper.bottom === row - 1) {
          upper.bottom = row;
        } else {
          if (upper) found(upper.top, upper.left, upper.bottom, upper.right, upper.formula);
          open.set(left, { top: row, left, bottom: row, right, formula });
        }
      }
    }
  }
  close();
}

/** Where distances from `first` to `last` begin to come in again at the sheet's other edge. */
function breaks(
  first: number,
  last: number,
  distances: readonly number[],
  limit: number,
): number[] {
  const starts = new Set([first]);
  for (const distance of distances) {
    // The first track that is inside again, and the first that is outside.
    for (const track of [1 - distance, limit - distance + 1]) {
      if (track > first && track <= last) starts.add(track);
    }
  }
  return [...starts].sort((a, b) => a - b);
}

/**
 * The parts of a region in each of which every distance leads to the same side of the sheet's edge.
 * Nearly always that is the region itself.
 */
export function partsWithin(
  area: Area,
  rowDistances: readonly number[],
  colDistances: readonly number[],
): Area[] {
  const rows = breaks(area.top, area.bottom, rowDistances, maxRows);
  const cols = breaks(area.left, area.right, colDistances, maxColumns);
  if (rows.length === 1 && cols.length === 1) return [area];
  return rows.flatMap((top, i) =>
    cols.map((left, j) => ({
      top,
      left,
      bottom: (rows[i + 1] ?? area.bottom + 1) - 1,
      right: (cols[j + 1] ?? area.right + 1) - 1,
    })),
  );
}

/** A distance as it is from that track, inside the sheet. */
export function distanceWithin(distance: number, track: number, limit: number): number {
  const to = track + distance;
  return to < 1 ? distance + limit : to > limit ? distance - limit : distance;
}
