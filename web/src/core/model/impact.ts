// What rests on some cells, counted, and the results at the end of it: cells that rest on them and
// that no other cell uses. Pure.

import { type Area } from '../address/area';
import { restingOn, type Reached } from './closure';
import { Covers } from './Counts';
import type { Index, SheetArea } from './Index';
import { AreaSet } from './rectangles';

export type Impact = {
  cells: number;
  sheets: number;
  /** How many of the cells are used by nothing else. */
  results: number;
  /** Those cells, as many areas as are listed. */
  resultAreas: SheetArea[];
};

const areasLimit = 500;

/** How often each cell of a sheet is named by a formula. */
export class Uses {
  private readonly sheets = new Map<number, Covers | undefined>();

  constructor(private readonly index: Index) {}

  isUsed(sheet: number, row: number, col: number): boolean {
    if (!this.sheets.has(sheet)) this.sheets.set(sheet, this.coversOf(sheet));
    return (this.sheets.get(sheet)?.over(row, col) ?? 0) > 0;
  }

  private coversOf(sheet: number): Covers | undefined {
    const { index } = this;
    const extent = index.sheets[sheet]?.extent;
    if (!extent) return undefined;
    const covers = new Covers(extent);
    index.eachBox({ sheet, area: extent }, (area) => {
      covers.lay(area);
    });
    covers.finish();
    return covers;
  }
}

export function* impactOf(
  index: Index,
  uses: Uses,
  start: SheetArea,
): Generator<undefined, Impact & { reached: Reached }> {
  const reached = yield* restingOn(index, start);
  const sheets = new Set<number>();
  const resultAreas: SheetArea[] = [];
  let results = 0;
  for (const region of reached.regions) {
    const sheet = index.sheetOf(region);
    sheets.add(sheet);
    for (const area of reached.areasOf(region)) {
      const unused = unusedIn(uses, sheet, area);
      results += unused.size;
      for (const one of unused.areas) {
        if (resultAreas.length < areasLimit) resultAreas.push({ sheet, area: one });
      }
    }
    yield undefined;
  }
  return { cells: reached.cells, sheets: sheets.size, results, resultAreas, reached };
}

function unusedIn(uses: Uses, sheet: number, area: Area): AreaSet {
  const rows: Area[] = [];
  for (let row = area.top; row <= area.bottom; row++) {
    let left = 0;
    for (let col = area.left; col <= area.right + 1; col++) {
      const isUnused = col <= area.right && !uses.isUsed(sheet, row, col);
      if (isUnused && left === 0) left = col;
      if (isUnused || left === 0) continue;
      const upper = rows.at(-1);
      if (upper?.left === left && upper.right === col - 1 && upper.bottom === row - 1) {
        upper.bottom = row;
      } else rows.push({ top: row, left, bottom: row, right: col - 1 });
      left = 0;
    }
  }
  const set = new AreaSet();
  set.areas.push(...rows);
  return set;
}
