// Cells and formulas of a workbook as it was, in the workbook as it is now. Pure.

import { maxColumns, maxRows, type Area } from '../address/area';
import { Lexer } from '../formula/Lexer';
import { readReference, writeReference, type Coordinate, type Corner } from '../formula/reference';
import type { Cells } from '../model/messages';
import type { SheetSketch } from '../model/sketch';
import { sheetOfPrefix } from '../evaluation/routes';
import { trackMap, type TrackMap } from './tracks';

type SheetMap = { rows: TrackMap; cols: TrackMap };

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
          rows: trackMap(old.rows, old.height, found.rows, found.height),
          cols: trackMap(old.cols, old.width, found.cols, found.width),
        },
      );
    }
  }

  /** The rectangle whose first and last tracks these are now; nothing where one of them is gone. */
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
      holdsTracks(map.rows, area.top, area.bottom, now.area.top, now.area.bottom) &&
      holdsTracks(map.cols, area.left, area.right, now.area.left, now.area.right)
    );
  }

  /**
   * The formula of a cell as the spreadsheet has moved its references; nothing where one of them
   * leads to a track that is gone. Formulas of today are written alike by `written`.
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

function holdsTracks(
  map: TrackMap,
  from: number,
  to: number,
  first: number,
  last: number,
): boolean {
  if (last - first > to - from) return false;
  const now = new Set<number>();
  for (let track = from; track <= to; track++) {
    const moved = map(track);
    if (moved !== undefined) now.add(moved);
  }
  for (let track = first; track <= last; track++) if (!now.has(track)) return false;
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
  const at = (coordinate: Coordinate, tracks: TrackMap, limit: number) => {
    const track = coordinate.at === limit ? limit : tracks(coordinate.at);
    return track === undefined ? undefined : { at: track, fixed: coordinate.fixed };
  };
  const [movedRow, movedCol] = [
    row && at(row, map.rows, maxRows),
    col && at(col, map.cols, maxColumns),
  ];
  if ((row && !movedRow) || (col && !movedCol)) return undefined;
  return { ...(movedRow ? { row: movedRow } : {}), ...(movedCol ? { col: movedCol } : {}) };
}
