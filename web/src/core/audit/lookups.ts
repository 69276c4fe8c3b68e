// Lookups that cannot give what is meant: a column beyond the table, keys that ought to be sorted and
// are not, a table that ends before its last rows.

import { areaAddress, unquoted, type Area } from '../address/area';
import { readReference } from '../formula/reference';
import { plainName, walk, type Node, type NodeOf } from '../formula/syntax';
import { Kind as CellKind } from '../model/SheetCells';
import { areaFrom } from './difference';
import { address, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { referenceArguments } from './shape';
import type { SheetGrid } from './SheetGrid';

/** So many keys are compared. */
const keysLimit = 5_000;

type Table = { area: Area; grid: SheetGrid | undefined; written: string };

export function* lookupClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const clues: Clue[] = [];
  const told = new Set<string>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    const formula = index.formulaOf(region);
    const sheet = index.sheetOf(region);
    const key = `${String(sheet)} ${String(formula)}`;
    if (!/LOOKUP|MATCH/i.test(evidence.text(formula)) || told.has(key)) continue;
    told.add(key);
    const own = index.areaOf(region);
    walk(evidence.shapes.of(formula).root, (node) => {
      if (node.kind !== 'call') return;
      const table = tableOf(evidence, node, sheet, own);
      const found = table && (beyond(node, table) ?? unsorted(node, table) ?? short(node, table));
      if (!found) return;
      clues.push({
        kind: 'lookup',
        sheet,
        areas: [own],
        sentence: `${plainName(node.name)} in ${address(own.top, own.left)} ${found.words}.`,
        expected: '',
        weight: found.weight,
        level: found.weight > 6 ? 'fact' : 'doubt',
      });
    });
  }
  return clues;
}

function tableOf(
  evidence: Evidence,
  node: NodeOf<'call'>,
  sheet: number,
  own: Area,
): Table | undefined {
  if (!/^(VLOOKUP|HLOOKUP|MATCH)$/.test(plainName(node.name))) return undefined;
  const arg = referenceArguments(node)[1];
  if (!arg) return undefined;
  const shape = readReference(arg.text, 'r1c1');
  if (!shape?.to) return undefined;
  const slot = { kind: 'reference' as const, prefix: arg.prefix, text: arg.text, shape };
  const area = areaFrom(slot, { row: own.top, col: own.left });
  const number =
    arg.prefix === '' ? sheet : evidence.model.sheetNumber(unquoted(arg.prefix.slice(0, -1)));
  const grid = number === undefined ? undefined : evidence.grids[number];
  return { area, grid, written: arg.prefix + areaAddress(area) };
}

function numberOf(node: Node | undefined): number | undefined {
  return node?.kind === 'number' ? Number(node.text) : undefined;
}

type Found = { words: string; weight: number };

function beyond(node: NodeOf<'call'>, { area, written }: Table): Found | undefined {
  const name = plainName(node.name);
  const wanted = numberOf(node.args[2]);
  if (name === 'MATCH' || wanted === undefined) return undefined;
  const [size, word] =
    name === 'VLOOKUP'
      ? [area.right - area.left + 1, 'column']
      : [area.bottom - area.top + 1, 'row'];
  if (wanted <= size) return undefined;
  return {
    words: `asks for ${word} ${String(wanted)} of ${written}, which has ${String(size)}`,
    weight: 9,
  };
}

/** Approximate ones find the last key that is not greater, and only where keys go up. */
function unsorted(node: NodeOf<'call'>, { area, grid, written }: Table): Found | undefined {
  const name = plainName(node.name);
  const mode = node.args[name === 'MATCH' ? 2 : 3];
  const isApproximate =
    mode === undefined ||
    (mode.kind === 'logical' && mode.value) ||
    (mode.kind === 'number' && Number(mode.text) === 1);
  if (!isApproximate || !grid) return undefined;
  const isAcross = name === 'HLOOKUP' || (name === 'MATCH' && area.top === area.bottom);
  const end = Math.min(
    isAcross ? area.right : area.bottom,
    (isAcross ? area.left : area.top) + keysLimit,
  );
  let last: number | undefined;
  let lastText: string | undefined;
  const first = isAcross ? area.left : area.top;
  for (let at = isAcross ? area.left : area.top; at <= end; at++) {
    const [row, col] = isAcross ? [area.top, at] : [at, area.left];
    const { kind, value } = grid.cells.valueAt(row, col);
    const text = kind === CellKind.Text ? plainKey(String(value)) : undefined;
    const number = kind === CellKind.Number ? Number(value) : undefined;
    const isDown =
      (last !== undefined && number !== undefined && number < last) ||
      (lastText !== undefined && text !== undefined && text < lastText);
    if (isDown) {
      const words = `looks for the nearest key in ${written}, and the keys do not go up in ${address(row, col)}`;
      return { words, weight: 6.5 };
    }
    last = number ?? last;
    // The first text may be the table's heading.
    if (at > first) lastText = text ?? lastText;
  }
  return undefined;
}

/** A text that every language sorts alike, as it is compared: letters and digits alone, in any case. */
function plainKey(text: string): string | undefined {
  return /^[a-z0-9]+$/i.test(text) ? text.toLowerCase() : undefined;
}

/** So many rows more are a forgotten end; of a longer rest the table takes a part on purpose. */
const forgotten = 3;

function short(node: NodeOf<'call'>, { area, grid, written }: Table): Found | undefined {
  if (!grid || plainName(node.name) === 'HLOOKUP' || area.bottom - area.top < 2) return undefined;
  const isFilled = (row: number): boolean => {
    for (let col = area.left; col <= area.right; col++) if (grid.isBlank(row, col)) return false;
    return true;
  };
  if (!isFilled(area.bottom)) return undefined;
  let end = area.bottom;
  while (end - area.bottom <= forgotten && isFilled(end + 1)) end++;
  const rows = end - area.bottom;
  if (rows === 0 || rows > forgotten) return undefined;
  const left = { ...area, top: area.bottom + 1, bottom: end };
  return {
    words: `looks in ${written}, and the table goes on in ${areaAddress(left)}`,
    weight: 4.5,
  };
}
