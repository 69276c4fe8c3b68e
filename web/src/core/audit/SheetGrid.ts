// The cells of one sheet side by side: the formula and the kind of each, to be looked at in any order.

import { cellCount, covers, union, type Area } from '../address/area';
import { Kind, type SheetCells } from '../model/SheetCells';

/** A larger rectangle is not looked at track by track: two cells in far corners span billions. */
const cellsLimit = 8_000_000;

/** The rectangle around the pieces, without those that would make it too large. */
function areaAround({ blocks }: SheetCells): Area {
  let around: Area | undefined;
  for (const { area } of [...blocks].sort((a, b) => cellCount(b.area) - cellCount(a.area))) {
    const whole: Area = around ? union(around, area) : area;
    if (cellCount(whole) <= cellsLimit) around = whole;
  }
  return around ?? { top: 1, left: 1, bottom: 0, right: 0 };
}

export class SheetGrid {
  /** What is looked at track by track: nearly always all that was read. */
  readonly area: Area;
  private readonly width: number;
  private readonly formulas: Int32Array;
  private readonly kinds: Uint8Array;
  /** True if cells were read that are not in the area. */
  private readonly hasMore: boolean;

  constructor(
    readonly sheet: number,
    readonly cells: SheetCells,
  ) {
    this.area = areaAround(cells);
    const { top, left, bottom, right } = this.area;
    this.hasMore = cells.extent !== undefined && !covers(this.area, cells.extent);
    this.width = right - left + 1;
    const size = Math.max(0, this.width * (bottom - top + 1));
    this.formulas = new Int32Array(size);
    this.kinds = new Uint8Array(size);
    for (const block of cells.blocks) {
      if (!covers(this.area, block.area)) continue;
      const own = block.area.right - block.area.left + 1;
      for (let row = block.area.top; row <= block.area.bottom; row++) {
        const from = (row - block.area.top) * own;
        const to = (row - top) * this.width + block.area.left - left;
        this.formulas.set(block.formulas.subarray(from, from + own), to);
        this.kinds.set(block.kinds.subarray(from, from + own), to);
      }
    }
  }

  /** The number of the cell's relative formula; 0 for none. */
  formula(row: number, col: number): number {
    if (!this.has(row, col)) return this.hasMore ? this.cells.formulaAt(row, col) : 0;
    return this.formulas[(row - this.area.top) * this.width + col - this.area.left] as number;
  }

  kind(row: number, col: number): Kind {
    if (!this.has(row, col)) {
      return this.hasMore ? this.cells.valueAt(row, col).kind : Kind.Blank;
    }
    return this.kinds[(row - this.area.top) * this.width + col - this.area.left] as Kind;
  }

  /** A number that was typed in. */
  isConstant(row: number, col: number): boolean {
    return this.kind(row, col) === Kind.Number && this.formula(row, col) === 0;
  }

  isBlank(row: number, col: number): boolean {
    return this.kind(row, col) === Kind.Blank && this.formula(row, col) === 0;
  }

  /** The cell's text where one was typed in. */
  text(row: number, col: number): string {
    if (this.kind(row, col) !== Kind.Text || this.formula(row, col) !== 0) return '';
    return String(this.cells.valueAt(row, col).value).trim();
  }

  /** The same for the same text; of no meaning for other cells. */
  textNumber(row: number, col: number): number {
    return this.cells.textNumberAt(row, col);
  }

  has(row: number, col: number): boolean {
    const { top, left, bottom, right } = this.area;
    return row >= top && row <= bottom && col >= left && col <= right;
  }
}
