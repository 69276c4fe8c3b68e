// What a word of a formula is by itself: a cell, a column or a row in A1 style, or TRUE or FALSE; anything
// else is a name.

import { maxRows } from '../address/area';

/** $XFD$1048576 */
export const longestCell = 12;

const a1Cell = /^\$?([A-Za-z]{1,3})\$?([1-9]\d{0,6})$/;
const a1Column = /^\$?([A-Za-z]{1,3})$/;
const a1Row = /^\$?([1-9]\d{0,6})$/;

export function isCellWord(word: string): boolean {
  const [, letters = '', digits = ''] = a1Cell.exec(word) ?? [];
  return letters !== '' && isColumn(letters) && isRow(digits);
}

export function isColumnWord(word: string): boolean {
  const [, letters = ''] = a1Column.exec(word) ?? [];
  return letters !== '' && isColumn(letters);
}

export function isRowWord(word: string): boolean {
  const [, digits = ''] = a1Row.exec(word) ?? [];
  return digits !== '' && isRow(digits);
}

export function isLogicalWord(word: string): boolean {
  if (word.length !== 4 && word.length !== 5) return false;
  const upper = word.toUpperCase();
  return upper === 'TRUE' || upper === 'FALSE';
}

/** Beyond the sheet's edge such a word is a name: XYZ1, say. */
function isColumn(letters: string): boolean {
  return letters.length < 3 || letters.toUpperCase() <= 'XFD';
}

function isRow(digits: string): boolean {
  return digits.length < 7 || Number(digits) <= maxRows;
}
