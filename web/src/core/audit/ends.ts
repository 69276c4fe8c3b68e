// Filled formulas that stop while the data that they take goes on: tracks were added below, and nobody
// filled the formula further.

import { areaAddress, type Area } from '../address/area';
import { count } from '../format/words';
import type { CellPosition } from '../formula/reference';
import { Kind } from '../model/SheetCells';
import { areaFrom } from './difference';
import { address, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import type { SheetGrid } from './SheetGrid';

const shortest = 4;
/** A longer rest is left without the formula on purpose. */
const restLimit = 40;
const totalLabel = /\b(?:sub)?totals?\b|\bsum\b|\bsumme\b|\bgesamt\b|\baverage\b|\bmean\b|Σ/i;

export function* endClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const clues: Clue[] = [];
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    const sheet = index.sheetOf(region);
    const own = index.areaOf(region);
    for (const isDown of [true, false]) {
      const [length, breadth] = isDown
        ? [own.bottom - own.top + 1, own.right - own.left + 1]
        : [own.right - own.left + 1, own.bottom - own.top + 1];
      if (length < shortest || breadth > 3) continue;
      const run = { grid: evidence.grids[sheet] as SheetGrid, own, isDown, length };
      const clue = atEnd(evidence, run, index.formulaOf(region));
      if (clue) clues.push(clue);
    }
  }
  return clues;
}

type Run = { grid: SheetGrid; own: Area; isDown: boolean; length: number };

function atEnd(evidence: Evidence, run: Run, formula: number): Clue | undefined {
  const { grid, own, isDown, length } = run;
  const last = isDown ? own.bottom : own.right;
  if (!isFree(run, last + 1)) return undefined;
  const inputs = inputsOf(evidence, run, formula);
  if (inputs.length === 0) return undefined;
  const first = isDown ? own.top : own.left;
  const goesOn = (at: number) =>
    isFree(run, at) && inputs.every((input) => isAlike(grid, isDown, input, at, last));
  // Data that begins before the formulas is only taken in part.
  if (first > 1 && inputs.some((input) => isAlike(grid, isDown, input, first - 1, last)))
    return undefined;
  let end = last;
  while (end - last <= restLimit && goesOn(end + 1)) end++;
  const rest = end - last;
  if (rest === 0 || rest > Math.min(restLimit, Math.max(2, length / 2))) return undefined;
  if (isDown && isTotal(grid, last + 1, own.left)) return undefined;
  const missing = isDown
    ? { ...own, top: last + 1, bottom: end }
    : { ...own, left: last + 1, right: end };
  const at = (track: number, across: number): CellPosition =>
    isDown ? { row: track, col: across } : { row: across, col: track };
  const data = inputs.map((input) => {
    const from = at(last + 1, input);
    const to = at(end, input);
    return areaAddress({ top: from.row, left: from.col, bottom: to.row, right: to.col });
  });
  const shown = evidence.shown(formula, own.top, own.left);
  return {
    kind: 'stops',
    sheet: grid.sheet,
    areas: [missing],
    sentence: `${areaAddress(own)} are filled with ${shown} and stop before ${address(missing.top, missing.left)}, while the data that they take goes on in ${data.slice(0, 3).join(' and ')} for ${count(rest, isDown ? 'row' : 'column')} more.`,
    expected: evidence.text(formula),
    weight:
      2.6 + Math.log2(length) * 0.5 + Math.min(1, (inputs.length - 1) * 0.5) - (rest > 3 ? 0.8 : 0),
    level: 'doubt',
  };
}

/** True if nothing stands there across the whole breadth. */
function isFree({ grid, own, isDown }: Run, at: number): boolean {
  const [from, to] = isDown ? [own.left, own.right] : [own.top, own.bottom];
  for (let across = from; across <= to; across++) {
    const isBlank = isDown ? grid.isBlank(at, across) : grid.isBlank(across, at);
    if (!isBlank) return false;
  }
  return true;
}

/** The columns (or rows) of numbers that the formula takes from its own row (or column). */
function inputsOf(evidence: Evidence, { grid, own, isDown }: Run, formula: number): number[] {
  const inputs = new Set<number>();
  const at = { row: own.top, col: own.left };
  for (const slot of evidence.shapes.of(formula).slots) {
    if (slot.kind !== 'reference' || slot.shape.to || slot.prefix !== '') continue;
    const { row, col } = slot.shape.from;
    const along = isDown ? row : col;
    if (!along || along.fixed || along.at !== 0) continue;
    const area = areaFrom(slot, at);
    const input = isDown ? area.left : area.top;
    const [from, to] = isDown ? [own.left, own.right] : [own.top, own.bottom];
    if (input < from || input > to) inputs.add(input);
  }
  const last = isDown ? own.bottom : own.right;
  return [...inputs].filter((input) => isAlike(grid, isDown, input, last, last));
}

/** True if a number stands there that was made like the one beside the last of the formulas. */
function isAlike(grid: SheetGrid, isDown: boolean, input: number, at: number, last: number) {
  const [row, col] = isDown ? [at, input] : [input, at];
  const [lastRow, lastCol] = isDown ? [last, input] : [input, last];
  return (
    grid.kind(row, col) === Kind.Number && grid.formula(row, col) === grid.formula(lastRow, lastCol)
  );
}

function isTotal(grid: SheetGrid, row: number, col: number): boolean {
  for (let at = Math.max(1, col - 30); at < col; at++) {
    if (totalLabel.test(grid.text(row, at))) return true;
  }
  return false;
}
