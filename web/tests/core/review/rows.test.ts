import { describe, expect, test } from 'vitest';

import type { FindingRow } from '../../../src/core/model/messages';
import { FindingRows } from '../../../src/core/review/rows';

/** With so many areas, of which the first `told` are told. */
function finding(areas: number, told: number): FindingRow {
  return {
    rank: 1,
    kind: 'differs',
    level: 'fact',
    cells: Array.from({ length: told }, (_, i) => ({
      sheet: 'Data',
      area: { top: i + 1, left: 3, bottom: i + 1, right: 3 },
    })),
    sentence: 'C1 is another formula.',
    expected: '',
    confidence: 'medium',
    reach: 0,
    areas,
    size: areas,
    formula: '=A1',
    value: 1,
    label: '',
    print: '',
  };
}

function rowOf(one: FindingRow) {
  const rows = new FindingRows();
  rows.add([one]);
  const [row] = rows.rowsOf([one]);
  if (!row) throw new Error('no row');
  return { rows, row, inner: (row.inner?.() ?? []) as readonly { text: string; detail: string }[] };
}

describe('the row of a finding', () => {
  test('names its only area and does not open', () => {
    const { row, inner } = rowOf(finding(1, 1));
    expect([row.text, inner]).toEqual(['Data!C1', []]);
  });

  test('counts its other areas, and opens to all of them', () => {
    expect(rowOf(finding(2, 2)).row.text).toBe('Data!C1 and 1 more area');
    const { row, inner } = rowOf(finding(3, 3));
    expect(row.text).toBe('Data!C1 and 2 more areas');
    expect(inner.map(({ text }) => text)).toHaveLength(3);
  });

  test('ends with how many areas are left out', () => {
    const { inner } = rowOf(finding(1_043, 40));
    expect(inner).toHaveLength(41);
    expect(inner.at(-1)).toMatchObject({ text: '…', detail: 'and 1,003 more areas' });
  });
});
