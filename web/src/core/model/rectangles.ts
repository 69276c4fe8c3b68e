// Sets of cells of one sheet as rectangles. Pure.

import { cellCount, covers, meet, type Area } from '../address/area';

/** What of `area` is not in `taken`: up to four rectangles. */
export function without(area: Area, taken: Area): Area[] {
  const both = meet(area, taken);
  if (!both) return [area];
  const { top, left, bottom, right } = area;
  const parts: Area[] = [];
  if (top < both.top) parts.push({ top, left, bottom: both.top - 1, right });
  if (both.bottom < bottom) parts.push({ top: both.bottom + 1, left, bottom, right });
  const rows = { top: both.top, bottom: both.bottom };
  if (left < both.left) parts.push({ ...rows, left, right: both.left - 1 });
  if (both.right < right) parts.push({ ...rows, left: both.right + 1, right });
  return parts;
}

/** Rectangles that do not overlap. Neighbours that make a rectangle become one where that is seen. */
export class AreaSet {
  readonly areas: Area[] = [];

  /** Adds `area`; gives what of it was not there before. */
  add(area: Area): Area[] {
    let fresh = [area];
    for (const known of this.areas) {
      if (covers(known, area)) return [];
      if (!meet(known, area)) continue;
      fresh = fresh.flatMap((part) => without(part, known));
      if (fresh.length === 0) return [];
    }
    for (const part of fresh) this.put(part);
    return fresh;
  }

  get size(): number {
    return this.areas.reduce((sum, area) => sum + cellCount(area), 0);
  }

  private put(area: Area): void {
    // What grows in steps grows at the last one put.
    const last = this.areas.at(-1);
    const joined = last && joinedTo(last, area);
    if (joined) this.areas[this.areas.length - 1] = joined;
    else this.areas.push(area);
  }
}

function joinedTo(one: Area, other: Area): Area | undefined {
  const sameCols = one.left === other.left && one.right === other.right;
  if (sameCols && (one.bottom + 1 === other.top || other.bottom + 1 === one.top)) {
    return {
      ...one,
      top: Math.min(one.top, other.top),
      bottom: Math.max(one.bottom, other.bottom),
    };
  }
  const sameRows = one.top === other.top && one.bottom === other.bottom;
  if (sameRows && (one.right + 1 === other.left || other.right + 1 === one.left)) {
    return {
      ...one,
      left: Math.min(one.left, other.left),
      right: Math.max(one.right, other.right),
    };
  }
  return undefined;
}
