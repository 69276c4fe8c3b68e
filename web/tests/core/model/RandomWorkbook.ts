// Small workbooks drawn at random, and who uses what in them worked out cell by cell, from what was
// drawn and not from the formulas' text.

import type { Area } from '../../../src/core/address/area';
import { WorkbookModel } from '../../../src/core/model/WorkbookModel';
import type { Index } from '../../../src/core/model/Index';
import type { Grid } from '../../../src/core/protocol/json';

const maxRows = 1_048_576;
const maxColumns = 16_384;

/** The same numbers for the same seed, on every machine. */
export function numbersFrom(seed: number): (below: number) => number {
  let state = seed >>> 0;
  return (below) => {
    state = (state + 0x6d2b79f5) >>> 0;
    let x = state;
    x = Math.imul(x ^ (x >>> 15), x | 1);
    x ^= x + Math.imul(x ^ (x >>> 7), x | 61);
    return ((x ^ (x >>> 14)) >>> 0) % below;
  };
}

export function drain<T>(work: Generator<undefined, T>): T {
  for (;;) {
    const step = work.next();
    if (step.done === true) return step.value;
  }
}

/** One end of a reference: a fixed row or column, or a distance. */
type End = { at: number; fixed: boolean };
type Drawn = {
  sheets: number[] | 'own';
  seenFrom?: (sheet: number) => boolean;
  rows: [End, End] | 'all';
  cols: [End, End] | 'all';
};
/** What a formula is made of: its text, and what each of its references names. */
type DrawnFormula = { text: string; references: Drawn[] };

export type CellKey = string;
export const keyOf = (sheet: number, row: number, col: number): CellKey =>
  `${String(sheet)}!${String(row)},${String(col)}`;

export const sheetNames = ['First', 'The second', "Ann's", 'Last'];
export const size = 11;
/** What is named covers these rows and columns; beyond them there are no cells to use anything. */
const seen = 14;

export const names = [
  { name: 'Rate', refersTo: '=First!$B$2' },
  { name: 'Block', refersTo: "='The second'!$C$3:$E$5,Last!$A$1" },
  { name: 'Rates', refersTo: '=Rate' },
  { name: "'The second'!Rate", refersTo: "='The second'!$D$4" },
  { name: 'Ring', refersTo: '=Ring2' },
  { name: 'Ring2', refersTo: '=Ring' },
  { name: 'Gone', refersTo: '=#REF!' },
];

const fixed = (at: number): End => ({ at, fixed: true });
const box = (sheet: number, top: number, left: number, bottom: number, right: number): Drawn => ({
  sheets: [sheet],
  rows: [fixed(top), fixed(bottom)],
  cols: [fixed(left), fixed(right)],
});

function endText(letter: string, { at, fixed }: End): string {
  return fixed ? letter + String(at) : at === 0 ? letter : `${letter}[${String(at)}]`;
}

export class RandomWorkbook {
  readonly cells = new Map<CellKey, DrawnFormula>();

  private readonly pool: DrawnFormula[] = [];

  constructor(private readonly number: (below: number) => number) {
    for (let sheet = 0; sheet < sheetNames.length; sheet++) this.redraw(sheet);
  }

  /** Fills a sheet anew: some formulas over rectangles, some single ones, gaps. */
  redraw(sheet: number): void {
    for (let row = 1; row <= size; row++) {
      for (let col = 1; col <= size; col++) this.cells.delete(keyOf(sheet, row, col));
    }
    for (let i = 0; i < 5; i++) {
      // The same formula on several sheets, now and then.
      const formula = this.pool[this.number(12)] ?? this.formula();
      this.pool.push(formula);
      const top = 1 + this.number(size);
      const left = 1 + this.number(size);
      const bottom = Math.min(size, top + this.number(6));
      const right = Math.min(size, left + this.number(4));
      for (let row = top; row <= bottom; row++) {
        for (let col = left; col <= right; col++) this.cells.set(keyOf(sheet, row, col), formula);
      }
    }
  }

  piece(sheet: number, area: Area): { formulas: string[][]; values: Grid } {
    const formulas: string[][] = [];
    for (let row = area.top; row <= area.bottom; row++) {
      const line: string[] = [];
      for (let col = area.left; col <= area.right; col++) {
        line.push(this.cells.get(keyOf(sheet, row, col))?.text ?? '');
      }
      formulas.push(line);
    }
    return { formulas, values: formulas.map((line) => line.map((text) => (text ? 1 : null))) };
  }

  /** In two pieces, cut somewhere. */
  readInto(model: WorkbookModel, sheet: number): void {
    const name = sheetNames[sheet] as string;
    const cut = 1 + this.number(size - 1);
    model.beginSheet(name);
    for (const area of [
      { top: 1, left: 1, bottom: cut, right: size },
      { top: cut + 1, left: 1, bottom: size, right: size },
    ]) {
      const { formulas, values } = this.piece(sheet, area);
      model.piece(name, area, formulas, values);
    }
    model.endSheet(name);
  }

  model(): WorkbookModel {
    const model = new WorkbookModel({ book: 'Drawn.xlsx', sheets: sheetNames, names });
    for (let sheet = 0; sheet < sheetNames.length; sheet++) this.readInto(model, sheet);
    return model;
  }

  /** The cells that one cell names, as far as cells are looked at. */
  usedBy(key: CellKey): Set<CellKey> {
    const [sheet = 0, row = 0, col = 0] = key.split(/[!,]/).map(Number);
    const used = new Set<CellKey>();
    for (const { sheets, seenFrom, rows, cols } of this.cells.get(key)?.references ?? []) {
      if (seenFrom?.(sheet) === false) continue;
      for (const target of sheets === 'own' ? [sheet] : sheets) {
        for (let r = 1; r <= seen; r++) {
          if (!isIn(r, rows, row, maxRows)) continue;
          for (let c = 1; c <= seen; c++) {
            if (isIn(c, cols, col, maxColumns)) used.add(keyOf(target, r, c));
          }
        }
      }
    }
    return used;
  }

  private formula(): DrawnFormula {
    const references: Drawn[] = [];
    const texts: string[] = [];
    const count = 1 + this.number(3);
    for (let i = 0; i < count; i++) {
      const kind = this.number(12);
      if (kind < 8) {
        const { text, drawn } = this.reference();
        texts.push(text);
        references.push(drawn);
      } else if (kind === 8) {
        texts.push('Rate');
        references.push(
          { ...box(1, 4, 4, 4, 4), seenFrom: (sheet) => sheet === 1 },
          { ...box(0, 2, 2, 2, 2), seenFrom: (sheet) => sheet !== 1 },
        );
      } else if (kind === 9) {
        texts.push('SUM(Block)');
        references.push(box(1, 3, 3, 5, 5), box(3, 1, 1, 1, 1));
      } else if (kind === 10) {
        texts.push('Ring+Gone+Missing');
      } else {
        // A range of two references, and what two ranges have in common.
        texts.push('SUM(R2C2:R3C3:R5C4)+SUM(R[-1]C:R[1]C[2] R[0]C[1]:R[3]C[3])');
        references.push(
          { ...box(0, 2, 2, 5, 4), sheets: 'own' },
          {
            sheets: 'own',
            rows: [distance(0), distance(1)],
            cols: [distance(1), distance(2)],
          },
        );
      }
    }
    return { text: `=${texts.join('+')}`, references };
  }

  private reference(): { text: string; drawn: Drawn } {
    const { number } = this;
    const end = (): End =>
      number(2) === 0
        ? { at: 1 + number(size), fixed: true }
        : distance(number(3) === 0 ? 0 : number(9) - 4);
    const how = number(10);
    const rows: [End, End] | 'all' = how === 0 ? 'all' : [end(), end()];
    const cols: [End, End] | 'all' = how === 1 ? 'all' : [end(), end()];
    const single = how > 5;
    if (single && rows !== 'all') rows[1] = rows[0];
    if (single && cols !== 'all') cols[1] = cols[0];
    const corner = (i: 0 | 1): string =>
      (rows === 'all' ? '' : endText('R', rows[i])) + (cols === 'all' ? '' : endText('C', cols[i]));
    const cells = single ? corner(0) : `${corner(0)}:${corner(1)}`;
    const where = number(6);
    if (where < 3) return { text: `SUM(${cells})`, drawn: { sheets: 'own', rows, cols } };
    if (where === 3) {
      return { text: `SUM('The second:Last'!${cells})`, drawn: { sheets: [1, 2, 3], rows, cols } };
    }
    const sheet = number(sheetNames.length);
    const name = (sheetNames[sheet] as string).replaceAll("'", "''");
    return { text: `SUM('${name}'!${cells})`, drawn: { sheets: [sheet], rows, cols } };
  }
}

function distance(at: number): End {
  return { at, fixed: false };
}

/** True if a row or column lies between two ends, as seen from a cell's own. */
function isIn(track: number, ends: [End, End] | 'all', own: number, limit: number): boolean {
  if (ends === 'all') return true;
  const tracks = ends.map(({ at, fixed }) => {
    if (fixed) return at;
    const to = own + at;
    return to < 1 ? to + limit : to > limit ? to - limit : to;
  });
  return track >= Math.min(...tracks) && track <= Math.max(...tracks);
}

export function cellsIn(sheet: number, area: Area): CellKey[] {
  const keys: CellKey[] = [];
  for (let row = area.top; row <= area.bottom; row++) {
    for (let col = area.left; col <= area.right; col++) keys.push(keyOf(sheet, row, col));
  }
  return keys;
}

export const indexOf = (model: WorkbookModel): Index => drain(model.index());
