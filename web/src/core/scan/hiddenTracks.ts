// Which rows and columns of a sheet are hidden, asked by what the spreadsheet's own functions tell: the
// width of a hidden column is 0, and SUBTOTAL leaves out what stands in hidden rows. Rows are looked
// for by halves, so that a sheet without any costs one question.

import { areaAddress, columnLetters, type Area } from '../address/area';
import type { Json } from '../protocol/json';
import type { Outcome } from '../protocol/Outcome';
import { inBook } from './plan';

export type Span = { first: number; last: number };

export type HiddenTracks = {
  rows: Span[];
  cols: Span[];
  /** True if so many questions were not enough for all of them. */
  partly: boolean;
};

export type Ask = (expression: string) => Promise<Outcome<Json>>;

/** Longer ones are refused. */
const expressionLimit = 255;
const between = '&"|"&';
const questionsLimit = 120;
/** Columns beyond are not asked for. */
const columnsLimit = 300;

/** The parts of the rows that are asked for: runs of the columns. */
function partsOf({ left, right }: Area, columns: readonly number[]): Span[] {
  const parts: Span[] = [];
  for (const column of columns) if (column >= left && column <= right) add(parts, column, column);
  return parts.length > 0 ? parts : [{ first: left, last: right }];
}

function shownQuestion(cells: string): string[] {
  return [`COUNTA(${cells})`, `SUBTOTAL(103,${cells})`];
}

/**
 * Of `cover`, columns that have a cell in each filled row, alone is asked which rows are hidden, where
 * there are any: the spreadsheet looks at each cell it is asked about. Nothing where it cannot tell.
 */
export async function findHidden(
  book: string,
  sheet: string,
  area: Area,
  cover: readonly number[],
  ask: Ask,
): Promise<HiddenTracks | undefined> {
  const { top, left, bottom, right } = area;
  let asked = 0;
  const numbers = async (terms: readonly string[]): Promise<number[] | undefined> => {
    asked += 1;
    const outcome = await ask(terms.join(between));
    if (!outcome.ok) return undefined;
    const found = String(outcome.value).split('|').map(Number);
    return found.length === terms.length && found.every((one) => one >= 0) ? found : undefined;
  };
  const hidden: HiddenTracks = { rows: [], cols: [], partly: false };

  // Some spreadsheets tell the width with whether it is the usual one: the sum is the width alone.
  const width = (col: number) =>
    `SUM(CELL("width",${inBook(book, sheet, `${columnLetters(col)}1`)}))`;
  const last = Math.min(right, left + columnsLimit - 1);
  hidden.partly = last < right;
  for (let col = left; col <= last;) {
    const terms = [width(col)];
    let next = col + 1;
    let length = terms[0]?.length ?? 0;
    while (next <= last && length + between.length + width(next).length <= expressionLimit) {
      terms.push(width(next));
      length += between.length + width(next).length;
      next += 1;
    }
    const widths = await numbers(terms);
    if (!widths) return undefined;
    for (const [i, one] of widths.entries()) if (one === 0) add(hidden.cols, col + i, col + i);
    col = next;
  }

  const cellsOf = (rows: Span, parts: readonly Span[]) =>
    parts
      .map(({ first, last: to }) => {
        const part = { top: rows.first, left: first, bottom: rows.last, right: to };
        return inBook(book, sheet, areaAddress(part));
      })
      .join(',');
  const isShort = (parts: readonly Span[]) =>
    shownQuestion(cellsOf({ first: bottom, last: bottom + 1 }, parts)).join(between).length <=
    expressionLimit;
  const covering = partsOf(area, cover);
  const parts = isShort(covering) ? covering : partsOf(area, []);
  const waiting: Span[] = [{ first: top, last: bottom }];
  for (let span = waiting.pop(); span; span = waiting.pop()) {
    if (asked >= questionsLimit) {
      hidden.partly = true;
      break;
    }
    const told = await numbers(shownQuestion(cellsOf(span, parts)));
    if (!told) return undefined;
    const [filled = 0, shown = 0] = told;
    if (filled === 0 || filled === shown) continue;
    // With fewer cells than rows some of them are blank, and need not be hidden.
    const isFull = filled > span.last - span.first;
    if (shown === 0 && isFull) add(hidden.rows, span.first, span.last);
    else if (span.first < span.last) {
      const middle = Math.floor((span.first + span.last) / 2);
      waiting.push({ first: middle + 1, last: span.last }, { first: span.first, last: middle });
    }
  }
  return hidden;
}

/** Spans come in order; those side by side become one. */
function add(spans: Span[], first: number, last: number): void {
  const before = spans.at(-1);
  if (before && before.last + 1 >= first) before.last = last;
  else spans.push({ first, last });
}
