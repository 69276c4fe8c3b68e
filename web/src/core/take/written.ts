// What is taken along to a report or a message: a tree or a list as plain text, or as a table in
// Markdown. Each says of which workbook, sheet and cell it is, and when that was. Pure.

import { oneLine } from '../format/visible';

export type TakenRow = {
  /** From 1 on. */
  level: number;
  /** The part's text, or what the list calls its row. */
  text: string;
  /** As it is shown; why there is no value where there is none. */
  value: string;
  /** With every digit; empty where that is what is shown. */
  exact: string;
  /** The cells that it is; empty for none. */
  address: string;
};

export type Taken = {
  /** "Dependents"; empty for a formula. */
  title: string;
  book: string;
  sheet: string;
  address: string;
  /** What a human calls the cell; empty where nobody would. */
  label: string;
  time: string;
  /** Empty for a list. */
  formula: string;
  rows: readonly TakenRow[];
  /** What the rows do not hold; empty for nothing. */
  missing: string;
};

export type TakenForm = 'text' | 'markdown';

function headOf({ title, book, sheet, address, label, time }: Taken): string {
  const cell = `${sheet}!${address}`;
  const of = title === '' ? cell : `${title} of ${cell}`;
  return [oneLine(label === '' ? of : `${of} (${label})`), oneLine(book), time].join(' · ');
}

function indented({ level, text }: TakenRow, by: string): string {
  return by.repeat(level - 1) + oneLine(text);
}

function asText(taken: Taken): string {
  const lines = [headOf(taken)];
  if (taken.formula !== '') lines.push(taken.formula);
  lines.push('');
  const widest = Math.min(60, Math.max(0, ...taken.rows.map((row) => indented(row, '  ').length)));
  for (const row of taken.rows) {
    const { value, exact, address } = row;
    const known = exact === '' ? oneLine(value) : `${oneLine(value)} (exactly ${exact})`;
    const rest = [known, oneLine(address)].filter(Boolean).join('   ');
    lines.push(`${indented(row, '  ').padEnd(widest)}   ${rest}`.trimEnd());
  }
  if (taken.missing !== '') lines.push('', oneLine(taken.missing));
  return `${lines.join('\n')}\n`;
}

/** Nothing that a workbook holds may act as markup. */
function plain(text: string): string {
  return oneLine(text)
    .replace(/[\\`*_{}[\]<>#|~]/g, '\\$&')
    .replace(/^([-+])/, '\\$1');
}

/** As code, with more backticks around it than it has in it. */
function code(text: string): string {
  const inner = oneLine(text).replaceAll('|', '\\|');
  const longest = Math.max(0, ...(inner.match(/`+/g) ?? []).map((run) => run.length));
  const fence = '`'.repeat(longest + 1);
  return longest === 0 ? `${fence}${inner}${fence}` : `${fence} ${inner} ${fence}`;
}

function asMarkdown(taken: Taken): string {
  const isFormula = taken.formula !== '';
  const lines = [`**${plain(headOf(taken))}**`, ''];
  if (isFormula) {
    const fence = '`'.repeat(
      Math.max(3, ...(taken.formula.match(/`+/g) ?? []).map((run) => run.length + 1)),
    );
    lines.push(fence, taken.formula, fence, '');
  }
  lines.push(
    isFormula ? '| Part | Value | Exactly | Cells |' : '| Cells | What | Address |',
    isFormula ? '|:--|--:|--:|:--|' : '|:--|:--|:--|',
  );
  for (const row of taken.rows) {
    const name = '&emsp;'.repeat(row.level - 1) + (isFormula ? code(row.text) : plain(row.text));
    const cells = isFormula
      ? [name, plain(row.value), plain(row.exact), plain(row.address)]
      : [name, plain(row.value), plain(row.address)];
    lines.push(`| ${cells.join(' | ')} |`);
  }
  if (taken.missing !== '') lines.push('', plain(taken.missing));
  return `${lines.join('\n')}\n`;
}

export function writtenAs(form: TakenForm, taken: Taken): string {
  return form === 'text' ? asText(taken) : asMarkdown(taken);
}
