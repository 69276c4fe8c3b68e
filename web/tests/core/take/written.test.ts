import { describe, expect, test } from 'vitest';

import { writtenAs, type Taken } from '../../../src/core/take/written';

const tree: Taken = {
  title: '',
  book: 'Solar park.xlsx',
  sheet: 'Cash flow',
  address: 'F12',
  label: 'Revenue · 2031',
  time: '23 Nov 2026, 08:50',
  formula: '=SUM(Data!C2:C5)/B4',
  rows: [
    {
      level: 1,
      text: 'SUM(Data!C2:C5)/B4',
      value: '1,284.50',
      exact: '1284.5',
      address: '',
    },
    { level: 2, text: 'B4', value: '12', exact: '', address: "'Cash flow'!B4" },
  ],
  missing: '',
};

const list: Taken = {
  ...tree,
  title: 'Dependents',
  formula: '',
  rows: [{ level: 1, text: 'G12', value: '=F12*2', exact: '', address: 'Cash flow!G12' }],
  missing: 'So far 1 of 3 sheets.',
};

describe('what is taken along', () => {
  test('as text says where and when it is from', () => {
    expect(writtenAs('text', tree)).toBe(
      [
        'Cash flow!F12 (Revenue · 2031) · Solar park.xlsx · 23 Nov 2026, 08:50',
        '=SUM(Data!C2:C5)/B4',
        '',
        'SUM(Data!C2:C5)/B4   1,284.50 (exactly 1284.5)',
        "  B4                 12   'Cash flow'!B4",
        '',
      ].join('\n'),
    );
  });

  test('as Markdown is a table', () => {
    expect(writtenAs('markdown', tree)).toBe(
      [
        '**Cash flow!F12 (Revenue · 2031) · Solar park.xlsx · 23 Nov 2026, 08:50**',
        '',
        '```',
        '=SUM(Data!C2:C5)/B4',
        '```',
        '',
        '| Part | Value | Exactly | Cells |',
        '|:--|--:|--:|:--|',
        '| `SUM(Data!C2:C5)/B4` | 1,284.50 | 1284.5 |  |',
        "| &emsp;`B4` | 12 |  | 'Cash flow'!B4 |",
        '',
      ].join('\n'),
    );
  });

  test('of a list says what it does not hold', () => {
    const text = writtenAs('text', list);
    expect(text).toContain('Dependents of Cash flow!F12');
    expect(text).toContain('G12   =F12*2   Cash flow!G12');
    expect(text).toContain('So far 1 of 3 sheets.');
    expect(writtenAs('markdown', list)).toContain('| G12 | =F12\\*2 | Cash flow!G12 |');
  });

  test('lets no text of the workbook act as markup', () => {
    const odd = (text: string, value: string) =>
      writtenAs('markdown', { ...tree, rows: [{ level: 1, text, value, exact: '', address: '' }] })
        .split('\n')
        .at(-2);
    expect(odd('"a|b`c"', '<b>|x|</b>\n# y')).toBe(
      '| `` "a\\|b`c" `` | \\<b\\>\\|x\\|\\</b\\> ↵ \\# y |  |  |',
    );
  });
});
