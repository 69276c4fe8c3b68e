// Cells and formulas of a workbook as it was, in the workbook as it is now. Pure.

import { maxColumns, maxRows, type Area } from '../address/area';
import { Lexer } from '../formula/Lexer';
import { readReference, writeReference, type Coordinate, type Corner } from '../formula/reference';
import type { Cells } from '../model/messages';
import type { SheetSketch } from '../model/sketch';
import { sheetOfPrefix } from '../evaluation/routes';
import { lineMap, type LineMap } from './lines';

type SheetMap = { rows: LineMap; cols: LineMap };

const keeps: SheetMap = { rows: (row) => row, cols: (col) => col };

/** Sheets are the same that have the same name, in whatever order. */
export class Moves {
  private readonly sheets = new Map<string, SheetMap | undefined>();

  constructor(before: readonly SheetSketch[], now: readonly SheetSketch[]) {
    const named = new Map(now.map((sheet) => [sheet.name.toLowerCase(), sheet]));
    for (const old of before) {
      const found = named.get(old.name.toLowerCase());
      this.sheets.set(
        old.name.toLowerCase(),
        found && {
          rows: lineMap(old.rows, old.height, found.rows, found.height),
          cols: lineMap(old.cols, old.width, found.cols, found.width),
        },
      );
    }
  }

  /** The rectangle whose first and last lines these are now; nothing where one of them is gone. */
  area(sheet: string, { top, left, bottom, right }: Area): Area | undefined {
    const map = this.sheets.get(sheet.toLowerCase());
    const [first, last] = [map?.rows(top), map?.rows(bottom)];
    const [begin, end] = [map?.cols(left), map?.cols(right)];
    if (first === undefined || last === undefined || begin === undefined || end === undefined)
      return undefined;
    return first <= last && begin <= end
      ? { top: first, left: begin, bottom: last, right: end }
      : undefined;
  }

  /** True if every one of the cells now was one of the cells before. */
  holds(before: Cells, now: Cells): boolean {
    if (before.sheet.toLowerCase() !== now.sheet.toLowerCase()) return false;
    const map = this.sheets.get(before.sheet.toLowerCase());
    if (!map) return false;
    const { area } = before;
    return (
      holdsLines(map.rows, area.top, area.bottom, now.area.top, now.area.bottom) &&
      holdsLines(map.cols, area.left, area.right, now.area.left, now.area.right)
    );
  }

  /**
   * The formula of a cell as the spreadsheet has moved its references; nothing where one of them
   * leads to a line that is gone. Formulas of today are written alike by `written`.
   */
  formula(text: string, sheet: string): string | undefined {
    return rewrite(text, (prefix) => {
      const name = prefix === '' ? sheet : sheetOfPrefix(prefix);
      if (name === undefined) return keeps;
      const known = this.sheets.get(name.toLowerCase());
      return known ?? (this.sheets.has(name.toLowerCase()) ? undefined : keeps);
    });
  }
}

function holdsLines(map: LineMap, from: number, to: number, first: number, last: number): boolean {
  if (last - first > to - from) return false;
  const now = new Set<number>();
  for (let line = from; line <= to; line++) {
    const moved = map(line);
    if (moved !== undefined) now.add(moved);
  }
  for (let line = first; line <= last; line++) if (!now.has(line)) return false;
  return true;
}

export function written(text: string): string {
  return rewrite(text, () => keeps) ?? text;
}

function rewrite(
  text: string,
  mapOf: (prefix: string) => SheetMap | undefined,
): string | undefined {
  let out = '';
  let prefix = '';
  for (const lexer = new Lexer(text, 'a1'); lexer.kind !== 'end'; lexer.advance()) {
    const { kind, token } = lexer;
    const shape = kind === 'reference' ? readReference(token, 'a1') : undefined;
    if (shape) {
      const map = mapOf(prefix);
      const from = map && cornerIn(map, shape.from);
      const to = shape.to && map && cornerIn(map, shape.to);
      if (!from || (shape.to && !to)) return undefined;
      out += writeReference({ from, ...(to ? { to } : {}) }, 'a1');
    } else out += token;
    prefix = kind === 'prefix' ? token : '';
    out += ' ';
  }
  return out;
}

function cornerIn(map: SheetMap, { row, col }: Corner): Corner | undefined {
  const at = (coordinate: Coordinate, lines: LineMap, limit: number) => {
    const line = coordinate.at === limit ? limit : lines(coordinate.at);
    return line === undefined ? undefined : { at: line, fixed: coordinate.fixed };
  };
  const [movedRow, movedCol] = [
    row && at(row, map.rows, maxRows),
    col && at(col, map.cols, maxColumns),
  ];
  if ((row && !movedRow) || (col && !movedCol)) return undefined;
  return { ...(movedRow ? { row: movedRow } : {}), ...(movedCol ? { col: movedCol } : {}) };
}
