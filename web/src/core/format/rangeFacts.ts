// What is to be said of many values at once. Pure.

import { isErrorText } from '../evaluation/Result';
import type { Grid } from '../protocol/json';

export type RangeFacts = {
  cells: number;
  numbers: number;
  texts: number;
  blanks: number;
  errors: number;
  /** Nothing where there are no numbers. */
  sum?: number;
  least?: number;
  most?: number;
};

export function factsOf(values: Grid): RangeFacts {
  const facts: RangeFacts = { cells: 0, numbers: 0, texts: 0, blanks: 0, errors: 0 };
  for (const row of values) {
    for (const value of row) {
      facts.cells += 1;
      if (typeof value === 'number') {
        facts.numbers += 1;
        facts.sum = (facts.sum ?? 0) + value;
        facts.least = Math.min(facts.least ?? value, value);
        facts.most = Math.max(facts.most ?? value, value);
      } else if (value === null || value === '') facts.blanks += 1;
      else if (isErrorText(value)) facts.errors += 1;
      else if (typeof value === 'string') facts.texts += 1;
    }
  }
  return facts;
}
