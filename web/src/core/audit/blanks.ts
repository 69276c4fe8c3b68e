// Formulas that calculate with a blank cell as if a number stood in it. One clue for each blank cell,
// whoever takes it; what takes blanks all along is a form that nobody has filled in, and told once for
// its sheet.

import { areaAddress, cellCount, qualified, type Area } from '../address/area';
import { count } from '../format/words';
import { Kind } from '../model/SheetCells';
import { addCell, address, atATime, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { cellsLimit, Operands, type Operand, type Taken } from './operands';

/** From so many formulas of a sheet on that take blanks, it is a form. */
const formSize = 6;

type Use = {
  sheet: number;
  formula: number;
  cells: Area[];
  taken: Taken;
  /** How many cells of the same formula take a number there. */
  filled: number;
  isFactor: boolean;
};

export function* blankClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const operands = new Operands(evidence);
  const bySheet = new Map<number, Use[]>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    if (evidence.isIrregular(index.sheetOf(region))) continue;
    for (const operand of operands.ofRegion(region, Kind.Blank)) {
      const sheet = index.sheetOf(region);
      const uses = bySheet.get(sheet) ?? [];
      bySheet.set(sheet, uses);
      for (const use of usesOf(evidence, operands, region, operand)) uses.push(use);
    }
  }
  return [...bySheet.values()].flatMap((uses) => onSheet(evidence, uses));
}

/** The blank cells that one operand of a region stands for. */
function usesOf(evidence: Evidence, operands: Operands, region: number, operand: Operand): Use[] {
  const { index } = evidence;
  const area = index.areaOf(region);
  const sheet = index.sheetOf(region);
  if (cellCount(area) > cellsLimit) return [];
  const blanks = new Map<string, { taken: Taken; cells: Area[] }>();
  let filled = 0;
  for (let row = area.top; row <= area.bottom; row++) {
    for (let col = area.left; col <= area.right; col++) {
      const taken = operands.taken(operand, sheet, { row, col });
      if (!taken) continue;
      const { grid } = taken;
      if (!grid.isBlank(taken.row, taken.col)) {
        if (grid.kind(taken.row, taken.col) === Kind.Number) filled += 1;
        continue;
      }
      const key = address(taken.row, taken.col);
      const known = blanks.get(key);
      if (known) addCell(known.cells, row, col);
      else blanks.set(key, { taken, cells: [cell(row, col)] });
    }
  }
  const isFactor = operand.operator !== '+' && operand.operator !== '-';
  const formula = index.formulaOf(region);
  const rest = { sheet, formula, filled, isFactor };
  // A track of blanks behind the last filled cell is still to be filled.
  const isForm = blanks.size > 1 && blanks.size * 4 > filled;
  return [...blanks.values()].map(({ taken, cells }) => {
    return { ...rest, taken, cells, filled: isForm ? 0 : filled };
  });
}

function onSheet(evidence: Evidence, uses: readonly Use[]): Clue[] {
  const byCell = new Map<string, Use[]>();
  for (const use of uses) {
    const key = [use.taken.grid.sheet, use.taken.row, use.taken.col].join();
    const known = byCell.get(key);
    if (known) known.push(use);
    else byCell.set(key, [use]);
  }
  const told: Use[][] = [];
  const forms: Use[][] = [];
  for (const own of byCell.values()) {
    const isAmong = own.some(({ filled }) => filled >= 3);
    // Of a sum it is a track that was left empty.
    if (isAmong) told.push(own);
    else if (own.some(({ isFactor }) => isFactor)) forms.push(own);
  }
  const clues = told.map((own) => clueOf(evidence, own, 3.3 + Math.log2(most(own)) * 0.4));
  if (forms.length >= formSize) return [...clues, formClue(evidence, forms)];
  return [...clues, ...forms.map((own) => clueOf(evidence, own, 2.8))];
}

function most(uses: readonly Use[]): number {
  return Math.max(1, ...uses.map(({ filled }) => filled));
}

function clueOf(evidence: Evidence, uses: readonly Use[], weight: number): Clue {
  const [use] = [...uses].sort((a, b) => b.filled - a.filled) as [Use];
  const { sheet, formula, taken, filled, cells } = use;
  const areas = uses.flatMap((own) => (own.sheet === sheet ? own.cells : []));
  const [first] = cells as [Area];
  const place = address(taken.row, taken.col);
  const where =
    taken.grid.sheet === sheet
      ? place
      : qualified(evidence.model.sheetName(taken.grid.sheet), place);
  const all = areas.reduce((sum, area) => sum + cellCount(area), 0);
  const rest = all - cellCount(first);
  const more = rest > 0 ? ` and ${count(rest, 'other cell')}` : '';
  const others =
    filled >= 3 ? `; ${count(filled, 'cell')} with the same formula take a number there` : '';
  return {
    kind: 'empty',
    sheet,
    areas: [first, ...areas.filter((area) => area !== first)],
    sentence: `${areaAddress(first)}${more} ${all > 1 ? 'calculate' : 'calculates'} with ${where}, which is blank${others}: ${evidence.shown(formula, first.top, first.left)}.`,
    expected: '',
    weight,
    level: 'doubt',
  };
}

function formClue(evidence: Evidence, forms: readonly Use[][]): Clue {
  const uses = forms.flat();
  const [{ sheet, formula, cells, taken }] = uses as [Use];
  const [first] = cells as [Area];
  const areas = uses.flatMap((use) => use.cells);
  const rest = areas.reduce((sum, area) => sum + cellCount(area), -cellCount(first));
  return {
    kind: 'empty',
    sheet,
    areas,
    sentence: `${areaAddress(first)} and ${count(rest, 'other cell')} of the sheet calculate with ${address(taken.row, taken.col)} and ${count(forms.length - 1, 'other cell')} that are blank: ${evidence.shown(formula, first.top, first.left)}.`,
    expected: '',
    weight: 1.5,
    level: 'doubt',
  };
}
