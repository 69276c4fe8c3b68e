// Prints of a workbook's distinct relative formulas, from which none of them can be read back: by
// them it is told which of them were seen before, and whether two workbooks are much alike. Pure.

import { hash, letters } from './hash';
import type { Index } from './Index';
import type { Cells } from './messages';
import type { WorkbookModel } from './WorkbookModel';

/** Characters of a formula's print. */
export const printLength = 5;
/** A workbook's marks: so many, each so long; dots for one that nothing left. */
export const markCount = 128;
export const markLength = 4;
/** So many cells at a time leave their prints. */
const cellsLimit = 2_000;
/** So many formulas are looked at before others may take a turn. */
const atATime = 2_000;

function inLetters(number: number, length: number): string {
  return Array.from({ length }, (_, i) => letters[(number >>> (6 * i)) & 63]).join('');
}

function printOfFormula(text: string): string {
  return inLetters(hash(text), printLength);
}

/** What formulas there are, by the index that they were found in. */
const known = new WeakMap<Index, Set<number>>();

export function* distinctFormulas(model: WorkbookModel): Generator<undefined, Set<number>> {
  const index = yield* model.index();
  let formulas = known.get(index);
  if (!formulas) {
    formulas = new Set();
    for (let region = 0; region < index.regionCount; region++) {
      formulas.add(index.formulaOf(region));
      if (region % (10 * atATime) === 0) yield undefined;
    }
    known.set(index, formulas);
  }
  return formulas;
}

const printsOf = new WeakMap<Set<number>, Set<string>>();

/** How many distinct formulas there are, and of how many the print is among `prints`. */
export function* seenAnswer(
  model: WorkbookModel,
  prints: string,
): Generator<undefined, { seen: number; distinct: number }> {
  const formulas = yield* distinctFormulas(model);
  let all = printsOf.get(formulas);
  if (!all) {
    all = new Set();
    let at = 0;
    for (const formula of formulas) {
      all.add(printOfFormula(model.formulas.at(formula)));
      if (++at % atATime === 0) yield undefined;
    }
    printsOf.set(formulas, all);
  }
  const seen = new Set(eachPrint(prints).filter((print) => all.has(print)));
  return { seen: seen.size, distinct: formulas.size };
}

export function eachPrint(prints: string): string[] {
  return Array.from({ length: Math.floor(prints.length / printLength) }, (_, i) =>
    prints.slice(i * printLength, (i + 1) * printLength),
  );
}

/** Of the formulas in these cells, each once. */
export function printsAnswer(model: WorkbookModel, all: readonly Cells[]): string {
  const formulas = new Set<number>();
  let left = cellsLimit;
  for (const cells of all) {
    const place = model.place(cells);
    const sheet = place && model.cellsOf(place.sheet);
    if (!sheet) continue;
    const { top, left: first, bottom, right } = cells.area;
    for (let row = top; row <= bottom && left > 0; row++) {
      for (let col = first; col <= right && left > 0; col++, left--) {
        const formula = sheet.formulaAt(row, col);
        if (formula !== 0) formulas.add(formula);
      }
    }
  }
  return [...formulas].map((formula) => printOfFormula(model.formulas.at(formula))).join('');
}

/**
 * Of what a workbook consists of, its sheets' names and its distinct formulas, some that are drawn
 * by their hashes, so that of two workbooks about as large a part of the marks agrees as they have
 * in common.
 */
export function* marksOf(model: WorkbookModel): Generator<undefined, string> {
  const least = new Array<number | undefined>(markCount).fill(undefined);
  const add = (text: string) => {
    const number = hash(text);
    const at = number % markCount;
    const rest = Math.floor(number / markCount);
    least[at] = Math.min(least[at] ?? rest, rest);
  };
  for (const name of model.entry.sheets) add(`sheet ${name.toLowerCase()}`);
  let at = 0;
  for (const formula of yield* distinctFormulas(model)) {
    add(model.formulas.at(formula));
    if (++at % atATime === 0) yield undefined;
  }
  return least
    .map((one) => (one === undefined ? '.'.repeat(markLength) : inLetters(one, markLength)))
    .join('');
}
