// Cells that rest on themselves. First the regions that lead back to themselves, which is quick and
// mostly finds none that matters (a column in which each cell uses the one above does); then their
// cells one by one. Pure.

import { cellCount, meet, type Area } from '../address/area';
import { findLoops } from './components';
import type { Index, SheetArea } from './Index';

export type Circles = {
  /** Each circle's cells, in no order. */
  circles: SheetArea[][];
  /** True if there was too much to follow for all to be told. */
  cut: boolean;
};

/** So many ways from cell to cell are followed. */
const waysLimit = 10_000_000;
const cellsLimit = 2_000_000;

function* regionLoops(index: Index): Generator<undefined, number[][]> {
  const targetsOf = (region: number): number[] => {
    const targets = new Set<number>();
    index.usedBy({ region, area: index.areaOf(region) }, (cells) => {
      index.formulasIn(cells, (part) => targets.add(part.region));
    });
    return [...targets];
  };
  return (yield* findLoops(index.regionCount, targetsOf)) ?? [];
}

/** The cells of some regions as numbers. */
class Cells {
  readonly total: number;
  private readonly starts: number[] = [];
  private readonly areas: Area[];

  constructor(
    private readonly index: Index,
    private readonly group: readonly number[],
  ) {
    this.areas = group.map((region) => index.areaOf(region));
    let total = 0;
    for (const area of this.areas) {
      this.starts.push(total);
      total += cellCount(area);
    }
    this.total = total;
  }

  at(cell: number): { region: number; area: Area } {
    let low = 0;
    for (let high = this.starts.length - 1; low < high;) {
      const middle = Math.ceil((low + high) / 2);
      if ((this.starts[middle] as number) <= cell) low = middle;
      else high = middle - 1;
    }
    const own = this.areas[low] as Area;
    const width = own.right - own.left + 1;
    const offset = cell - (this.starts[low] as number);
    const row = own.top + Math.floor(offset / width);
    const col = own.left + (offset % width);
    const area = { top: row, left: col, bottom: row, right: col };
    return { region: this.group[low] as number, area };
  }

  /** The numbers of those that lie in `cells`. */
  in(cells: SheetArea): number[] {
    const found: number[] = [];
    this.group.forEach((region, i) => {
      if (this.index.sheetOf(region) !== cells.sheet) return;
      const own = this.areas[i] as Area;
      const part = meet(own, cells.area);
      if (!part) return;
      const width = own.right - own.left + 1;
      for (let row = part.top; row <= part.bottom; row++) {
        const start = (this.starts[i] as number) + (row - own.top) * width - own.left;
        for (let col = part.left; col <= part.right; col++) found.push(start + col);
      }
    });
    return found;
  }
}

/** The circles among the cells of some regions; nothing where there are too many ways to follow. */
function* cellLoops(
  index: Index,
  group: readonly number[],
  budget: { ways: number },
): Generator<undefined, SheetArea[][] | undefined> {
  const cells = new Cells(index, group);
  if (cells.total > cellsLimit) return undefined;
  const loops = yield* findLoops(cells.total, (cell) => {
    const targets: number[] = [];
    index.usedBy(cells.at(cell), (used) => {
      for (const target of cells.in(used)) targets.push(target);
    });
    budget.ways -= targets.length + group.length;
    return budget.ways < 0 ? undefined : targets;
  });
  return loops?.map((loop) =>
    loop.map((cell) => {
      const { region, area } = cells.at(cell);
      return { sheet: index.sheetOf(region), area };
    }),
  );
}

export function* findCircles(index: Index): Generator<undefined, Circles> {
  const found: Circles = { circles: [], cut: false };
  const budget = { ways: waysLimit };
  for (const group of yield* regionLoops(index)) {
    const loops = yield* cellLoops(index, group, budget);
    if (loops) found.circles.push(...loops);
    else found.cut = true;
  }
  return found;
}
