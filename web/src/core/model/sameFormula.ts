// Whether a relative formula, put into a cell, is the formula that the cell shows. Pure.

import { parse } from '../formula/Parser';
import { print, printInStyle } from '../formula/print';
import type { CellPosition } from '../formula/reference';

/** White space and the case of names and functions mean nothing. */
function plain(text: string): string {
  return text.replace(/\s+/g, '').toUpperCase();
}

export function sameFormula(relative: string, shown: string, at: CellPosition): boolean {
  const ours = printInStyle(parse(relative, 'r1c1'), 'a1', at);
  return plain(ours) === plain(print(parse(shown, 'a1').root));
}
