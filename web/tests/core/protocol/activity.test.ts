import { expect, test } from 'vitest';

import { activityText } from '../../../src/core/protocol/activity';
import { traits } from '../../../src/core/protocol/traits';

const none = { known: 0, all: 0 };

test.each([
  ['readCell', '', 'Asking Calc which cell is selected…'],
  ['readRange', "'Data'!A1:D5000", "Reading 'Data'!A1:D5000…"],
  ['clearMarks', '', 'Taking marks back…'],
  ['saveReview', 'Book.xlsx', ''],
] as const)('%s is told in words', (verb, subject, text) => {
  expect(activityText({ verb, subject }, none, 'Calc')).toBe(text);
});

test('how far the parts of a formula are is told, too', () => {
  expect(activityText({ verb: 'evaluate', subject: 'A1' }, { known: 3, all: 8 }, 'Calc')).toBe(
    'Working out parts of the formula… 3 of 8 known.',
  );
});

test('a text of the workbook is cut and does not act', () => {
  const text = activityText({ verb: 'readRange', subject: `a\u202E${'x'.repeat(99)}` }, none, '');
  expect(text).toContain('‹U+202E›');
  expect(text.length).toBeLessThan(90);
});

test('what is asked of values can be stopped, marks cannot', () => {
  expect(traits.deepEval.canStop).toBe(true);
  expect(traits.markCells.canStop).toBeUndefined();
});
