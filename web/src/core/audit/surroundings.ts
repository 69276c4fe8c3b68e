// Cells whose surroundings are found elsewhere in the workbook, with another formula in the middle:
// a block repeated along a sheet, a sheet that is a copy of another, columns computed like each
// other. Surroundings are what stands above, below, before and behind: the relative formulas and the
// texts. Looked at twice: by relative formulas as they are, and by their forms, where the numbers and
// distances of repeated blocks differ. Counted in hash tables, a few places for every cell.

import type { CellPosition } from '../formula/reference';
import { Kind } from '../model/SheetCells';
import { beginsChain } from './chains';
import { differenceOf } from './difference';
import { address, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { isData } from './shape';
import type { SheetGrid } from './SheetGrid';

/** The number by which a formula is known: its own, or that of its form. */
type Known = (formula: number) => number;

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
  [
    [-1, -1],
    [0, -1],
    [1, -1],
  ],
];

/**
 * What stands in each cell of a sheet, as a number: 0 blank, 1 a number, even a formula, odd a text.
 * With a margin of two blank cells, so that what stands around is found without asking where it ends.
 */
class Contents {
  readonly all: Int32Array;
  /** Of each cell which of its surroundings may be met elsewhere as well, a bit for each. */
  readonly repeated: Uint8Array;
  /** Cells that are not blank. */
  filled = 0;
  /** Of each of the surroundings how far its cells stand from the one in the middle. */
  readonly distances: readonly Int32Array[];
  private readonly width: number;

  constructor(
    readonly grid: SheetGrid,
    known: Known,
  ) {
    const { top, left, bottom, right } = grid.area;
    this.width = right - left + 5;
    this.all = new Int32Array(Math.max(0, this.width * (bottom - top + 5)));
    this.repeated = new Uint8Array(this.all.length);
    this.distances = surroundings.map((cells) =>
      Int32Array.from(cells, ([down, right]) => down * this.width + right),
    );
    grid.cells.eachFilled(grid.area, (row, col, kind, formula) => {
      let content = 1;
      if (formula > 0) content = known(formula) * 2;
      else if (kind === Kind.Text) content = grid.textNumber(row, col) * 2 + 1;
      this.all[this.place(row, col)] = content;
      this.filled += 1;
    });
  }

  place(row: number, col: number): number {
    const { top, left } = this.grid.area;
    return (row - top + 2) * this.width + col - left + 2;
  }

  /** True if two on either side in its row or column are alike: what breaks such is seen there. */
  isAmong(at: number): boolean {
    const { all, width } = this;
    const own = all[at];
    const alike = (step: number) =>
      all[at - step] === own &&
      all[at + step] === own &&
      all[at - 2 * step] === own &&
      all[at + 2 * step] === own;
    return alike(1) || alike(width);
  }

  /**
   * Tells each cell with a formula or a number, but for those among their like. Others may take a
   * turn after each row.
   */
  *eachCentre(
    tell: (row: number, col: number, at: number, content: number) => void,
  ): Generator<undefined, void> {
    const { top, left, bottom, right } = this.grid.area;
    for (let row = top; row <= bottom; row++) {
      for (let col = left, at = this.place(row, left); col <= right; col++, at++) {
        const content = this.all[at] as number;
        if (content === 0 || (content > 1 && content % 2 === 1) || this.isAmong(at)) continue;
        tell(row, col, at, content);
      }
      yield undefined;
    }
  }
}

/** Nothing where too little stands around to tell one place from another. */
function keyOf({ all, distances }: Contents, at: number, which: number): number {
  const own = distances[which] as Int32Array;
  let hash = Math.imul(which + 1, 0x9e3779b1);
  let told = 0;
  for (const distance of own) {
    const content = all[at + distance] as number;
    if (content > 1) told += 2 - (content & 1);
    hash = Math.imul(hash ^ content, 0x85ebca6b);
    hash ^= hash >>> 13;
  }
  return told >= 3 ? (hash === 0 ? 1 : hash) : 0;
}

/** Marks by hash: whether a key was met before. A few keys share a mark, which does no harm. */
class Marks {
  private readonly bits: Int32Array;
  private readonly mask: number;

  constructor(most: number) {
    let size = 64;
    while (size < most * 4) size *= 2;
    this.mask = size - 1;
    this.bits = new Int32Array(size / 32);
  }

  has(key: number): boolean {
    const place = key & this.mask;
    return ((this.bits[place >>> 5] as number) & (1 << (place & 31))) !== 0;
  }

  add(key: number): void {
    const place = key & this.mask;
    this.bits[place >>> 5] = (this.bits[place >>> 5] as number) | (1 << (place & 31));
  }
}

/** How often each key was met; numbers only, three for each in a table that grows. */
class Tally {
  private table = new Int32Array(3 * 1_024);
  private used = 0;

  add(key: number, other: number): number {
    const at = this.claim(key, other);
    const count = (this.table[at + 2] as number) + 1;
    this.table[at + 2] = count;
    return count;
  }

  count(key: number, other: number): number {
    return this.table[this.find(key, other) + 2] as number;
  }

  set(key: number, other: number, count: number): void {
    this.table[this.claim(key, other) + 2] = count;
  }

  /** Where it stands, from now on if it did not before. */
  private claim(key: number, other: number): number {
    const at = this.find(key, other);
    if (this.table[at + 2] !== 0) return at;
    if (this.used * 6 > this.table.length) {
      this.grow();
      return this.claim(key, other);
    }
    this.used += 1;
    this.table[at] = key;
    this.table[at + 1] = other;
    return at;
  }

  private grow(): void {
    const before = this.table;
    this.table = new Int32Array(before.length * 2);
    for (let from = 0; from < before.length; from += 3) {
      if (before[from + 2] === 0) continue;
      const to = this.find(before[from] as number, before[from + 1] as number);
      for (let i = 0; i < 3; i++) this.table[to + i] = before[from + i] as number;
    }
  }

  private find(key: number, other: number): number {
    const { table } = this;
    let hash = Math.imul(key, 0x27d4eb2f) ^ Math.imul(other, 0x165667b1);
    hash ^= hash >>> 15;
    const size = table.length / 3;
    for (let slot = hash & (size - 1); ; slot = (slot + 1) & (size - 1)) {
      const at = slot * 3;
      if (table[at + 2] === 0 || (table[at] === key && table[at + 1] === other)) return at;
    }
  }
}

const total = -1;
const bestContent = -2;
const bestCount = -3;
/** Weaker clues are none. */
const least = 2.5;

export function surroundingClues(evidence: Evidence): Generator<undefined, Clue[]> {
  return cluesBy(evidence, (formula) => formula, false);
}

/** By the forms of formulas alone: the same sum over other cells is the same. */
export function formSurroundingClues(evidence: Evidence): Generator<undefined, Clue[]> {
  return cluesBy(evidence, (formula) => evidence.form(formula), true);
}

function* cluesBy(evidence: Evidence, known: Known, byForm: boolean): Generator<undefined, Clue[]> {
  const sheets: Contents[] = [];
  let cells = 0;
  for (const grid of evidence.grids) {
    if (byForm && evidence.isIrregular(grid.sheet)) continue;
    const contents = new Contents(grid, known);
    sheets.push(contents);
    cells += contents.filled;
  }
  // What surrounds one cell alone tells nothing, and there is much of it where no two are alike.
  const met = new Marks(surroundings.length * cells);
  const again = new Marks(surroundings.length * cells);
  for (const contents of sheets) {
    yield* contents.eachCentre((_row, _col, at) => {
      for (let which = 0; which < surroundings.length; which++) {
        const key = keyOf(contents, at, which);
        if (met.has(key)) again.add(key);
        else met.add(key);
      }
    });
  }
  const tally = new Tally();
  for (const contents of sheets) {
    yield* contents.eachCentre((_row, _col, at, content) => {
      for (let which = 0; which < surroundings.length; which++) {
        const key = keyOf(contents, at, which);
        if (key === 0 || !again.has(key)) continue;
        contents.repeated[at] = (contents.repeated[at] as number) | (1 << which);
        tally.add(key, total);
        const count = tally.add(key, content);
        if (count > tally.count(key, bestCount)) {
          tally.set(key, bestCount, count);
          tally.set(key, bestContent, content);
        }
      }
    });
  }
  const clues: Clue[] = [];
  for (const contents of sheets) {
    yield* contents.eachCentre((row, col, at, content) => {
      if (contents.repeated[at] === 0) return;
      const clue = judge(evidence, tally, contents, { row, col }, at, content, byForm);
      if (clue) clues.push(clue);
    });
  }
  return clues;
}

function judge(
  evidence: Evidence,
  tally: Tally,
  contents: Contents,
  place: CellPosition,
  at: number,
  content: number,
  byForm: boolean,
): Clue | undefined {
  let expected = 0;
  let support = 0;
  let most = 0;
  for (let which = 0; which < surroundings.length; which++) {
    if (((contents.repeated[at] as number) & (1 << which)) === 0) continue;
    const key = keyOf(contents, at, which);
    const others = tally.count(key, total) - 1;
    if (others === 0) continue;
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
  return clueOf(evidence, contents.grid, place, expected / 2, { agree: most, support }, byForm);
}

/** What to say of a cell where `expected` stands in the middle of the same surroundings. */
function clueOf(
  evidence: Evidence,
  grid: SheetGrid,
  at: CellPosition,
  expected: number,
  { agree, support }: { agree: number; support: number },
  byForm: boolean,
): Clue | undefined {
  const { row, col } = at;
  if (beginsChain(evidence, grid, at, expected)) return undefined;
  const own = grid.formula(row, col);
  const elsewhere = `${String(agree)} cells with the same surroundings`;
  const shown = evidence.shown(expected, row, col);
  const here = byForm ? `like ${shown}` : `here it would be ${shown}`;
  const clue = {
    sheet: grid.sheet,
    areas: [cell(row, col)],
    expected: byForm ? '' : evidence.text(expected),
    level: byForm ? ('doubt' as const) : ('fact' as const),
  };
  const place = address(row, col);
  if (own === 0) {
    const sentence = `${place} is a typed-in number; ${elsewhere} have a formula, ${here}.`;
    const weight = support - (byForm ? 0.5 : 0);
    return weight < least ? undefined : { ...clue, kind: 'constant', sentence, weight };
  }
  const found = differenceOf(evidence.shapes.of(own), evidence.shapes.of(expected), at);
  const near = found.places <= 1 ? 2 : found.places <= 3 ? 1 : byForm ? -2.5 : -1;
  const times = evidence.count(own);
  const rare = times <= 2 ? 0.5 : -Math.min(3, Math.log2(times) / 2);
  const weight = support + near + rare - (byForm ? 1 : 0);
  if (weight < least) return undefined;
  const words = found.places > 3 ? `has ${evidence.shown(own, row, col)}` : found.words;
  const sentence = `${place} ${words}; ${elsewhere} agree with each other, ${here}.`;
  return { ...clue, kind: 'elsewhere', sentence, weight };
}
