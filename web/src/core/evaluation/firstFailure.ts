// Where an error comes from: the deepest part that fails although nothing under it does. Pure.

import type { Item } from '../outline/Item';
import { counts, type ResultOf } from './branches';
import { isErrorText, type Result } from './Result';

export type FirstFailure = {
  item: Item;
  error: string;
  /** Where in a range the error stands, from its first cell. */
  at?: { row: number; col: number };
  /** Parts under it that are not known yet. */
  open: Item[];
};

type Found = { error: string; row: number; col: number };

/** The error of a result; in a range only one that its user can have from there: the same. */
function errorIn(result: Result | undefined, wanted: string): Found | undefined {
  if (result?.kind === 'error') return { error: result.text, row: 0, col: 0 };
  if (result?.kind !== 'array') return undefined;
  for (const [row, cells] of (result.values ?? []).entries()) {
    const col = cells.findIndex((cell) => cell === wanted && isErrorText(cell));
    if (col >= 0) return { error: wanted, row, col };
  }
  return undefined;
}

export function firstFailure(root: Item, resultOf: ResultOf): FirstFailure | undefined {
  let item = root;
  const own = resultOf(root);
  if (own?.kind !== 'error') return undefined;
  let found: Found = { error: own.text, row: 0, col: 0 };
  for (;;) {
    const parts = item.children.filter((child) => counts(child, resultOf) !== 'no');
    const error = found.error;
    const failing = parts.find((child) => errorIn(resultOf(child), error));
    const open = parts.filter((child) => resultOf(child) === undefined);
    if (!failing) {
      const isRange = resultOf(item)?.kind === 'array';
      const at = isRange ? { at: { row: found.row, col: found.col } } : {};
      return { item, error: found.error, ...at, open };
    }
    item = failing;
    found = errorIn(resultOf(failing), error) ?? found;
  }
}
