// How many rectangles lie over each cell of an area: all are laid first, then told for a cell.

import { meet, type Area } from '../address/area';

export class Covers {
  private readonly sums: Int32Array;
  private readonly width: number;

  constructor(readonly extent: Area) {
    this.width = extent.right - extent.left + 2;
    this.sums = new Int32Array(this.width * (extent.bottom - extent.top + 2));
  }

  /** Lays a rectangle; not any more once `finish` was called. */
  lay(area: Area): void {
    const part = meet(area, this.extent);
    if (!part) return;
    const top = (part.top - this.extent.top) * this.width;
    const below = (part.bottom - this.extent.top + 1) * this.width;
    const left = part.left - this.extent.left;
    const behind = part.right - this.extent.left + 1;
    this.change(top + left, 1);
    this.change(top + behind, -1);
    this.change(below + left, -1);
    this.change(below + behind, 1);
  }

  finish(): void {
    const { sums, width } = this;
    for (let at = 0; at < sums.length; at++) {
      const above = at >= width ? (sums[at - width] as number) : 0;
      const before = at % width > 0 ? (sums[at - 1] as number) : 0;
      const both = at >= width && at % width > 0 ? (sums[at - width - 1] as number) : 0;
      sums[at] = (sums[at] as number) + above + before - both;
    }
  }

  over(row: number, col: number): number {
    const { extent } = this;
    if (row < extent.top || row > extent.bottom || col < extent.left || col > extent.right)
      return 0;
    return this.sums[(row - extent.top) * this.width + col - extent.left] as number;
  }

  private change(at: number, by: number): void {
    this.sums[at] = (this.sums[at] as number) + by;
  }
}
