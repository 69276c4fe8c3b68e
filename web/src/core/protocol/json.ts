// What can cross the message channel, and the few questions asked of it before it is believed.

export type Json = null | boolean | number | string | Json[] | { [key: string]: Json };
export type JsonObject = Record<string, Json>;

/** A cell's raw value. An error cell reads as null where the spreadsheet gives no text for it. */
export type Scalar = null | boolean | number | string;
export type Grid = Scalar[][];

export function isObject(value: unknown): value is JsonObject {
  return typeof value === 'object' && value !== null && !Array.isArray(value);
}

export function isScalar(value: unknown): value is Scalar {
  return (
    value === null ||
    typeof value === 'boolean' ||
    typeof value === 'number' ||
    typeof value === 'string'
  );
}

export function isNumber(value: unknown): value is number {
  return typeof value === 'number' && Number.isFinite(value);
}

/** A positive whole number: a row, a column, a count of them. */
export function isIndex(value: unknown): value is number {
  return Number.isSafeInteger(value) && (value as number) > 0;
}

/** How many there are; zero is a number of them. */
export function isCount(value: unknown): value is number {
  return value === 0 || isIndex(value);
}

export function isListOf<T>(value: unknown, isItem: (item: unknown) => item is T): value is T[] {
  return Array.isArray(value) && value.every(isItem);
}

export function isText(value: unknown): value is string {
  return typeof value === 'string';
}

/** `rows` lists of `cols` items each. */
export function isGrid<T>(
  value: unknown,
  rows: number,
  cols: number,
  isItem: (item: unknown) => item is T,
): value is T[][] {
  return (
    Array.isArray(value) &&
    value.length === rows &&
    value.every((row) => isListOf(row, isItem) && row.length === cols)
  );
}
