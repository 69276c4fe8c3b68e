// Numbers for reading, where nothing tells how their cell shows them: without groups, because a number
// may be a year. What is shown may be rounded, never silently: `rounded` says so and `exact` holds
// every digit.

import { grouped } from './words';

export type NumberText = {
  text: string;
  /** The shortest digits that give the very same number back. */
  exact: string;
  rounded: boolean;
};

const shownDigits = 10;
/** Cents are kept of any amount, within the digits that a number holds for certain. */
const shownDecimals = 2;
const certainDigits = 15;
/** Below this, and from the limit of exact digits on, powers of ten read better. */
const smallest = 1e-5;
const largest = 1e15;

/** Plain decimal digits with the whole part in groups. */
export function groupWhole(plain: string): string {
  const [, sign = '', whole = '', fraction = ''] = /^(-?)(\d+)(\.\d+)?$/.exec(plain) ?? [];
  return sign + grouped(whole) + fraction;
}

function scientific(value: number): string {
  const [mantissa = '', exponent = ''] = value.toExponential(shownDigits - 1).split('e');
  const power = Number(exponent);
  const digits = String(Math.abs(power)).padStart(2, '0');
  return `${String(Number(mantissa))}E${power < 0 ? '-' : '+'}${digits}`;
}

export function formatNumber(value: number): NumberText {
  const exact = String(value === 0 ? 0 : value);
  if (!Number.isFinite(value)) return { text: exact, exact, rounded: false };
  const size = Math.abs(value);
  if (size !== 0 && (size < smallest || size >= largest)) {
    const text = scientific(value);
    return { text, exact, rounded: Number(text) !== value };
  }
  if (Number.isInteger(value)) return { text: exact, exact, rounded: false };
  const wholeDigits = Math.trunc(size).toString().length;
  const digits = Math.min(certainDigits, Math.max(shownDigits, wholeDigits + shownDecimals));
  const shown = Number(value.toPrecision(digits));
  return { text: String(shown), exact, rounded: shown !== value };
}
