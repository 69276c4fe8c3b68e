// What a part of a formula gives, and reading it from what the native side answers.

import { isScalar, type Grid, type Json, type Scalar } from '../protocol/json';

export type Result =
  /** `null` is a blank cell. */
  | { kind: 'value'; value: Scalar }
  | { kind: 'error'; text: string }
  /** `values` is missing while they were not read. An error in it without a text is null. */
  | { kind: 'array'; rows: number; cols: number; values?: Grid }
  /** A LAMBDA that was not called. */
  | { kind: 'function' };

const errorTexts: ReadonlySet<string> = new Set(
  `#NULL! #DIV/0! #VALUE! #REF! #NAME? #NUM! #N/A #GETTING_DATA #SPILL! #CALC! #FIELD! #CONNECT!
   #BLOCKED! #UNKNOWN! #EXTERNAL! #PYTHON! #BUSY!`.split(/\s+/),
);

/** True if a text is one that the spreadsheet shows for an error, Calc's own "Err:502" included. */
export function isErrorText(value: unknown): value is string {
  return typeof value === 'string' && (errorTexts.has(value) || /^Err:\d{3}$/.test(value));
}

export function arrayOf(values: Grid): Result {
  const rows = values.length;
  const cols = values[0]?.length ?? 0;
  return { kind: 'array', rows, cols, values };
}

/** Values read from cells, where an error is its text. */
export function resultOfCells(values: Grid): Result {
  if (values.length !== 1 || values[0]?.length !== 1) return arrayOf(values);
  const value = values[0][0] ?? null;
  return isErrorText(value) ? { kind: 'error', text: value } : { kind: 'value', value };
}

/** An evaluation's answer: a scalar, a row, or rows of the same length; nothing for other shapes. */
export function resultOfJson(json: Json): Result | undefined {
  if (isScalar(json)) return json === null ? undefined : { kind: 'value', value: json };
  if (!Array.isArray(json) || json.length === 0) return undefined;
  const rows = json.some(Array.isArray) ? json : [json];
  const grid: Grid = [];
  for (const row of rows) {
    if (!Array.isArray(row) || !row.every(isScalar)) return undefined;
    if (row.length === 0 || row.length !== (grid[0] ?? row).length) return undefined;
    grid.push(row);
  }
  return resultOfCells(grid);
}

/** The one value of a result that counts as a condition or an index; nothing for an array. */
export function scalarOf(result: Result | undefined): Scalar | undefined {
  return result?.kind === 'value' ? result.value : undefined;
}
