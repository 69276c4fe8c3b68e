// What a reviewer said of findings, as it is kept: beside each the cells and formulas that it was
// said of, and sketches of their sheets, by which they are found again in the workbook as it is
// then. Pure.

import { areaAddress, parseArea } from '../address/area';
import { sheetOfPrefix } from '../evaluation/routes';
import { Lexer } from '../formula/Lexer';
import type { Cells, FindingRow } from '../model/messages';
import { eachPrint, printLength } from '../model/prints';
import type { SheetSketch } from '../model/sketch';
import { isIndex, isListOf, isObject, isText, type Json } from '../protocol/json';
import { Moves, written } from './moved';

export type State = 'fault' | 'fine' | 'later';

/** `at`: when, as ISO has it. */
export type Said = { state: State; note: string; at: string };

/** A finding as it was when it was said. Of many areas the first are kept. */
export type SaidOf = Said & {
  kind: string;
  cells: Cells[];
  areas: number;
  size: number;
  formula: string;
  expected: string;
  print: string;
};

/** `sheets`: those that the findings are on and that their formulas name, as they were. */
export type Snapshot = { sheets: SheetSketch[]; said: SaidOf[] };

/**
 * The newest first. What is found no more stays for a workbook as it was. `seen`: prints of the
 * formulas that the reviewer has seen, the latest last.
 */
export type SavedReview = { version: 1; snapshots: Snapshot[]; seen: string };

export const emptyReview: SavedReview = { version: 1, snapshots: [], seen: '' };

/** Of more formulas it is not kept that they were seen: the first go. */
export const seenLimit = 20_000;

/** More is not kept; the oldest goes. */
const snapshotsLimit = 3;
export const noteLimit = 2_000;

const states: ReadonlySet<unknown> = new Set<State>(['fault', 'fine', 'later']);

export function isState(value: unknown): value is State {
  return states.has(value);
}

type Found = Map<FindingRow, SaidOf>;

function keyOf(kind: string, { sheet, area }: Cells): string {
  return `${kind}\n${sheet.toLowerCase()}\n${String(area.top)}\n${String(area.left)}`;
}

/** What was said of each of the findings; of two sayings the newer one. */
export function saidOf(
  saved: SavedReview,
  findings: readonly FindingRow[],
  sketches: readonly SheetSketch[],
): Found {
  const byFirst = new Map<string, FindingRow[]>();
  for (const finding of findings) {
    const [first] = finding.cells;
    if (!first) continue;
    const key = keyOf(finding.kind, first);
    byFirst.set(key, [...(byFirst.get(key) ?? []), finding]);
  }
  const found: Found = new Map();
  for (const { sheets, said } of saved.snapshots) {
    const moves = new Moves(sheets, sketches);
    for (const one of said) {
      const [first] = one.cells;
      const area = first && moves.area(first.sheet, first.area);
      if (!area) continue;
      const there = byFirst.get(keyOf(one.kind, { sheet: first.sheet, area })) ?? [];
      const finding = there.find((each) => isOf(one, each, moves));
      if (finding && !found.has(finding)) found.set(finding, one);
    }
  }
  return found;
}

/** True if it was said of this finding, all of whose cells were there already. */
function isOf(one: SaidOf, finding: FindingRow, moves: Moves): boolean {
  const sheet = one.cells[0]?.sheet ?? '';
  const isTold = finding.areas === finding.cells.length && one.areas === one.cells.length;
  return (
    one.kind === finding.kind &&
    one.print === finding.print &&
    one.size === finding.size &&
    (isTold || one.areas === finding.areas) &&
    moves.formula(one.formula, sheet) === written(finding.formula) &&
    moves.formula(one.expected, sheet) === written(finding.expected) &&
    finding.cells.every((cells) => one.cells.some((before) => moves.holds(before, cells)))
  );
}

/**
 * The review after something was said of `finding`, or taken back; all else that was said of the
 * findings that there are is kept as of now.
 */
export function withSaid(
  saved: SavedReview,
  found: ReadonlyMap<FindingRow, SaidOf>,
  sketches: readonly SheetSketch[],
  finding: FindingRow,
  said: Said | undefined,
): SavedReview {
  const kept = new Map<FindingRow, Said>(found);
  kept.delete(finding);
  if (said) kept.set(finding, said);
  const now: SaidOf[] = [...kept].map(([row, { state, note, at }]) => ({
    state,
    note,
    at,
    kind: row.kind,
    cells: row.cells,
    areas: row.areas,
    size: row.size,
    formula: row.formula,
    expected: row.expected,
    print: row.print,
  }));
  const settled = new Set<SaidOf>(found.values());
  const before = saved.snapshots.map(({ sheets, said: all }) => ({
    sheets,
    said: all.filter((one) => !settled.has(one)),
  }));
  const snapshots = [{ sheets: sheetsOf(now, sketches), said: now }, ...before]
    .filter((one) => one.said.length > 0)
    .slice(0, snapshotsLimit);
  return { ...saved, snapshots };
}

/** The review with these prints among those that were seen. */
export function withSeen(saved: SavedReview, news: string): SavedReview {
  const prints = [...new Set([...eachPrint(saved.seen), ...eachPrint(news)])];
  return { ...saved, seen: prints.slice(-seenLimit).join('') };
}

/** The sketches of the sheets that the findings are on or name. */
function sheetsOf(said: readonly SaidOf[], sketches: readonly SheetSketch[]): SheetSketch[] {
  const names = new Set<string>();
  for (const { cells, formula, expected } of said) {
    for (const { sheet } of cells) names.add(sheet.toLowerCase());
    for (const text of [formula, expected]) {
      for (const lexer = new Lexer(text, 'a1'); lexer.kind !== 'end'; lexer.advance()) {
        const name = lexer.kind === 'prefix' ? sheetOfPrefix(lexer.token) : undefined;
        if (name !== undefined) names.add(name.toLowerCase());
      }
    }
  }
  return sketches.filter(({ name }) => names.has(name.toLowerCase()));
}

/** As plain data for the file; cells as addresses. */
export function encodeReview(review: SavedReview): Json {
  return {
    version: review.version,
    ...(review.seen === '' ? {} : { seen: review.seen }),
    snapshots: review.snapshots.map(({ sheets, said }) => ({
      sheets: sheets.map((sheet) => ({ ...sheet })),
      said: said.map(({ cells, ...one }) => ({
        ...one,
        cells: cells.map(({ sheet, area }) => [sheet, areaAddress(area)]),
      })),
    })),
  };
}

function cellsOf(value: unknown): Cells | undefined {
  if (!Array.isArray(value) || value.length !== 2) return undefined;
  const [sheet, address] = value as unknown[];
  const area = isText(address) ? parseArea(address) : undefined;
  return isText(sheet) && area ? { sheet, area } : undefined;
}

function saidIn(value: unknown): SaidOf | undefined {
  if (!isObject(value) || !Array.isArray(value.cells)) return undefined;
  const { state, note, at, kind, areas, size, formula, expected, print } = value;
  const cells = value.cells.map(cellsOf);
  if (!cells.every((one) => one !== undefined) || !isState(state)) return undefined;
  return isText(note) &&
    isText(at) &&
    isText(kind) &&
    isIndex(areas) &&
    isIndex(size) &&
    isText(formula) &&
    isText(expected) &&
    isText(print)
    ? { state, note, at, kind, cells, areas, size, formula, expected, print }
    : undefined;
}

function isSketch(value: unknown): value is SheetSketch {
  if (!isObject(value)) return false;
  const { name, height, width, rows, cols } = value;
  const isCount = (number: unknown) => number === 0 || isIndex(number);
  return isText(name) && isCount(height) && isCount(width) && isText(rows) && isText(cols);
}

/** Nothing for what is no review, or one of another version. */
export function decodeReview(value: unknown): SavedReview | undefined {
  if (value === null) return emptyReview;
  if (!isObject(value) || value.version !== 1 || !Array.isArray(value.snapshots)) return undefined;
  const snapshots: Snapshot[] = [];
  for (const one of value.snapshots as unknown[]) {
    if (!isObject(one) || !isListOf(one.sheets, isSketch) || !Array.isArray(one.said)) {
      return undefined;
    }
    const said = one.said.map(saidIn);
    if (!said.every((each) => each !== undefined)) return undefined;
    snapshots.push({ sheets: one.sheets, said });
  }
  const { seen = '' } = value;
  if (!isText(seen) || seen.length % printLength !== 0) return undefined;
  return { version: 1, snapshots, seen };
}
