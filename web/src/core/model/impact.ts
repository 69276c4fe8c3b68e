// What rests on some cells, counted, and the results at the end of it: cells that rest on them and
// that no other cell uses. Pure.

import { cellCount, covers, type Area } from '../address/area';
import { restingOn, type Reached } from './closure';
import { Covers } from './Covers';
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

/** Uses are counted over the rectangle around a sheet's cells up to so many, else piece by piece. */
const wholeLimit = 20_000_000;

/** How often each cell of a sheet is named by a formula. */
export class Uses {
  private readonly sheets: { areas: Area[]; covers: (Covers | undefined)[] }[];
  private latest: Covers | undefined;
  private latestSheet = -1;

  constructor(private readonly index: Index) {
    this.sheets = index.sheets.map(({ extent, blocks }) => {
      if (!extent) return { areas: [], covers: [] };
      // Two cells in far corners span billions, but what was read in pieces was read.
      const isSmall = cellCount(extent) <= wholeLimit;
      return { areas: isSmall ? [extent] : blocks.map(({ area }) => area), covers: [] };
    });
  }

  isUsed(sheet: number, row: number, col: number): boolean {
    const cell = { top: row, left: col, bottom: row, right: col };
    if (sheet !== this.latestSheet || !this.latest || !covers(this.latest.extent, cell)) {
      this.latest = this.coversAt(sheet, cell);
      this.latestSheet = sheet;
    }
    return (this.latest?.over(row, col) ?? 0) > 0;
  }

  private coversAt(sheet: number, cell: Area): Covers | undefined {
    const own = this.sheets[sheet];
    const i = own?.areas.findIndex((area) => covers(area, cell)) ?? -1;
    const area = own?.areas[i];
    if (!area) return undefined;
    return (own.covers[i] ??= this.coversOf(sheet, area));
  }

  private coversOf(sheet: number, extent: Area): Covers {
    const over = new Covers(extent);
    this.index.eachBox({ sheet, area: extent }, (area) => {
      over.lay(area);
    });
    over.finish();
    return over;
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
