// The model's answers in the words of the page: rows with address, formula, label and value.

import { cellCount, meet } from '../address/area';
import { formulaInFirst } from '../formula/relative';
import { impactOf } from './impact';
import { driversOf } from './drivers';
import { findErrorCauses } from './errors';
import { directUsers, type Index, type Part, type SheetArea } from './Index';
import type {
  BookState,
  Cells,
  DependentsAnswer,
  DriversAnswer,
  ErrorsAnswer,
  Row,
  RunTimeAnswer,
  WaysAnswer,
} from './messages';
import { distinctFormulas } from './prints';
import { waysBetween } from './ways';
import type { WorkbookModel } from './WorkbookModel';

/** So many rows are told for one question. */
export const rowsLimit = 1_000;

/** Of a longer way its beginning and its end are told. */
const stepsLimit = 40;

/** More of a formula does not fit a row. */
const formulaLimit = 240;

function cut(formula: string): string {
  return formula.length > formulaLimit ? `${formula.slice(0, formulaLimit)}…` : formula;
}

function rowOf(model: WorkbookModel, { sheet, area }: SheetArea, formula: number): Row {
  return {
    sheet: model.sheetName(sheet),
    area,
    // Written out here, so that the page's own thread need not.
    formula: formula === 0 ? '' : cut(formulaInFirst(model.formulas.at(formula), area)),
    label: model.label({ sheet, area }),
    value: model.value({ sheet, area }),
    cells: cellCount(area),
  };
}

function partRow(model: WorkbookModel, index: Index, { region, area }: Part): Row {
  return rowOf(model, { sheet: index.sheetOf(region), area }, index.formulaOf(region));
}

/** By sheet, then from top to bottom. */
function inOrder(index: Index, parts: Part[]): Part[] {
  return parts.sort(
    (a, b) =>
      index.sheetOf(a.region) - index.sheetOf(b.region) ||
      a.area.top - b.area.top ||
      a.area.left - b.area.left,
  );
}

type Listed = { rows: Row[]; cells: number; left: number };

function listed(model: WorkbookModel, index: Index, parts: Part[]): Listed {
  const chosen = inOrder(index, parts).slice(0, rowsLimit);
  const count = (some: Part[]) => some.reduce((sum, { area }) => sum + cellCount(area), 0);
  const cells = count(parts);
  const rows = chosen.map((part) => partRow(model, index, part));
  return { rows, cells, left: cells - count(chosen) };
}

export function* usersAnswer(model: WorkbookModel, cells: Cells): Generator<undefined, Listed> {
  const index = yield* model.index();
  const start = model.place(cells);
  return listed(model, index, start ? directUsers(index, start) : []);
}

export function* dependentsAnswer(
  model: WorkbookModel,
  cells: Cells,
): Generator<undefined, DependentsAnswer> {
  const index = yield* model.index();
  const start = model.place(cells);
  const direct = yield* usersAnswer(model, cells);
  const runTimeCells = runTimeParts(model, index).cells;
  if (!start) {
    const impact = { cells: 0, sheets: 0, results: 0, rows: [] };
    return { ...direct, impact, runTimeCells, circular: false };
  }
  const impact = yield* impactOf(index, model.usesOf(index), start);
  // Their formulas are told with the ways to them.
  const results = impact.resultAreas.map((area) => rowOf(model, area, 0));
  // Only what rests on itself can be in a circle; then its circle's cells are looked for.
  const restsOnItself = impact.reached.steps.some(
    ({ region, area }) =>
      index.sheetOf(region) === start.sheet && meet(area, start.area) !== undefined,
  );
  let circular = false;
  if (restsOnItself) {
    const { circles } = yield* model.circlesOf(index);
    circular = circles.some((circle) =>
      circle.some(({ sheet, area }) => sheet === start.sheet && meet(area, start.area)),
    );
  }
  const { sheets } = impact;
  return {
    ...direct,
    impact: { cells: impact.cells, sheets, results: impact.results, rows: results },
    runTimeCells,
    circular,
  };
}

function runTimeParts(model: WorkbookModel, index: Index): { parts: Part[]; cells: number } {
  const parts: Part[] = [];
  for (let region = 0; region < index.regionCount; region++) {
    const oddity = model.definition.oddity(index.definitionOf(region));
    if (oddity && oddity.runTime.size > 0) parts.push({ region, area: index.areaOf(region) });
  }
  return { parts, cells: parts.reduce((sum, { area }) => sum + cellCount(area), 0) };
}

export function* runTimeAnswer(model: WorkbookModel): Generator<undefined, RunTimeAnswer> {
  const index = yield* model.index();
  const { parts, cells } = runTimeParts(model, index);
  const rows = inOrder(index, parts)
    .slice(0, rowsLimit)
    .map((part) => {
      const oddity = model.definition.oddity(index.definitionOf(part.region));
      return { ...partRow(model, index, part), reasons: [...(oddity?.runTime ?? [])] };
    });
  return { rows, left: cells - rows.reduce((sum, row) => sum + row.cells, 0) };
}

export function* driversAnswer(
  model: WorkbookModel,
  cells: Cells,
): Generator<undefined, DriversAnswer> {
  const index = yield* model.index();
  const target = model.place(cells);
  if (!target) return { rows: [], formulas: 0, inputs: 0, left: 0 };
  const { drivers, formulas, inputs, left } = yield* driversOf(index, target);
  const rows = drivers.map((driver) => {
    const { kind, uses, steps } = driver;
    return { ...rowOf(model, driver, 0), kind, uses, steps };
  });
  return { rows, formulas, inputs, left };
}

export function* waysAnswer(
  model: WorkbookModel,
  from: Cells,
  to: Cells,
): Generator<undefined, WaysAnswer> {
  const index = yield* model.index();
  const start = model.place(from);
  const end = model.place(to);
  if (!start || !end) return { ways: [], more: false, circular: false };
  const reached = yield* model.restingOn(index, start);
  const { ways, more, returned } = yield* waysBetween(index, reached, start, end);
  let circular = false;
  if (returned) {
    const { circles } = yield* model.circlesOf(index);
    const parts = ways.flat();
    circular = circles.some((circle) => circle.some((cell) => liesIn(index, cell, parts)));
  }
  const half = Math.floor(stepsLimit / 2);
  return {
    ways: ways.map((parts) => {
      const isLong = parts.length > stepsLimit;
      const told = isLong ? [...parts.slice(0, half), ...parts.slice(-half)] : parts;
      const steps = told.map((part) => partRow(model, index, part));
      return { steps, leftAfter: half, left: parts.length - told.length };
    }),
    more,
    circular,
  };
}

function liesIn(index: Index, { sheet, area }: SheetArea, parts: readonly Part[]): boolean {
  return parts.some((part) => index.sheetOf(part.region) === sheet && meet(part.area, area));
}

export function* errorsAnswer(model: WorkbookModel): Generator<undefined, ErrorsAnswer> {
  const index = yield* model.index();
  const { total, causes, circular } = yield* findErrorCauses(index);
  const rows = causes.slice(0, rowsLimit).map((cause) => {
    const { text, spoils } = cause;
    return { ...rowOf(model, cause, cause.formula), text, spoils };
  });
  return { total, rows, left: causes.length - rows.length, circular };
}

export function* stateAnswer(model: WorkbookModel): Generator<undefined, BookState> {
  const index = yield* model.index();
  const unread: Part[] = [];
  let formulas = 0;
  for (let region = 0; region < index.regionCount; region++) {
    const area = index.areaOf(region);
    formulas += cellCount(area);
    const oddity = model.definition.oddity(index.definitionOf(region));
    if (oddity?.unread === true) unread.push({ region, area });
  }
  return {
    formulas,
    distinct: (yield* distinctFormulas(model)).size,
    unread: inOrder(index, unread)
      .slice(0, rowsLimit)
      .map((part) => ({
        ...partRow(model, index, part),
        formula: cut(model.formulas.at(index.formulaOf(part.region))),
      })),
    unreadCells: unread.reduce((sum, { area }) => sum + cellCount(area), 0),
    tables: model.tableQuestions,
  };
}
