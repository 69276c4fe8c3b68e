// Columns, or rows, that are computed like each other though they do not stand side by side: sales in
// each year's block, a budget and what came of it. Where nearly all their tracks have the same formulas,
// the one that has not is told.

import { columnLetters } from '../address/area';
import type { CellPosition } from '../formula/reference';
import { differenceOf } from './difference';
import { address, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { isData } from './shape';
import type { SheetGrid } from './SheetGrid';

/** So many tracks have to agree, with so many formulas among them: filled ones are seen side by side. */
const fewest = 4;
const fewestFormulas = 3;
const agreeing = 0.75;
const tracksLimit = 2 ** 15;

type Pair = { one: number; other: number; agree: number; formulas: number; latest: number };
/** What a partner says of a cell. */
type Voice = { track: number; agree: number; of: number; formula: number };
type Odd = { at: CellPosition; voices: Voice[] };

export function* partnerClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  for (const grid of evidence.grids) {
    if (evidence.isIrregular(grid.sheet)) continue;
    for (const isRow of [false, true]) {
      const odd = new Map<string, Odd>();
      for (const pair of yield* pairsOf(grid, isRow)) {
        compare(grid, isRow, pair, odd);
        yield undefined;
      }
      for (const one of odd.values()) {
        const clue = clueOf(evidence, grid, isRow, one, odd);
        if (clue) clues.push(clue);
      }
    }
  }
  return clues;
}

function placeOf(isRow: boolean, track: number, at: number): CellPosition {
  return isRow ? { row: track, col: at } : { row: at, col: track };
}

/** Tracks with the same formulas, each with the next one that has them. */
function* pairsOf(grid: SheetGrid, isRow: boolean): Generator<undefined, Pair[]> {
  const { top, left, bottom, right } = grid.area;
  const [first, last, from, to] = isRow ? [top, bottom, left, right] : [left, right, top, bottom];
  const pairs = new Map<number, Pair>();
  const latest = new Map<number, number>();
  if (last >= tracksLimit) return [];
  for (let at = from; at <= to; at++) {
    latest.clear();
    for (let track = first; track <= last; track++) {
      const { row, col } = placeOf(isRow, track, at);
      const formula = grid.formula(row, col);
      if (formula === 0) continue;
      const before = latest.get(formula);
      latest.set(formula, track);
      if (before === undefined || track - before < 2) continue;
      const key = before * tracksLimit + track;
      const pair = pairs.get(key);
      if (!pair) {
        pairs.set(key, { one: before, other: track, agree: 1, formulas: 1, latest: formula });
        continue;
      }
      pair.agree += 1;
      if (pair.latest !== formula) pair.formulas += 1;
      pair.latest = formula;
    }
    yield undefined;
  }
  return [...pairs.values()].filter(
    ({ agree, formulas }) => agree >= fewest && formulas >= fewestFormulas,
  );
}

/** Notes for both what the other has, where they differ in few places. */
function compare(
  grid: SheetGrid,
  isRow: boolean,
  { one, other }: Pair,
  odd: Map<string, Odd>,
): void {
  const { area } = grid;
  const [from, to] = isRow ? [area.left, area.right] : [area.top, area.bottom];
  const differing: number[] = [];
  let agree = 0;
  for (let at = from; at <= to; at++) {
    const [a, b] = [contentAt(grid, isRow, one, at), contentAt(grid, isRow, other, at)];
    if (a === b && a > 0) agree += 1;
    // Beside a formula a number counts; a blank or a text is another layout.
    else if (a !== b && Math.max(a, b) > 0 && a !== 0 && b !== 0) differing.push(at);
    else if (a !== b && Math.max(a, b) > 0) agree -= 0.5;
  }
  const of = agree + differing.length;
  if (differing.length === 0 || differing.length > 2 || agree / of < agreeing) return;
  for (const at of differing) {
    note(odd, grid, isRow, one, at, { track: other, agree, of });
    note(odd, grid, isRow, other, at, { track: one, agree, of });
  }
}

/** The formula's number, -1 for a number that was typed in, 0 for anything else. */
function contentAt(grid: SheetGrid, isRow: boolean, track: number, at: number): number {
  const { row, col } = placeOf(isRow, track, at);
  const formula = grid.formula(row, col);
  return formula > 0 ? formula : grid.isConstant(row, col) ? -1 : 0;
}

function note(
  odd: Map<string, Odd>,
  grid: SheetGrid,
  isRow: boolean,
  track: number,
  at: number,
  voice: Omit<Voice, 'formula'>,
): void {
  const formula = contentAt(grid, isRow, voice.track, at);
  if (formula <= 0) return;
  const place = placeOf(isRow, track, at);
  const key = address(place.row, place.col);
  const known = odd.get(key);
  if (known) known.voices.push({ ...voice, formula });
  else odd.set(key, { at: place, voices: [{ ...voice, formula }] });
}

function clueOf(
  evidence: Evidence,
  grid: SheetGrid,
  isRow: boolean,
  { at, voices }: Odd,
  odd: ReadonlyMap<string, Odd>,
): Clue | undefined {
  const [best] = [...voices].sort((a, b) => b.agree - a.agree) as [Voice];
  const same = voices.filter(({ formula }) => formula === best.formula).length;
  if (same < voices.length) return undefined;
  const { row, col } = at;
  const own = grid.formula(row, col);
  const partner = placeOf(isRow, best.track, isRow ? col : row);
  const theirs = odd.get(address(partner.row, partner.col))?.voices.length ?? 0;
  // Of two that differ the one is odd that more others contradict; of equals the rarer, then the later.
  const isOdd =
    same !== theirs
      ? same > theirs
      : own === 0 ||
        evidence.count(own) < evidence.count(best.formula) ||
        (evidence.count(own) === evidence.count(best.formula) && best.track < (isRow ? row : col));
  if (!isOdd || isData(evidence.shapes.of(best.formula))) return undefined;
  const found =
    own === 0
      ? { words: 'is a typed-in number', places: 2 }
      : differenceOf(evidence.shapes.of(own), evidence.shapes.of(best.formula), at);
  const near = found.places <= 1 ? 1 : found.places <= 3 ? 0 : -1.5;
  const weight =
    1.5 +
    Math.min(4, Math.log2(best.agree)) +
    (same - 1) * 1.5 +
    near -
    (best.of - best.agree) * 0.5;
  if (weight < 2.5) return undefined;
  const name = (track: number) =>
    isRow ? `row ${String(track)}` : `column ${columnLetters(track)}`;
  const words = (
    found.places > 3 ? `has ${evidence.shown(own, row, col)}` : found.words
  ).replaceAll('the others', 'its partner');
  const there = `${address(partner.row, partner.col)} has ${evidence.shown(best.formula, partner.row, partner.col)}`;
  const share = `${String(Math.floor(best.agree))} of ${String(Math.ceil(best.of))} ${isRow ? 'columns' : 'rows'}`;
  return {
    kind: 'partner',
    sheet: grid.sheet,
    areas: [cell(row, col)],
    sentence: `${address(row, col)} ${words}; ${name(isRow ? row : col)} is computed like ${name(best.track)} in ${share}, and there ${there}.`,
    expected: evidence.text(best.formula),
    weight,
    level: same > 1 ? 'fact' : 'doubt',
  };
}
