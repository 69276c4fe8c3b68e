import { describe, expect, it } from 'vitest';
import type { Written } from '../model/written';
import { findingsOf, sentences, told } from './findings';

/** Ten numbers under a heading, added in B12, but for what is given. */
const column = (odd: Written, total = '=SUM(B2:B11)'): Written => {
  const cells: Written = { A1: 'Item', B1: 'Cost', A12: 'Total', B12: total };
  for (let row = 2; row <= 11; row++) cells[`B${String(row)}`] = row * 10;
  return { ...cells, ...odd };
};

const kinds = (cells: Written) => told(cells).filter((one) => one.startsWith('text-number'));

describe('numbers kept as text', () => {
  it('are found where a sum passes them over', () => {
    const cells = column({ B7: '1,200' });
    expect(kinds(cells)).toEqual(['text-number B7']);
    expect(sentences(cells)).toContain(
      'B7 holds the text “1,200” where a number is expected; SUM in B12 takes B2:B11 and passes it over.',
    );
  });

  it('are one finding for each formula', () => {
    const cells = column({ B4: '12', B5: ' 13.5 ', B9: '(4)' });
    expect(kinds(cells)).toEqual(['text-number B4:B5 B9']);
    expect(sentences(cells)).toContain(
      'B4 and 2 other cells hold texts like “12” where a number is expected; SUM in B12 takes B2:B11 and passes them over.',
    );
  });

  it.each(['-3', '+3', '$1,000.50', '12 %', '\u00a07', '.5', '€ 4'])(
    'are texts like %j',
    (text) => {
      expect(kinds(column({ B7: text }))).toEqual(['text-number B7']);
    },
  );

  it.each(['n/a', '007', '4006381333931', '1,20', '12 t', '-', '', '2024-01-05', '3a'])(
    'are no texts like %j',
    (text) => {
      expect(kinds(column({ B7: text }))).toEqual([]);
    },
  );

  it('are found in the first and the last cell, in rows, and from other sheets', () => {
    expect(kinds(column({ B2: '20' }))).toEqual(['text-number B2']);
    expect(kinds(column({ B11: '20' }))).toEqual(['text-number B11']);
    expect(kinds({ A1: 1, B1: 2, C1: '3', D1: 4, E1: 5, F1: '=AVERAGE(A1:E1)' })).toEqual([
      'text-number C1',
    ]);
    const cells = column({ B7: '12' }, 'none');
    const found = findingsOf({ Data: cells, 'My sum': { A1: '=SUM(Data!B2:B11) -> 3' } });
    expect(found.map(({ kind, sentence }) => `${kind}: ${sentence}`)).toContain(
      "text-number: B7 holds the text “12” where a number is expected; SUM in 'My sum'!A1 takes B2:B11 and passes it over.",
    );
  });

  it('are nothing where they are headings, are counted, or nobody adds them', () => {
    expect(kinds(column({ B1: '2024' }, '=SUM(B1:B11)'))).toEqual([]);
    expect(kinds(column({ B7: '12' }, '=COUNTA(B2:B11)'))).toEqual([]);
    expect(kinds(column({ B7: '12' }, '=B7*2'))).toEqual([]);
    expect(kinds(column({ B7: '12', B12: '=SUM(C2:C11)*B7' }))).toEqual([]);
    expect(kinds({ A1: 1, A2: '2', A3: 3, A4: '=SUM(A1:A3)' })).toEqual([]);
    const mixed: Written = { A1: 1, A2: 'a', A3: 3, A4: '4', A5: 'b', A6: 6, A7: 7 };
    expect(kinds({ ...mixed, A8: '=MAX(A1:A7)' })).toEqual([]);
  });
});

describe('dates kept as text', () => {
  const dates = (odd: string): Written => {
    const cells: Written = { A1: 'Paid on', C1: '=MAX(A2:A11)' };
    for (let row = 2; row <= 11; row++) cells[`A${String(row)}`] = 45_000 + row * 30;
    return { ...cells, A7: odd };
  };

  it.each(['2024-03-31', '31.3.2024', '3/31/24', ' 31/03/2024 '])('are texts like %j', (text) => {
    expect(kinds(dates(text))).toEqual(['text-number A7']);
  });

  it.each(['31.3.', '2024-03', '1.2.10.4', '31-3/2024', 'Mar 31'])(
    'are no texts like %j',
    (text) => {
      expect(kinds(dates(text))).toEqual([]);
    },
  );

  it('are told as dates', () => {
    expect(sentences(dates('31.3.2024'))).toEqual([
      'A7 holds the text “31.3.2024” where a date is expected; MAX in C1 takes A2:A11 and passes it over.',
    ]);
  });
});
