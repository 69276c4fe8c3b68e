// Where things are, from the texts that the spreadsheets give: 'Sheet'!$B$4, [Book.xlsx]Sheet!$B$4,
// Calc's $Sheet.$B$4.

import { parseArea, splitAreas } from '../address/area';
import { areaAddress } from '../evaluation/readPlan';
import { extentOf } from '../address/extent';

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
