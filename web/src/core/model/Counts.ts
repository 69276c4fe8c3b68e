// How many cells of a kind lie in any area of a sheet, told at once: sums over the rectangle that was
// read, kept for every corner. And the other way round: marks laid over rectangles, told for a cell.

import { meet, type Area } from '../address/area';

export class Counts {
  private readonly sums: Int32Array;
  private readonly width: number;

  /** `fill` tells every cell that counts, each once. */
  constructor(
    private readonly extent: Area,
    fill: (count: (row: number, col: number) => void) => void,
  ) {
    this.width = extent.right - extent.left + 2;
    const height = extent.bottom - extent.top + 2;
    this.sums = new Int32Array(this.width * height);
    fill((row, col) => {
      this.sums[(row - extent.top + 1) * this.width + col - extent.left + 1] = 1;
    });
    for (let row = 1; row < height; row++) {
      let sum = 0;
      for (let col = 1; col < this.width; col++) {
        const at = row * this.width + col;
        sum += this.sums[at] as number;
        this.sums[at] = sum + (this.sums[at - this.width] as number);
      }
    }
  }

  in(area: Area): number {
    const part = meet(area, this.extent);
    if (!part) return 0;
    const { extent, sums, width } = this;
    const above = (part.top - extent.top) * width;
    const below = (part.bottom - extent.top + 1) * width;
    const before = part.left - extent.left;
    const behind = part.right - extent.left + 1;
    return (
      (sums[below + behind] as number) -
      (sums[above + behind] as number) -
      (sums[below + before] as number) +
      (sums[above + before] as number)
    );
  }
}

/** How many rectangles lie over each cell. */
export class Covers {
  private readonly sums: Int32Array;
  private readonly width: number;

  constructor(private readonly extent: Area) {
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
