// Columns of tables: where they are only the spreadsheet knows, so it is asked, once for each text.
// Pure.

import type { NodeOf } from '../formula/syntax';

export type TableQuestion = {
  /** The columns without the row, as the spreadsheet takes them everywhere. */
  question: string;
  /** True if only the formula's own row of them is meant. */
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
