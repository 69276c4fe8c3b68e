// Chains: cells of a row or column each of which takes something of the one before it, as an opening
// balance takes the closing balance of the year before. The first of a chain takes something else.

import { cellCount, type Area } from '../address/area';
import type { CellPosition } from '../formula/reference';
import { Kind } from '../model/SheetCells';
import { areaFrom } from './difference';
import type { Evidence } from './Evidence';
import type { ReferenceSlot } from './shape';
import type { SheetGrid } from './SheetGrid';

/** Of what takes more cells at each place nothing is said. */
const mostTaken = 100;

/**
 * True if a chain stands right of the cell or below it and cannot begin earlier: what its formula
 * would take in the cell is not on the sheet, or there is no number in it. A formula that was
 * expected in the cell has to be of the chain's form.
 */
export function beginsChain(
  evidence: Evidence,
  grid: SheetGrid,
  at: CellPosition,
  expected?: number,
): boolean {
  return [
    { next: { row: at.row, col: at.col + 1 }, isRow: true },
    { next: { row: at.row + 1, col: at.col }, isRow: false },
  ].some(({ next, isRow }) => {
    const chain = grid.formula(next.row, next.col);
    if (chain === 0) return false;
    if (expected !== undefined && evidence.form(chain) !== evidence.form(expected)) return false;
    return evidence.shapes
      .of(chain)
      .slots.some(
        (slot) =>
          slot.kind === 'reference' && slot.prefix === '' && lacks(grid, slot, at, next, isRow),
      );
  });
}

/** True if what `next` takes is all of the row or column of `at`, and before that there is none. */
function lacks(
  grid: SheetGrid,
  slot: ReferenceSlot,
  at: CellPosition,
  next: CellPosition,
  isRow: boolean,
): boolean {
  const tracks = ({ left, right, top, bottom }: Area): [number, number] =>
    isRow ? [left, right] : [top, bottom];
  const own = isRow ? at.col : at.row;
  const taken = areaFrom(slot, next);
  const [from, to] = tracks(taken);
  if (from !== own || to !== own || cellCount(taken) > mostTaken) return false;
  if (!hasNumber(grid, taken)) return false;
  const earlier = areaFrom(slot, at);
  // From the first column or row on a relative reference goes on at the sheet's other end.
  if (own === 1) return tracks(earlier)[0] !== own;
  return tracks(earlier)[0] === own - 1 && !hasNumber(grid, earlier);
}

function hasNumber(grid: SheetGrid, { top, left, bottom, right }: Area): boolean {
  for (let row = top; row <= bottom; row++) {
    for (let col = left; col <= right; col++) {
      if (grid.formula(row, col) > 0 || grid.kind(row, col) === Kind.Number) return true;
    }
  }
  return false;
}
