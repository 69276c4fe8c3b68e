// Every request the page can make: its arguments, the payload of its reply, and the check that a
// payload must pass before the page believes it.

import type { ReviewedBook } from '../review/reviewed';
import {
  isGrid,
  isIndex,
  isListOf,
  isNumber,
  isObject,
  isScalar,
  isText,
  type Grid,
  type Json,
} from './json';
import { decodeFailure, failed, succeeded, type Outcome } from './Outcome';
import { settings, type SettingName, type Settings } from './settings';

export type ProbeState = 'ok' | 'noWorkbook' | 'notRunning' | 'busy' | 'denied';
export type WindowBounds = { x1: number; y1: number; x2: number; y2: number };
export type Probe = { state: ProbeState; excelWindow?: WindowBounds };

/** Where a cell is. `addr` has no dollar signs. */
export type CellPlace = { book: string; sheet: string; addr: string };

export type Cell = CellPlace & {
  row: number;
  col: number;
  /** Begins with "=", or is empty for a constant and a blank cell. In English grammar. */
  formula: string;
  /** The same in the user's own grammar. */
  formulaLocal: string;
  value: Json;
  /** Address texts with dollar signs, where the spreadsheet gave them. */
  selection?: string;
  region?: string;
};

export type RangeValues = { rows: number; cols: number; values: Grid };
export type RangeTooBig = { rows: number; cols: number; tooBig: true };
/** What cells show on their sheet. */
export type ShownGrid = string[][];
export type RangeFormulas = {
  rows: number;
  cols: number;
  /** "" for constants and empty cells. */
  formulas: string[][];
  /** Empty when only formulas were asked for. */
  values: Grid;
};
export type ReferenceStyle = 'a1' | 'r1c1';

export type WorkbookMap = {
  book: string;
  sheets: { name: string; usedRange: string | null }[];
  sheetsTruncated: boolean;
  names: { name: string; refersTo: Json }[];
};

/** `shadowed`: a rule of the user's was there already; in Excel marking then costs the undo
 * history. */
export type Marked = { applied: number; shadowed: boolean; moved: boolean };

export type Revealed = {
  revealed: boolean;
  /** Why nothing was revealed: "multi-sheet" or "unbound". */
  reason?: string;
  activated?: boolean;
  /** What had to be unhidden, as text for the user. */
  unhid?: string;
};

export type Colour = readonly [red: number, green: number, blue: number];

export type Verbs = {
  probe: { args: []; result: Probe };
  readCell: { args: []; result: Cell };
  /** "asked": the user asked for this very part, so that it may reach out of the workbook. */
  evaluate: { args: [expression: string, asked?: 'asked']; result: Json };
  readRange: { args: [address: string]; result: RangeValues | RangeTooBig };
  /** For each address its cells' texts, or null where they cannot be told. */
  readTexts: { args: [addresses: readonly string[]]; result: { texts: (ShownGrid | null)[] } };
  select: { args: [addresses: readonly string[]]; result: { areas: number } };
  activate: { args: [address?: string | null]; result: true };
  pollCell: { args: []; result: CellPlace };
  readFormulas: {
    args: [address: string, style: ReferenceStyle, formulasOnly?: boolean];
    result: RangeFormulas;
  };
  dependents: { args: [address: string]; result: string };
  workbookMap: { args: []; result: WorkbookMap };
  markCells: { args: [addresses: readonly string[], colour: Colour]; result: Marked };
  clearMarks: { args: []; result: { removed: number } };
  reveal: { args: [addresses: readonly string[]]; result: Revealed };
  deepEval: { args: [plan: readonly string[], asked?: 'asked']; result: Json };
  log: { args: [tag: string, message: string]; result: null };
  getHighlightColor: { args: []; result: number[] };
  setHighlightColor: { args: [colour: Colour]; result: null };
  setPanelWidth: { args: [expanded: boolean]; result: null };
  /** True if the card of a first start was dismissed. */
  isWelcomed: { args: []; result: boolean };
  setWelcomed: { args: []; result: null };
  hidePanel: { args: []; result: null };
  focusExcel: { args: []; result: null };
  setConventions: { args: [conventions: { arg: string }]; result: null };
  /** Null where nothing was kept. */
  loadReview: { args: [of: ReviewedBook]; result: Json };
  /** Null: nothing is kept any more. */
  saveReview: { args: [of: ReviewedBook, review: Json]; result: null };
  /** The name under which the user saved it, or null. */
  saveReport: { args: [name: string, text: string]; result: string | null };
  getSettings: { args: []; result: Settings };
  /** A combination is {code, modifiers}, or null for none. The settings as they are then. */
  setSetting: { args: [name: SettingName, value: Json]; result: Settings };
  /** While they are paused, hot keys reach the page. */
  pauseHotKeys: { args: [paused: boolean]; result: null };
  checkForUpdates: { args: []; result: null };
  /** What is said of the end stands on the screen. */
  quittingDrawn: { args: []; result: null };
};

export type Verb = keyof Verbs;

const probeStates: ReadonlySet<string> = new Set([
  'ok',
  'noWorkbook',
  'notRunning',
  'busy',
  'denied',
] satisfies ProbeState[]);

/** A payload as the verb's result, or nothing when it has another shape. */
type Decoder<T> = (payload: unknown) => T | undefined;

function bounds(value: unknown): WindowBounds | undefined {
  if (!isObject(value)) return undefined;
  const { x1, y1, x2, y2 } = value;
  return isNumber(x1) && isNumber(y1) && isNumber(x2) && isNumber(y2)
    ? { x1, y1, x2, y2 }
    : undefined;
}

const probe: Decoder<Probe> = (payload) => {
  if (!isObject(payload) || !isText(payload.state) || !probeStates.has(payload.state)) {
    return undefined;
  }
  const state = payload.state as ProbeState;
  const excelWindow = bounds(payload.excelWindow);
  return excelWindow ? { state, excelWindow } : { state };
};

export const cellPlace: Decoder<CellPlace> = (payload) => {
  if (!isObject(payload)) return undefined;
  const { book, sheet, addr } = payload;
  return isText(book) && isText(sheet) && isText(addr) ? { book, sheet, addr } : undefined;
};

const cell: Decoder<Cell> = (payload) => {
  const place = cellPlace(payload);
  if (!place || !isObject(payload)) return undefined;
  const { row, col, formula, formulaLocal, value, selection, region } = payload;
  if (!isIndex(row) || !isIndex(col)) return undefined;
  if (!isText(formula) || !isText(formulaLocal) || value === undefined) return undefined;
  return {
    ...place,
    row,
    col,
    formula,
    formulaLocal,
    value,
    ...(isText(selection) && selection !== '' ? { selection } : {}),
    ...(isText(region) && region !== '' ? { region } : {}),
  };
};

const rangeValues: Decoder<RangeValues | RangeTooBig> = (payload) => {
  if (!isObject(payload)) return undefined;
  const { rows, cols, tooBig, values } = payload;
  if (!isIndex(rows) || !isIndex(cols)) return undefined;
  if (tooBig === true) return { rows, cols, tooBig };
  return isGrid(values, rows, cols, isScalar) ? { rows, cols, values } : undefined;
};

const isShown = (value: unknown): value is ShownGrid | null =>
  value === null ||
  (Array.isArray(value) &&
    isGrid(value, value.length, Array.isArray(value[0]) ? value[0].length : 0, isText));

const shownTexts: Decoder<{ texts: (ShownGrid | null)[] }> = (payload) =>
  isObject(payload) && isListOf(payload.texts, isShown) ? { texts: payload.texts } : undefined;

const rangeFormulas: Decoder<RangeFormulas> = (payload) => {
  if (!isObject(payload)) return undefined;
  const { rows, cols, formulas, values } = payload;
  if (!isIndex(rows) || !isIndex(cols) || !isGrid(formulas, rows, cols, isText)) return undefined;
  if (Array.isArray(values) && values.length === 0) return { rows, cols, formulas, values: [] };
  return isGrid(values, rows, cols, isScalar) ? { rows, cols, formulas, values } : undefined;
};

type SheetEntry = WorkbookMap['sheets'][number];
type NameEntry = WorkbookMap['names'][number];

function isSheet(value: unknown): value is SheetEntry {
  if (!isObject(value) || !isText(value.name)) return false;
  return value.usedRange === null || isText(value.usedRange);
}

function isName(value: unknown): value is NameEntry {
  return isObject(value) && isText(value.name) && value.refersTo !== undefined;
}

const workbookMap: Decoder<WorkbookMap> = (payload) => {
  if (!isObject(payload)) return undefined;
  const { book, sheets, sheetsTruncated, names } = payload;
  return isText(book) &&
    isListOf(sheets, isSheet) &&
    typeof sheetsTruncated === 'boolean' &&
    isListOf(names, isName)
    ? { book, sheets, sheetsTruncated, names }
    : undefined;
};

const marked: Decoder<Marked> = (payload) =>
  isObject(payload) && isNumber(payload.applied) && typeof payload.shadowed === 'boolean'
    ? { applied: payload.applied, shadowed: payload.shadowed, moved: payload.moved === true }
    : undefined;

const revealed: Decoder<Revealed> = (payload) => {
  if (!isObject(payload) || typeof payload.revealed !== 'boolean') return undefined;
  const { reason, activated, unhid } = payload;
  return {
    revealed: payload.revealed,
    ...(isText(reason) ? { reason } : {}),
    ...(typeof activated === 'boolean' ? { activated } : {}),
    ...(isText(unhid) ? { unhid } : {}),
  };
};

/** An evaluation reports its failure inside a reply that is otherwise a success. */
const evaluation: Decoder<Outcome<Json>> = (payload) => {
  if (!isObject(payload)) return undefined;
  if (payload.ok === false) return { ok: false, failure: decodeFailure(payload) };
  return payload.ok === true && payload.value !== undefined ? succeeded(payload.value) : undefined;
};

const nothing: Decoder<null> = (payload) => (payload === null ? null : undefined);
const text: Decoder<string> = (payload) => (isText(payload) ? payload : undefined);
const truth: Decoder<true> = (payload) => (payload === true ? true : undefined);

function only<K extends string>(key: K): Decoder<Record<K, number>> {
  return (payload) => {
    const value = isObject(payload) ? payload[key] : undefined;
    return isNumber(value) ? ({ [key]: value } as Record<K, number>) : undefined;
  };
}

const evaluations: ReadonlySet<Verb> = new Set<Verb>(['evaluate', 'deepEval']);

const decoders: { [V in Exclude<Verb, 'evaluate' | 'deepEval'>]: Decoder<Verbs[V]['result']> } = {
  probe,
  readCell: cell,
  readRange: rangeValues,
  readTexts: shownTexts,
  select: only('areas'),
  activate: truth,
  pollCell: cellPlace,
  readFormulas: rangeFormulas,
  dependents: text,
  workbookMap,
  markCells: marked,
  clearMarks: only('removed'),
  reveal: revealed,
  log: nothing,
  getHighlightColor: (payload) => (isListOf(payload, isNumber) ? payload : undefined),
  setHighlightColor: nothing,
  setPanelWidth: nothing,
  isWelcomed: (payload) => (typeof payload === 'boolean' ? payload : undefined),
  setWelcomed: nothing,
  hidePanel: nothing,
  focusExcel: nothing,
  setConventions: nothing,
  loadReview: (payload) => (payload === undefined ? undefined : (payload as Json)),
  saveReview: nothing,
  saveReport: (payload) => (payload === null || isText(payload) ? payload : undefined),
  getSettings: settings,
  setSetting: settings,
  pauseHotKeys: nothing,
  checkForUpdates: nothing,
  quittingDrawn: nothing,
};

/** The outcome of `verb` from a reply's two members. Never throws, whatever `payload` is. */
export function decodeReply<V extends Verb>(
  verb: V,
  ok: boolean,
  payload: unknown,
): Outcome<Verbs[V]['result']> {
  if (!ok) return { ok: false, failure: decodeFailure(payload) };
  const malformed = failed('malformed', `The reply to "${verb}" has an unexpected shape.`);
  if (evaluations.has(verb)) {
    return (evaluation(payload) ?? malformed) as Outcome<Verbs[V]['result']>;
  }
  const decode = decoders[verb as keyof typeof decoders] as Decoder<Verbs[V]['result']>;
  const value = decode(payload);
  return value === undefined ? malformed : succeeded(value);
}
