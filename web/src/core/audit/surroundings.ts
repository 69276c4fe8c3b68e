// Cells whose surroundings are found elsewhere in the workbook, with another formula in the middle:
// a block repeated along a sheet, a sheet that is a copy of another, columns computed like each
// other. Surroundings are what stands above, below, before and behind: the relative formulas and the
// texts. Counted in hash tables, a few places for every cell.

import type { CellPosition } from '../formula/reference';
import { Kind } from '../model/SheetCells';
import { differenceOf } from './difference';
import { address, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { isData } from './shape';
import type { SheetGrid } from './SheetGrid';

/** What stands in a cell, as a number: 0 blank, 1 a number, even a formula, odd a text. */
function contentAt(grid: SheetGrid, row: number, col: number): number {
  const formula = grid.formula(row, col);
  if (formula > 0) return formula * 2;
  switch (grid.kind(row, col)) {
    case Kind.Blank:
      return 0;
    case Kind.Text:
      return grid.textNumber(row, col) * 2 + 1;
    default:
      return 1;
  }
}

/** Rows and columns away from the cell. */
const surroundings: readonly (readonly (readonly [number, number])[])[] = [
  [
    [-2, 0],
    [-1, 0],
    [1, 0],
    [2, 0],
  ],
  [
    [0, -2],
    [0, -1],
    [0, 1],
    [0, 2],
  ],
  [
    [-1, 0],
    [1, 0],
    [0, -1],
    [0, 1],
  ],
  [
    [-1, -1],
    [0, -1],
    [1, -1],
    [-1, 0],
  ],
];

/** Nothing where too little stands around to tell one place from another. */
function keyOf(grid: SheetGrid, row: number, col: number, which: number): number {
  let hash = Math.imul(which + 1, 0x9e3779b1);
  let told = 0;
  for (const [down, right] of surroundings[which] ?? []) {
    const content = contentAt(grid, row + down, col + right);
    if (content > 1) told += content % 2 === 0 ? 2 : 1;
    hash = Math.imul(hash ^ content, 0x85ebca6b);
    hash ^= hash >>> 13;
  }
  return told >= 4 ? (hash === 0 ? 1 : hash) : 0;
}

/** How often each key was met; numbers only. */
class Tally {
  private readonly keys: Int32Array;
  private readonly others: Int32Array;
  private readonly counts: Int32Array;
  private readonly mask: number;

  constructor(most: number) {
    let size = 64;
    while (size < most * 2) size *= 2;
    this.mask = size - 1;
    this.keys = new Int32Array(size);
    this.others = new Int32Array(size);
    this.counts = new Int32Array(size);
  }

  add(key: number, other: number): number {
    const slot = this.slotOf(key, other);
    this.keys[slot] = key;
    this.others[slot] = other;
    const count = (this.counts[slot] as number) + 1;
    this.counts[slot] = count;
    return count;
  }

  count(key: number, other: number): number {
    return this.counts[this.slotOf(key, other)] as number;
  }

  set(key: number, other: number, count: number): void {
    const slot = this.slotOf(key, other);
    this.keys[slot] = key;
    this.others[slot] = other;
    this.counts[slot] = count;
  }

  private slotOf(key: number, other: number): number {
    let hash = Math.imul(key, 0x27d4eb2f) ^ Math.imul(other, 0x165667b1);
    hash ^= hash >>> 15;
    for (let slot = hash & this.mask; ; slot = (slot + 1) & this.mask) {
      if (this.counts[slot] === 0) return slot;
      if (this.keys[slot] === key && this.others[slot] === other) return slot;
    }
  }
}

const total = -1;
const bestContent = -2;
const bestCount = -3;

export function* surroundingClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const tally = new Tally(4 * surroundings.length * cellsOf(evidence));
  for (const grid of evidence.grids) {
    eachCentre(grid, (row, col, content) => {
      for (let which = 0; which < surroundings.length; which++) {
        const key = keyOf(grid, row, col, which);
        if (key === 0) continue;
        tally.add(key, total);
        const count = tally.add(key, content);
        if (count > tally.count(key, bestCount)) {
          tally.set(key, bestCount, count);
          tally.set(key, bestContent, content);
        }
      }
    });
    yield undefined;
  }
  const clues: Clue[] = [];
  for (const grid of evidence.grids) {
    eachCentre(grid, (row, col, content) => {
      const clue = judge(evidence, tally, grid, row, col, content);
      if (clue) clues.push(clue);
    });
    yield undefined;
  }
  return clues;
}

function cellsOf(evidence: Evidence): number {
  let cells = 0;
  for (const grid of evidence.grids) eachCentre(grid, () => cells++);
  return cells;
}

function eachCentre(
  grid: SheetGrid,
  tell: (row: number, col: number, content: number) => void,
): void {
  const { top, left, bottom, right } = grid.area;
  for (let row = top; row <= bottom; row++) {
    for (let col = left; col <= right; col++) {
      const formula = grid.formula(row, col);
      if (formula > 0) tell(row, col, formula * 2);
      else if (grid.kind(row, col) === Kind.Number) tell(row, col, 1);
    }
  }
}

function judge(
  evidence: Evidence,
  tally: Tally,
  grid: SheetGrid,
  row: number,
  col: number,
  content: number,
): Clue | undefined {
  let expected = 0;
  let support = 0;
  let most = 0;
  for (let which = 0; which < surroundings.length; which++) {
    const key = keyOf(grid, row, col, which);
    if (key === 0) continue;
    const others = tally.count(key, total) - 1;
    const own = tally.count(key, content) - 1;
    const best = tally.count(key, bestContent);
    if (best === content || best === 1 || others < 2) {
      // The same is found elsewhere: it belongs there.
      if (own > 0) support -= Math.log2(1 + own) * 1.5;
      continue;
    }
    const agree = tally.count(key, bestCount);
    if (agree / others < 0.75) continue;
    if (expected !== 0 && expected !== best) continue;
    expected = best;
    most = Math.max(most, agree);
    support += Math.log2(1 + Math.min(agree, 30)) * (agree / others) - Math.log2(1 + own) * 2;
  }
  if (expected === 0) return undefined;
  if (isData(evidence.shapes.of(expected / 2))) return undefined;
  const formula = expected / 2;
  const at: CellPosition = { row, col };
  const place = address(row, col);
  const elsewhere = `${String(most)} cells with the same surroundings`;
  if (content === 1) {
    const weight = support;
    if (weight < 3) return undefined;
    return {
      kind: 'constant',
      sheet: grid.sheet,
      areas: [cell(row, col)],
      sentence: `${place} is a typed-in number; ${elsewhere} have a formula, here it would be ${evidence.shown(formula, row, col)}.`,
      expected: evidence.text(formula),
      weight,
      level: 'fact',
    };
  }
  const own = content / 2;
  const found = differenceOf(evidence.shapes.of(own), evidence.shapes.of(formula), at);
  const near = found.places <= 1 ? 2 : found.places <= 3 ? 1 : -1;
  const rare = evidence.count(own) <= 2 ? 0.5 : -Math.min(3, Math.log2(evidence.count(own)) / 2);
  const weight = support + near + rare;
  if (weight < 3) return undefined;
  return {
    kind: 'elsewhere',
    sheet: grid.sheet,
    areas: [cell(row, col)],
    sentence: `${place} ${found.words}; ${elsewhere} agree, here it would be ${evidence.shown(formula, row, col)}.`,
    expected: evidence.text(formula),
    weight,
    level: 'fact',
  };
}
