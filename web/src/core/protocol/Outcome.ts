// How a question to the native side ends. Questions never throw and never reject: what went wrong
// is a value, because every view of the page has a sentence for it.

import { isNumber, isObject } from './json';

/**
 * The kinds the native side names, and three of the page's own:
 * "malformed" (a reply of another shape than the verb's), "unanswered" (no reply came in time) and
 * "detached" (the page is not in the panel).
 */
export type FailureKind =
  | 'transport'
  | 'timeout'
  | 'busy'
  | 'denied'
  | 'excelError'
  | 'refused'
  | 'malformed'
  | 'unanswered'
  | 'detached';

export type Failure = { kind: FailureKind; message: string; code?: number };

export type Outcome<T> = { ok: true; value: T } | { ok: false; failure: Failure };

export function succeeded<T>(value: T): Outcome<T> {
  return { ok: true, value };
}

export function failed(kind: FailureKind, message: string): { ok: false; failure: Failure } {
  return { ok: false, failure: { kind, message } };
}

/** The code of a request made while the spreadsheet is not running. */
export const notRunningCode = -600;

/** The code of an expression that reaches out of the workbook, and that the user did not ask for. */
export const onlyWhenAskedCode = -9993;

const nativeKinds: ReadonlySet<string> = new Set([
  'transport',
  'timeout',
  'busy',
  'denied',
  'excelError',
  'refused',
] satisfies FailureKind[]);

/** Reads a failure in either form: the error object of the bridge, or the panel's bare text. */
export function decodeFailure(payload: unknown): Failure {
  if (typeof payload === 'string') return { kind: 'refused', message: payload };
  if (!isObject(payload)) return { kind: 'malformed', message: 'The failure carries no reason.' };
  const message = typeof payload.message === 'string' ? payload.message : '';
  const kind =
    typeof payload.kind === 'string' && nativeKinds.has(payload.kind)
      ? (payload.kind as FailureKind)
      : 'transport';
  return isNumber(payload.code) ? { kind, message, code: payload.code } : { kind, message };
}
