// What a human would call a cell: the nearest text to its left and above it. Pure.

import { maxColumns, maxRows, type Area } from '../address/area';
import { Kind, type SheetCells } from './SheetCells';

/** Farther away a text belongs to something else. */
const colsAway = 60;
const rowsAway = 400;
const textLimit = 60;

/** A unit rather than what is measured: "MWh", "%", "£m". */
function isUnit(text: string): boolean {
  return text.length <= 4 || (text.length <= 10 && /[/%€$£²³]/.test(text));
}

function textAt(cells: SheetCells, row: number, col: number): string {
  const { kind, value } = cells.valueAt(row, col);
  if (kind !== Kind.Text || typeof value !== 'string') return '';
  const text = value.replace(/\s+/g, ' ').trim();
  return /[\p{L}]/u.test(text) ? text : '';
}

function leftOf(cells: SheetCells, row: number, col: number): string {
  let unit = '';
  for (let at = col - 1; at >= Math.max(1, col - colsAway); at--) {
    const text = textAt(cells, row, at);
    if (text === '') continue;
    if (!isUnit(text)) return text;
    if (unit === '') unit = text;
  }
  return unit;
}

/** A heading may be a year: the number on top of a column of numbers, under which a gap is none. */
function above(cells: SheetCells, row: number, col: number): string {
  for (let at = row - 1; at >= Math.max(1, row - rowsAway); at--) {
    const kind = cells.kindAt(at, col);
    if (kind === Kind.Text) {
      const text = textAt(cells, at, col);
      // A text with a number right above it is one value among others, no heading.
      if (text !== '' && cells.kindAt(at - 1, col) !== Kind.Number) return text;
    } else if (kind === Kind.Number && isYearAt(cells, at, col)) {
      const { value } = cells.valueAt(at, col);
      const isAmongOthers = isYearAt(cells, at - 1, col) || isYearAt(cells, at + 1, col);
      if (Number.isInteger(value) && !isAmongOthers) return String(value);
    }
  }
  return '';
}

function isYearAt(cells: SheetCells, row: number, col: number): boolean {
  const { kind, value } = cells.valueAt(row, col);
  return kind === Kind.Number && Number(value) >= 1900 && Number(value) <= 2200;
}

function cut(text: string): string {
  return text.length > textLimit ? `${text.slice(0, textLimit - 1)}…` : text;
}

/**
 * "Electricity demand · 2030"; empty where no text is near. Of several cells what they have in common:
 * what stands before a row of them, or over a column; otherwise what the first is called, and "…".
 */
export function labelOf(cells: SheetCells, area: Area): string {
  const { top: row, left: col } = area;
  // Whole rows and columns hold their own names.
  if (area.bottom - row + 1 === maxRows || area.right - col + 1 === maxColumns) return '';
  const isRow = area.top === area.bottom;
  const isColumn = area.left === area.right;
  const left = leftOf(cells, row, col);
  const top = above(cells, row, col);
  if (isRow && !isColumn && left !== '') return cut(left);
  if (isColumn && !isRow && top !== '') return cut(top);
  const text = [left, left === top ? '' : top]
    .filter((part) => part !== '')
    .map(cut)
    .join(' · ');
  return text === '' || (isRow && isColumn) ? text : `${text} …`;
}
