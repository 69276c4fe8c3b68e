// Where cells are filled in a range that is mostly blank: the spreadsheet counts in ever larger
// beginnings of it, of which the least that holds all is often read at once; else it counts one half
// and the other, and so on where it counts any.

import { areaAddress, cellCount, type Area } from '../address/area';
import type { Json } from '../protocol/json';
import type { Outcome } from '../protocol/Outcome';
import { halves, inBook, pieceLimit } from './plan';

export type Count = (expression: string) => Promise<Outcome<Json>>;

export type Filled = {
  areas: Area[];
  /** Areas in which nobody could count. */
  uncounted: Area[];
};

/** With one cell in so many filled an area is read as it is. */
const dense = 4;

/** Its first 16 rows or columns, its first 64, and so on. */
function beginnings(area: Area, end: 'bottom' | 'right'): Area[] {
  const first = end === 'bottom' ? area.top : area.left;
  const found: Area[] = [];
  for (let size = 16; first + size - 1 < area[end]; size *= 4) {
    found.push({ ...area, [end]: first + size - 1 });
  }
  return found;
}

export async function findFilled(
  book: string,
  sheet: string,
  within: Area,
  count: Count,
): Promise<Filled> {
  const found: Filled = { areas: [], uncounted: [] };
  const counted = (area: Area) => `COUNTA(${inBook(book, sheet, areaAddress(area))})`;
  const numbers = async (areas: readonly Area[]): Promise<number[] | undefined> => {
    const outcome = await count(areas.map(counted).join('&"|"&'));
    if (!outcome.ok) return undefined;
    const parts = String(outcome.value).split('|').map(Number);
    return parts.length === areas.length && parts.every((part) => part >= 0) ? parts : undefined;
  };
  const take = (area: Area, filled: number, waiting: [Area, number][]): void => {
    if (filled === 0) return;
    const cells = cellCount(area);
    if (cells <= pieceLimit || filled * dense >= cells) found.areas.push(area);
    else waiting.push([area, filled]);
  };
  const rows = beginnings(within, 'bottom');
  const columns = beginnings(within, 'right');
  const counts = await numbers([within, ...rows, ...columns]);
  if (!counts) return { areas: [], uncounted: [within] };
  const [total = 0, ...parts] = counts;
  const least = (areas: readonly Area[], from: number) =>
    areas.find((_, i) => parts[from + i] === total) ?? within;
  const { bottom } = least(rows, 0);
  const { right } = least(columns, rows.length);
  const waiting: [Area, number][] = [];
  take({ ...within, bottom, right }, total, waiting);
  for (let next = waiting.pop(); next; next = waiting.pop()) {
    const [area] = next;
    const parts = halves(area);
    const told = await numbers(parts);
    if (!told) {
      found.uncounted.push(area);
      continue;
    }
    parts.forEach((part, i) => {
      take(part, told[i] ?? 0, waiting);
    });
  }
  return found;
}
