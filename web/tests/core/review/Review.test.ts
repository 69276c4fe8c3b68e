import { beforeEach, describe, expect, test } from 'vitest';

import { CarriedModel, SlicedCarrier, type ModelClient } from '../../../src/core/model/ModelClient';
import type { FindingsAnswer } from '../../../src/core/model/messages';
import { failed, succeeded, type Outcome } from '../../../src/core/protocol/Outcome';
import type { RangeFormulas, WorkbookMap } from '../../../src/core/protocol/verbs';
import { Review } from '../../../src/core/review/Review';
import { Scans } from '../../../src/core/scan/Scans';
import { FakeClock } from '../../fakes/FakeClock';
import { settled } from '../evaluation/bench';
import { pieceOf, type Written } from '../model/written';

const column: Written = { 'A1:A9': 2, 'B1:B9': '=A1*2', B6: '=A6*3 -> 6' };

let clock: FakeClock;
let sheets: Record<string, Written>;
/** A sheet that the spreadsheet is too busy to tell. */
let refused: string;
let broken: string;
/** So many findings more than are told. */
let untold: number;
let asked: string[];
let scans: Scans;
let review: Review;

beforeEach(() => {
  clock = new FakeClock();
  sheets = { Data: column };
  refused = '';
  broken = '';
  untold = 0;
  asked = [];
  const own = new CarriedModel(new SlicedCarrier(clock, () => 0), () => undefined);
  const model: ModelClient = {
    ask: (book, ask, args) => {
      asked.push(ask);
      if (ask === 'findings' && broken !== '') return Promise.reject(new Error(broken));
      const answer = own.ask(book, ask, args);
      if (ask !== 'findings' || untold === 0) return answer;
      const findings = answer as Promise<FindingsAnswer>;
      const more = findings.then((told) => ({ ...told, total: told.total + untold }));
      return more as typeof answer;
    },
  };
  scans = new Scans(model, {
    questions: {
      workbookMap: () =>
        Promise.resolve(
          succeeded<WorkbookMap>({
            book: 'Model.xlsx',
            sheets: Object.keys(sheets).map((name) => ({ name, usedRange: '$A$1:$B$9' })),
            sheetsTruncated: false,
            names: [],
          }),
        ),
      readFormulas(address): Promise<Outcome<RangeFormulas>> {
        const sheet = /\](.*)'!/.exec(address)?.[1] ?? '';
        if (sheet === refused) return Promise.resolve(failed('busy', 'busy'));
        const { formulas, values } = pieceOf(sheets[sheet] ?? {});
        return Promise.resolve(succeeded({ rows: 9, cols: 2, formulas, values }));
      },
      evaluate: () => Promise.resolve(failed('transport', 'not asked here')),
      pollCell: () => Promise.resolve(failed('transport', 'not asked here')),
    },
    clock,
    time: () => '10:42',
    changed: () => {
      review.scanned();
    },
  });
  review = new Review(() => undefined, scans);
});

async function look(book = 'Model.xlsx', inFront = true): Promise<void> {
  review.look(book, inFront);
  await turn();
}

async function turn(): Promise<void> {
  for (let i = 0; i < 40; i++) {
    clock.advance(10);
    await settled();
  }
}

const shown = () => review.list.rows.map(({ row }) => `${row.text} ${row.tag}`.trim());

describe('the review', () => {
  test('reads the workbook and lists what is odd', async () => {
    await look();
    expect(review.status).toBe('known');
    expect(shown()).toEqual(['Data!B6 High']);
    expect(review.heading).toBe('1 finding in 9 formulas');
    expect(review.coverage).toBe('The only sheet, as read at 10:42.');
    expect(review.active?.expected).toBe('=A6*2');
  });

  test('says how many it lists where there are more', async () => {
    untold = 7;
    await look();
    expect(review.heading).toBe('8 findings in 9 formulas');
    expect(review.coverage).toBe('The first 1 finding only. The only sheet, as read at 10:42.');
  });

  test('says that it reads, and lists nothing of a part', async () => {
    sheets = { Data: column, More: column };
    refused = 'More';
    await look();
    expect(review.status).toBe('reading');
    expect(asked).not.toContain('findings');
    refused = '';
    clock.advance(10_000);
    await turn();
    expect(shown()).toEqual(['Data!B6 High', 'More!B6 High']);
  });

  test('asks once for what was read once', async () => {
    await look();
    await look();
    review.scanned();
    await turn();
    expect(asked.filter((ask) => ask === 'findings')).toHaveLength(1);
  });

  test('tells anew what was read anew; the active finding stays', async () => {
    sheets = { Data: column, More: column };
    await look();
    review.list.activate(1);
    expect(review.active?.cells[0]?.sheet).toBe('More');
    sheets = { Data: { 'A1:A9': 2, 'B1:B9': '=A1*2' }, More: column };
    review.again();
    await turn();
    expect(shown()).toEqual(['More!B6 High']);
    expect(review.active?.cells[0]?.sheet).toBe('More');
  });

  test('reads no workbook that is not in front', async () => {
    await look('Model.xlsx', false);
    expect([review.status, review.book, asked]).toEqual(['away', 'Model.xlsx', []]);
  });

  test('tells an error, and goes on when the workbook is read again', async () => {
    broken = 'The model was lost.';
    await look();
    expect([review.status, review.reason]).toEqual(['failed', 'The model was lost.']);
    broken = '';
    review.again();
    await turn();
    expect([review.status, shown()]).toEqual(['known', ['Data!B6 High']]);
  });

  test('keeps what it listed where it cannot be told anew, and says so', async () => {
    await look();
    broken = 'no memory';
    review.again();
    await turn();
    expect(review.status).toBe('known');
    expect(shown()).toEqual(['Data!B6 High']);
    expect(review.coverage).toBe(
      'The only sheet, as read at 10:42. They could not be told anew: no memory',
    );
  });

  test('lists one kind or one sheet, and the heading says how many', async () => {
    sheets = { Data: column, More: { ...column, A9: '=[Other.xlsx]Data!$A$1 -> 5' } };
    await look();
    expect(review.sheets).toEqual([
      { value: 'Data', findings: 1 },
      { value: 'More', findings: 2 },
    ]);
    review.list.activate(1);
    const before = review.active;
    review.setFilter({ kind: '', sheet: before?.cells[0]?.sheet ?? '', state: '' });
    expect(review.active).toBe(before);
    review.setFilter({ kind: '', sheet: 'Data', state: '' });
    expect(shown()).toEqual(['Data!B6 High']);
    expect(review.heading).toBe('1 of 3 findings in 19 formulas');
    review.setFilter({ kind: 'circle', sheet: '', state: '' });
    expect([shown(), review.active]).toEqual([[], undefined]);
  });
});
