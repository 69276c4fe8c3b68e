// Cells with the same relative formula, as rectangles: in R1C1 a formula that was filled down or
// across is the same text everywhere. Pure.

import type { Area } from '../address/area';

export type Block = {
  area: Area;
  /** In R1C1; nothing where it was not read. */
  formula: string | undefined;
};

/** The rectangles of what was read of one area, in the order of their first cells. */
export function blocksOf(area: Area, formulas: readonly (readonly string[])[]): Block[] {
  const blocks: Block[] = [];
  // Those that reach down to the row before, by the column they begin in.
  let above = new Map<number, Block>();
  formulas.forEach((row, i) => {
    const here = new Map<number, Block>();
    const top = area.top + i;
    for (let at = 0; at < row.length;) {
      const formula = row[at] ?? '';
      let end = at;
      while (end + 1 < row.length && row[end + 1] === formula) end += 1;
      const left = area.left + at;
      const right = area.left + end;
      at = end + 1;
      const upper = above.get(left);
      if (upper && upper.formula === formula && upper.area.right === right) {
        upper.area.bottom = top;
        here.set(left, upper);
      } else if (formula !== '') {
        const block = { area: { top, left, bottom: top, right }, formula };
        blocks.push(block);
        here.set(left, block);
      }
    }
    above = here;
  });
  return blocks;
}
