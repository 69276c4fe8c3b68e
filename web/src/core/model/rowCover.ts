// A few columns of a sheet that have a cell in each of its filled rows, so that who asks something of
// rows need not ask of every cell. Pure; yields where others may take a turn.

import type { Area } from '../address/area';
import { Kind, type SheetCells, type Texts } from './SheetCells';

/** With more columns than this little is left out. */
const mostColumns = 6;

const leavesItselfOut = /\b(?:SUBTOTAL|AGGREGATE)\(/i;

/**
 * The columns from left to right; none where it would take many of them. A row in which only subtotals
 * stand is not covered: subtotals of it leave them out, hidden or not.
 */
export function* rowCover(cells: SheetCells, formulas: Texts): Generator<undefined, number[]> {
  const { extent } = cells;
  if (!extent) return [];
  const { top, left, bottom, right } = extent;
  const covered = new Uint8Array(bottom - top + 1);
  const subtotals = new Map<number, boolean>();
  const isSubtotal = (formula: number) => {
    let known = subtotals.get(formula);
    if (known === undefined) {
      known = leavesItselfOut.test(formulas.at(formula));
      subtotals.set(formula, known);
    }
    return known;
  };
  const chosen: number[] = [];
  // Formulas that give an empty text are counted by some functions only.
  for (const withEmpty of [false, true]) {
    const counts = (kind: Kind, formula: number) =>
      (withEmpty || kind !== Kind.Blank) && !isSubtotal(formula);
    for (;;) {
      yield undefined;
      const gains = new Float64Array(right - left + 1);
      const spoilt = new Uint8Array(right - left + 1);
      cells.eachFilled(extent, (row, col, kind, formula) => {
        if (isSubtotal(formula)) spoilt[col - left] = 1;
        else if (counts(kind, formula) && covered[row - top] === 0) {
          gains[col - left] = (gains[col - left] ?? 0) + 1;
        }
      });
      // Of two columns the one without subtotals, which need questions of their own.
      const worth = gains.map((gain, i) => (gain > 0 && spoilt[i] === 1 ? gain - 0.5 : gain));
      const best = worth.indexOf(Math.max(...worth));
      if (worth[best] === 0) break;
      if (chosen.length === mostColumns) return [];
      chosen.push(left + best);
      const column: Area = { ...extent, left: left + best, right: left + best };
      cells.eachFilled(column, (row, _, kind, formula) => {
        if (counts(kind, formula)) covered[row - top] = 1;
      });
    }
  }
  return chosen.sort((one, other) => one - other);
}
