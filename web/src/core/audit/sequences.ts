// Runs of one formula whose references go on by a step of their own: each track of a summary takes the
// next column of another sheet, each block the next row. A cell that leaves the step, while the
// next one is on it again, took the wrong track.

import { areaAddress, maxColumns, maxRows } from '../address/area';
import { writeReference, type Coordinate, type CellPosition } from '../formula/reference';
import { print } from '../formula/print';
import type { Node } from '../formula/syntax';
import { beginsChain } from './chains';
import { differenceOf } from './difference';
import { address, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { corners, shapeOf, type Shape } from './shape';
import type { SheetGrid } from './SheetGrid';

/** Fewer than this tell no step. */
const shortest = 4;
/** So many of the steps must be alike. */
const regular = 0.6;

type Member = { at: CellPosition; formula: number; shape: Shape };

export function* sequenceClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  for (const grid of evidence.grids) {
    if (evidence.isIrregular(grid.sheet)) continue;
    const { area } = grid;
    for (let row = area.top; row <= area.bottom; row++) {
      alongTrack(evidence, grid, row, true, clues);
      yield undefined;
    }
    for (let col = area.left; col <= area.right; col++) {
      alongTrack(evidence, grid, col, false, clues);
      yield undefined;
    }
  }
  return clues;
}

function alongTrack(
  evidence: Evidence,
  grid: SheetGrid,
  track: number,
  isRow: boolean,
  clues: Clue[],
): void {
  const { area } = grid;
  let run: Member[] = [];
  let isMixed = false;
  const close = (): void => {
    if (run.length >= shortest && isMixed) inRun(evidence, grid, run, clues);
    run = [];
    isMixed = false;
  };
  const [from, to] = isRow ? [area.left, area.right] : [area.top, area.bottom];
  for (let at = from; at <= to; at++) {
    const place = isRow ? { row: track, col: at } : { row: at, col: track };
    const formula = grid.formula(place.row, place.col);
    if (formula === 0) {
      close();
      continue;
    }
    const last = run.at(-1);
    if (last && last.formula !== formula) {
      const shape = evidence.shapes.of(formula);
      if (shape.skeleton === last.shape.skeleton) isMixed = true;
      else close();
    }
    const shape = run.at(-1)?.formula === formula ? (run.at(-1) as Member).shape : undefined;
    run.push({ at: place, formula, shape: shape ?? evidence.shapes.of(formula) });
  }
  close();
}

/** A corner's track: how far from the cell's own row or column, or where it is fixed. */
type Track = { at: number; from: 'row' | 'col' | undefined };
type Tracks = { tracks: Track[]; signs: string };

const tracksOfShapes = new WeakMap<Shape, Tracks>();

/** The corners of a shape's references; the dollar signs beside them. */
function tracksOf(shape: Shape): Tracks {
  let known = tracksOfShapes.get(shape);
  if (!known) {
    known = { tracks: [], signs: '' };
    for (const slot of shape.slots) {
      if (slot.kind !== 'reference') continue;
      known.signs += `|${slot.prefix}`;
      for (const [i, corner] of corners(slot).entries()) {
        const isFixed = corner?.fixed === true;
        const own = i % 2 === 0 ? 'row' : 'col';
        known.tracks.push({ at: corner?.at ?? 0, from: corner && !isFixed ? own : undefined });
        known.signs += isFixed ? '$' : '.';
      }
    }
    tracksOfShapes.set(shape, known);
  }
  return known;
}

/** The corner numbers of a member's references as tracks of the sheet. */
function valuesOf({ at, shape }: Member): { numbers: number[]; signs: string } {
  const { tracks, signs } = tracksOf(shape);
  return {
    numbers: tracks.map((track) => (track.from ? track.at + at[track.from] : track.at)),
    signs,
  };
}

function inRun(evidence: Evidence, grid: SheetGrid, run: Member[], clues: Clue[]): void {
  const all = run.map(valuesOf);
  const width = all[0]?.numbers.length ?? 0;
  if (width === 0) return;
  const signs = mostCommon(all.map((one) => one.signs));
  if (signs.share < regular) return;
  const steps: (number | undefined)[] = [];
  let steady = 1;
  for (let i = 0; i < width; i++) {
    const differences: number[] = [];
    for (let at = 1; at < run.length; at++) {
      differences.push((all[at]?.numbers[i] ?? 0) - (all[at - 1]?.numbers[i] ?? 0));
    }
    const { value, share } = mostCommon(differences);
    steps.push(share >= regular || (run.length <= 5 && share >= 0.5) ? value : undefined);
    steady = Math.min(steady, share);
  }
  if (steps.every((step) => step === undefined)) return;
  const odd: { at: number; numbers: number[]; parts: number }[] = [];
  for (let at = 0; at < run.length; at++) {
    const expected = expectedAt(all, at, steps);
    if (expected) odd.push({ at, ...expected });
  }
  if (odd.length === 0 || odd.length > Math.max(1, run.length / 6)) return;
  for (const { at, numbers, parts } of odd) {
    const member = run[at] as Member;
    const isEnd = at === 0 || at === run.length - 1;
    const support = Math.log2(run.length) * 1.6 * steady - (isEnd ? 2 : 0);
    const rare = evidence.count(member.formula) <= 1 ? 0.5 : -1;
    const weight = support + (parts <= 2 ? 1.5 : 0) + rare - (odd.length - 1);
    if (weight < 3) continue;
    const model = run[at === 0 ? 1 : at - 1] as Member;
    if (at === 0 && beginsChain(evidence, grid, member.at, model.formula)) continue;
    const expected = rewritten(member, model, numbers);
    clues.push(clueOf(grid, run, member, expected, weight));
  }
}

/** What the references would be by their steps; nothing where they are so, or nobody can tell. */
function expectedAt(
  all: { numbers: number[] }[],
  at: number,
  steps: (number | undefined)[],
): { numbers: number[]; parts: number } | undefined {
  const own = all[at]?.numbers ?? [];
  const numbers = [...own];
  let parts = 0;
  for (const [i, step] of steps.entries()) {
    if (step === undefined) continue;
    const before = all[at - 1]?.numbers[i];
    const after = all[at + 1]?.numbers[i];
    const far = at === 0 ? all[2]?.numbers[i] : all[at - 2]?.numbers[i];
    let expected: number;
    if (before !== undefined && after !== undefined) {
      if (after - before !== 2 * step) continue;
      expected = before + step;
    } else if (before !== undefined) {
      if (far === undefined || before - far !== step) continue;
      expected = before + step;
    } else {
      if (after === undefined || far === undefined || far - after !== step) continue;
      expected = after - step;
    }
    if (own[i] === expected) continue;
    numbers[i] = expected;
    parts++;
  }
  return parts > 0 ? { numbers, parts } : undefined;
}

/** The member's formula with these corner numbers, relative again. */
function rewritten(member: Member, model: Member, numbers: readonly number[]): string {
  let next = 0;
  let slot = 0;
  const references = model.shape.slots.filter((one) => one.kind === 'reference');
  const { row, col } = member.at;
  const replace = (node: Node): string | undefined => {
    if (node.kind !== 'reference') return undefined;
    const own = references[slot++];
    if (!own) return undefined;
    const take = (corner: Coordinate | undefined, base: number, limit: number) => {
      const track = numbers[next++] ?? 0;
      if (!corner) return undefined;
      const inside = Math.min(limit, Math.max(1, track));
      return { at: corner.fixed ? inside : inside - base, fixed: corner.fixed };
    };
    const corner = (of: typeof own.shape.from) => {
      const first = take(of.row, row, maxRows);
      const second = take(of.col, col, maxColumns);
      return { ...(first ? { row: first } : {}), ...(second ? { col: second } : {}) };
    };
    const from = corner(own.shape.from);
    const to = corner(own.shape.to ?? own.shape.from);
    return own.prefix + writeReference(own.shape.to ? { from, to } : { from }, 'r1c1');
  };
  return `=${print(member.shape.root, { replace })}`;
}

function clueOf(
  grid: SheetGrid,
  run: Member[],
  member: Member,
  expected: string,
  weight: number,
): Clue {
  const { row, col } = member.at;
  const found = differenceOf(member.shape, shapeOf(expected), member.at);
  const first = (run[0] as Member).at;
  const last = (run.at(-1) as Member).at;
  const whole = areaAddress({ top: first.row, left: first.col, bottom: last.row, right: last.col });
  const words = found.words.replaceAll('the others', 'by the step of the others it would be');
  return {
    kind: 'step',
    sheet: grid.sheet,
    areas: [cell(row, col)],
    sentence: `${address(row, col)} ${words}; the formulas of ${whole} go on from cell to cell by the same step.`,
    expected,
    weight,
    level: 'fact',
  };
}

function mostCommon<T>(items: readonly T[]): { value: T | undefined; share: number } {
  if (items.every((item) => item === items[0]))
    return { value: items[0], share: items.length === 0 ? 0 : 1 };
  const counts = new Map<T, number>();
  let value: T | undefined;
  let most = 0;
  for (const item of items) {
    const count = (counts.get(item) ?? 0) + 1;
    counts.set(item, count);
    if (count > most) [value, most] = [item, count];
  }
  return { value, share: most / items.length };
}
