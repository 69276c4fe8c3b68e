// Cells as stops of the trail, from what is read of them. Pure.

import type { Home } from '../evaluation/expression';
import { positionOf } from '../evaluation/routes';
import { isErrorText, type Result } from '../evaluation/Result';
import { parse } from '../formula/Parser';
import { outlineOf } from '../outline/Item';
import { TreeModel } from '../outline/TreeModel';
import { isScalar, type Json } from '../protocol/json';
import type { CellPlace, RangeFormulas } from '../protocol/verbs';
import type { CellContent } from '../selection/state';
import type { Stop } from './Trail';

function withTree(text: string): Pick<Stop, 'text' | 'tree' | 'formula'> {
  if (text === '') return { text, tree: undefined, formula: undefined };
  const formula = parse(text);
  return { text, formula, tree: new TreeModel(outlineOf(formula.root)) };
}

function resultOfCell(value: Json, formula: string, error: string | undefined): Result {
  if (error !== undefined) return { kind: 'error', text: error };
  if (!isScalar(value)) return { kind: 'value', value: null };
  // What shows nothing and tells nothing is an error that has no text here.
  if (value === null && formula !== '') return { kind: 'error', text: 'Error' };
  return { kind: 'value', value: value === '' && formula === '' ? null : value };
}

/** The selected cell. */
export function stopOf(content: CellContent): Stop {
  const { book, sheet, addr, row, col, formula, value, error } = content;
  const result = resultOfCell(value, formula, error);
  return { place: { book, sheet, addr }, row, col, result, ...withTree(formula) };
}

/** A cell that was read without being selected; nothing for an answer of several cells. */
export function stopAt(place: CellPlace, answer: RangeFormulas): Stop | undefined {
  const position = positionOf(place.addr);
  if (!position || answer.rows !== 1 || answer.cols !== 1) return undefined;
  const text = answer.formulas[0]?.[0] ?? '';
  const value = answer.values[0]?.[0] ?? null;
  const error = isErrorText(value) ? value : undefined;
  return { place, ...position, result: resultOfCell(value, text, error), ...withTree(text) };
}

/** The cell whose formula the stop shows, for asking. */
export function homeOf({ place, row, col }: Stop): Home {
  return { book: place.book, sheet: place.sheet, row, col };
}

/** True for a number that was typed in. */
export function isPlainNumber({ tree, result }: Stop): boolean {
  return tree === undefined && result.kind === 'value' && typeof result.value === 'number';
}
