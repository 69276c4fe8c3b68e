// A cell's value for reading: what to show, of which type it is, what a copy holds.

import type { Json } from '../protocol/json';
import { formatByCell, type CellFormat } from './cellFormat';
import { formatNumber } from './number';
import { visibleText } from './visible';
import { count } from './words';

export type ValueType = 'Blank' | 'Number' | 'Text' | 'Logical' | 'Error' | 'Array' | 'Unknown';

export type ValueView = {
  type: ValueType;
  /** What is shown. */
  text: string;
  /** What a copy holds: every digit, the whole text. */
  copy: string;
  /** What more there is to say: "12 characters", "exactly 0.1…". */
  note: string;
  /** True if `text` leaves some of the value out. */
  cut: boolean;
};

/** Texts longer than this are cut until the user asks for the whole. */
export const shownTextLimit = 400;
/** More than a cell can hold; the rest of anything longer is only counted. */
export const wholeTextLimit = 32_767;

function view(
  type: ValueType,
  text: string,
  rest: Partial<Omit<ValueView, 'type' | 'text'>> = {},
): ValueView {
  return { type, text, copy: text, note: '', cut: false, ...rest };
}

function textView(value: string, limit: number): ValueView {
  if (value === '') return view('Text', '""', { copy: '', note: 'empty text' });
  // Characters are counted as the spreadsheet counts them, in UTF-16 units.
  const note = count(value.length, 'character');
  const cut = value.length > limit;
  const shown = cut ? `${value.slice(0, limit)}…` : value;
  return view('Text', `"${visibleText(shown)}"`, { copy: value, note, cut });
}

/** How a number stands on its sheet: as the text that its cell shows, or by the cell's format. */
export type ShownAs = { text: string } | { format: CellFormat };

function numberView(value: number, shown: ShownAs | undefined): ValueView {
  const { text, exact, rounded } = formatNumber(value);
  const formatted =
    shown && ('text' in shown ? visibleText(shown.text.trim()) : formatByCell(value, shown.format));
  if (formatted === undefined) {
    return view('Number', text, { copy: exact, note: rounded ? `exactly ${exact}` : '' });
  }
  return view('Number', formatted, {
    copy: exact,
    note: Number(formatted.replaceAll(',', '')) === value ? '' : `exactly ${exact}`,
  });
}

export type ValueSource = {
  value: Json;
  /** Empty for a constant and for a blank cell. */
  formula: string;
  /** The text of an error value, where it is known to be one. */
  error?: string | undefined;
  /** How the cell shows its number, where that is known. */
  shown?: ShownAs | undefined;
};

/** `whole` shows a long text in full. */
export function valueView(cell: ValueSource, whole = false): ValueView {
  const { value, formula, error } = cell;
  if (error !== undefined) return view('Error', error);
  if (value === null || (value === '' && formula === '')) {
    return formula === '' ? view('Blank', '') : view('Error', 'Error', { note: 'of unknown kind' });
  }
  if (typeof value === 'number') return numberView(value, cell.shown);
  if (typeof value === 'boolean') return view('Logical', value ? 'TRUE' : 'FALSE');
  if (typeof value === 'string') return textView(value, whole ? wholeTextLimit : shownTextLimit);
  if (Array.isArray(value)) {
    return view('Array', count(value.length, 'row'), { copy: JSON.stringify(value) });
  }
  return view('Unknown', 'Not a value', { copy: JSON.stringify(value) });
}
