// Which ranges to read so that all wanted areas of a sheet are covered in few trips. Pure.

import { cellCount, covers, union, type Area } from '../address/area';

/** The most cells the spreadsheet is asked for at once. */
export const readLimit = 20_000;
/** A box may hold this many times the cells that are wanted of it. */
const wasteLimit = 4;

type Box = { area: Area; wanted: number };

function merged(boxes: readonly Box[]): Box[] {
  const result: Box[] = [];
  for (const box of boxes) {
    const partner = result.findIndex((other) => {
      const both = cellCount(union(box.area, other.area));
      return both <= readLimit && both <= wasteLimit * (box.wanted + other.wanted);
    });
    const other = result[partner];
    if (!other) result.push(box);
    else {
      const overlap = covers(other.area, box.area) || covers(box.area, other.area);
      const wanted = overlap
        ? Math.max(box.wanted, other.wanted)
        : Math.min(box.wanted + other.wanted, cellCount(union(box.area, other.area)));
      result[partner] = { area: union(box.area, other.area), wanted };
    }
  }
  return result;
}

/** Boxes that hold every area; the first one holds the first area. */
export function planReads(areas: readonly Area[]): Area[] {
  let boxes: Box[] = areas.map((area) => ({ area, wanted: cellCount(area) }));
  for (let before = Infinity; boxes.length < before;) {
    before = boxes.length;
    boxes = merged(boxes);
  }
  return boxes.map((box) => box.area);
}
