// What the rows of the lists about the whole workbook have in common: cells as the model tells them,
// in words. Pure.

import { areaAddress, columnLetters } from '../address/area';
import { extentOf } from '../address/extent';
import { formatNumber } from '../format/number';
import { grouped } from '../format/words';
import type { ModelClient } from '../model/ModelClient';
import type { Cells, Row } from '../model/messages';
import type { Scalar } from '../protocol/json';
import type { PlaceRow } from './PlaceList';
import type { Place } from './places';

/** More of a text does not fit a row. */
const textLimit = 60;

const sheetLimit = 20;

export type Asked = { book: string; cells: Cells; model: ModelClient };

export function placeOfCells({ sheet, area }: Cells): Place & { sheet: string } {
  const address = areaAddress(area);
  const first = columnLetters(area.left) + String(area.top);
  return { sheet, address, size: extentOf(address).size, first };
}

export function valueText(value: Scalar): string {
  if (value === null || value === '') return '';
  if (typeof value === 'number') return formatNumber(value).text;
  if (typeof value === 'boolean') return value ? 'TRUE' : 'FALSE';
  return value.length > textLimit ? `${value.slice(0, textLimit - 1)}…` : value;
}

export function times(cells: number): string {
  return cells === 1 ? '' : `×${grouped(String(cells))}`;
}

export function joined(...parts: string[]): string {
  return parts.filter((part) => part !== '').join('  ');
}

/** So that the address keeps its room; the row's tooltip has all of it. */
export function shortSheet(name: string): string {
  return name.length > sheetLimit ? `${name.slice(0, sheetLimit - 1)}…` : name;
}

export function placed(row: Row, detail: string, home: string): PlaceRow {
  const place = placeOfCells(row);
  const text = row.sheet === home ? place.address : `${shortSheet(row.sheet)}!${place.address}`;
  return { text, detail, tag: '', place, label: row.label };
}

/** With the value where it is one cell, the formula, and how many cells have it. */
export function formulaRow(row: Row, home: string): PlaceRow {
  const value = row.cells === 1 ? valueText(row.value) : '';
  return placed(row, joined(value, row.formula, times(row.cells)), home);
}
