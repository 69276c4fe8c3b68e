// What a human would call a cell: the nearest text to its left and above it. Pure.

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
    const text = textAt(cells, at, col);
    // A text with a number right above it is one value among others, no heading.
    const isValue = cells.valueAt(at - 1, col).kind === Kind.Number;
    if (text !== '' && !isValue) return text;
    const { kind, value } = cells.valueAt(at, col);
    const isYear =
      kind === Kind.Number &&
      Number.isInteger(value) &&
      Number(value) >= 1900 &&
      Number(value) <= 2200;
    if (isYear && !isYearAt(cells, at - 1, col) && !isYearAt(cells, at + 1, col))
      return String(value);
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

/** "Electricity demand · 2030"; empty where no text is near. */
export function labelOf(cells: SheetCells, row: number, col: number): string {
  const left = leftOf(cells, row, col);
  const top = above(cells, row, col);
  if (left === top) return cut(left);
  return [left, top]
    .filter((text) => text !== '')
    .map(cut)
    .join(' · ');
}
