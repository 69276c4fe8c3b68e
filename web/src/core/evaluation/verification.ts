// Compares what a formula gives when it is asked for with what its cell holds. Pure.

import type { Scalar } from '../protocol/json';
import type { Result } from './Result';

export type Verification =
  | { state: 'open' }
  | { state: 'same' }
  /** What the formula gives now. */
  | { state: 'differs'; now: Result }
  /** Not compared, and why. */
  | { state: 'skipped'; reason: string };

/** Numbers travel as decimal text: the last bit of a double may be lost on the way. */
const tolerance = 1e-12;

function sameScalar(one: Scalar | undefined, other: Scalar | undefined): boolean {
  if (one === undefined || other === undefined) return false;
  // A reference to a blank cell gives 0, or the empty text where a text is asked for.
  if (one === null || other === null) {
    const rest = one ?? other;
    return rest === null || rest === '' || rest === 0;
  }
  if (typeof one === 'number' && typeof other === 'number') {
    return Math.abs(one - other) <= tolerance * Math.max(Math.abs(one), Math.abs(other));
  }
  // A truth value may come as the number it counts as.
  if (typeof one === 'boolean' && typeof other === 'number') return Number(one) === other;
  if (typeof one === 'number' && typeof other === 'boolean') return one === Number(other);
  return one === other;
}

function textOrValue(result: Result): Scalar | undefined {
  if (result.kind === 'error') return result.text;
  return result.kind === 'value' ? result.value : undefined;
}

function first(result: Result): Result {
  if (result.kind !== 'array' || !result.values) return result;
  return { kind: 'value', value: result.values[0]?.[0] ?? null };
}

export function compare(cell: Result, now: Result): Verification {
  const own = first(cell);
  const given = first(now);
  if (own.kind === 'function' || given.kind === 'function' || given.kind === 'array') {
    return { state: 'skipped', reason: 'The formula gives no single value to compare.' };
  }
  if (textOrValue(own) === undefined) return { state: 'differs', now };
  const same = own.kind === given.kind && sameScalar(textOrValue(own), textOrValue(given));
  if (same) return { state: 'same' };
  if (now.kind === 'array' && now.rows * now.cols > 1 && holds(now, own)) {
    return { state: 'skipped', reason: 'The formula gives several values; the cell shows one.' };
  }
  return { state: 'differs', now };
}

function holds(array: Result, own: Result): boolean {
  if (array.kind !== 'array') return false;
  const value = textOrValue(own);
  return array.values?.some((row) => row.some((item) => sameScalar(item, value))) ?? false;
}
