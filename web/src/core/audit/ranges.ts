// Ranges of one formula that ought to be equally long and are not, and lookup tables that slide when
// the formula is filled.

import { areaAddress, type Area } from '../address/area';
import { plainName, walk, type NodeOf } from '../formula/syntax';
import { readReference, type CellPosition, type ReferenceShape } from '../formula/reference';
import { areaFrom } from './difference';
import { address, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { referenceArguments } from './shape';

/** Which arguments of a function go over the same tracks. */
function paired(name: string, args: number): number[] {
  const all = Array.from({ length: args }, (_, i) => i);
  switch (name) {
    case 'SUMPRODUCT':
    case 'CORREL':
    case 'SLOPE':
    case 'INTERCEPT':
    case 'RSQ':
      return all;
    case 'SUMIFS':
    case 'AVERAGEIFS':
    case 'MAXIFS':
    case 'MINIFS':
      return [0, ...all.filter((i) => i % 2 === 1)];
    case 'COUNTIFS':
      return all.filter((i) => i % 2 === 0);
    case 'SUMIF':
    case 'AVERAGEIF':
      return [0, 2];
    case 'LOOKUP':
    case 'XLOOKUP':
      return [1, 2];
    default:
      return [];
  }
}

/** The argument that is a table to look in. */
const tables: Record<string, number | undefined> = {
  VLOOKUP: 1,
  HLOOKUP: 1,
  MATCH: 1,
  LOOKUP: 1,
  XLOOKUP: 1,
  XMATCH: 1,
};

type Range = { area: Area; shape: ReferenceShape; text: string };

function rangeOf(node: NodeOf<'reference'> | undefined, at: CellPosition): Range | undefined {
  if (!node) return undefined;
  const shape = readReference(node.text, 'r1c1');
  if (!shape?.to) return undefined;
  const { prefix, text } = node;
  return { area: areaFrom({ kind: 'reference', prefix, text, shape }, at), shape, text: prefix };
}

export function* rangeClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  const { index } = evidence;
  const told = new Set<string>();
  for (let region = 0; region < index.regionCount; region++) {
    const formula = index.formulaOf(region);
    const text = evidence.text(formula);
    if (text.includes(':')) {
      const sheet = index.sheetOf(region);
      const own = index.areaOf(region);
      walk(evidence.shapes.of(formula).root, (node) => {
        if (node.kind !== 'call') return;
        const clue = unequal(node, sheet, own) ?? sliding(node, sheet, own);
        const key = `${String(formula)} ${clue?.kind ?? ''} ${areaAddress(own)}`;
        if (clue && !told.has(key)) clues.push(clue);
        told.add(key);
      });
    }
    if (region % atATime === 0) yield undefined;
  }
  return clues;
}

function unequal(node: NodeOf<'call'>, sheet: number, own: Area): Clue | undefined {
  const name = plainName(node.name);
  const at = { row: own.top, col: own.left };
  const args = referenceArguments(node);
  const ranges = paired(name, args.length).flatMap((i) => rangeOf(args[i], at) ?? []);
  const [one] = ranges;
  const other = ranges.find(
    ({ area }) =>
      one &&
      (height(area) !== height(one.area) || (name !== 'LOOKUP' && width(area) !== width(one.area))),
  );
  if (!one || !other) return undefined;
  return {
    kind: 'unequal',
    sheet,
    areas: [own],
    sentence: `${address(at.row, at.col)} goes over ${size(one.area)} of ${one.text}${areaAddress(one.area)} and over ${size(other.area)} of ${other.text}${areaAddress(other.area)} together.`,
    expected: '',
    weight: 8.5,
    level: 'fact',
  };
}

const height = ({ top, bottom }: Area): number => bottom - top + 1;
const width = ({ left, right }: Area): number => right - left + 1;

function size(area: Area): string {
  const [rows, cols] = [height(area), width(area)];
  return cols === 1
    ? `${String(rows)} rows`
    : rows === 1
      ? `${String(cols)} columns`
      : `${String(rows)} × ${String(cols)} cells`;
}

function sliding(node: NodeOf<'call'>, sheet: number, own: Area): Clue | undefined {
  const name = plainName(node.name);
  const which = tables[name];
  if (which === undefined) return undefined;
  const at = { row: own.top, col: own.left };
  const table = rangeOf(referenceArguments(node)[which], at);
  if (!table) return undefined;
  const { from, to } = table.shape;
  const moves = (one: typeof from.row, other: typeof from.row) =>
    one !== undefined && other !== undefined && !(one.fixed && other.fixed);
  const isDown = height(own) > 1 && height(table.area) > 1 && moves(from.row, to?.row);
  const isAcross = width(own) > 1 && width(table.area) > 1 && moves(from.col, to?.col);
  if (!isDown && !isAcross) return undefined;
  const end = { row: own.bottom, col: own.right };
  const last = rangeOf(referenceArguments(node)[which], end);
  const cells = Math.max(isDown ? height(own) : 1, isAcross ? width(own) : 1);
  const isOwnTrack =
    isDown && !isAcross && height(table.area) <= height(own) && table.area.top > at.row;
  return {
    kind: 'sliding',
    sheet,
    areas: [own],
    sentence: `${name} in ${address(at.row, at.col)} looks in ${table.text}${areaAddress(table.area)}; filled ${isDown ? 'down' : 'across'}, the table slides and is ${last ? areaAddress(last.area) : 'another'} in ${address(end.row, end.col)}.`,
    expected: '',
    weight: isOwnTrack ? 2.5 : Math.min(7, 4.5 + Math.log2(cells) / 2),
    level: 'doubt',
  };
}
