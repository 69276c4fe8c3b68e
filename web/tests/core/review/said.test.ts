import { describe, expect, test } from 'vitest';

import { Reader, type Written } from '../model/written';
import {
  decodeReview,
  emptyReview,
  encodeReview,
  saidOf,
  withSaid,
  type SavedReview,
  type State,
} from '../../../src/core/review/said';

type Sheets = Record<string, Written>;

/** What is found in the workbook, and what its sheets are. */
function look(sheets: Sheets) {
  const reader = new Reader(sheets);
  const { rows } = reader.ask('findings', { from: 0 });
  return { findings: rows, sketches: reader.ask('sketch', {}) };
}

/** Says it of every finding of the workbook. */
function sayAll(sheets: Sheets, state: State = 'fine'): SavedReview {
  const { findings, sketches } = look(sheets);
  return findings.reduce((saved, finding) => {
    const found = saidOf(saved, findings, sketches);
    return withSaid(saved, found, sketches, finding, { state, note: '', at: '' });
  }, emptyReview);
}

/** The first cells of the findings now, with what was said of them. */
function said(saved: SavedReview, sheets: Sheets): string[] {
  const { findings, sketches } = look(sheets);
  const found = saidOf(saved, findings, sketches);
  return findings.map((finding) => {
    const { sheet, area } = finding.cells[0] ?? { sheet: '', area: { top: 0, left: 0 } };
    const place = `${sheet} ${String(area.top)} ${String(area.left)}`;
    return `${place} ${found.get(finding)?.state ?? '-'}`;
  });
}

const labels = (from: number, words: string): Written =>
  Object.fromEntries(words.split(' ').map((word, i) => [`A${String(from + i)}`, word]));

const sheet: Written = {
  ...labels(1, 'Item Wood Steel Glass Paint Glue Nails Tape Cloth'),
  B1: 'Price',
  C1: 'Twice',
  'B2:B9': 5,
  'C2:C9': '=B2*2',
  C6: '=B6*3 -> 15',
};

describe('what was said', () => {
  test('is said of the same finding', () => {
    expect(said(sayAll({ Data: sheet }), { Data: sheet })).toEqual(['Data 6 3 fine']);
  });

  test('follows a finding whose rows and columns move', () => {
    const moved: Written = {
      ...labels(2, 'Item Wood Lamp Steel Glass Paint Glue Nails Tape Cloth'),
      B2: 'Note',
      C2: 'Price',
      D2: 'Twice',
      'C3:C11': 5,
      'D3:D11': '=C3*2',
      D8: '=C8*3 -> 15',
    };
    expect(said(sayAll({ Data: sheet }), { First: { A1: 'x' }, Data: moved })).toEqual([
      'Data 8 4 fine',
    ]);
  });

  test('is not said of the same mistake in another row', () => {
    const other = { ...sheet, C6: '=B6*2', C7: '=B7*3 -> 15' };
    expect(said(sayAll({ Data: sheet }), { Data: other })).toEqual(['Data 7 3 -']);
  });

  test('is not said of a formula that is another one now', () => {
    const other = { ...sheet, C6: '=B6*4 -> 20' };
    expect(said(sayAll({ Data: sheet }), { Data: other })).toEqual(['Data 6 3 -']);
  });

  test('is not said of a formula that takes another cell now', () => {
    const takes = (cell: string): Written => ({ ...sheet, C6: `=${cell}*2 -> 10` });
    const saved = sayAll({ Data: takes('B4') });
    expect(said(saved, { Data: takes('B4') })).toEqual(['Data 6 3 fine']);
    expect(said(saved, { Data: takes('B3') })).toEqual(['Data 6 3 -']);
  });

  test('is not said of other cells that break in the same way', () => {
    const breaks = (...rows: number[]): Written => ({
      ...Object.fromEntries(
        Array.from({ length: 30 }, (_, i) => [`A${String(i + 1)}`, `Row ${String(i)}`]),
      ),
      'B1:B30': 5,
      'C1:C30': '=B1*2',
      ...Object.fromEntries(rows.map((row) => [`C${String(row)}`, `=B${String(row)}*3 -> 15`])),
    });
    const saved = sayAll({ Data: breaks(6, 12) });
    expect(said(saved, { Data: breaks(6, 12) })).toEqual(['Data 12 3 fine']);
    expect(said(saved, { Data: breaks(18, 12) })).toEqual(['Data 12 3 -']);
  });

  test('is not said of the row that took the place of its own', () => {
    const other = { ...sheet, A6: 'Rope' };
    expect(said(sayAll({ Data: sheet }), { Data: other })).toEqual(['Data 6 3 -']);
  });

  test('is not said of another number typed over a formula', () => {
    const typed = (number: number): Written => ({ ...sheet, C6: number });
    const saved = sayAll({ Data: typed(11) });
    expect(said(saved, { Data: typed(11) })).toEqual(['Data 6 3 fine']);
    expect(said(saved, { Data: typed(12) })).toEqual(['Data 6 3 -']);
  });

  test('is not said of more cells than there were', () => {
    const other = { ...sheet, C7: '=B7*3 -> 15' };
    expect(
      said(sayAll({ Data: sheet }), { Data: other }).filter((one) => /fine/.test(one)),
    ).toEqual([]);
  });

  test('is not said of a copy of the sheet', () => {
    const saved = sayAll({ Data: sheet });
    expect(said(saved, { Copy: sheet, Data: sheet }).sort()).toEqual([
      'Copy 6 3 -',
      'Data 6 3 fine',
    ]);
  });

  test('waits for a finding that is gone for a while', () => {
    const mended = { ...sheet, C6: '=B6*2' };
    const saved = sayAll({ Data: sheet });
    const { findings, sketches } = look({ Data: mended, More: sheet });
    const [other] = findings;
    if (!other) throw new Error('nothing is found on the other sheet');
    const found = saidOf(saved, findings, sketches);
    const later = withSaid(saved, found, sketches, other, { state: 'fault', note: '', at: '' });
    expect(said(later, { Data: sheet, More: sheet }).sort()).toEqual([
      'Data 6 3 fine',
      'More 6 3 fault',
    ]);
  });

  test('the newer of two sayings counts', () => {
    const saved = sayAll({ Data: sheet });
    const { findings, sketches } = look({ Data: sheet });
    const [one] = findings;
    if (!one) throw new Error('nothing is found');
    const found = saidOf(saved, findings, sketches);
    const newer = withSaid(saved, found, sketches, one, { state: 'fault', note: 'n', at: 't' });
    expect(newer.snapshots).toHaveLength(1);
    expect(said(newer, { Data: sheet })).toEqual(['Data 6 3 fault']);
    const none = withSaid(newer, saidOf(newer, findings, sketches), sketches, one, undefined);
    expect(none).toEqual(emptyReview);
  });

  test('of two versions in which it was said the newer one counts', () => {
    const older = sayAll({ Data: sheet }, 'fine');
    const newer = sayAll({ Data: sheet }, 'fault');
    const both = (first: SavedReview, second: SavedReview): SavedReview => ({
      ...emptyReview,
      snapshots: [...first.snapshots, ...second.snapshots],
    });
    expect(said(both(newer, older), { Data: sheet })).toEqual(['Data 6 3 fault']);
    expect(said(both(older, newer), { Data: sheet })).toEqual(['Data 6 3 fine']);
  });

  test('of findings that are gone is kept for three versions, the latest', () => {
    const broken = (row: number): Written => ({
      ...sheet,
      C6: '=B6*2',
      [`C${String(row)}`]: `=B${String(row)}*3 -> 15`,
    });
    let saved = emptyReview;
    for (const row of [4, 5, 6, 7]) {
      const { findings, sketches } = look({ Data: broken(row) });
      const [one] = findings;
      if (!one) throw new Error('nothing is found');
      const found = saidOf(saved, findings, sketches);
      const word = { state: 'fine' as const, note: '', at: '' };
      saved = withSaid(saved, found, sketches, one, word);
    }
    expect(saved.snapshots).toHaveLength(3);
    expect([4, 5, 6, 7].flatMap((row) => said(saved, { Data: broken(row) }))).toEqual([
      'Data 4 3 -',
      'Data 5 3 fine',
      'Data 6 3 fine',
      'Data 7 3 fine',
    ]);
  });

  test('is not said where something else is expected, or of another number of cells', () => {
    const saved = sayAll({ Data: sheet });
    const { findings, sketches } = look({ Data: sheet });
    const [one] = findings;
    if (!one) throw new Error('nothing is found');
    const isSaid = (part: Partial<typeof one>) =>
      saidOf(saved, [{ ...one, ...part }], sketches).size === 1;
    expect(isSaid({})).toBe(true);
    expect(isSaid({ expected: '=B6*4' })).toBe(false);
    expect(isSaid({ size: one.size + 1 })).toBe(false);
  });

  test('goes through a file and comes back', () => {
    const saved = sayAll({ Data: sheet, Other: { A1: 'x' } });
    const json = JSON.stringify(encodeReview(saved));
    expect(decodeReview(JSON.parse(json))).toEqual(saved);
    // Formulas are kept, what cells hold is not; nor are sheets that nothing was said of.
    expect(json).toContain('=B6*3');
    expect(json).not.toMatch(/Wood|Price|Other/);
  });

  test('keeps which formulas were seen, with what was said and without', () => {
    for (const review of [emptyReview, sayAll({ Data: sheet })]) {
      const seen = { ...review, seen: 'AAAAABBBBB' };
      expect(decodeReview(JSON.parse(JSON.stringify(encodeReview(seen))))).toEqual(seen);
      const { findings, sketches } = look({ Data: sheet });
      const found = saidOf(seen, findings, sketches);
      const [one] = findings;
      if (!one) throw new Error('nothing is found');
      expect(withSaid(seen, found, sketches, one, undefined).seen).toBe('AAAAABBBBB');
    }
  });

  test.each([
    undefined,
    1,
    [],
    {},
    { version: 2, snapshots: [] },
    { version: 1 },
    { version: 1, snapshots: [], seen: 1 },
    { version: 1, snapshots: [], seen: 'AAAA' },
    { version: 1, snapshots: [1] },
    { version: 1, snapshots: [{ sheets: [], said: [{}] }] },
    { version: 1, snapshots: [{ sheets: [{ name: 'A' }], said: [] }] },
  ])('is nothing where it is something else: %j', (value) => {
    expect(decodeReview(value)).toBeUndefined();
  });
});
