// The cells that use a cell, as a list: by sheet, and there cells with the same relative formula
// together. Pure.

import { count, grouped } from '../format/words';
import { type Area, areaAddress, cellCount, parseArea } from '../address/area';
import { extentOf } from '../address/extent';
import { formulaAt, formulaInFirst } from '../formula/relative';
import type { Block } from './blocks';
import { group, type PlaceRow } from './PlaceList';
import { placesOf, type Place } from './places';

export type Dependent = { place: Place & { sheet: string }; area: Area; blocks: Block[] };

/** More cells than this are not listed one by one. */
const cellsLimit = 1_000;

/** The areas of an answer; those without a sheet are on `sheet`. Their formulas are not read yet. */
export function dependentsOf(answer: string, sheet: string): Dependent[] {
  return placesOf(answer).flatMap((place) => {
    const area = parseArea(place.address);
    const own = { ...place, sheet: place.sheet ?? sheet };
    return area ? [{ place: own, area, blocks: [{ area, formula: undefined }] }] : [];
  });
}

function placeAt(sheet: string, area: Area): Place {
  const address = areaAddress(area);
  const first = areaAddress({ ...area, bottom: area.top, right: area.left });
  return { sheet, address, size: extentOf(address).size, first };
}

function cellRows(sheet: string, { area, formula }: Block): PlaceRow[] {
  const rows: PlaceRow[] = [];
  const cells = cellCount(area);
  for (let row = area.top; row <= area.bottom; row++) {
    for (let col = area.left; col <= area.right; col++) {
      if (rows.length === cellsLimit) {
        const detail = `and ${grouped(String(cells - cellsLimit))} more`;
        return [...rows, { text: '…', detail, tag: '', place: undefined }];
      }
      const place = placeAt(sheet, { top: row, left: col, bottom: row, right: col });
      const detail = formula === undefined ? '' : formulaAt(formula, { row, col });
      rows.push({ text: place.address, detail, tag: '', place });
    }
  }
  return rows;
}

function blockRow(sheet: string, block: Block): PlaceRow {
  const { area, formula } = block;
  const place = placeAt(sheet, area);
  const cells = cellCount(area);
  const text = formula === undefined ? place.size : formulaInFirst(formula, area);
  const times = formula === undefined || cells === 1 ? '' : `  ×${grouped(String(cells))}`;
  const row: PlaceRow = { text: place.address, detail: text + times, tag: '', place };
  return cells === 1 ? row : { ...row, inner: () => cellRows(sheet, block) };
}

/** Blocks of one formula in one row, which opens to them where they are several. */
function rowsOfFormula(sheet: string, blocks: readonly Block[]): PlaceRow[] {
  const [first] = blocks;
  if (!first) return [];
  if (blocks.length === 1 || first.formula === undefined) {
    return blocks.map((block) => blockRow(sheet, block));
  }
  const cells = blocks.reduce((sum, { area }) => sum + cellCount(area), 0);
  const inner = blocks.map((block) => blockRow(sheet, block));
  const formula = formulaInFirst(first.formula, first.area);
  return [
    {
      text: `${areaAddress(first.area)} and ${count(blocks.length - 1, 'more area')}`,
      detail: `${formula}  ×${grouped(String(cells))}`,
      tag: '',
      place: placeAt(sheet, first.area),
      places: blocks.map(({ area }) => placeAt(sheet, area)),
      inner: () => inner,
    },
  ];
}

export function dependentRows(dependents: readonly Dependent[], sheet: string): PlaceRow[] {
  const sheets = new Map<string, Block[]>();
  for (const { place, blocks } of dependents) {
    sheets.set(place.sheet, [...(sheets.get(place.sheet) ?? []), ...blocks]);
  }
  return [...sheets].map(([name, blocks]) => {
    const formulas = new Map<string | undefined, Block[]>();
    for (const block of blocks) {
      const alike = formulas.get(block.formula);
      if (alike) alike.push(block);
      else formulas.set(block.formula, [block]);
    }
    const cells = blocks.reduce((sum, { area }) => sum + cellCount(area), 0);
    const rows = [...formulas.values()].flatMap((alike) => rowsOfFormula(name, alike));
    return group(name === sheet ? 'This sheet' : name, count(cells, 'cell'), rows);
  });
}
