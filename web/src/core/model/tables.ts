// Columns of tables: where they are only the spreadsheet knows, so it is asked, once for each text.
// Pure.

import { parseArea, type Area } from '../address/area';
import type { NodeOf } from '../formula/syntax';
import type { Json } from '../protocol/json';
import { placeOf } from '../workbook/places';

export type TableQuestion = {
  /** The columns without the row, as the spreadsheet takes them everywhere. */
  question: string;
  /** Whether only the formula's own row of them is meant. */
  thisRow: boolean;
};

const thisRowItem = /\[#This Row\]\s*[,;]?\s*/i;

/** Nothing for columns of the table that the formula is in, whose name is not written. */
export function tableQuestion({ table, text }: NodeOf<'columns'>): TableQuestion | undefined {
  if (table === '') return undefined;
  const inner = text.slice(1, -1).trim();
  if (inner.startsWith('@')) {
    const column = inner.slice(1);
    const columns = column.startsWith('[') || column === '' ? column : `[${column}]`;
    return { question: table + wrapped(columns), thisRow: true };
  }
  if (thisRowItem.test(text)) {
    return { question: table + wrapped(inner.replace(thisRowItem, '')), thisRow: true };
  }
  if (/^#This Row$/i.test(inner)) return { question: table, thisRow: true };
  return { question: table + text, thisRow: false };
}

/** "[a]" stays, "[a]:[b]" gets brackets around it. */
function wrapped(columns: string): string {
  return columns.includes(']:[') ? `[${columns}]` : columns;
}

/** What is asked of the spreadsheet to learn where `cells` are. */
export function whereQuestion(cells: string): string {
  return `CELL("address",${cells})&"|"&ROWS(${cells})&"|"&COLUMNS(${cells})`;
}

/** Where they are, from the answer; the sheet is missing where it is the one in front. */
export function whereAnswer(answer: Json): { sheet: string | undefined; area: Area } | undefined {
  if (typeof answer !== 'string') return undefined;
  const [where = '', rows, cols] = answer.split('|');
  const place = placeOf(where);
  const first = place && parseArea(place.first);
  if (!place || !first) return undefined;
  const bottom = first.top + Number(rows) - 1;
  const right = first.left + Number(cols) - 1;
  if (!(bottom >= first.top && right >= first.left)) return undefined;
  return { sheet: place.sheet, area: { ...first, bottom, right } };
}
