// Cells unlike those on both sides of them in their row or column, and the last or first cell of a
// run where the tracks beside it go on: another formula, a number typed over one, a blank. What recurs
// along a track, or goes on across it, is a pattern and no mistake.

import { areaAddress, meet } from '../address/area';
import type { CellPosition } from '../formula/reference';
import { Kind as CellKind } from '../model/SheetCells';
import { rangesOf } from './aggregates';
import { beginsChain } from './chains';
import { differenceOf } from './difference';
import { cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { isData } from './shape';
import type { SheetGrid } from './SheetGrid';

/** What a cell has: the number of its formula, or one of these. */
const enum Content {
  Blank = 0,
  Constant = -1,
  Other = -2,
}

type Run = { content: number; first: number; last: number };

/** A row or column of a sheet, seen along it. */
class Track {
  readonly runs: Run[] = [];

  constructor(
    readonly grid: SheetGrid,
    readonly number: number,
    readonly isRow: boolean,
    /** The number by which a formula is known: its own, or that of its form. */
    private readonly known: (formula: number) => number,
  ) {
    const { area } = grid;
    const end = isRow ? area.right : area.bottom;
    for (let at = isRow ? area.left : area.top; at <= end; at++) {
      const content = this.content(at);
      const open = this.runs.at(-1);
      if (open?.content === content) open.last = at;
      else this.runs.push({ content, first: at, last: at });
    }
  }

  place(at: number, across = 0): CellPosition {
    const track = this.number + across;
    return this.isRow ? { row: track, col: at } : { row: at, col: track };
  }

  /** `across`: so many tracks beside this one. */
  content(at: number, across = 0): number {
    const { row, col } = this.place(at, across);
    const formula = this.grid.formula(row, col);
    if (formula > 0) return this.known(formula);
    const kind = this.grid.kind(row, col);
    if (kind === CellKind.Blank) return Content.Blank;
    return kind === CellKind.Number ? Content.Constant : Content.Other;
  }

  /** How many cells across this track have the same, the cell itself among them. */
  breadth(at: number): number {
    const own = this.content(at);
    let cells = 1;
    for (const way of [-1, 1]) {
      for (let across = way; Math.abs(across) < 6; across += way) {
        if (this.content(at, across) !== own) break;
        // Beside the table all is blank.
        if (own === Content.Blank && this.content(at - 1, across) === Content.Blank) break;
        cells++;
      }
    }
    return cells;
  }
}

const length = ({ first, last }: Run): number => last - first + 1;

export function* neighbourClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  const byForm: Clue[] = [];
  for (const grid of evidence.grids) {
    for (const isRow of [true, false]) {
      const { area } = grid;
      const [from, to] = isRow ? [area.top, area.bottom] : [area.left, area.right];
      for (let track = from; track <= to; track++) {
        inTrack(evidence, new Track(grid, track, isRow, (formula) => formula), clues);
        yield undefined;
        if (evidence.isIrregular(grid.sheet)) continue;
        const forms = new Track(grid, track, isRow, (formula) => evidence.form(formula));
        inTrack(evidence, forms, byForm);
      }
    }
  }
  // By their forms tracks are less alike: what is expected is told as an example.
  for (const clue of byForm) {
    clues.push({ ...clue, expected: '', weight: clue.weight - 1.5, level: 'doubt' });
  }
  return clues;
}

function inTrack(evidence: Evidence, track: Track, clues: Clue[]): void {
  const { runs } = track;
  /** Breaks of this track by what stands in them. */
  const recurring = new Map<string, number>();
  const breaks: number[] = [];
  for (let i = 1; i + 1 < runs.length; i++) {
    const [before, own, after] = [runs[i - 1], runs[i], runs[i + 1]] as [Run, Run, Run];
    if (before.content <= 0 || before.content !== after.content) continue;
    const around = length(before) + length(after);
    if (around < 2 * length(own) || length(own) > 40) continue;
    breaks.push(i);
    const key = `${String(before.content)} ${String(own.content)}`;
    recurring.set(key, (recurring.get(key) ?? 0) + 1);
  }
  for (const i of breaks) {
    const [before, own, after] = [runs[i - 1], runs[i], runs[i + 1]] as [Run, Run, Run];
    const times = recurring.get(`${String(before.content)} ${String(own.content)}`) ?? 1;
    if (times > 2 || (times === 2 && own.content === Content.Blank)) continue;
    const support =
      Math.log2(1 + Math.min(32, length(before))) + Math.log2(1 + Math.min(32, length(after)));
    const crowd = Math.log2(breaks.length) * 1.5 + (times - 1) * 2;
    addBetween(evidence, track, own, before, after, support - crowd, clues);
  }
  for (const run of runs) {
    if (run.content <= 0 || length(run) < 3) continue;
    addEnd(evidence, track, run, run.last + 1, clues);
    addEnd(evidence, track, run, run.first - 1, clues);
  }
}

function addBetween(
  evidence: Evidence,
  track: Track,
  own: Run,
  before: Run,
  after: Run,
  support: number,
  clues: Clue[],
): void {
  if (own.content === Content.Other) return;
  const breadth = track.breadth(own.first);
  const { row, col } = track.place(own.first);
  const area = { ...cell(row, col) };
  if (track.isRow) area.right = own.last;
  else area.bottom = own.last;
  const expected = before.content;
  const close = closeness(
    evidence,
    own.content > 0 ? track.grid.formula(row, col) : own.content,
    expected,
    { row, col },
  );
  // What goes on across the track is a row or column of its own.
  const design = own.content > 0 ? (breadth - 1) * 2.5 : (breadth - 1) * 1.5;
  const weight = support + close.bonus - design;
  if (weight < 3) return;
  const beside = besides(track, before, after);
  clues.push({
    ...close,
    sheet: track.grid.sheet,
    areas: [area],
    sentence: `${areaAddress(area)} ${close.words}; ${beside} are filled alike with ${shownIn(evidence, track, before)}.`,
    expected: evidence.text(expected),
    weight,
    level: own.content === Content.Blank ? 'doubt' : 'fact',
  });
}

function shownIn(evidence: Evidence, track: Track, run: Run): string {
  const { row, col } = track.place(run.first);
  return evidence.shown(track.grid.formula(row, col), row, col);
}

/** "C3:C9 and C11:C14 on both sides" */
function besides(track: Track, ...runs: Run[]): string {
  return runs
    .map((run) => {
      const start = track.place(run.first);
      const end = track.place(run.last);
      return areaAddress({ top: start.row, left: start.col, bottom: end.row, right: end.col });
    })
    .join(' and ');
}

type Closeness = { kind: Clue['kind']; words: string; bonus: number };

function closeness(evidence: Evidence, own: number, expected: number, at: CellPosition): Closeness {
  if (own === Content.Blank) {
    return { kind: 'blank', words: 'is blank inside a filled range', bonus: 0 };
  }
  if (own === Content.Constant) {
    if (isData(evidence.shapes.of(expected))) return { kind: 'constant', words: '', bonus: -9 };
    return {
      kind: 'constant',
      words: 'is a typed-in number where a formula is expected',
      bonus: 1.5,
    };
  }
  const { shapes } = evidence;
  // "=1/3.6" stands for a number: a column of these is data.
  if (isData(shapes.of(own)) || isData(shapes.of(expected))) {
    return { kind: 'differs', words: `has ${evidence.shown(own, at.row, at.col)}`, bonus: -4 };
  }
  const found = differenceOf(shapes.of(own), shapes.of(expected), at);
  const rare = evidence.count(own) <= 2 ? 0.5 : -Math.min(3, Math.log2(evidence.count(own)) / 2);
  const near = found.places <= 1 ? 2 : found.places <= 3 ? 1 : -0.5;
  const words = found.places > 3 ? `has ${evidence.shown(own, at.row, at.col)}` : found.words;
  return { kind: 'differs', words, bonus: near + rare };
}

/** True if the cell adds up the run, or part of it: that is how a list ends. */
function isTotal(evidence: Evidence, track: Track, run: Run, at: number): boolean {
  const place = track.place(at);
  const start = track.place(run.first);
  const end = track.place(run.last);
  const cells = { top: start.row, left: start.col, bottom: end.row, right: end.col };
  return rangesOf(evidence, track.grid.formula(place.row, place.col), place).some(
    ({ area, prefix }) => prefix === '' && meet(area, cells) !== undefined,
  );
}

/** The cell behind a run of one formula: odd where the tracks beside this one go on there. */
function addEnd(evidence: Evidence, track: Track, run: Run, at: number, clues: Clue[]): void {
  const { row, col } = track.place(at);
  if (!track.grid.has(row, col)) return;
  const own = track.content(at);
  if (own === Content.Other || own === Content.Blank) return;
  const isAfter = at > run.last;
  if (!isAfter && beginsChain(evidence, track.grid, { row, col }, run.content)) return;
  const last = isAfter ? run.last : run.first;
  let going = 0;
  let against = 0;
  for (const across of [-1, 1]) {
    const beside = track.content(last, across);
    if (beside <= 0) continue;
    if (track.content(at, across) === beside) going++;
    else against++;
  }
  if (own > 0 && track.breadth(at) > 1) return;
  if (own > 0 && going === 0 && isTotal(evidence, track, run, at)) return;
  const close = closeness(evidence, own > 0 ? track.grid.formula(row, col) : own, run.content, {
    row,
    col,
  });
  if (own === Content.Constant && going === 0) return;
  if (own > 0 && close.bonus < 1.5 && going === 0) return;
  const support = Math.log2(1 + Math.min(16, length(run)));
  const weight = support + close.bonus + going * 1.5 - against * 1.5 - (isAfter ? 0.5 : 1.5);
  if (weight < 3) return;
  const beyond =
    going > 0 ? `, and the ${track.isRow ? 'rows' : 'columns'} beside go on there` : '';
  clues.push({
    kind: close.kind,
    sheet: track.grid.sheet,
    areas: [cell(row, col)],
    sentence: `${areaAddress(cell(row, col))} ${close.words}; ${besides(track, run)} ${isAfter ? 'before' : 'after'} it are filled alike with ${shownIn(evidence, track, run)}${beyond}.`,
    expected: evidence.text(run.content),
    weight,
    level: 'fact',
  });
}
