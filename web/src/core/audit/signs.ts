// Where along a column or row the dollar signs change and nothing else: the cells named at the change
// are the same, and from there on they slide, or stay, where those before did not.

import { areaAddress, cellCount, type Area } from '../address/area';
import type { CellPosition } from '../formula/reference';
import { areaFrom } from './difference';
import { atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { corners, isData, type Shape, type Slot } from './shape';
import type { SheetGrid } from './SheetGrid';

export function* signClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const clues: Clue[] = [];
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    const sheet = index.sheetOf(region);
    const own = index.areaOf(region);
    if (evidence.isIrregular(sheet) || cellCount(own) < 2) continue;
    const formula = index.formulaOf(region);
    const grid = evidence.grids[sheet] as SheetGrid;
    for (const at of [
      { row: own.bottom + 1, col: own.left },
      { row: own.top, col: own.right + 1 },
    ]) {
      const clue = atChange(evidence, grid, own, formula, at);
      if (clue) clues.push(clue);
    }
  }
  return clues;
}

function atChange(
  evidence: Evidence,
  grid: SheetGrid,
  before: Area,
  formula: number,
  at: CellPosition,
): Clue | undefined {
  const next = grid.formula(at.row, at.col);
  if (next === 0 || next === formula) return undefined;
  const own = evidence.shapes.of(next);
  const other = evidence.shapes.of(formula);
  if (isData(own) || !isSigns(own, other, at)) return undefined;
  let after: Area | undefined;
  evidence.index.formulasIn(
    { sheet: grid.sheet, area: { top: at.row, bottom: at.row, left: at.col, right: at.col } },
    ({ region }) => (after = evidence.index.areaOf(region)),
  );
  if (!after) return undefined;
  const [odd, usual] = cellCount(after) <= cellCount(before) ? [after, before] : [before, after];
  const [oddOne, usualOne] = odd === after ? [next, formula] : [formula, next];
  // What changes back and forth is written so on purpose.
  const times = Math.max(0, evidence.count(oddOne) - cellCount(odd));
  const weight = 3 + Math.log2(cellCount(usual)) * 0.7 - Math.log2(1 + times);
  if (weight < 3) return undefined;
  const shown = (one: number, { top, left }: Area) => evidence.shown(one, top, left);
  return {
    kind: 'signs',
    sheet: grid.sheet,
    areas: [odd],
    sentence: `${areaAddress(odd)} and ${areaAddress(usual)} beside it name the same cells where they meet, with other dollar signs: ${shown(oddOne, odd)} and ${shown(usualOne, usual)}.`,
    expected: evidence.text(usualOne),
    weight,
    level: 'fact',
  };
}

/** True if two formulas name the same cells from there and differ in dollar signs. */
function isSigns(own: Shape, other: Shape, at: CellPosition): boolean {
  if (own.skeleton !== other.skeleton) return false;
  return own.slots.every((slot, i) => isSame(slot, other.slots[i], at));
}

function isSame(one: Slot, other: Slot | undefined, at: CellPosition): boolean {
  if (one.kind === 'reference' && other?.kind === 'reference') {
    const cells = areaAddress(areaFrom(one, at)) === areaAddress(areaFrom(other, at));
    return cells && one.prefix === other.prefix && corners(one).length === corners(other).length;
  }
  return one.kind === other?.kind && one.text === other.text;
}
