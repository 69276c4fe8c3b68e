// Dependents of the whole workbook in the built page: the worker, what it is told and what it tells.

import { afterAll, afterEach, beforeAll, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { park } from './park';
import { cell, formulas, success } from './samples';

let browser: Browser;
let panel: FakePanel;

beforeAll(async () => {
  browser = await Browser.start();
});
afterEach(async () => {
  expect(panel.errors).toEqual([]);
  expect(await panel.violations()).toEqual([]);
  await panel.close();
});
afterAll(async () => {
  await browser.close();
});

async function dependents(): Promise<void> {
  await panel.reaches('ready');
  await panel.page.getByTestId('tab-deps').click();
}

const rows = async (): Promise<string[]> =>
  (await panel.page.getByTestId('place').allInnerTexts()).map((text) =>
    text.replace(/\s+/g, ' ').trim(),
  );

async function open(text: string): Promise<void> {
  const row = panel.page.getByTestId('place').filter({ hasText: text }).first();
  await row.locator('.twisty').click();
  await panel.settled();
}

test('lists users on every sheet, opens them, and leads back to inputs', async () => {
  panel = await browser.open(park);
  await dependents();
  await panel.page.getByText('All 3 sheets, as read at').waitFor();
  expect(await panel.text('list-note')).toMatch(/^All 3 sheets, as read at [0-9:]+\.$/);
  expect(await panel.text('list-under')).toBe(
    '5 cells on 2 sheets rest on it; 1 result that nothing else uses.',
  );
  expect(await rows()).toEqual([
    'This sheet 1 cell',
    'G12 Revenue · 2031 1020 =F12*1.02',
    'Summary 1 cell',
    "B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)",
    'Results that rest on it 1 cell',
    'What it rests on inputs at the end of every way',
    'Ways to another cell',
    'Where errors start 1 error cell in the workbook',
  ]);
  await open('B2');
  await open('B3');
  expect((await rows()).slice(3, 6)).toEqual([
    "B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)",
    'B3 With tax 3300 =B2*1.1',
    'B4 Rounded 3300 =ROUND(B3,0)',
  ]);
  await open('What it rests on');
  const all = await rows();
  expect(all.slice(all.indexOf('What it rests on inputs at the end of every way') + 1, -2)).toEqual(
    ['2 inputs, by way of 1 formula', 'Inputs!B1 Price 50 used 1×', 'Inputs!B2 Energy 20 used 1×'],
  );
  const { args } = await panel.asked('readFormulas');
  expect(args[1]).toBe('r1c1');
});

test('lists the users of a selected range as a whole, each once', async () => {
  panel = await browser.open({
    ...park,
    readCell: cell({ formula: '=Inputs!$B$1*Inputs!$B$2', selection: '$F$12:$G$12' }),
    "dependents 'Cash flow'!F12:G12": success('$G$12:$H$12'),
    "readFormulas 'Cash flow'!G12:H12": formulas([['=RC[-1]*1.02', '=RC[-1]*1.02']]),
  });
  await dependents();
  await panel.page.getByText('All 3 sheets, as read at').waitFor();
  expect(await panel.text('list-heading')).toMatch(/^Cells that use F12:G12/);
  expect((await rows()).slice(0, 4)).toEqual([
    'This sheet 2 cells',
    'G12:H12 Revenue =F12*1.02 ×2',
    'Summary 1 cell',
    "B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)",
  ]);
  expect(await panel.text('list-under')).toBe(
    '5 cells on 2 sheets rest on it; 1 result that nothing else uses.',
  );
  // One of the asked cells uses another: that is no circle.
  await open('G12:H12');
  expect((await rows()).slice(1, 5)).toEqual([
    'G12:H12 Revenue =F12*1.02 ×2',
    'H12 Revenue · 2032 listed above 980 =G12*1.02',
    "Summary!B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)",
    'Summary 1 cell',
  ]);
});

test('shows the ways between the cell that stays and the one that is selected', async () => {
  panel = await browser.open(park);
  await dependents();
  await panel.page.getByText('All 3 sheets, as read at').waitFor();
  await panel.page.getByTestId('follow').click();
  await open('B2');
  const shown = (await rows()).length;
  await panel.lay(
    'readCell',
    cell({
      selection: '$B$4',
      sheet: 'Summary',
      addr: 'B4',
      row: 4,
      col: 2,
      formula: '=ROUND(B3,0)',
    }),
  );
  await panel.send('selectionChanged', { book: 'Solar park.xlsx', sheet: 'Summary', addr: 'B4' });
  await open('Ways between it and Summary!B4');
  // What was open stays so.
  expect(await rows()).toHaveLength(shown + 3);
  await open('Summary!B2 →');
  const from = (await rows()).indexOf('From F12 to Summary!B4');
  expect((await rows()).slice(from + 1, from + 6)).toEqual([
    'Summary!B2 → Summary!B3 → Summary!B4 3 steps',
    "Summary!B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)",
    'Summary!B3 With tax 3300 =B2*1.1',
    'Summary!B4 Rounded 3300 =ROUND(B3,0)',
    'G12:H12 → Summary!B2 → Summary!B3 → Summary!B4 4 steps',
  ]);
});

test('gives cells their labels in the tree once their sheets were read', async () => {
  panel = await browser.open(park);
  await panel.reaches('ready');
  await panel.settled();
  const parts = async (): Promise<string[]> =>
    (await panel.page.getByTestId('row').locator('.rowText').allInnerTexts()).map((text) =>
      text.replace(/\s+/g, ' ').trim(),
    );
  expect(await parts()).toEqual(['Inputs!$B$1*Inputs!$B$2', 'Inputs!$B$1', '× Inputs!$B$2']);
  await panel.page.getByTestId('tab-deps').click();
  await panel.shows('list-heading', 'Cells that use F12 Revenue · 2030');
  await panel.page.getByTestId('tab-tree').click();
  await expect
    .poll(parts)
    .toEqual(['Inputs!$B$1*Inputs!$B$2', 'Inputs!$B$1 Price', '× Inputs!$B$2 Energy']);
  // A label gives way to everything else on its row.
  const cut = await panel.page
    .locator('.crumbs .placeLabel')
    .evaluate((label) => label.scrollWidth > label.clientWidth);
  expect(await panel.text('address')).toBe('F12');
  await panel.resize(320, 560);
  const narrow = await panel.page
    .locator('.crumbs .placeLabel')
    .evaluate((label) => label.scrollWidth > label.clientWidth);
  expect([cut, narrow]).toEqual([false, true]);
});

test('says what it covers while the spreadsheet is busy, and can be stopped', async () => {
  panel = await browser.open({
    ...park,
    "readFormulas '[Solar park.xlsx]Summary'!A1:B5": { ok: false, payload: { kind: 'busy' } },
  });
  await dependents();
  await panel.shows('scan-text', 'The spreadsheet is busy; reading waits at “Summary”.');
  await panel.shows('list-note', 'So far 2 of 3 sheets.');
  await panel.page.getByTestId('scan-stop').click();
  await panel.page.getByText('Stopped at “Summary”').waitFor();
  await panel.lay("readFormulas '[Solar park.xlsx]Summary'!A1:B5", park.summary);
  await panel.page.getByTestId('scan-go').click();
  await panel.page.getByText('All 3 sheets, as read at').waitFor();
});

test('a reload in the middle of a scan has the workbook read anew, without a word', async () => {
  const { "readFormulas '[Solar park.xlsx]Summary'!A1:B5": held, ...rest } = park;
  panel = await browser.open({
    ...rest,
    "readFormulas '[Solar park.xlsx]Summary'!A1:B5": undefined as never,
  });
  await dependents();
  await panel.shows('scan-text', 'Reading “Summary”, sheet 3 of 3: 91 %');
  const asked = async () =>
    (await panel.posted()).filter(({ args }) => String(args[0]).startsWith("'["));
  const old = (await asked()).at(-1);
  await panel.page.reload();
  await panel.lay("readFormulas '[Solar park.xlsx]Summary'!A1:B5", held);
  await panel.resolve(old?.id, success({ rows: 5, cols: 2, formulas: [], values: [] }));
  await dependents();
  await panel.page.getByText('All 3 sheets, as read at').waitFor();
  expect(await panel.text('list-note')).toMatch(/^All 3 sheets, as read at [0-9:]+\.$/);
  expect(await rows()).toContain("B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)");
  expect((await asked()).map(({ args }) => args[0])).toEqual([
    "'[Solar park.xlsx]Inputs'!A1:B3",
    "'[Solar park.xlsx]Cash flow'!A1:H12",
    "'[Solar park.xlsx]Summary'!A1:B5",
  ]);
  expect((await panel.posted()).filter(({ verb }) => verb === 'log')).toEqual([]);
});

test.each<[string, () => void]>([
  ['none can be had', () => Reflect.deleteProperty(window, 'Worker')],
  [
    'one ends before it answers',
    () => {
      class Refused extends EventTarget {
        onerror: (() => void) | undefined;
        postMessage = () => setTimeout(() => this.onerror?.());
        terminate = () => undefined;
      }
      Object.assign(window, { Worker: Refused });
    },
  ],
])('does without a worker where %s', async (_, without) => {
  panel = await browser.open(park);
  await panel.page.addInitScript(without);
  await panel.page.reload();
  await dependents();
  await panel.page.getByText('All 3 sheets, as read at').waitFor();
  expect(await rows()).toContain("B2 Total 3000 =SUM('Cash flow'!$F$12:$H$12)");
});

test('marks what one call takes of an entry with more areas, and says so', async () => {
  const alternating = Array.from({ length: 100 }, (_, i) => [i % 2 ? '=R12C6*2' : '=R12C6']);
  panel = await browser.open({
    ...park,
    workbookMap: large,
    "dependents 'Cash flow'!F12": success('$K$1:$K$100'),
    "readFormulas 'Cash flow'!K1:K100": formulas(alternating),
  });
  await dependents();
  await panel.page.getByText('K1 and 49 more areas').click();
  const { args } = await panel.asked('markCells');
  expect(args[0]).toEqual(
    Array.from({ length: 40 }, (_, i) => `'Cash flow'!K${String(2 * i + 1)}`),
  );
  await panel.page.getByText('Only the first 40 areas of 50 are marked.').waitFor();
  expect((await panel.posted()).filter(({ verb }) => verb === 'markCells')).toHaveLength(1);
});

const large = success({
  book: 'Solar park.xlsx',
  sheets: [{ name: 'Cash flow', usedRange: '$A$1:$CV$600' }],
  sheetsTruncated: false,
  names: [],
});

test('a large workbook is read when the user says so', async () => {
  panel = await browser.open({ ...park, workbookMap: large });
  await dependents();
  await panel.shows('scan-text', '60,000 cells on 1 sheet are to be read first.');
  expect((await panel.posted()).filter(({ args }) => String(args[0]).includes('['))).toEqual([]);
});
