// Numbers and dates kept as text among those that a sum or its like takes: the spreadsheet passes them over.

import { areaAddress, cellCount, covers, qualified, unquoted, type Area } from '../address/area';
import { count } from '../format/words';
import { directUsers } from '../model/Index';
import { Kind } from '../model/SheetCells';
import { rangesOf, type Range } from './aggregates';
import { addCell, address, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import type { SheetGrid } from './SheetGrid';

const blank = '[\\s\\u00a0]*';
const sum = '(?:\\d{1,3}(?:,\\d{3})+|\\d+)(?:\\.\\d+)?|\\.\\d+';
const numberText = new RegExp(
  `^${blank}[-+(]?${blank}[$£€¥]?${blank}(?:${sum})${blank}%?\\)?${blank}$`,
);
/** "007" and "4006381333931" name something. */
const codeText = /^\s*0\d|\d{10}/;

/** "2024-03-31", "31.3.2024", "3/31/24" */
const dateText = /^\s*(?:\d{4}([-/.])\d{1,2}\1\d{1,2}|\d{1,2}([-/.])\d{1,2}\2(?:\d{4}|\d{2}))\s*$/;
/** Dates as numbers lie between 1927 and 2119. */
const [firstDate, lastDate] = [10_000, 80_000];

/** Of more formulas that use a cell nobody looks further. */
const usersLimit = 20;
/** So much of a long track is looked at, on each side of the cell. */
const trackLimit = 500;

function isNumberText(text: string): boolean {
  return (numberText.test(text) && !codeText.test(text)) || dateText.test(text);
}

type Taken = { sheet: number; row: number; col: number; function: string; area: Area };
type Group = { by: Taken; areas: Area[]; text: string };

export function* textNumberClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  for (const grid of evidence.grids) {
    const groups = new Map<string, Group>();
    const known = new Map<number, boolean>();
    for (const { area } of grid.cells.blocks) {
      const found: [number, number][] = [];
      grid.cells.eachFilled(area, (row, col, kind, formula) => {
        if (kind !== Kind.Text || formula !== 0) return;
        const number = grid.cells.textNumberAt(row, col);
        let is = known.get(number);
        if (is === undefined) known.set(number, (is = isNumberText(textAt(grid, row, col))));
        if (is) found.push([row, col]);
      });
      yield undefined;
      for (const [i, [row, col]] of found.entries()) {
        if (i % 50 === 49) yield undefined;
        const by = takenBy(evidence, grid, row, col);
        if (!by) continue;
        const key = [by.sheet, by.row, by.col, areaAddress(by.area)].join();
        const group = groups.get(key);
        if (group) addCell(group.areas, row, col);
        else groups.set(key, { by, areas: [cell(row, col)], text: textAt(grid, row, col) });
      }
    }
    for (const group of groups.values()) clues.push(clueOf(evidence, grid, group));
  }
  return clues;
}

function textAt(grid: SheetGrid, row: number, col: number): string {
  return String(grid.cells.valueAt(row, col).value);
}

/** The first formula that passes the cell over among numbers. */
function takenBy(evidence: Evidence, grid: SheetGrid, row: number, col: number): Taken | undefined {
  const { index } = evidence;
  for (const part of directUsers(index, { sheet: grid.sheet, area: cell(row, col) }).slice(
    0,
    usersLimit,
  )) {
    const sheet = index.sheetOf(part.region);
    const at = { row: part.area.top, col: part.area.left };
    for (const range of rangesOf(evidence, index.formulaOf(part.region), at)) {
      if (range.function === 'COUNTA' || sheetOf(evidence, range, sheet) !== grid.sheet) continue;
      if (!covers(range.area, cell(row, col)) || !isAmongNumbers(grid, range.area, row, col))
        continue;
      return { sheet, ...at, function: range.function, area: range.area };
    }
  }
  return undefined;
}

function sheetOf({ model }: Evidence, { prefix }: Range, own: number): number | undefined {
  return prefix === '' ? own : model.sheetNumber(unquoted(prefix.slice(0, -1)));
}

/** True if the track through the cell, along the range, is one of numbers. */
function isAmongNumbers(grid: SheetGrid, range: Area, row: number, col: number): boolean {
  const isColumn = range.bottom > range.top;
  const [first, last] = isColumn ? [range.top, range.bottom] : [range.left, range.right];
  const own = isColumn ? row : col;
  const isDate = dateText.test(textAt(grid, row, col));
  let numbers = 0;
  let texts = 0;
  for (let n = Math.max(first, own - trackLimit); n <= Math.min(last, own + trackLimit); n++) {
    const place: [number, number] = isColumn ? [n, col] : [row, n];
    const kind = grid.kind(...place);
    if (kind === Kind.Number && (!isDate || isDateNumber(grid, ...place))) numbers += 1;
    if (kind !== Kind.Text) continue;
    const text = textAt(grid, ...place);
    if (isNumberText(text) && dateText.test(text) === isDate) numbers += 1;
    else texts += 1;
  }
  // A year on top of the column is its heading.
  const value = Number(textAt(grid, row, col));
  const isHeading = own === first && Number.isInteger(value) && value >= 1900 && value <= 2200;
  return !isHeading && numbers >= 4 && texts * 4 <= numbers;
}

function isDateNumber(grid: SheetGrid, row: number, col: number): boolean {
  const value = Number(grid.cells.valueAt(row, col).value);
  return value >= firstDate && value <= lastDate;
}

function clueOf(evidence: Evidence, grid: SheetGrid, { by, areas, text }: Group): Clue {
  const [first] = areas as [Area];
  const cells = areas.reduce((all, area) => all + cellCount(area), 0);
  const more = cells > 1 ? ` and ${count(cells - 1, 'other cell')}` : '';
  const where = address(by.row, by.col);
  const user =
    by.sheet === grid.sheet ? where : qualified(evidence.model.sheetName(by.sheet), where);
  const [hold, them] = cells > 1 ? ['hold texts like', 'them'] : ['holds the text', 'it'];
  return {
    kind: 'text-number',
    sheet: grid.sheet,
    areas,
    sentence: `${address(first.top, first.left)}${more} ${hold} “${text.trim()}” where a ${dateText.test(text) ? 'date' : 'number'} is expected; ${by.function} in ${user} takes ${areaAddress(by.area)} and passes ${them} over.`,
    expected: '',
    weight: 9,
    level: 'fact',
  };
}
