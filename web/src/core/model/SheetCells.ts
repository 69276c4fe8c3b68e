// What was read of one sheet: for each cell its formula and its value, in arrays, as the pieces were
// read. Texts and formulas are numbers into tables that all sheets share.

import { cellCount, covers, meet, type Area } from '../address/area';
import { isErrorText } from '../evaluation/Result';
import type { Grid, Scalar } from '../protocol/json';

export const enum Kind {
  Blank,
  Number,
  Text,
  Truth,
  Error,
}

/** Texts as numbers, the same text always the same; 0 is no text. */
export class Texts {
  private readonly all: string[] = [''];
  private readonly numbers = new Map<string, number>();

  get count(): number {
    return this.all.length;
  }

  numberOf(text: string): number {
    let number = this.numbers.get(text);
    if (number === undefined) {
      number = this.all.length;
      this.all.push(text);
      this.numbers.set(text, number);
    }
    return number;
  }

  at(number: number): string {
    return this.all[number] ?? '';
  }
}

/** True if the cell has a formula. In a cell for text "=A1" is a text: then its value is the same. */
export function isCalculated(formula: string, value: Scalar): boolean {
  return formula !== '' && formula !== value;
}

/** One piece as it was read, row by row. */
export type Block = {
  area: Area;
  /** Numbers of formulas; 0 for none. */
  formulas: Int32Array;
  kinds: Uint8Array;
  /** The number itself, the number of a text or an error's text, 1 or 0 for a truth value. */
  values: Float64Array;
};

export type CellValue = { kind: Kind; value: Scalar };

export class SheetCells {
  readonly blocks: Block[] = [];
  /** The rectangle around all pieces. */
  extent: Area | undefined;
  private latest: Block | undefined;

  constructor(
    private readonly formulas: Texts,
    private readonly texts: Texts,
  ) {}

  /** Takes a piece; pieces of one sheet do not overlap. */
  add(area: Area, formulas: readonly (readonly string[])[], values: Grid): void {
    const count = cellCount(area);
    const block: Block = {
      area,
      formulas: new Int32Array(count),
      kinds: new Uint8Array(count),
      values: new Float64Array(count),
    };
    const width = area.right - area.left + 1;
    formulas.forEach((row, i) => {
      row.forEach((formula, j) => {
        const at = i * width + j;
        const value = values[i]?.[j] ?? null;
        if (isCalculated(formula, value)) block.formulas[at] = this.formulas.numberOf(formula);
        this.put(block, at, value);
      });
    });
    this.blocks.push(block);
    const { extent } = this;
    this.extent = extent
      ? {
          top: Math.min(extent.top, area.top),
          left: Math.min(extent.left, area.left),
          bottom: Math.max(extent.bottom, area.bottom),
          right: Math.max(extent.right, area.right),
        }
      : area;
  }

  formulaAt(row: number, col: number): number {
    const block = this.blockAt(row, col);
    return block ? (block.formulas[indexIn(block.area, row, col)] as number) : 0;
  }

  kindAt(row: number, col: number): Kind {
    const block = this.blockAt(row, col);
    return block ? (block.kinds[indexIn(block.area, row, col)] as Kind) : Kind.Blank;
  }

  valueAt(row: number, col: number): CellValue {
    const block = this.blockAt(row, col);
    if (!block) return { kind: Kind.Blank, value: null };
    const at = indexIn(block.area, row, col);
    const kind = block.kinds[at] as Kind;
    const number = block.values[at] as number;
    switch (kind) {
      case Kind.Blank:
        return { kind, value: null };
      case Kind.Number:
        return { kind, value: number };
      case Kind.Truth:
        return { kind, value: number === 1 };
      default:
        return { kind, value: this.texts.at(number) };
    }
  }

  /** The number of a cell's text, the same for the same text; of no meaning for other cells. */
  textNumberAt(row: number, col: number): number {
    const block = this.blockAt(row, col);
    return block ? (block.values[indexIn(block.area, row, col)] as number) : 0;
  }

  /** Tells each cell of `area` that was read and is not blank. */
  eachFilled(
    area: Area,
    tell: (row: number, col: number, kind: Kind, formula: number) => void,
  ): void {
    for (const block of this.blocks) {
      const part = meet(block.area, area);
      if (!part) continue;
      for (let row = part.top; row <= part.bottom; row++) {
        let at = indexIn(block.area, row, part.left);
        for (let col = part.left; col <= part.right; col++, at++) {
          const kind = block.kinds[at] as Kind;
          const formula = block.formulas[at] as number;
          if (kind !== Kind.Blank || formula !== 0) tell(row, col, kind, formula);
        }
      }
    }
  }

  /** True if every cell of `area` was read. */
  hasRead(area: Area): boolean {
    if (this.blocks.some((block) => covers(block.area, area))) return true;
    const read = this.blocks.reduce((sum, { area: own }) => {
      const part = meet(own, area);
      return part ? sum + cellCount(part) : sum;
    }, 0);
    return read === cellCount(area);
  }

  private blockAt(row: number, col: number): Block | undefined {
    const isIn = ({ area }: Block) =>
      area.top <= row && area.left <= col && area.bottom >= row && area.right >= col;
    if (!this.latest || !isIn(this.latest)) this.latest = this.blocks.find(isIn);
    return this.latest;
  }

  private put(block: Block, at: number, value: Scalar): void {
    if (value === null || value === '') return;
    if (typeof value === 'number') {
      block.kinds[at] = Kind.Number;
      block.values[at] = value;
    } else if (typeof value === 'boolean') {
      block.kinds[at] = Kind.Truth;
      block.values[at] = value ? 1 : 0;
    } else {
      block.kinds[at] = isErrorText(value) ? Kind.Error : Kind.Text;
      block.values[at] = this.texts.numberOf(value);
    }
  }
}

function indexIn(area: Area, row: number, col: number): number {
  return (row - area.top) * (area.right - area.left + 1) + col - area.left;
}
