// Lists of places to go to: what a workbook holds, as rows that may hold further rows. Pure.

import { count } from '../format/words';
import type { WorkbookMap } from '../protocol/verbs';
import { placeOf, type Place } from './places';

export type PlaceRow = {
  text: string;
  detail: string;
  /** What is wrong or worth knowing, in a word or two. */
  tag: string;
  /** Where the row leads to. */
  place: Place | undefined;
  /** Everything it stands for, where that is more than one place. */
  places?: readonly Place[];
  /** What a human would call its first cell. */
  label?: string;
  /** The rows that it opens to; asked for when it is opened, now or a moment later. */
  inner?: () => readonly PlaceRow[] | Promise<readonly PlaceRow[]>;
  /** Whether it is open at first. */
  open?: boolean;
};

export function group(text: string, detail: string, inner: readonly PlaceRow[]): PlaceRow {
  return { text, detail, tag: '', place: undefined, inner: () => inner, open: true };
}

/** Its rows are asked for when it is opened. */
export function closed(text: string, detail: string, inner: PlaceRow['inner']): PlaceRow {
  return { text, detail, tag: '', place: undefined, ...(inner ? { inner } : {}) };
}

/** Says something and leads nowhere. */
export function remark(text: string, detail = ''): PlaceRow {
  return { text, detail, tag: '', place: undefined };
}

function nameRow(name: string, refersTo: unknown): PlaceRow {
  const text = typeof refersTo === 'string' ? refersTo : '';
  const place = placeOf(text);
  const isBroken = text.includes('#REF!');
  const isExternal = /\[[^\]]+\]/.test(text) || text.includes('file://');
  const tag = isBroken ? 'Broken' : isExternal ? 'External link' : '';
  const leads = place?.sheet !== undefined && tag === '';
  return { text: name, detail: text, tag, place: leads ? place : undefined };
}

/** A workbook's sheets with their used ranges, and its names. */
export function mapRows(map: WorkbookMap): PlaceRow[] {
  const sheets = map.sheets.map(({ name, usedRange }): PlaceRow => {
    const place = usedRange === null ? undefined : placeOf(usedRange);
    const detail = place ? `${place.address} · ${place.size}` : 'not read';
    return { text: name, detail, tag: '', place: place && { ...place, sheet: name } };
  });
  const names = map.names.map(({ name, refersTo }) => nameRow(name, refersTo));
  const cut = map.sheetsTruncated ? 'used ranges of the first 50 only' : '';
  return [
    group('Sheets', [count(sheets.length, 'sheet'), cut].filter(Boolean).join(', '), sheets),
    group('Names', count(names.length, 'name'), names),
  ];
}
