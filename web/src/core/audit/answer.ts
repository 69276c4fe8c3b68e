// The audit's findings as the page is told them: in parts, each small enough for a thread that draws.

import { cellCount } from '../address/area';
import { formulaInFirst } from '../formula/relative';
import type { Index } from '../model/Index';
import type { FindingRow, FindingsAnswer } from '../model/messages';
import { printOf } from '../model/sketch';
import type { WorkbookModel } from '../model/WorkbookModel';
import { audit } from './audit';
import type { Finding } from './Finding';
import { Shapes } from './shape';

/** So many findings are told in all; nobody reads more of them. */
export const findingsLimit = 5_000;
/** So many at a time. */
export const partSize = 250;
/** The first areas of a finding: more are neither listed nor marked. */
const areasLimit = 40;
/** More of a formula is not compared by eye. */
const formulaLimit = 2_000;
/** So many cells of a finding leave their print. */
const printLimit = 2_000;

/** Keeps what was found as long as the workbook is as it was read. */
export class Findings {
  private readonly known = new WeakMap<Index, Finding[]>();

  /** All of them, by rank. */
  *of(model: WorkbookModel): Generator<undefined, readonly Finding[]> {
    const index = yield* model.index();
    let findings = this.known.get(index);
    if (!findings) {
      findings = yield* audit(model);
      this.known.set(index, findings);
    }
    return findings;
  }

  *answer(model: WorkbookModel, from: number): Generator<undefined, FindingsAnswer> {
    const findings = yield* this.of(model);
    const index = yield* model.index();
    const told = Math.min(findings.length, findingsLimit);
    const rows = yield* rowsOf(model, findings.slice(from, Math.min(told, from + partSize)));
    let formulas = 0;
    for (let region = 0; region < index.regionCount; region++) {
      formulas += cellCount(index.areaOf(region));
    }
    return { rows, told, total: findings.length, formulas };
  }
}

function cut(text: string): string {
  return text.length > formulaLimit ? `${text.slice(0, formulaLimit)}…` : text;
}

/** Of the values that were typed into the finding's cells, and of how its formulas are made. */
function printOfCells(model: WorkbookModel, { cells }: Finding, shapes: Shapes): string {
  const parts: string[] = [];
  for (const { sheet, area } of cells) {
    const number = model.place({ sheet, area })?.sheet;
    const own = number === undefined ? undefined : model.cellsOf(number);
    if (!own) continue;
    for (let row = area.top; row <= area.bottom; row++) {
      for (let col = area.left; col <= area.right; col++) {
        if (parts.length === printLimit) return printOf(parts.join('\n'));
        const formula = own.formulaAt(row, col);
        const value = String(own.valueAt(row, col).value);
        parts.push(formula === 0 ? value : formed(shapes, formula));
      }
    }
  }
  return printOf(parts.join('\n'));
}

function formed(shapes: Shapes, formula: number): string {
  const { skeleton, slots } = shapes.of(formula);
  const constants = slots.map((slot) => (slot.kind === 'reference' ? '' : slot.text));
  return `=${skeleton} ${constants.join()}`;
}

/** Of the first findings, as many as are told. */
export function* rowsOf(
  model: WorkbookModel,
  findings: readonly Finding[],
): Generator<undefined, FindingRow[]> {
  const rows: FindingRow[] = [];
  const shapes = new Shapes(model.formulas);
  for (const finding of findings.slice(0, findingsLimit)) {
    rows.push(rowOf(model, finding, shapes));
    yield undefined;
  }
  return rows;
}

/** As it stands in the finding's first cell; empty for a cell without one. */
export function formulaOf(model: WorkbookModel, { cells: [first] }: Finding): string {
  const place = first && model.place(first);
  if (!place) return '';
  const { area } = place;
  const formula = model.cellsOf(place.sheet)?.formulaAt(area.top, area.left) ?? 0;
  return formula === 0 ? '' : cut(formulaInFirst(model.formulas.at(formula), area));
}

function rowOf(model: WorkbookModel, finding: Finding, shapes: Shapes): FindingRow {
  const { cells, expected } = finding;
  const [first] = cells;
  const place = first && model.place(first);
  const told = {
    ...finding,
    cells: cells.slice(0, areasLimit),
    expected: cut(expected),
    areas: cells.length,
    size: cells.reduce((sum, { area }) => sum + cellCount(area), 0),
    print: printOfCells(model, finding, shapes),
  };
  if (!place) return { ...told, formula: '', value: null, label: '' };
  const { area } = place;
  const one = { ...place, area: { ...area, bottom: area.top, right: area.left } };
  return {
    ...told,
    formula: formulaOf(model, finding),
    value: model.value(one),
    label: model.label(one),
  };
}
