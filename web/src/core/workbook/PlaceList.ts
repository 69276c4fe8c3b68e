// Lists of places to go to: the cells that use a cell, and what a workbook holds. Pure.

import { count } from '../format/words';
import type { WorkbookMap } from '../protocol/verbs';
import { placeOf, placesOf, type Place } from './places';

export type PlaceRow = {
  level: 1 | 2;
  text: string;
  detail: string;
  /** What is wrong or worth knowing, in a word or two. */
  tag: string;
  /** Where the row leads to. */
  place: Place | undefined;
};

const group = (text: string, detail: string): PlaceRow => ({
  level: 1,
  text,
  detail,
  tag: '',
  place: undefined,
});

/** The direct dependents of a cell on `sheet`, by the sheets they are on. */
export function dependentRows(answer: string, sheet: string): PlaceRow[] {
  const bySheet = new Map<string, Place[]>();
  for (const place of placesOf(answer)) {
    const name = place.sheet ?? sheet;
    bySheet.set(name, [...(bySheet.get(name) ?? []), { ...place, sheet: name }]);
  }
  return [...bySheet].flatMap(([name, places]) => [
    group(name === sheet ? 'This sheet' : name, count(places.length, 'area')),
    ...places.map((place): PlaceRow => ({
      level: 2,
      text: place.address,
      detail: place.size,
      tag: '',
      place,
    })),
  ]);
}

function nameRow(name: string, refersTo: unknown): PlaceRow {
  const text = typeof refersTo === 'string' ? refersTo : '';
  const place = placeOf(text);
  const isBroken = text.includes('#REF!');
  const isExternal = /\[[^\]]+\]/.test(text) || text.includes('file://');
  const tag = isBroken ? 'Broken' : isExternal ? 'External link' : '';
  const leads = place?.sheet !== undefined && tag === '';
  return { level: 2, text: name, detail: text, tag, place: leads ? place : undefined };
}

/** A workbook's sheets with their used ranges, and its names. */
export function mapRows(map: WorkbookMap): PlaceRow[] {
  const sheets = map.sheets.map(({ name, usedRange }): PlaceRow => {
    const place = usedRange === null ? undefined : placeOf(usedRange);
    const detail = place ? `${place.address} · ${place.size}` : 'not read';
    return { level: 2, text: name, detail, tag: '', place: place && { ...place, sheet: name } };
  });
  const names = map.names.map(({ name, refersTo }) => nameRow(name, refersTo));
  const cut = map.sheetsTruncated ? 'used ranges of the first 50 only' : '';
  return [
    group('Sheets', [count(sheets.length, 'sheet'), cut].filter(Boolean).join(', ')),
    ...sheets,
    group('Names', count(names.length, 'name')),
    ...names,
  ];
}
