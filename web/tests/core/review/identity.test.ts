// Whatever is inserted, deleted, copied or put in another order: what was said of a finding is said of
// no other one, and of itself where its sheets have names to go by.

import { describe, expect, test } from 'vitest';

import { emptyReview, saidOf, withSaid, type SavedReview } from '../../../src/core/review/said';
import { numbersFrom } from '../model/RandomWorkbook';
import { EditedSheet, EditedWorkbook, type Formula } from './EditedWorkbook';

const odd = '*3';

/** `name`: what a row may be called; few names and numbers make rows that look alike. */
function workbook(pick: (below: number) => number, name: () => string, numbers = 1_000) {
  const book = new EditedWorkbook();
  for (let s = 0; s < 3; s++) {
    const sheet = new EditedSheet(`Sheet ${String(s + 1)}`, 12 + pick(20), 6);
    book.sheets.push(sheet);
    for (const [r, row] of sheet.rows.entries()) {
      const [label, ...others] = sheet.cols;
      if (!label) continue;
      if (pick(12) > 0) sheet.put(row, label, { value: name() });
      for (const [c, col] of others.entries()) {
        if (r === 0) sheet.put(row, col, { value: 2_020 + c });
        else if (c < 2) sheet.put(row, col, { value: pick(numbers) });
      }
    }
  }
  for (const sheet of book.sheets) {
    for (const row of sheet.rows.slice(1)) {
      for (const col of sheet.cols.slice(3)) {
        if (pick(3) > 0) continue;
        const formula = formulaFor(book, sheet, row, pick);
        sheet.put(row, col, { formula });
      }
    }
  }
  return book;
}

type Track = EditedSheet['rows'][number];

function formulaFor(
  book: EditedWorkbook,
  sheet: EditedSheet,
  row: Track,
  pick: (below: number) => number,
): Formula {
  const other = book.sheets[pick(book.sheets.length)] as EditedSheet;
  const near = { sheet, row, col: sheet.cols[1] as Track };
  const [first, last] = [pick(other.rows.length), pick(other.rows.length)].sort((a, b) => a - b);
  const from = { sheet: other, row: other.rows[first ?? 0] as Track, col: other.cols[1] as Track };
  const to = { ...from, row: other.rows[last ?? 0] as Track };
  const text = pick(2) === 0 ? '={0}' : pick(2) === 0 ? '=SUM({1}:{2})' : '={0}+{1}';
  return { text: text + (pick(2) === 0 ? odd : '*2'), cells: [near, from, to] };
}

function edit(
  book: EditedWorkbook,
  pick: (below: number) => number,
  kinds: number,
  name: () => string,
): void {
  const sheet = book.sheets[pick(book.sheets.length)] as EditedSheet;
  const at = 1 + pick(Math.max(1, sheet.rows.length - 1));
  switch (pick(kinds)) {
    case 0: {
      const row = sheet.insert('rows', at);
      if (pick(2) === 0) {
        sheet.put(row, sheet.cols[0] as Track, { value: name() });
        // The new row may have the same mistake.
        const formula = formulaFor(book, sheet, row, pick);
        sheet.put(row, sheet.cols[3] as Track, { formula });
      }
      break;
    }
    case 1:
      sheet.insert('cols', 1 + pick(sheet.cols.length));
      break;
    case 2:
      book.sheets.push(...book.sheets.splice(0, 1));
      break;
    case 3:
      sheet.delete('rows', at);
      break;
    case 4:
      if (sheet.cols.length > 5) sheet.delete('cols', 4 + pick(sheet.cols.length - 4));
      break;
    default:
      sheet.copyRow(at % sheet.rows.length, at);
  }
}

/** Half of the findings are said to be fine. */
function say(book: EditedWorkbook, pick: (below: number) => number) {
  const sketches = book.sketches();
  const all = book.findings(odd);
  const rows = all.map(({ finding }) => finding);
  const said = new Set<string>();
  let saved: SavedReview = emptyReview;
  for (const { finding, identity } of all) {
    if (pick(2) === 0) continue;
    // The note says of which finding it was said.
    const word = { state: 'fine', note: identity, at: '' } as const;
    saved = withSaid(saved, saidOf(saved, rows, sketches), sketches, finding, word);
    said.add(identity);
  }
  return { saved, said };
}

/** Of every finding what was said of it, by the identities of both. */
function heard(saved: SavedReview, book: EditedWorkbook) {
  const all = book.findings(odd);
  const found = saidOf(
    saved,
    all.map(({ finding }) => finding),
    book.sketches(),
  );
  return all.map(({ finding, identity }) => ({ finding, identity, of: found.get(finding)?.note }));
}

describe('what was said', () => {
  test('goes with its finding wherever tracks are inserted and sheets change places', () => {
    let followed = 0;
    for (let seed = 1; seed <= 60; seed++) {
      const pick = numbersFrom(seed);
      let names = 0;
      const name = () => `Item ${String((names += 1))}`;
      const book = workbook(pick, name);
      const { saved, said } = say(book, pick);
      for (let i = 0; i < 1 + pick(6); i++) edit(book, pick, 3, name);
      for (const { identity, of } of heard(saved, book)) {
        expect(of, `seed ${String(seed)}`).toBe(said.has(identity) ? identity : undefined);
        if (of !== undefined) followed++;
      }
    }
    expect(followed).toBeGreaterThan(400);
  });

  test.each([
    ['names of their own', 1_000_000, 1_000, 0.9],
    ['few names and numbers', 4, 3, 0.5],
    ['one name and one number', 1, 1, 0.1],
  ])('never goes to another finding, in rows with %s', (_, count, numbers, share) => {
    let followed = 0;
    let lost = 0;
    for (let seed = 1; seed <= 120; seed++) {
      const pick = numbersFrom(seed + count);
      const book = workbook(pick, () => `Item ${String(pick(count))}`, numbers);
      const { saved, said } = say(book, pick);
      let names = 0;
      const name = () =>
        pick(2) === 0 ? `New ${String((names += 1))}` : `Item ${String(pick(count))}`;
      for (let i = 0; i < 1 + pick(6); i++) edit(book, pick, 6, name);
      const told = heard(saved, book);
      const living = new Set(told.map(({ identity }) => identity));
      for (const { identity, of } of told) {
        if (of === undefined) lost += said.has(identity) ? 1 : 0;
        else if (living.has(of)) {
          // A row that is the same in everything may stand for the one that was deleted.
          expect(of, `seed ${String(seed)}`).toBe(identity);
          followed++;
        }
      }
    }
    expect(followed / (followed + lost)).toBeGreaterThan(share);
  });
});
