// Which ranges to read so that all wanted areas of a sheet are covered in few trips. Pure.

import { columnLetters, maxColumns, maxRows, type Area } from '../address/area';

/** The most cells the spreadsheet is asked for at once. */
export const readLimit = 20_000;
/** A box may hold this many times the cells that are wanted of it. */
const wasteLimit = 4;

export function cellCount(area: Area): number {
  return (area.bottom - area.top + 1) * (area.right - area.left + 1);
}

export function contains(outer: Area, inner: Area): boolean {
  return (
    outer.top <= inner.top &&
    outer.left <= inner.left &&
    inner.bottom <= outer.bottom &&
    inner.right <= outer.right
  );
}

function union(one: Area, other: Area): Area {
  return {
    top: Math.min(one.top, other.top),
    left: Math.min(one.left, other.left),
    bottom: Math.max(one.bottom, other.bottom),
    right: Math.max(one.right, other.right),
  };
}

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
      const overlap = contains(other.area, box.area) || contains(box.area, other.area);
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

/** "B4:D9", "C:C", "2:5". */
export function areaAddress({ top, left, bottom, right }: Area): string {
  if (top === 1 && bottom === maxRows) return `${columnLetters(left)}:${columnLetters(right)}`;
  if (left === 1 && right === maxColumns) return `${String(top)}:${String(bottom)}`;
  const first = columnLetters(left) + String(top);
  return top === bottom && left === right
    ? first
    : `${first}:${columnLetters(right)}${String(bottom)}`;
}
