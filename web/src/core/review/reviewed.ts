// Which workbook a review is of: its name, where it lies, and what it consists of. Where it lies is
// kept as a print, from which the folder cannot be read back. Pure.

import { printOf } from '../model/sketch';

/** `path`: a print; empty where that is not known. `marks`: as `marksOf` tells. */
export type ReviewedBook = { book: string; path: string; marks: string };

/** What tells where a workbook lies. */
export function whereIs(cell: string): string {
  return `CELL("filename",${cell})`;
}

/** The print of what that gave: "/home/me/[Model.xlsx]Sheet1"; empty for a workbook without a file. */
export function pathPrint(told: unknown): string {
  if (typeof told !== 'string') return '';
  const path = told.slice(0, told.lastIndexOf(']') + 1);
  return /[/\\:].*\[/.test(path) ? printOf(path) + printOf(`path ${path}`) : '';
}
