// Regions of one cell, and which of them use which, where a reference names nothing but that cell. A
// workbook in which hardly two formulas are alike has little else: there the way from cell to cell is
// looked up, where a tree of boxes would have to be searched. Built once.

import type { Rows } from './Rows';

/** Where each region of one cell is, while the users are gathered. */
export class CellPlaces {
  /** By the hash of its cell the number of a region and one more; the next free place where it is taken. */
  private readonly slots: Int32Array;
  private readonly cells: Rows;

  /** `cells`: of each region its sheet, row and column; a row of 0 for those with more cells. */
  constructor(cells: Rows) {
    this.cells = cells;
    let size = 16;
    while (size < cells.count * 2) size *= 2;
    this.slots = new Int32Array(size);
    for (let region = 0; region < cells.count; region++) {
      const row = cells.get(region, 1);
      if (row === 0) continue;
      let slot = this.slotOf(cells.get(region, 0), row, cells.get(region, 2));
      while (this.slots[slot] !== 0) slot = (slot + 1) & (size - 1);
      this.slots[slot] = region + 1;
    }
  }

  /** The region that is this very cell; -1 where none is. */
  at(sheet: number, row: number, col: number): number {
    const { slots, cells } = this;
    for (let slot = this.slotOf(sheet, row, col); ; slot = (slot + 1) & (slots.length - 1)) {
      const region = (slots[slot] as number) - 1;
      if (region < 0) return -1;
      if (
        cells.get(region, 1) === row &&
        cells.get(region, 2) === col &&
        cells.get(region, 0) === sheet
      ) {
        return region;
      }
    }
  }

  private slotOf(sheet: number, row: number, col: number): number {
    let hash =
      Math.imul(row, 0x9e3779b1) ^ Math.imul(col, 0x85ebca6b) ^ Math.imul(sheet, 0xc2b2ae35);
    hash ^= hash >>> 15;
    hash = Math.imul(hash, 0x27d4eb2f);
    return (hash ^ (hash >>> 13)) & (this.slots.length - 1);
  }
}

export class CellUsers {
  /** Where the users of each region begin, and behind the last one their end. */
  private readonly starts: Int32Array;
  private readonly users: Int32Array;

  /** `pairs`: a used region and one that uses it. */
  constructor(regions: number, pairs: Rows) {
    this.starts = new Int32Array(regions + 1);
    this.users = new Int32Array(pairs.count);
    const { starts, users } = this;
    const count = (place: number): number => starts[place] as number;
    for (let i = 0; i < pairs.count; i++) {
      const place = pairs.get(i, 0) + 1;
      starts[place] = count(place) + 1;
    }
    for (let region = 0; region < regions; region++) {
      starts[region + 1] = count(region + 1) + count(region);
    }
    const next = starts.slice();
    for (let i = 0; i < pairs.count; i++) {
      const used = pairs.get(i, 0);
      const place = next[used] as number;
      users[place] = pairs.get(i, 1);
      next[used] = place + 1;
    }
  }

  each(region: number, tell: (user: number) => void): void {
    const end = this.starts[region + 1] as number;
    for (let i = this.starts[region] as number; i < end; i++) tell(this.users[i] as number);
  }
}
