// Is a relative formula, put into a cell, the formula that the cell shows? Pure.

import { parse } from '../formula/Parser';
import { print } from '../formula/print';
import type { CellPosition } from '../formula/reference';
import { formulaAt } from '../formula/relative';

/** White space and the case of names and functions mean nothing. */
function plain(text: string): string {
  return text.replace(/\s+/g, '').toUpperCase();
}

export function sameFormula(relative: string, shown: string, at: CellPosition): boolean {
  return plain(formulaAt(relative, at)) === `=${plain(print(parse(shown, 'a1').root))}`;
}
