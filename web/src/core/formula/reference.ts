// References as numbers: reading and writing both styles, and going from one to the other.

import { columnLetters, columnNumber, maxColumns, maxRows } from '../address/area';
import type { ReferenceStyle } from './tokens';

/**
 * One row or column number. Fixed ones are numbers of the sheet in either style; relative ones are
 * numbers of the sheet in A1 and distances from the formula's cell in R1C1.
 */
export type Coordinate = { at: number; fixed: boolean };

/** Without `row` it is a whole column, without `col` a whole row. */
export type Corner = { row?: Coordinate; col?: Coordinate };

/** `to` is missing for a single cell, and in R1C1 for a single whole row or column. */
export type ReferenceShape = { from: Corner; to?: Corner };

export type CellPosition = { row: number; col: number };

const a1Corner = /^(?:(\$?)([A-Za-z]{1,3}))?(?:(\$?)(\d{1,7}))?$/;

function readA1(text: string): Corner | undefined {
  const [, fixedCol = '', letters, fixedRow = '', digits] = a1Corner.exec(text) ?? [];
  if (letters === undefined && digits === undefined) return undefined;
  const col =
    letters === undefined
      ? undefined
      : { at: columnNumber(letters.toUpperCase()), fixed: fixedCol !== '' };
  const row = digits === undefined ? undefined : { at: Number(digits), fixed: fixedRow !== '' };
  if ((col && col.at > maxColumns) || (row && (row.at > maxRows || row.at < 1))) return undefined;
  return { ...(row ? { row } : {}), ...(col ? { col } : {}) };
}

const enum Code {
  Minus = 45,
  Zero = 48,
  Nine = 57,
  Open = 91,
  Close = 93,
}

/** Takes a text apart from left to right; by hand, because a workbook has hundreds of thousands. */
class R1C1Reader {
  private at = 0;

  constructor(private readonly text: string) {}

  get isAtEnd(): boolean {
    return this.at === this.text.length;
  }

  /** "R", "R4" or "R[-2]"; nothing, and nothing taken, where that does not stand here. */
  coordinate(letter: 'R' | 'C'): Coordinate | undefined {
    if (this.text[this.at]?.toUpperCase() !== letter) return undefined;
    this.at += 1;
    const start = this.at;
    if (this.code() === Code.Open) {
      this.at += 1;
      const sign = this.code() === Code.Minus ? -1 : 1;
      if (sign < 0) this.at += 1;
      const distance = this.digits();
      if (distance !== undefined && this.code() === Code.Close) {
        this.at += 1;
        return { at: distance === 0 ? 0 : sign * distance, fixed: false };
      }
      this.at = start;
    }
    const number = this.digits();
    return number === undefined ? { at: 0, fixed: false } : { at: number, fixed: true };
  }

  private code(): number {
    return this.text.charCodeAt(this.at);
  }

  private digits(): number | undefined {
    const start = this.at;
    let number = 0;
    for (let code = this.code(); code >= Code.Zero && code <= Code.Nine; code = this.code()) {
      number = number * 10 + code - Code.Zero;
      this.at += 1;
    }
    return this.at === start ? undefined : number;
  }
}

function readR1C1(text: string): Corner | undefined {
  const reader = new R1C1Reader(text);
  const row = reader.coordinate('R');
  const col = reader.coordinate('C');
  if (!reader.isAtEnd) return undefined;
  if (row && col) return { row, col };
  if (row) return { row };
  return col && { col };
}

function isWhole(corner: Corner): boolean {
  return corner.row === undefined || corner.col === undefined;
}

/** A reference without its prefix; nothing when it is none. */
export function readReference(text: string, style: ReferenceStyle): ReferenceShape | undefined {
  const read = style === 'a1' ? readA1 : readR1C1;
  const halves = text.split(':');
  const from = read(halves[0] ?? '');
  if (!from || halves.length > 2) return undefined;
  if (halves[1] === undefined) {
    return isWhole(from) && style === 'a1' ? undefined : { from };
  }
  const to = read(halves[1]);
  if (!to) return undefined;
  const alike =
    (from.row === undefined) === (to.row === undefined) &&
    (from.col === undefined) === (to.col === undefined);
  return alike ? { from, to } : undefined;
}

function writeA1(corner: Corner): string {
  const { row, col } = corner;
  const dollar = (coordinate: Coordinate) => (coordinate.fixed ? '$' : '');
  const letters = col ? dollar(col) + columnLetters(col.at) : '';
  return letters + (row ? dollar(row) + String(row.at) : '');
}

function writeR1C1(corner: Corner): string {
  const part = (letter: string, coordinate: Coordinate | undefined): string => {
    if (!coordinate) return '';
    if (coordinate.fixed) return letter + String(coordinate.at);
    return coordinate.at === 0 ? letter : `${letter}[${String(coordinate.at)}]`;
  };
  return part('R', corner.row) + part('C', corner.col);
}

export function writeReference(shape: ReferenceShape, style: ReferenceStyle): string {
  const write = style === 'a1' ? writeA1 : writeR1C1;
  const from = write(shape.from);
  if (!shape.to) return style === 'a1' && isWhole(shape.from) ? `${from}:${from}` : from;
  const to = write(shape.to);
  // R1C1 names a single whole row or column once.
  return style === 'r1c1' && isWhole(shape.from) && from === to ? from : `${from}:${to}`;
}

function wrapped(number: number, limit: number): number {
  return ((((number - 1) % limit) + limit) % limit) + 1;
}

/**
 * The same cells in the other style, for a formula in the cell `origin`. Distances that leave the
 * sheet come in again at its other edge, as the spreadsheets have it.
 */
export function translateReference(
  shape: ReferenceShape,
  to: ReferenceStyle,
  origin: CellPosition,
): ReferenceShape {
  const move = (coordinate: Coordinate, base: number, limit: number): Coordinate => {
    if (coordinate.fixed) return coordinate;
    const at = to === 'r1c1' ? coordinate.at - base : wrapped(coordinate.at + base, limit);
    return { at, fixed: false };
  };
  const corner = ({ row, col }: Corner): Corner => ({
    ...(row ? { row: move(row, origin.row, maxRows) } : {}),
    ...(col ? { col: move(col, origin.col, maxColumns) } : {}),
  });
  return { from: corner(shape.from), ...(shape.to ? { to: corner(shape.to) } : {}) };
}
