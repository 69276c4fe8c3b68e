// What the page asks of the model, and what it is told. Everything is plain data, because it may go
// to a worker and back.

import type { Area } from '../address/area';
import type { Finding } from '../audit/Finding';
import type { MapQuestions } from '../map/told';
import type { Grid, Scalar } from '../protocol/json';
import type { Inventory } from '../report/inventory';
import type { Pictures } from '../report/pictures';
import type { NameEntry } from './Names';
import type { SheetSketch } from './sketch';

export type BookEntry = { book: string; sheets: string[]; names: NameEntry[] };

/** Cells of a sheet, by the sheet's name. */
export type Cells = { sheet: string; area: Area };

/** Cells with one relative formula, or typed-in ones. */
export type Row = Cells & {
  /** As it stands in the first of them, cut where it is long; empty for cells without a formula. */
  formula: string;
  /** What a human would call them. */
  label: string;
  /** Of the first of them. */
  value: Scalar;
  cells: number;
};

export type RunTimeRow = Row & { reasons: string[] };

export type RunTimeAnswer = { rows: RunTimeRow[]; left: number };

export type DependentsAnswer = {
  rows: Row[];
  /** Cells in all rows, and in those that are not listed. */
  cells: number;
  left: number;
  impact: { cells: number; sheets: number; results: number; rows: Row[] };
  /** Cells of the whole workbook whose formulas decide at run time what they use: any may use these. */
  runTimeCells: number;
  /** Cells of circles that the asked cells are in. */
  circular: boolean;
};

export type DriverRow = Row & { kind: 'number' | 'text' | 'blank'; uses: number; steps: number };

export type DriversAnswer = { rows: DriverRow[]; formulas: number; inputs: number; left: number };

export type ErrorRow = Row & { text: string; spoils: number | undefined };

export type ErrorsAnswer = {
  total: number;
  rows: ErrorRow[];
  left: number;
  circular: number;
};

/** What is odd, with what stands in its first cell. Of many areas the first are told. */
export type FindingRow = Finding & {
  areas: number;
  /** Cells in all areas. */
  size: number;
  /** As it stands in the first cell, cut where it is long; empty for a cell without one. */
  formula: string;
  value: Scalar;
  /** What a human would call the first cell. */
  label: string;
  /** Another one when a value typed into its cells is another, or a formula is made otherwise. */
  print: string;
};

/** A part of the list, which may be long. */
export type FindingsAnswer = {
  /** By rank. */
  rows: FindingRow[];
  /** As many as are told in all parts. */
  told: number;
  /** As many as were found. */
  total: number;
  /** Cells with a formula, of which the audit looked at all. */
  formulas: number;
};

export type WaysAnswer = {
  /** The shortest first; each from the cells that use `from` to those of `to`. */
  ways: {
    steps: Row[];
    /** So many steps are left out of a long way, behind the first `leftAfter`. */
    left: number;
    leftAfter: number;
  }[];
  /** True if there may be further ways. */
  more: boolean;
  /** True if a circle lies on them. */
  circular: boolean;
};

export type BookState = {
  /** Cells with a formula, and how many different ones. */
  formulas: number;
  distinct: number;
  /** Cells whose formula could not be read whole, by region, as it was told and cut where long. */
  unread: Row[];
  unreadCells: number;
  /** Columns of tables that the spreadsheet is to be asked about. */
  tables: string[];
};

export type Comparison = 'same' | 'differs' | 'unknown';

/** Where a table's columns are; nothing where the spreadsheet does not know them. */
export type TablePlace = { question: string; place: Cells | undefined };

export type Questions = MapQuestions & {
  /** A workbook to be read; what is known of it goes, unless it has the same sheets and names. */
  begin: { args: BookEntry; answer: null };
  /** A sheet is read from its beginning; what is known of it stays until it is read. */
  beginSheet: { args: { sheet: string }; answer: null };
  piece: { args: Cells & { formulas: string[][]; values: Grid }; answer: null };
  /** All of the sheet was read, or all that can be. */
  endSheet: { args: { sheet: string }; answer: null };
  state: { args: Record<string, never>; answer: BookState };
  tables: { args: { places: TablePlace[] }; answer: null };
  dependents: { args: Cells; answer: DependentsAnswer };
  /** The direct users alone. */
  users: { args: Cells; answer: { rows: Row[]; left: number } };
  runTime: { args: Record<string, never>; answer: RunTimeAnswer };
  drivers: { args: Cells; answer: DriversAnswer };
  /** How `from` gets into `to`. */
  ways: { args: { from: Cells; to: Cells }; answer: WaysAnswer };
  errors: { args: Record<string, never>; answer: ErrorsAnswer };
  /** What is odd in the workbook, from a place in the list on. */
  findings: { args: { from: number }; answer: FindingsAnswer };
  /** What the workbook consists of. */
  inventory: { args: Record<string, never>; answer: Inventory };
  /** The sheets as a report shows them, with the findings up to a rank. */
  pictures: { args: { rank: number }; answer: Pictures };
  /** Columns that have a cell in each filled row of the sheet; none where there are not few such. */
  rowCover: { args: { sheet: string }; answer: number[] };
  /** What the tracks of all sheets are. */
  sketch: { args: Record<string, never>; answer: SheetSketch[] };
  /** What tells the workbook from others, whatever it is called. */
  marks: { args: Record<string, never>; answer: string };
  /** Of the distinct formulas in some cells: prints of five characters, one after the other. */
  prints: { args: { cells: Cells[] }; answer: string };
  /** Of how many of the workbook's distinct formulas the print is among these. */
  seen: { args: { prints: string }; answer: { seen: number; distinct: number } };
  /** One for each area; empty where there is none. */
  labels: { args: { cells: Cells[] }; answer: string[] };
  /** True if the cell is as it was read. `formula` in A1, empty for none. */
  compare: {
    args: { sheet: string; row: number; col: number; formula: string; value: Scalar };
    answer: Comparison;
  };
  forget: { args: Record<string, never>; answer: null };
};

export type QuestionName = keyof Questions;

export type Question = {
  [N in QuestionName]: { id: number; book: string; ask: N; args: Questions[N]['args'] };
}[QuestionName];

export type Answer = { id: number; answer: unknown } | { id: number; failed: string };
