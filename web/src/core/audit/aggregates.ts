// Sums and their like whose range stops short of what lies beside it, or takes in the sum itself.

import { areaAddress, type Area } from '../address/area';
import { plainName, walk } from '../formula/syntax';
import { readReference, type CellPosition } from '../formula/reference';
import { Kind as CellKind } from '../model/SheetCells';
import { areaFrom } from './difference';
import { address, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { referenceArguments } from './shape';
import type { SheetGrid } from './SheetGrid';

const aggregates = new Set([
  'SUM',
  'AVERAGE',
  'MAX',
  'MIN',
  'COUNT',
  'COUNTA',
  'PRODUCT',
  'MEDIAN',
  'STDEV',
  'SUBTOTAL',
]);

export type Range = { area: Area; prefix: string; function: string };

/** The ranges of one column or row that a relative formula adds, as from a cell. */
export function rangesOf(evidence: Evidence, formula: number, at: CellPosition): Range[] {
  const ranges: Range[] = [];
  walk(evidence.shapes.of(formula).root, (node) => {
    if (node.kind !== 'call' || !aggregates.has(plainName(node.name))) return;
    for (const arg of referenceArguments(node)) {
      if (!arg) continue;
      const shape = readReference(arg.text, 'r1c1');
      if (!shape?.to || !shape.from.row || !shape.from.col) continue;
      const slot = { kind: 'reference' as const, prefix: arg.prefix, text: arg.text, shape };
      ranges.push({ area: areaFrom(slot, at), prefix: arg.prefix, function: plainName(node.name) });
    }
  });
  return ranges;
}

export function* aggregateClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  const { index } = evidence;
  for (let region = 0; region < index.regionCount; region++) {
    const formula = index.formulaOf(region);
    const text = evidence.text(formula);
    if (text.includes('(') && text.includes(':')) inRegion(evidence, region, formula, clues);
    if (region % atATime === 0) yield undefined;
  }
  return clues;
}

function inRegion(evidence: Evidence, region: number, formula: number, clues: Clue[]): void {
  const { index } = evidence;
  const sheet = index.sheetOf(region);
  const grid = evidence.grids[sheet] as SheetGrid;
  const own = index.areaOf(region);
  const at = { row: own.top, col: own.left };
  for (const range of rangesOf(evidence, formula, at)) {
    if (range.prefix !== '') continue;
    const { area } = range;
    const isIn =
      area.top <= at.row && area.bottom >= at.row && area.left <= at.col && area.right >= at.col;
    if (isIn) {
      clues.push({
        kind: 'own-total',
        sheet,
        areas: [own],
        sentence: `${address(at.row, at.col)} takes ${areaAddress(area)}, in which it lies itself.`,
        expected: '',
        weight: 9,
        level: 'fact',
      });
      continue;
    }
    const short = leftOut(grid, area, at, evidence);
    if (!short) continue;
    clues.push({
      kind: 'left-out',
      sheet,
      areas: [own],
      sentence: `${address(at.row, at.col)} takes ${areaAddress(area)} by ${range.function} and leaves out ${areaAddress(short.area)}, which ${short.why}.`,
      expected: '',
      weight: short.weight,
      level: 'doubt',
    });
  }
}

type Short = { area: Area; why: string; weight: number };

/** Cells of the same kind right beside the range that it does not take. */
function leftOut(
  grid: SheetGrid,
  area: Area,
  at: CellPosition,
  evidence: Evidence,
): Short | undefined {
  const isColumn = area.left === area.right;
  const isRow = area.top === area.bottom;
  if (isColumn === isRow) return undefined;
  const track = isColumn ? area.left : area.top;
  const [first, last] = isColumn ? [area.top, area.bottom] : [area.left, area.right];
  const own = isColumn ? at.row : at.col;
  const isInTrack = (isColumn ? at.col : at.row) === track;
  const place = (n: number): [number, number] => (isColumn ? [n, track] : [track, n]);
  const kindAt = (n: number) => grid.kind(...place(n));
  const areaOf = (from: number, to: number): Area =>
    isColumn
      ? { top: from, bottom: to, left: track, right: track }
      : { left: from, right: to, top: track, bottom: track };
  // A formula that shows nothing yet may show a number once there is data.
  const isNumber = (n: number) =>
    kindAt(n) === CellKind.Number || (kindAt(n) !== CellKind.Text && grid.formula(...place(n)) > 0);
  if (!isNumber(first) || !isNumber(last)) return undefined;
  // Between the range and its sum: nothing but numbers.
  if (isInTrack && (own > last + 1 || own < first - 1)) {
    const [from, to] = own > last ? [last + 1, own - 1] : [own + 1, first - 1];
    if (to - from < 3) {
      let numbers = 0;
      for (let n = from; n <= to; n++) if (isNumber(n)) numbers++;
      const edge = own > last ? last : first;
      const alike = sameMake(grid, place(edge), place(own > last ? from : to));
      if (numbers === to - from + 1 && !isTotal(evidence, grid, place(own > last ? from : to))) {
        return {
          area: areaOf(from, to),
          why: 'lies between the range and its result',
          weight: alike ? 6.5 : 4,
        };
      }
    }
  }
  // The far end: the list begins before the range, or goes on behind it.
  for (const [edge, way] of [
    [first, -1],
    [last, 1],
  ] as const) {
    if (isInTrack && (own - edge) * way > 0) continue;
    const beyond = edge + way;
    if (!isNumber(beyond) || isYear(grid, place(beyond))) continue;
    const beside = [-1, 1].map((by) => (isColumn ? [beyond, track + by] : [track + by, beyond]));
    if (isDate(grid, place(beyond), beside) && !isDateLike(grid, place(edge))) continue;
    if (isTotal(evidence, grid, place(beyond))) continue;
    if (!sameMake(grid, place(edge), place(beyond))) continue;
    let end = beyond;
    while (isNumber(end + way) && Math.abs(end - edge) < 400) end += way;
    const extra = Math.abs(end - edge);
    // A range that takes a part of a long list does so on purpose.
    if (extra > 2) continue;
    const [from, to] = way > 0 ? [beyond, end] : [end, beyond];
    const weight = last - first >= 2 ? 5 : 3.5;
    return { area: areaOf(from, to), why: 'goes on in the same way', weight };
  }
  return undefined;
}

/** Both typed in, or both the same relative formula. */
function sameMake(grid: SheetGrid, one: [number, number], other: [number, number]): boolean {
  return grid.formula(...one) === grid.formula(...other);
}

function isYear(grid: SheetGrid, [row, col]: [number, number]): boolean {
  const value = Number(grid.cells.valueAt(row, col).value);
  return Number.isInteger(value) && value >= 1900 && value <= 2200;
}

/** A day from 1980 to 2099, as cells count them. */
function isDateLike(grid: SheetGrid, [row = 0, col = 0]: readonly number[]): boolean {
  const { kind, value } = grid.cells.valueAt(row, col);
  const day = kind === CellKind.Number ? Number(value) : 0;
  return Number.isInteger(day) && day >= 29_221 && day < 73_051;
}

/** One of several headings that are days: how cells are formatted is not known. */
function isDate(
  grid: SheetGrid,
  at: readonly [number, number],
  beside: readonly (readonly number[])[],
): boolean {
  const value = ([row = 0, col = 0]: readonly number[]) => grid.cells.valueAt(row, col).value;
  return (
    isDateLike(grid, at) &&
    beside.some((other) => isDateLike(grid, other) && value(other) !== value(at))
  );
}

function isTotal(evidence: Evidence, grid: SheetGrid, [row, col]: [number, number]): boolean {
  const formula = grid.formula(row, col);
  return formula > 0 && evidence.shapes.of(formula).functions.some((name) => aggregates.has(name));
}
