// One workbook as it was read: its sheets, its formulas, and the index over them, which is built when
// a question needs it and something was read since. Generators yield where others may take a turn.

import { unquoted, type Area } from '../address/area';
import type { Grid, Scalar } from '../protocol/json';
import { findCircles, type Circles } from './circles';
import type { Reached } from './closure';
import { restingOn } from './closure';
import { Definitions } from './Definitions';
import { Uses } from './impact';
import { Index, type SheetArea } from './Index';
import type { BookEntry, Cells, Comparison, TablePlace } from './messages';
import { labelOf } from './labels';
import { Names } from './Names';
import type { Meanings } from './references';
import { rowCover } from './rowCover';
import { isCalculated, SheetCells, Texts } from './SheetCells';
import { sameFormula } from './sameFormula';

type Place = SheetArea['area'] & { sheet: number };

export class WorkbookModel {
  readonly formulas = new Texts();
  private readonly texts = new Texts();
  private readonly sheets: SheetCells[];
  private readonly numbers = new Map<string, number>();
  /** Sheets that are being read, by number. */
  private readonly arriving = new Map<number, SheetCells>();
  private readonly tables = new Map<string, Place | undefined>();
  private readonly unknownTables = new Set<string>();
  private readonly meanings: Meanings;
  private readonly names: Names;
  private definitions: Definitions;
  private built: Index | undefined;
  private uses: Uses | undefined;
  private circles: Circles | undefined;
  private forward: { of: string; reached: Reached } | undefined;

  constructor(readonly entry: BookEntry) {
    this.sheets = entry.sheets.map(() => this.emptySheet());
    entry.sheets.forEach((name, i) => this.numbers.set(name.toLowerCase(), i));
    this.meanings = this.meaningsOf();
    this.names = new Names(
      entry.names,
      (name) => this.sheetNumber(unquoted(name)),
      () => this.meanings,
    );
    this.definitions = this.newDefinitions();
  }

  sheetNumber(name: string): number | undefined {
    return this.numbers.get(name.toLowerCase());
  }

  sheetName(number: number): string {
    return this.entry.sheets[number] ?? '';
  }

  cellsOf(number: number): SheetCells | undefined {
    return this.sheets[number];
  }

  place({ sheet, area }: Cells): SheetArea | undefined {
    const number = this.sheetNumber(sheet);
    return number === undefined ? undefined : { sheet: number, area };
  }

  beginSheet(name: string): void {
    const number = this.sheetNumber(name);
    if (number !== undefined) this.arriving.set(number, this.emptySheet());
  }

  piece(name: string, area: Area, formulas: string[][], values: Grid): void {
    const number = this.sheetNumber(name);
    if (number === undefined) return;
    let cells = this.arriving.get(number);
    if (!cells) {
      cells = this.emptySheet();
      this.arriving.set(number, cells);
    }
    cells.add(area, formulas, values);
  }

  endSheet(name: string): void {
    const number = this.sheetNumber(name);
    const cells = number === undefined ? undefined : this.arriving.get(number);
    if (number === undefined || !cells) return;
    this.arriving.delete(number);
    this.sheets[number] = cells;
    this.change();
  }

  setTables(places: readonly TablePlace[]): void {
    for (const { question, place } of places) {
      const found = place && this.place(place);
      const known = found && { ...found.area, sheet: found.sheet };
      this.tables.set(question.toLowerCase(), known);
      this.unknownTables.delete(question);
    }
    // Formulas that were read before meant nothing by these, nor did names.
    this.names.forget();
    this.definitions = this.newDefinitions();
    this.change();
  }

  /** What formulas name that only the spreadsheet can tell; known once the index was built. */
  get tableQuestions(): string[] {
    return [...this.unknownTables];
  }

  get definition(): Definitions {
    return this.definitions;
  }

  *index(): Generator<undefined, Index> {
    this.built ??= yield* Index.build(this.sheets, this.definitions);
    return this.built;
  }

  usesOf(index: Index): Uses {
    this.uses ??= new Uses(index);
    return this.uses;
  }

  *circlesOf(index: Index): Generator<undefined, Circles> {
    this.circles ??= yield* findCircles(index);
    return this.circles;
  }

  /** What rests on some cells; kept for the next question about the same ones. */
  *restingOn(index: Index, start: SheetArea): Generator<undefined, Reached> {
    const { sheet, area } = start;
    const of = [sheet, area.top, area.left, area.bottom, area.right].join();
    if (this.forward?.of !== of) {
      this.forward = { of, reached: yield* restingOn(index, start) };
    }
    return this.forward.reached;
  }

  label({ sheet, area }: SheetArea): string {
    const cells = this.sheets[sheet];
    return cells ? labelOf(cells, area) : '';
  }

  *rowCover(sheet: string): Generator<undefined, number[]> {
    const cells = this.cellsOf(this.sheetNumber(sheet) ?? -1);
    return cells ? yield* rowCover(cells, this.formulas) : [];
  }

  value({ sheet, area }: SheetArea): Scalar {
    return this.sheets[sheet]?.valueAt(area.top, area.left).value ?? null;
  }

  compare(sheet: string, row: number, col: number, formula: string, value: Scalar): Comparison {
    const number = this.sheetNumber(sheet);
    const cells = number === undefined ? undefined : this.sheets[number];
    if (!cells || cells.blocks.length === 0) return 'unknown';
    const known = cells.formulaAt(row, col);
    if ((known !== 0) !== isCalculated(formula, value)) return 'differs';
    if (known !== 0) {
      return sameFormula(this.formulas.at(known), formula, { row, col }) ? 'same' : 'differs';
    }
    const before = cells.valueAt(row, col).value;
    return before === (value === '' ? null : value) ? 'same' : 'differs';
  }

  private change(): void {
    this.built = undefined;
    this.uses = undefined;
    this.circles = undefined;
    this.forward = undefined;
  }

  private emptySheet(): SheetCells {
    return new SheetCells(this.formulas, this.texts);
  }

  private newDefinitions(): Definitions {
    return new Definitions(this.formulas, this.names, this.meanings);
  }

  private meaningsOf(): Meanings {
    return {
      sheets: (first, last) => {
        const from = this.sheetNumber(first);
        const to = this.sheetNumber(last);
        if (from === undefined || to === undefined) return undefined;
        const least = Math.min(from, to);
        return Array.from({ length: Math.abs(to - from) + 1 }, (_, i) => least + i);
      },
      isOwnBook: (book) => book.toLowerCase() === this.entry.book.toLowerCase(),
      name: (name, sheet) => this.names.meaning(name, sheet),
      table: (question) => {
        const key = question.toLowerCase();
        if (!this.tables.has(key)) this.unknownTables.add(question);
        return this.tables.get(key);
      },
    };
  }
}
