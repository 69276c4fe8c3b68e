// What a sheet's lines are, in so few characters that they can be kept: by two of them it is told
// later which lines were inserted, deleted or stayed. Of each row and column the first value, the
// second, and how all its formulas are made leave a print of eighteen bits each, from which none of
// them can be read back. Pure.

import type { Scalar } from '../protocol/json';
import { hash, letters } from './hash';
import { Kind, type SheetCells, type Texts } from './SheetCells';
import type { WorkbookModel } from './WorkbookModel';

export type SheetSketch = {
  name: string;
  /** As many lines as the sheet has to its last filled cell. */
  height: number;
  width: number;
  /** Of the first lines, one after the other: nine characters, or a dot for a blank line. */
  rows: string;
  cols: string;
};

/** Further lines are not told apart. */
export const linesLimit = 5_000;

function threeOf(number: number): string {
  return [0, 6, 12].map((shift) => letters[(number >>> shift) & 63]).join('');
}

/** How a relative formula is made: without the numbers in it, and so without the places it takes. */
function formHash(formula: string): number {
  return hash(formula.replace(/[-\d.[\]]+/g, ''));
}

/** Three characters; of a text the first is a capital letter, of anything else a small one. */
function printOfValue(value: Scalar): string {
  const number = hash(String(value));
  const isText = typeof value === 'string';
  const first = (isText ? 0 : 26) + (number % 26);
  const rest = Math.floor(number / 26);
  return `${letters[first] ?? ''}${letters[rest & 63] ?? ''}${letters[(rest >>> 6) & 63] ?? ''}`;
}

/** Four characters for any text. */
export function printOf(text: string): string {
  const number = hash(text);
  return [0, 6, 12, 18].map((shift) => letters[(number >>> shift) & 63]).join('');
}

class Lines {
  private readonly first = new Map<number, number>();
  private readonly second = new Map<number, number>();
  /** Sums: the order of formulas along the line means nothing. */
  private readonly forms = new Map<number, number>();
  last = 0;

  /** A cell of the line, by its place along it; `form` is 0 for none. */
  add(line: number, at: number, form: number): void {
    this.last = Math.max(this.last, line);
    if (line > linesLimit) return;
    if (form !== 0) this.forms.set(line, ((this.forms.get(line) ?? 0) + form) | 0);
    const first = this.first.get(line) ?? Infinity;
    if (at < first) {
      if (first !== Infinity) this.second.set(line, first);
      this.first.set(line, at);
    } else if (at < (this.second.get(line) ?? Infinity)) this.second.set(line, at);
  }

  text(valueAt: (line: number, at: number) => Scalar): string {
    let text = '';
    for (let line = 1; line <= Math.min(this.last, linesLimit); line++) {
      const first = this.first.get(line);
      if (first === undefined) {
        text += '.';
        continue;
      }
      const second = this.second.get(line);
      text += printOfValue(valueAt(line, first) ?? '');
      text += printOfValue(second === undefined ? '' : (valueAt(line, second) ?? ''));
      text += threeOf(this.forms.get(line) ?? 0);
    }
    return text;
  }
}

export function sketchOf(name: string, cells: SheetCells, formulas: Texts): SheetSketch {
  const forms = new Map<number, number>();
  const formOf = (formula: number) => {
    let form = forms.get(formula);
    if (form === undefined) forms.set(formula, (form = formHash(formulas.at(formula))));
    return form;
  };
  const rows = new Lines();
  const cols = new Lines();
  if (cells.extent) {
    cells.eachFilled(cells.extent, (row, col, kind, formula) => {
      if (kind === Kind.Blank && formula === 0) return;
      const form = formula === 0 ? 0 : formOf(formula);
      rows.add(row, col, form);
      cols.add(col, row, form);
    });
  }
  return {
    name,
    height: rows.last,
    width: cols.last,
    rows: rows.text((row, col) => cells.valueAt(row, col).value),
    cols: cols.text((col, row) => cells.valueAt(row, col).value),
  };
}

export function* sketchesOf(model: WorkbookModel): Generator<undefined, SheetSketch[]> {
  const sketches: SheetSketch[] = [];
  for (const [number, name] of model.entry.sheets.entries()) {
    const cells = model.cellsOf(number);
    if (cells) sketches.push(sketchOf(name, cells, model.formulas));
    yield undefined;
  }
  return sketches;
}
