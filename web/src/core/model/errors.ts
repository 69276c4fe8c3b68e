// Where errors start: the error cells that use no other error, and how many error cells each of them
// spoils. Pure.

import { cellCount, meet, type Area } from '../address/area';
import { BoxTree } from './BoxTree';
import { restingOn } from './closure';
import type { Index, SheetArea } from './Index';
import { Kind } from './SheetCells';

export type ErrorCause = SheetArea & {
  /** "#DIV/0!" */
  text: string;
  /** The number of its relative formula; 0 where the error itself was typed in. */
  formula: number;
  /** How many other error cells rest on it; nothing where that was not worked out. */
  spoils: number | undefined;
};

export type ErrorCauses = {
  /** All error cells of the workbook. */
  total: number;
  /** The causes, the one that spoils most first. */
  causes: ErrorCause[];
  /** Error cells in circles of errors, none of which is the first. */
  circular: number;
};

/** For so many causes it is worked out what they spoil. */
const followed = 200;

type Sheet = {
  /** Where the errors are. */
  cells: BoxTree;
  areas: { area: Area; text: string; formula: number }[];
};

export function* findErrorCauses(index: Index): Generator<undefined, ErrorCauses> {
  const sheets: (Sheet | undefined)[] = [];
  let total = 0;
  for (const cells of index.sheets) {
    const { extent } = cells;
    const errors: { row: number; col: number; formula: number }[] = [];
    if (extent) {
      cells.eachFilled(extent, (row, col, kind, formula) => {
        if (kind === Kind.Error) errors.push({ row, col, formula });
      });
    }
    total += errors.length;
    if (!extent || errors.length === 0) {
      sheets.push(undefined);
      continue;
    }
    const areas = errors.map(({ row, col, formula }) => {
      const area = { top: row, left: col, bottom: row, right: col };
      return { area, text: String(cells.valueAt(row, col).value), formula };
    });
    const boxes = Int32Array.from(errors.flatMap(({ row, col }) => [row, col, row, col]));
    sheets.push({ cells: new BoxTree(boxes), areas });
    yield undefined;
  }
  const causes: ErrorCause[] = [];
  for (const [sheet, own] of sheets.entries()) {
    const first = own?.areas.filter(({ area }) => !usesError(index, sheets, { sheet, area })) ?? [];
    for (const cause of joined(first)) causes.push({ sheet, ...cause, spoils: undefined });
    yield undefined;
  }
  const reached = new Set<string>();
  for (const cause of causes.slice(0, followed)) {
    cause.spoils = yield* spoiledBy(index, sheets, cause, reached);
  }
  causes.sort((a, b) => (b.spoils ?? 0) - (a.spoils ?? 0));
  const cells = causes.reduce((sum, { area }) => sum + cellCount(area), 0);
  const isWhole = causes.length <= followed;
  return { total, causes, circular: isWhole ? total - cells - reached.size : 0 };
}

/** True if the error cell uses another one. */
function usesError(index: Index, sheets: readonly (Sheet | undefined)[], cell: SheetArea): boolean {
  let uses = false;
  index.formulasIn(cell, (part) => {
    index.usedBy(part, (used) => {
      let left = used.sheet === cell.sheet && meet(used.area, cell.area) ? 1 : 0;
      sheets[used.sheet]?.cells.search(used.area, () => {
        uses ||= left === 0;
        left -= 1;
        return uses;
      });
    });
  });
  return uses;
}

function hasError(sheet: Sheet | undefined, area: Area): boolean {
  let has = false;
  sheet?.cells.search(area, () => (has = true));
  return has;
}

/** Causes beside each other with the same error and the same relative formula are one. */
function joined(causes: Sheet['areas']): Sheet['areas'] {
  const found: Sheet['areas'] = [];
  const below = new Map<string, Sheet['areas'][number]>();
  let row: Sheet['areas'][number] | undefined;
  const close = (): void => {
    if (!row) return;
    const { area, text, formula } = row;
    const key = [area.left, area.right, formula, text].join();
    const upper = below.get(key);
    if (upper && upper.area.bottom === area.top - 1) upper.area.bottom = area.bottom;
    else {
      below.set(key, row);
      found.push(row);
    }
    row = undefined;
  };
  for (const cause of causes) {
    const goesOn =
      row?.text === cause.text &&
      row.formula === cause.formula &&
      row.area.top === cause.area.top &&
      row.area.right + 1 === cause.area.left;
    if (row && goesOn) row.area.right += 1;
    else {
      close();
      row = { ...cause, area: { ...cause.area } };
    }
  }
  close();
  return found;
}

function* spoiledBy(
  index: Index,
  sheets: readonly (Sheet | undefined)[],
  cause: SheetArea,
  reached: Set<string>,
): Generator<undefined, number> {
  const all = yield* restingOn(index, cause);
  let spoiled = 0;
  for (const { region, area } of all.steps) {
    const sheet = index.sheetOf(region);
    if (!hasError(sheets[sheet], area)) continue;
    index.sheets[sheet]?.eachFilled(area, (row, col, kind) => {
      if (kind !== Kind.Error) return;
      const isCause =
        sheet === cause.sheet && meet(cause.area, { top: row, left: col, bottom: row, right: col });
      if (isCause) return;
      spoiled++;
      reached.add(`${String(sheet)} ${String(row)} ${String(col)}`);
    });
  }
  return spoiled;
}
