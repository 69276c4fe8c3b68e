// A relative formula, in R1C1, as it stands in one cell. Pure.

import type { Area } from '../address/area';
import { parse } from './Parser';
import { printInStyle } from './print';
import type { CellPosition } from './reference';

export function formulaAt(relative: string, at: CellPosition): string {
  return `=${printInStyle(parse(relative, 'r1c1'), 'a1', at)}`;
}

/** As it stands in the first cell of an area. */
export function formulaInFirst(relative: string, { top, left }: Area): string {
  return formulaAt(relative, { row: top, col: left });
}
