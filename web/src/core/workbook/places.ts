// Where things are, from the texts that the spreadsheets give: 'Sheet'!$B$4, [Book.xlsx]Sheet!$B$4,
// Calc's $Sheet.$B$4.

import { type Area, areaAddress, parseArea, splitAreas } from '../address/area';
import { extentOf } from '../address/extent';
import type { Json } from '../protocol/json';

export type Place = {
  /** Nothing where the text does not say. */
  sheet: string | undefined;
  /** Without dollar signs. */
  address: string;
  /** "6 rows × 3 columns". */
  size: string;
  /** The first of its cells. */
  first: string;
};

const withSheet = /^=?(?:(?:'((?:[^']|'')*)'|([^'!#]*))!)?(\$?[A-Z0-9$:]+)$/i;
const calcStyle = /^=?\$?(?:'((?:[^']|'')*)'|([^'.$!]+))\.(\$?[A-Z]+\$?\d+)$/i;

/** One place; nothing where the text names none in this workbook. */
export function placeOf(text: string): Place | undefined {
  const [, quoted, plain, address] = withSheet.exec(text) ?? calcStyle.exec(text) ?? [];
  const area = address === undefined ? undefined : parseArea(address);
  if (!area) return undefined;
  const named = (quoted?.replaceAll("''", "'") ?? plain)?.replace(/^\[[^\]]*\]/, '');
  const { size } = extentOf(areaAddress(area));
  const first = areaAddress({ ...area, bottom: area.top, right: area.left });
  const sheet = named === undefined || named === '' ? undefined : named;
  return { sheet, address: areaAddress(area), size, first };
}

/** Every place of an address list; texts that name none are left out. */
export function placesOf(text: string): Place[] {
  return text === '' ? [] : splitAreas(text).flatMap((part) => placeOf(part.trim()) ?? []);
}

/** What is asked of the spreadsheet to learn where `cells` are. */
export function whereQuestion(cells: string): string {
  return `CELL("address",${cells})&"|"&ROWS(${cells})&"|"&COLUMNS(${cells})`;
}

/** Where they are, from the answer; the sheet is missing where it is the one in front. */
export function whereAnswer(answer: Json): { sheet: string | undefined; area: Area } | undefined {
  if (typeof answer !== 'string') return undefined;
  const [where = '', rows, cols] = answer.split('|');
  const place = placeOf(where);
  const first = place && parseArea(place.first);
  if (!place || !first) return undefined;
  const bottom = first.top + Number(rows) - 1;
  const right = first.left + Number(cols) - 1;
  if (!(bottom >= first.top && right >= first.left)) return undefined;
  return { sheet: place.sheet, area: { ...first, bottom, right } };
}
