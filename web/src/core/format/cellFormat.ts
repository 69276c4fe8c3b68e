// How a cell shows its numbers, as CELL("format") tells it: "G", "F2" (0.00), ",2" (#,##0.00), "C2"
// (currency), "P0" (percent), "S2" (scientific), "D1" to "D9" (dates and times), with "-" or "()"
// behind for negative numbers in colour or parentheses.

import { groupWhole } from './number';

export type CellFormat =
  | { kind: 'general' }
  | { kind: 'fixed' | 'grouped' | 'currency' | 'percent' | 'scientific'; decimals: number }
  | { kind: 'date'; parts: DateParts };

/** What of a moment is shown. */
type DateParts = 'date' | 'dayAndMonth' | 'monthAndYear' | 'timeWithSeconds' | 'time';

const kinds = {
  F: 'fixed',
  ',': 'grouped',
  C: 'currency',
  P: 'percent',
  S: 'scientific',
} as const;

const dateParts: Record<string, DateParts> = {
  D1: 'date',
  D2: 'dayAndMonth',
  D3: 'monthAndYear',
  D4: 'date',
  D5: 'dayAndMonth',
  D6: 'timeWithSeconds',
  D7: 'time',
  D8: 'timeWithSeconds',
  D9: 'time',
};

/** A code that is not known counts as general. */
export function parseCellFormat(code: string): CellFormat {
  const plain = code.replace(/[-()]+$/, '');
  const parts = dateParts[plain];
  if (parts) return { kind: 'date', parts };
  const [, letter, digits] = /^([F,CPS])(\d{1,2})$/.exec(plain) ?? [];
  if (letter === undefined) return { kind: 'general' };
  return { kind: kinds[letter as keyof typeof kinds], decimals: Number(digits) };
}

/** Where day 1 is: Excel for Mac's older workbooks count from 1904. */
export type DateSystem = 1900 | 1904;

const months = 'Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec'.split(' ');
const secondsOfDay = 86_400;
const lastDay = 2_958_465;

type Day = { day: number; month: string; year: number };

/** The day of a serial. The 1900 system counts a 29 February 1900 that never was, as day 60. */
function dayOf(serial: number, system: DateSystem): Day {
  if (system === 1900 && serial === 60) return { day: 29, month: 'Feb', year: 1900 };
  const dayZero =
    system === 1904 ? Date.UTC(1904, 0, 1) : Date.UTC(1899, 11, serial < 60 ? 31 : 30);
  const date = new Date(dayZero + serial * secondsOfDay * 1000);
  return {
    day: date.getUTCDate(),
    month: months[date.getUTCMonth()] ?? '',
    year: date.getUTCFullYear(),
  };
}

function clockTime(seconds: number, withSeconds: boolean): string {
  const two = (number: number) => String(number).padStart(2, '0');
  const hours = Math.floor(seconds / 3600);
  const minutes = Math.floor((seconds % 3600) / 60);
  const time = `${two(hours)}:${two(minutes)}`;
  return withSeconds ? `${time}:${two(seconds % 60)}` : time;
}

/** Day before month in letters, so that no reader takes one for the other. */
function formatDate(serial: number, parts: DateParts, system: DateSystem): string | undefined {
  if (serial < 0 || serial >= lastDay + 1) return undefined;
  const allSeconds = Math.round(serial * secondsOfDay);
  const seconds = allSeconds % secondsOfDay;
  if (parts === 'time') return clockTime(seconds, false);
  if (parts === 'timeWithSeconds') return clockTime(seconds, true);
  const { day, month, year } = dayOf(Math.floor(allSeconds / secondsOfDay), system);
  if (parts === 'dayAndMonth') return `${String(day)} ${month}`;
  if (parts === 'monthAndYear') return `${month} ${String(year)}`;
  const date = `${String(day)} ${month} ${String(year)}`;
  return seconds === 0 ? date : `${date} ${clockTime(seconds, seconds % 60 !== 0)}`;
}

/** The number as its cell shows it; nothing where the format says nothing of its own. */
export function formatByCell(
  value: number,
  format: CellFormat,
  system: DateSystem = 1900,
): string | undefined {
  if (!Number.isFinite(value) || Math.abs(value) >= 1e15) return undefined;
  switch (format.kind) {
    case 'general':
      return undefined;
    case 'fixed':
      return value.toFixed(format.decimals);
    case 'grouped':
    case 'currency':
      return groupWhole(value.toFixed(format.decimals));
    case 'percent':
      return `${groupWhole((value * 100).toFixed(format.decimals))}%`;
    case 'scientific':
      return value.toExponential(format.decimals).toUpperCase();
    case 'date':
      return formatDate(value, format.parts, system);
  }
}
