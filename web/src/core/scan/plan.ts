// Which pieces to read so that a workbook is read whole. Pure.

import { type Area, cellCount, maxColumns, maxRows, parseArea } from '../address/area';
import type { WorkbookMap } from '../protocol/verbs';

/** Larger pieces come without the texts of errors. */
export const pieceLimit = 5_000;
/** The first piece of a sheet, of which nothing is known. */
export const firstPiece = 1_250;
/** Used ranges with more cells are mostly blank: what is filled is looked for first. */
export const plainLimit = 200_000;
/** Workbooks with more cells are read when the user says so. */
export const unaskedLimit = 50_000;

export type PlannedSheet = {
  name: string;
  /** Nothing where the spreadsheet did not tell. */
  used: Area | undefined;
};

export const wholeSheet: Area = { top: 1, left: 1, bottom: maxRows, right: maxColumns };

export function plannedSheets(map: WorkbookMap): PlannedSheet[] {
  return map.sheets.map(({ name, usedRange }) => ({
    name,
    used: usedRange === null ? undefined : parseArea(withoutSheet(usedRange)),
  }));
}

function withoutSheet(address: string): string {
  return address.slice(address.lastIndexOf('!') + 1);
}

/** Cells in the used ranges that are known. */
export function cellsIn(sheets: readonly PlannedSheet[]): number {
  return sheets.reduce((sum, { used }) => sum + (used ? cellCount(used) : 0), 0);
}

/**
 * The area in pieces of whole rows, or of parts of rows where these are too long. `size` is asked
 * before each piece how many cells it may have.
 */
export function* piecesOf(area: Area, size: () => number): Generator<Area> {
  const cols = Math.min(area.right - area.left + 1, firstPiece);
  for (let left = area.left; left <= area.right; left += cols) {
    const right = Math.min(area.right, left + cols - 1);
    for (let top = area.top; top <= area.bottom;) {
      const rows = Math.max(1, Math.floor(size() / cols));
      const bottom = Math.min(area.bottom, top + rows - 1);
      yield { top, left, bottom, right };
      top = bottom + 1;
    }
  }
}

/** In two, across the longer side. */
export function halves(area: Area): [Area, Area] {
  const { top, left, bottom, right } = area;
  if (bottom - top >= right - left) {
    const middle = Math.floor((top + bottom) / 2);
    return [
      { ...area, bottom: middle },
      { ...area, top: middle + 1 },
    ];
  }
  const middle = Math.floor((left + right) / 2);
  return [
    { ...area, right: middle },
    { ...area, left: middle + 1 },
  ];
}

/** "'[Book.xlsx]My sheet'!B4:D9": the same cells, whichever workbook is in front. */
export function inBook(book: string, sheet: string, address: string): string {
  const name = `[${book}]${sheet}`.replaceAll("'", "''");
  return `'${name}'!${address}`;
}
