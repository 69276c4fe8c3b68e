// What a workbook consists of, beside what is odd in it: its sheets, names, links to other workbooks,
// and the inputs that nothing on their sheet names.

import { areaAddress, cellCount, type Area } from '../address/area';
import { directUsers, type Index, type SheetArea } from '../model/Index';
import { Kind } from '../model/SheetCells';
import type { WorkbookModel } from '../model/WorkbookModel';

export type SheetInventory = {
  name: string;
  /** The address around all that was read; empty for an empty sheet. */
  area: string;
  /** Cells that are not blank. */
  cells: number;
  formulas: number;
  /** Relative formulas that are not alike. */
  distinctFormulas: number;
  errors: number;
};

/** Formulas that take cells of another workbook, or a name that does. */
export type Link = { workbook: string; formulas: number; sheets: string[] };

/** How many there are, and the first of them. */
export type Listed<One> = { all: number; listed: One[] };

export type Input = { sheet: string; address: string; value: number };

/** Rows as "5:9, 12", columns as "C:D"; `partly`: not all of the sheet's tracks were asked for. */
export type HiddenOn = { sheet: string; rows: string; cols: string; partly: boolean };

export type Inventory = {
  sheets: SheetInventory[];
  /** Sheets with hidden rows or columns; only where the spreadsheet was asked. */
  hidden?: HiddenOn[];
  names: Listed<{ name: string; refersTo: string }>;
  links: Link[];
  /**
   * Numbers that were typed in, are used by a formula and have no text beside or above them. They
   * are counted up to `mostCounted`.
   */
  unlabelled: Listed<Input>;
};

const mostInputs = 100;
export const mostCounted = 5_000;
const mostNames = 1_000;

/** The workbooks that a text names before a sheet: `[Book.xlsx]Sheet!A1`, `'C:\x\[Book.xlsx]A b'!A1`. */
function workbooksIn(text: string): string[] {
  const named = [
    ...text.matchAll(/'(?:[^'[\]]|'')*\[((?:[^'[\]]|'')+)\](?:[^'[\]]|'')*'!/g),
    ...text.matchAll(/\[([^'[\]]+)\][\p{L}\p{N}_.]+!/gu),
  ].map((match) => (match[1] as string).replaceAll("''", "'"));
  const files = [...text.matchAll(/'(file:(?:[^'#]|'')+)'#/gi)].map((match) => match[1] as string);
  return [...named, ...files];
}

class Links {
  private readonly found = new Map<string, { formulas: number; sheets: Set<string> }>();
  private readonly own: string;

  constructor(book: string) {
    this.own = book.toLowerCase();
  }

  add(text: string, formulas: number, sheet: string): void {
    for (const workbook of new Set(workbooksIn(text))) {
      if (workbook.toLowerCase() === this.own) continue;
      const link = this.found.get(workbook) ?? { formulas: 0, sheets: new Set<string>() };
      link.formulas += formulas;
      if (sheet !== '') link.sheets.add(sheet);
      this.found.set(workbook, link);
    }
  }

  get all(): Link[] {
    return [...this.found].map(([workbook, { formulas, sheets }]) => {
      return { workbook, formulas, sheets: [...sheets] };
    });
  }
}

function* unlabelledInputs(
  model: WorkbookModel,
  index: Index,
): Generator<undefined, Listed<Input>> {
  const result: Listed<Input> = { all: 0, listed: [] };
  for (const [sheet, cells] of index.sheets.entries()) {
    const { extent } = cells;
    if (!extent) continue;
    const numbers: Area[] = [];
    cells.eachFilled(extent, (row, col, kind, formula) => {
      if (kind === Kind.Number && formula === 0)
        numbers.push({ top: row, left: col, bottom: row, right: col });
    });
    for (const [at, area] of numbers.entries()) {
      const place: SheetArea = { sheet, area };
      if (at % 2_000 === 0) yield undefined;
      if (directUsers(index, place).length === 0 || model.label(place) !== '') continue;
      if (result.all === mostCounted) return result;
      result.all += 1;
      if (result.listed.length < mostInputs) {
        result.listed.push({
          sheet: model.sheetName(sheet),
          address: areaAddress(area),
          value: Number(model.value(place)),
        });
      }
    }
  }
  return result;
}

/** The sheets, and the workbooks that formulas and names lead to. */
export function* sheetsAndLinks(
  model: WorkbookModel,
): Generator<undefined, Pick<Inventory, 'sheets' | 'links'>> {
  const index = yield* model.index();
  const sheets = index.sheets.map((cells, number): SheetInventory => {
    const one = { cells: 0, errors: 0 };
    if (cells.extent) {
      cells.eachFilled(cells.extent, (_row, _col, kind) => {
        one.cells += 1;
        if (kind === Kind.Error) one.errors += 1;
      });
    }
    return {
      name: model.sheetName(number),
      area: cells.extent ? areaAddress(cells.extent) : '',
      formulas: 0,
      distinctFormulas: 0,
      ...one,
    };
  });
  const distinct = sheets.map(() => new Set<number>());
  const links = new Links(model.entry.book);
  for (let region = 0; region < index.regionCount; region++) {
    const number = index.sheetOf(region);
    const sheet = sheets[number] as SheetInventory;
    const formulas = cellCount(index.areaOf(region));
    sheet.formulas += formulas;
    distinct[number]?.add(index.formulaOf(region));
    if (index.definitions.oddity(index.definitionOf(region))?.external === true)
      links.add(model.formulas.at(index.formulaOf(region)), formulas, sheet.name);
    if (region % 2_000 === 0) yield undefined;
  }
  for (const [number, sheet] of sheets.entries())
    sheet.distinctFormulas = distinct[number]?.size ?? 0;
  for (const { refersTo } of model.entry.names) links.add(refersTo, 0, '');
  return { sheets, links: links.all };
}

export function* inventoryOf(model: WorkbookModel): Generator<undefined, Inventory> {
  const index = yield* model.index();
  const { names } = model.entry;
  const { sheets, links } = yield* sheetsAndLinks(model);
  return {
    sheets,
    names: { all: names.length, listed: names.slice(0, mostNames) },
    links,
    unlabelled: yield* unlabelledInputs(model, index),
  };
}
