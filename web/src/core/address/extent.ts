// Selection and region in words: where, and how large.

import { count } from '../format/words';
import { maxColumns, maxRows, parseArea, splitAreas, type Area } from './area';

export type Extent = {
  /** The address without dollar signs. */
  address: string;
  /** "6 rows × 3 columns", "3 areas", "whole column"; empty where the text is not understood. */
  size: string;
  /** True if it is one single cell. */
  single: boolean;
};

function sizeOf(area: Area): string {
  const rows = area.bottom - area.top + 1;
  const cols = area.right - area.left + 1;
  if (rows === maxRows && cols === maxColumns) return 'whole sheet';
  if (rows === maxRows) return cols === 1 ? 'whole column' : count(cols, 'whole column');
  if (cols === maxColumns) return rows === 1 ? 'whole row' : count(rows, 'whole row');
  if (rows === 1 && cols === 1) return 'one cell';
  return `${count(rows, 'row')} × ${count(cols, 'column')}`;
}

export function extentOf(text: string): Extent {
  const parts = splitAreas(text);
  const areas = parts.map(parseArea);
  const address = text.replaceAll('$', '');
  if (parts.length > 1) return { address, size: count(parts.length, 'area'), single: false };
  const area = areas[0];
  const size = area ? sizeOf(area) : '';
  return { address, size, single: size === 'one cell' };
}
