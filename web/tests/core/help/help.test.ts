import { describe, expect, test } from 'vitest';

import { keysInFront, type InFront } from '../../../src/core/help/keysInFront';
import { whyOf } from '../../../src/core/help/why';

describe('the keys in front', () => {
  const does = (front: Partial<InFront>, keys: string) =>
    keysInFront({ view: 'tree', mode: 'picture', hasTree: true, ...front })
      .flatMap((group) => group.keys)
      .find((key) => key.keys === keys)?.does;

  test('are those of the view', () => {
    expect(does({}, 'Enter')).toBe('opens the formula of the cell behind the row');
    expect(does({ view: 'review' }, 'Enter')).toBe(
      'selects the finding’s cells in the spreadsheet',
    );
    expect(does({ view: 'map' }, '+ − 0')).toBe('larger, smaller, all of the sheet');
    expect(does({ view: 'map', mode: 'list' }, '+ − 0')).toBeUndefined();
  });

  test('of a cell without a formula are those that count everywhere', () => {
    expect(does({ hasTree: false }, 'Enter')).toBeUndefined();
    expect(does({ hasTree: false }, 'F')).toBeDefined();
  });
});

describe('why a part has no value', () => {
  test.each([
    'Runs “WEBSERVICE”, so only when you ask.',
    'The names of the workbook cannot be read, so only when you ask.',
    'Long: worked out in a scratch workbook when you ask.',
    'Too long to be asked for alone.',
    'Changes every calculation.',
    'Changes with time.',
    'Depends on the call that gives “x” its value.',
    'Depends on the row of the table.',
    'The table is not named here.',
    'Cells of several sheets have no value of their own.',
    'Several areas have no value of their own.',
    'Only while “Data” is in front.',
    'The spreadsheet took too long.',
    'The spreadsheet is busy.',
    'This part cannot be read.',
    'This LET has no result.',
    'The answer has an unexpected shape.',
    'The spreadsheet gives no value for this part.',
  ])('“%s” is told in one sentence', (reason) => {
    expect(whyOf(reason)).toMatch(/^[A-Z].+\.$/);
  });

  test('is not made up for what the spreadsheet says itself', () => {
    expect(whyOf('Can’t get range "Nope".')).toBe('');
  });
});
