// One cell written in two ways in one formula, "$B$16" here and "B16" there: filled or copied, the
// formula would take two different cells.

import { areaAddress } from '../address/area';
import { areaFrom } from './difference';
import { address, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { corners, type Shape } from './shape';
import type { CellPosition } from '../formula/reference';

export function* mixedClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index, shapes } = evidence;
  const clues: Clue[] = [];
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    if (evidence.isIrregular(index.sheetOf(region))) continue;
    const own = index.areaOf(region);
    const formula = index.formulaOf(region);
    const at = { row: own.top, col: own.left };
    const found = mixedIn(shapes.of(formula), at);
    if (found) {
      clues.push({
        kind: 'mixed',
        sheet: index.sheetOf(region),
        areas: [own],
        sentence: `${address(at.row, at.col)} takes ${found.cells} ${String(found.most)} times with the same dollar signs and once with others: ${evidence.shown(formula, at.row, at.col)}.`,
        expected: '',
        weight:
          2 + Math.min(2, found.most / 2) - Math.min(2, Math.log2(evidence.count(formula)) / 2),
        level: 'doubt',
      });
    }
  }
  return clues;
}

/** Cells of which one of three or more references has dollar signs of its own. */
function mixedIn(shape: Shape, at: CellPosition): { cells: string; most: number } | undefined {
  if (shape.slots.length < 3) return undefined;
  const byCells = new Map<string, Map<string, number>>();
  for (const slot of shape.slots) {
    if (slot.kind !== 'reference') continue;
    const cells = slot.prefix + areaAddress(areaFrom(slot, at));
    const signs = corners(slot)
      .map((one) => (one?.fixed === true ? '$' : '.'))
      .join('');
    const known = byCells.get(cells) ?? new Map<string, number>();
    byCells.set(cells, known.set(signs, (known.get(signs) ?? 0) + 1));
  }
  for (const [cells, signs] of byCells) {
    const counts = [...signs.values()].sort((a, b) => b - a);
    const [most = 0, rest = 0] = counts;
    if (counts.length === 2 && rest === 1 && most >= 2) return { cells, most };
  }
  return undefined;
}
