// The map in the built page: pictures of sheets from the worker, the selection on them, keys, the
// pointer, all sheets at once, and the same as a list.

import { afterAll, afterEach, beforeAll, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { odd } from './odd';
import { park } from './park';
import { cell, success } from './samples';

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

async function map(): Promise<void> {
  await panel.reaches('ready');
  await panel.page.keyboard.press('3');
  await panel.page.getByTestId('picture').waitFor();
}

/** On the last cell of a row in which one number was typed in. */
const selected = {
  ...odd,
  readCell: cell({
    formula: '=B2*2',
    value: 80,
    sheet: 'Prices',
    addr: 'H2',
    row: 2,
    col: 8,
    selection: '$H$2',
  }),
};

const done = async (): Promise<unknown[]> =>
  (await panel.posted())
    .filter(({ verb }) => ['markCells', 'reveal', 'select', 'clearMarks'].includes(verb))
    .map(({ verb, args }) => [verb, args[0]]);

/** The colour of the canvas in the middle of a cell, where its lines and signs are not. */
async function colourAt(x: number, y: number): Promise<string> {
  await panel.settled();
  return panel.page.evaluate(
    ([left, top]) => {
      const canvas = document.querySelector<HTMLCanvasElement>('.pictureCanvas');
      const context = canvas?.getContext('2d');
      if (!context) throw new Error('no picture');
      const bytes = [...context.getImageData(left, top, 1, 1).data.subarray(0, 3)];
      return `#${bytes.map((byte) => byte.toString(16).padStart(2, '0')).join('')}`;
    },
    [x, y] as const,
  );
}

/** Of the sheet "Cash flow", which is seen whole: each column's and each row's room. */
async function cellPoint(col: number, row: number): Promise<[number, number]> {
  const box = await panel.page.getByTestId('picture').boundingBox();
  if (!box) throw new Error('no picture');
  const width = Math.min(72, (box.width - 2 - 44) / 8);
  const height = Math.min(22, (box.height - 2 - 18) / 12);
  return [Math.round(44 + (col - 0.2) * width), Math.round(18 + (row - 0.25) * height)];
}

async function click(col: number, row: number): Promise<void> {
  const [x, y] = await cellPoint(col, row);
  await panel.page.getByTestId('picture').click({ position: { x, y } });
}

test('draws the sheet of the selected cell and says what it holds', async () => {
  panel = await browser.open(park);
  await map();
  await panel.shows('map-heading', 'A1:H12 · 3 formulas (2 distinct) · 3 inputs');
  await panel.shows('map-ties', 'F12 uses 2 cells (2 on Inputs); 2 cells use it (1 on Summary).');
  const seen = await Promise.all(
    (
      [
        [1, 12],
        [6, 1],
        [7, 12],
        [8, 12],
        [3, 5],
      ] as const
    ).map(async ([col, row]) => colourAt(...(await cellPoint(col, row)))),
  );
  // Text, input, two cells with one formula, and nothing.
  expect(seen).toEqual(['#c0ced7', '#002b50', '#874c8b', '#874c8b', '#ffffff']);
  await panel.page.emulateMedia({ colorScheme: 'dark' });
  expect(await colourAt(...(await cellPoint(1, 12)))).toBe('#484e59');
});

test('follows the selection to another sheet and back', async () => {
  panel = await browser.open(park);
  await map();
  await panel.shows('map-heading', 'A1:H12 · 3 formulas (2 distinct) · 3 inputs');
  await panel.page.getByTestId('map-sheet').selectOption('Inputs');
  await panel.shows('map-heading', 'A1:B3 · no formulas · 3 inputs');
  await panel.lay(
    'readCell',
    cell({ sheet: 'Summary', addr: 'B3', row: 3, col: 2, formula: '=B2*1.1', selection: '$B$3' }),
  );
  await panel.send('selectionChanged', { book: 'Solar park.xlsx', sheet: 'Summary', addr: 'B3' });
  await panel.shows('map-heading', 'A1:B5 · 4 formulas (4 distinct) · 1 error');
  await panel.shows('map-ties', 'B3 uses 1 cell; 1 cell uses it.');
});

test('brings the spreadsheet to a cell that is clicked, and tells what is pointed at', async () => {
  panel = await browser.open(park);
  await map();
  await panel.shows('map-ties', 'F12 uses 2 cells (2 on Inputs); 2 cells use it (1 on Summary).');
  await click(7, 12);
  await panel.shows('state', 'Selected Cash flow!G12.');
  expect(await done()).toEqual([['select', ["'Cash flow'!G12"]]]);
  const told = (await panel.text('pointed')).replace(/\s+/g, ' ');
  expect(told).toMatch(/^G12 Revenue · 2031 =F12\*1\.02 1020 Like all of G12:H12/);
  // Pulling the sheet is no click.
  const box = await panel.page.getByTestId('picture').boundingBox();
  await panel.page.mouse.move((box?.x ?? 0) + 100, (box?.y ?? 0) + 100);
  await panel.page.mouse.down();
  await panel.page.mouse.move((box?.x ?? 0) + 160, (box?.y ?? 0) + 100, { steps: 3 });
  await panel.page.mouse.up();
  await panel.settled();
  expect(await done()).toHaveLength(1);
});

test('is gone through with keys', async () => {
  panel = await browser.open(selected);
  await map();
  await panel.shows('map-heading', 'A1:H4 · 17 formulas (2 distinct) · 5 inputs');
  await panel.page.getByTestId('legend').getByText('Finding').waitFor();
  const press = async (...keys: string[]) => {
    for (const key of keys) await panel.page.getByTestId('picture').press(key);
  };
  const pointed = () => panel.page.getByTestId('pointed');
  await press('ArrowDown');
  await pointed().getByText('H3').waitFor();
  await press('n');
  await pointed().getByText('F4').waitFor();
  await pointed().getByText('Finding: ').waitFor();
  await press('n');
  await pointed().getByText('E2').waitFor();
  await press('p', 'Home');
  await pointed().getByText('A4').waitFor();
  await press('Control+PageUp');
  await panel.shows('map-heading', 'A1:F13 · 5 formulas (2 distinct) · 60 inputs');
  await press('ArrowRight', 'Enter');
  await panel.shows('state', 'Selected Costs!B1.');
  await press(' ');
  await panel.asked('reveal');
  expect(await done()).toEqual([
    ['select', ["'Costs'!B1"]],
    ['markCells', ["'Costs'!B1"]],
    ['reveal', ["'Costs'!B1"]],
  ]);
  await press('1');
  await panel.shows('formula', '=B2*2');
});

test('zooms with keys, buttons and the wheel, and shows all again', async () => {
  const rows = Array.from({ length: 400 }, (_, i) => [i]);
  const long = success({ rows: 400, cols: 1, formulas: rows.map(() => ['']), values: rows });
  panel = await browser.open({
    ...park,
    workbookMap: success({
      book: 'Solar park.xlsx',
      sheets: [{ name: 'Cash flow', usedRange: '$A$1:$A$400' }],
      sheetsTruncated: false,
      names: [],
    }),
    "readFormulas '[Solar park.xlsx]Cash flow'!A1:A400": long,
  });
  await map();
  await panel.shows('map-heading', 'A1:A400 · no formulas · 400 inputs');
  const picture = panel.page.getByTestId('picture');
  const pointedRow = async (): Promise<number> => {
    await picture.hover({ position: { x: 50, y: 100 } });
    await panel.settled();
    return Number(/A(\d+)/.exec(await panel.text('pointed'))?.[1]);
  };
  const whole = await pointedRow();
  expect(whole).toBeGreaterThan(50);
  await picture.press('0');
  await panel.page.mouse.wheel(0, -2_000);
  const close = await pointedRow();
  expect(Math.abs(close - whole)).toBeLessThanOrEqual(1);
  await panel.page.mouse.wheel(0, -300);
  await panel.page.keyboard.down('Shift');
  await panel.page.keyboard.up('Shift');
  await panel.page.getByTestId('zoom-all').click();
  expect(await pointedRow()).toBe(whole);
  // Keys keep the selected cell, which is F12, beside them.
  await picture.press('+');
  await picture.press('+');
  expect(await pointedRow()).toBeLessThan(whole);
  await picture.press('-');
  await picture.press('-');
  expect(await pointedRow()).toBe(whole);
  await panel.page.getByTestId('zoom-in').click();
  await panel.page.getByTestId('zoom-out').click();
  expect(await pointedRow()).toBe(whole);
});

test('shows all sheets and what flows between them, and opens one', async () => {
  panel = await browser.open(park);
  await map();
  await panel.page.getByTestId('mode-sheets').click();
  await panel.shows('map-flow', 'Cash flow takes from Inputs (1 cell); gives to Summary (1 cell).');
  const nodes = panel.page.getByTestId('node');
  expect(await nodes.evaluateAll((all) => all.map((one) => one.dataset.name))).toEqual([
    'Inputs',
    'Cash flow',
    'Summary',
  ]);
  expect(await panel.page.locator('.flow.own').count()).toBe(2);
  await panel.page.keyboard.press('ArrowDown');
  await panel.shows('map-flow', 'Summary takes from Cash flow (1 cell), Inputs (1 cell).');
  await panel.page.keyboard.press('Enter');
  await panel.shows('map-heading', 'A1:B5 · 4 formulas (4 distinct) · 1 error');
});

test('tells the same as a list, with what was read of each sheet', async () => {
  panel = await browser.open(park);
  await map();
  await panel.page.getByTestId('mode-list').click();
  await panel.shows('list-heading', 'Solar park.xlsx');
  const row = panel.page.getByTestId('place').filter({ hasText: 'Summary' });
  await row.getByText('A1:B5 · 4 formulas · 1 error').waitFor();
  for (const key of ['Home', 'ArrowDown', 'ArrowDown', 'ArrowDown', 'ArrowRight']) {
    await panel.page.getByTestId('list').press(key);
  }
  await panel.page.getByTestId('place').filter({ hasText: 'Takes from Inputs' }).waitFor();
});

test('says why there is no picture', async () => {
  panel = await browser.open({
    ...park,
    "readFormulas '[Solar park.xlsx]Inputs'!A1:B3": undefined as never,
  });
  await map();
  await panel.shows('map-absent', '“Cash flow” is not read yet…');
  await panel.page.getByTestId('scan-stop').click();
  await panel.resolve((await panel.asked('readFormulas')).id, {
    ok: false,
    payload: { kind: 'busy', message: 'busy' },
  });
  await panel.shows(
    'map-absent',
    '“Cash flow” was not read. The line above tells why, and how to go on.',
  );
});

test('asks before a large workbook is read, and says that a sheet is empty', async () => {
  panel = await browser.open({
    ...park,
    workbookMap: success({
      book: 'Solar park.xlsx',
      sheets: [
        { name: 'Cash flow', usedRange: '$A$1:$A$60000' },
        { name: 'Empty', usedRange: null },
      ],
      sheetsTruncated: false,
      names: [],
    }),
  });
  await map();
  await panel.shows(
    'map-absent',
    '“Cash flow” was not read. The line above tells why, and how to go on.',
  );
  await panel.shows('scan-go', 'Read them');
  await panel.page.getByTestId('map-sheet').selectOption('Empty');
  await panel.shows(
    'map-absent',
    '“Empty” was not read. The line above tells why, and how to go on.',
  );
});

test('does without a worker', async () => {
  panel = await browser.open(park);
  await panel.page.addInitScript(() => Reflect.deleteProperty(window, 'Worker'));
  await panel.page.reload();
  await map();
  await panel.shows('map-ties', 'F12 uses 2 cells (2 on Inputs); 2 cells use it (1 on Summary).');
  expect(await colourAt(...(await cellPoint(1, 12)))).toBe('#c0ced7');
});
