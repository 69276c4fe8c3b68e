import { beforeEach, expect, test } from 'vitest';

import type { ModelClient } from '../../../src/core/model/ModelClient';
import type { Cells } from '../../../src/core/model/messages';
import type { BookScan } from '../../../src/core/scan/BookScan';
import { CellLabels } from '../../../src/core/scan/CellLabels';
import type { Scans } from '../../../src/core/scan/Scans';
import { settled } from '../evaluation/bench';

const read = { sheets: ['Inputs'], version: 1 };
let asked: string[];
let changes: number;
let labels: CellLabels;
let say: (cells: Cells) => string;

beforeEach(() => {
  asked = [];
  changes = 0;
  Object.assign(read, { sheets: ['Inputs'], version: 1 });
  say = ({ area }) => `Row ${String(area.top)}`;
  const ask = (book: string, question: string, { cells }: { cells: Cells[] }) => {
    asked.push(`${book} ${question} ${cells.map(({ area }) => area.top).join()}`);
    return Promise.resolve().then(() => cells.map(say));
  };
  const scan = {
    hasRead: (sheet: string) => read.sheets.includes(sheet),
    get version() {
      return read.version;
    },
  };
  const scans: Pick<Scans, 'begun' | 'model'> = {
    begun: (book) => (book === 'Model.xlsx' ? (scan as unknown as BookScan) : undefined),
    model: { ask } as unknown as ModelClient,
  };
  labels = new CellLabels(scans as Scans, () => {
    changes += 1;
  });
});

const at = (row: number, sheet = 'Inputs') => ({
  sheet,
  area: { top: row, left: 2, bottom: row, right: 2 },
});

test('are asked for together, once', async () => {
  expect([labels.of('Model.xlsx', at(4)), labels.of('Model.xlsx', at(5))]).toEqual(['', '']);
  labels.of('Model.xlsx', at(4));
  await settled();
  expect(changes).toBe(1);
  expect([labels.of('Model.xlsx', at(4)), labels.of('Model.xlsx', at(5))]).toEqual([
    'Row 4',
    'Row 5',
  ]);
  await settled();
  expect(asked).toEqual(['Model.xlsx labels 4,5']);
});

test('of sheets and workbooks that were not read are not asked for', async () => {
  expect(labels.of('Model.xlsx', at(4, 'Calc'))).toBe('');
  expect(labels.of('Other.xlsx', at(4))).toBe('');
  await settled();
  expect(asked).toEqual([]);
});

test('are asked for again when more was read, and stay meanwhile', async () => {
  labels.of('Model.xlsx', at(4));
  await settled();
  read.version = 2;
  say = () => 'Price';
  expect(labels.of('Model.xlsx', at(4))).toBe('Row 4');
  await settled();
  expect(labels.of('Model.xlsx', at(4))).toBe('Price');
});

test('of a model that is lost are empty, and not asked for without end', async () => {
  say = () => {
    throw new Error('lost');
  };
  labels.of('Model.xlsx', at(4));
  await settled();
  expect(labels.of('Model.xlsx', at(4))).toBe('');
  await settled();
  expect(asked).toHaveLength(1);
});
