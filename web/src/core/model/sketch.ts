// What a sheet's tracks are, in so few characters that they can be kept: by two of them it is told
// later which tracks were inserted, deleted or stayed. Of each row and column the first value, the
// second, and how all its formulas are made leave a print of eighteen bits each, from which none of
// them can be read back. Pure.

import type { Scalar } from '../protocol/json';
import { hash, letters } from './hash';
import { Kind, type SheetCells, type Texts } from './SheetCells';
import type { WorkbookModel } from './WorkbookModel';

export type SheetSketch = {
  name: string;
  /** As many tracks as the sheet has to its last filled cell. */
  height: number;
  width: number;
  /** Of the first tracks, one after the other: nine characters, or a dot for a blank track. */
  rows: string;
  cols: string;
};

/** Further tracks are not told apart. */
export const tracksLimit = 5_000;

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

class Tracks {
  private readonly first = new Map<number, number>();
  private readonly second = new Map<number, number>();
  /** Sums: the order of formulas along the track means nothing. */
  private readonly forms = new Map<number, number>();
  last = 0;

  /** A cell of the track, by its place along it; `form` is 0 for none. */
  add(track: number, at: number, form: number): void {
    this.last = Math.max(this.last, track);
    if (track > tracksLimit) return;
    if (form !== 0) this.forms.set(track, ((this.forms.get(track) ?? 0) + form) | 0);
    const first = this.first.get(track) ?? Infinity;
    if (at < first) {
      if (first !== Infinity) this.second.set(track, first);
      this.first.set(track, at);
    } else if (at < (this.second.get(track) ?? Infinity)) this.second.set(track, at);
  }

  text(valueAt: (track: number, at: number) => Scalar): string {
    let text = '';
    for (let track = 1; track <= Math.min(this.last, tracksLimit); track++) {
      const first = this.first.get(track);
      if (first === undefined) {
        text += '.';
        continue;
      }
      const second = this.second.get(track);
      text += printOfValue(valueAt(track, first) ?? '');
      text += printOfValue(second === undefined ? '' : (valueAt(track, second) ?? ''));
      text += threeOf(this.forms.get(track) ?? 0);
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
  const rows = new Tracks();
  const cols = new Tracks();
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
