// Formulas that calculate with a cell in which a text stands. One clue for each such cell, whoever
// takes it, and one for all that a filled formula takes.

import { cellCount, qualified, type Area } from '../address/area';
import { count } from '../format/words';
import { Kind } from '../model/SheetCells';
import { addCell, address, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { cellsLimit, Operands, type Operand, type Taken } from './operands';

type Use = { sheet: number; formula: number; cells: Area[]; taken: Taken; filled: number };

export function* textClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const operands = new Operands(evidence);
  const groups = new Map<string, Use[]>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    if (cellCount(index.areaOf(region)) > cellsLimit) continue;
    for (const operand of operands.ofRegion(region, Kind.Text)) {
      const uses = usesOf(evidence, operands, region, operand);
      for (const use of uses) {
        const { row, col, grid } = use.taken;
        // A column of texts is one cause.
        const cause =
          uses.length > 1 ? [use.formula, operand.number] : [grid.sheet, row, col, 'alone'];
        const key = [use.sheet, ...cause].join();
        const known = groups.get(key);
        if (known) known.push(use);
        else groups.set(key, [use]);
      }
    }
  }
  return [...groups.values()].map((uses) => clueOf(evidence, uses));
}

function usesOf(evidence: Evidence, operands: Operands, region: number, operand: Operand): Use[] {
  const { index } = evidence;
  const area = index.areaOf(region);
  const [sheet, formula] = [index.sheetOf(region), index.formulaOf(region)];
  const found = new Map<string, Use>();
  let filled = 0;
  for (let row = area.top; row <= area.bottom; row++) {
    for (let col = area.left; col <= area.right; col++) {
      const taken = operands.taken(operand, sheet, { row, col });
      const kind = taken?.grid.kind(taken.row, taken.col);
      if (kind === Kind.Number) filled += 1;
      if (!taken || kind !== Kind.Text || !isOdd(evidence, sheet, row, col, taken)) continue;
      const key = address(taken.row, taken.col);
      const use = found.get(key) ?? { sheet, formula, cells: [], taken, filled: 0 };
      found.set(key, use);
      addCell(use.cells, row, col);
    }
  }
  return [...found.values()].map((use) => ({ ...use, filled }));
}

/** A text that a formula gives is odd where the result is none; one that was typed in always is. */
function isOdd({ grids }: Evidence, sheet: number, row: number, col: number, taken: Taken) {
  return (
    taken.grid.formula(taken.row, taken.col) === 0 || grids[sheet]?.kind(row, col) === Kind.Error
  );
}

function clueOf(evidence: Evidence, uses: readonly Use[]): Clue {
  const { model, grids } = evidence;
  const [use] = uses as [Use];
  const { sheet, formula, taken, filled } = use;
  const areas: Area[] = [];
  for (const area of uses.flatMap((own) => own.cells)) {
    if (cellCount(area) === 1) addCell(areas, area.top, area.left);
    else areas.push(area);
  }
  const [first] = areas as [Area];
  const text = String(taken.grid.cells.valueAt(taken.row, taken.col).value).trim();
  const shown = text.length > 40 ? `${text.slice(0, 39)}…` : text;
  const place = address(taken.row, taken.col);
  const where =
    taken.grid.sheet === sheet ? place : qualified(model.sheetName(taken.grid.sheet), place);
  const all = areas.reduce((sum, area) => sum + cellCount(area), 0);
  const rest = all - 1;
  const more = rest > 0 ? ` and ${count(rest, 'other cell')}` : '';
  const fails = grids[sheet]?.kind(first.top, first.left) === Kind.Error;
  const taking = new Set(uses.map((own) => address(own.taken.row, own.taken.col))).size;
  const holds =
    taking > 1
      ? `${where} and ${count(taking - 1, 'other cell')}, which hold texts like`
      : `${where}, which holds the text`;
  const others =
    filled >= 3 ? `; ${count(filled, 'cell')} with the same formula take a number there` : '';
  return {
    kind: 'text',
    sheet,
    areas,
    sentence: `${address(first.top, first.left)}${more} ${all > 1 ? 'calculate' : 'calculates'} with ${holds} “${shown}”${others}: ${evidence.shown(formula, first.top, first.left)}.`,
    expected: '',
    weight: (fails ? 6 : 4.5) + (filled >= 3 ? 1 : 0),
    level: fails ? 'fact' : 'doubt',
  };
}
