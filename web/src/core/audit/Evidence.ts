// What all detectors look at: the workbook, its sheets cell by cell, its formulas taken apart.

import { cellCount, columnLetters, type Area } from '../address/area';
import { formulaAt } from '../formula/relative';
import type { Index } from '../model/Index';
import type { WorkbookModel } from '../model/WorkbookModel';
import { Shapes } from './shape';
import { SheetGrid } from './SheetGrid';

/** So many regions are looked at before others may take a turn: a thread that draws has 8 ms. */
export const atATime = 50;

const formulaLimit = 120;

export class Evidence {
  readonly grids: SheetGrid[];
  readonly shapes: Shapes;
  /** How many cells have each formula. */
  private readonly counts: Int32Array;
  /** Of each sheet its regions, and cells with a formula. */
  private readonly sizes: { regions: number; cells: number }[];
  private readonly forms: (number | undefined)[] = [];
  private readonly bySkeleton = new Map<string, number>();

  constructor(
    readonly model: WorkbookModel,
    readonly index: Index,
  ) {
    this.grids = index.sheets.map((cells, sheet) => new SheetGrid(sheet, cells));
    this.shapes = new Shapes(model.formulas);
    this.sizes = this.grids.map(() => ({ regions: 0, cells: 0 }));
    this.counts = new Int32Array(model.formulas.count);
    for (let region = 0; region < index.regionCount; region++) {
      const formula = index.formulaOf(region);
      const cells = cellCount(index.areaOf(region));
      this.counts[formula] = this.count(formula) + cells;
      const size = this.sizes[index.sheetOf(region)];
      if (!size) continue;
      size.regions += 1;
      size.cells += cells;
    }
  }

  /**
   * True if hardly two formulas of a large sheet are alike. There is no pattern there that one could
   * break, and to look for one would take most of the time.
   */
  isIrregular(sheet: number): boolean {
    const { regions, cells } = this.sizes[sheet] ?? { regions: 0, cells: 0 };
    return regions > 20_000 && regions > cells / 2;
  }

  /** The number of a formula's form: the same for formulas with one skeleton, that of one of them. */
  form(formula: number): number {
    let form = this.forms[formula];
    if (form === undefined) {
      const { skeleton } = this.shapes.of(formula);
      form = this.bySkeleton.get(skeleton) ?? formula;
      this.bySkeleton.set(skeleton, form);
      this.forms[formula] = form;
    }
    return form;
  }

  /** How many cells of the workbook have this relative formula. */
  count(formula: number): number {
    return this.counts[formula] ?? 0;
  }

  /** The relative formula's text. */
  text(formula: number): string {
    return this.model.formulas.at(formula);
  }

  /** "=SUM(B3:B12)", as it stands in that cell, cut where it is long. */
  shown(formula: number, row: number, col: number): string {
    return cut(formulaAt(this.text(formula), { row, col }));
  }
}

export function cut(text: string): string {
  return text.length > formulaLimit ? `${text.slice(0, formulaLimit - 1)}…` : text;
}

export function cell(row: number, col: number): Area {
  return { top: row, left: col, bottom: row, right: col };
}

export function address(row: number, col: number): string {
  return columnLetters(col) + String(row);
}

/** One cell more, told row by row: beside or below the last area it makes that longer. */
export function addCell(areas: Area[], row: number, col: number): void {
  const last = areas.at(-1);
  const isTrack = last && last.top === last.bottom;
  if (last?.left === col && last.right === col && last.bottom === row - 1) last.bottom = row;
  else if (isTrack && last.top === row && last.right === col - 1) last.right = col;
  else areas.push(cell(row, col));
}
