// How many cells the next piece of a sheet may have. A reply is read as a script by the page's own
// thread, all at once: what counts there is how long its text is, not how many cells it tells.

import type { RangeFormulas } from '../protocol/verbs';
import { firstPiece, pieceLimit } from './plan';

/** A reply of so many characters takes a few milliseconds. */
export const replyLimit = 60_000;
/** What stands around a cell in a reply: quotes, commas. */
const aroundCell = 6;
/** A number's digits, about. */
const digits = 10;
const smallestPiece = 50;

export class PieceSize {
  cells = firstPiece;

  /** Takes the last piece for what the next will be like; grows slowly, shrinks at once. */
  learn({ rows, cols, formulas, values }: RangeFormulas): void {
    let characters = rows * cols * aroundCell;
    for (const row of formulas) for (const formula of row) characters += formula.length;
    for (const row of values) {
      for (const value of row) characters += typeof value === 'string' ? value.length : digits;
    }
    const fitting = Math.floor((rows * cols * replyLimit) / characters);
    this.cells = Math.max(smallestPiece, Math.min(fitting, this.cells * 2, pieceLimit));
  }
}
