// Lists of places to go to, as rows that may hold further rows. Pure.

import type { Place } from './places';

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
  /** True if it is open at first. */
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
