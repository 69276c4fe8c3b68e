// The review in the built page: findings from the worker, their cells on the sheet, filters.

import { afterAll, afterEach, beforeAll, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { many, odd } from './odd';
import { cell } from './samples';

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

async function review(): Promise<void> {
  await panel.reaches('ready');
  await panel.page.keyboard.press('4');
  await panel.page.getByTestId('finding').first().waitFor();
}

const findings = async (): Promise<string[]> =>
  (await panel.page.getByTestId('finding').allInnerTexts()).map((text) =>
    text.replace(/\s+/g, ' ').trim(),
  );

const sheetVerbs = new Set(['markCells', 'reveal', 'select', 'clearMarks']);
const done = async (): Promise<unknown[]> =>
  (await panel.posted())
    .filter(({ verb }) => sheetVerbs.has(verb))
    .map(({ verb, args }) => [verb, args[0]]);

test('lists what is odd and shows the formula beside the expected one', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.getByText('All 2 sheets, as read at').waitFor();
  await panel.shows('list-heading', '3 findings in 22 formulas');
  expect((await findings()).map((text) => text.split(' ')[0])).toEqual([
    'Prices!F4',
    'Prices!E2',
    'Costs!D13',
  ]);
  expect(await panel.text('formula-own')).toBe('=E3*$B$1');
  expect(await panel.text('formula-expected')).toBe('=E4*$B$1');
  const marks = panel.page.locator('.pair mark');
  expect(await marks.allInnerTexts()).toEqual(['E3', 'E4']);
  await panel.page.keyboard.press('ArrowDown');
  await panel.shows('formula-own', '43.2, typed in');
  await panel.shows('formula-expected', '=D2*$B$1');
  await panel.page.keyboard.press('End');
  expect(await panel.text('finding-sentence')).toBe(
    'Total cost · 2032: D13 takes rows 2 to 11, the others rows 2 to 12; B13:C13 and E13:F13 are filled alike with =SUM(B2:B12).',
  );
  expect(await marks.allInnerTexts()).toEqual(['D11', 'D12']);
});

test('marks the active finding, and goes to its cells with Enter', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.keyboard.press('End');
  await panel.asked('reveal');
  expect(await done()).toEqual([
    ['markCells', ["'Costs'!D13"]],
    ['reveal', ["'Costs'!D13"]],
  ]);
  await panel.page.keyboard.press('Enter');
  await panel.shows('state', 'Selected Costs!D13.');
  expect(await done()).toContainEqual(['select', ["'Costs'!D13"]]);
  // The list stays while the selection moves there.
  await panel.lay(
    'readCell',
    cell({ sheet: 'Costs', addr: 'D13', row: 13, col: 4, formula: '=SUM(D2:D11)' }),
  );
  await panel.send('selectionChanged', { book: 'Solar park.xlsx', sheet: 'Costs', addr: 'D13' });
  await panel.shows('address', 'D13');
  await panel.settled();
  await panel.shows('list-heading', '3 findings in 22 formulas');
  expect(await panel.page.locator('.row.active').innerText()).toContain('Costs!D13');
  await panel.page.keyboard.press('1');
  await panel.shows('formula', '=SUM(D2:D11)');
});

test('touches nothing while another workbook is in front', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.getByText('All 2 sheets, as read at').waitFor();
  await panel.page.getByTestId('follow').click();
  await panel.lay('readCell', cell({ book: 'Other.xlsx', sheet: 'Costs', addr: 'A1' }));
  await panel.send('selectionChanged', { book: 'Other.xlsx', sheet: 'Costs', addr: 'A1' });
  await panel.shows('state', 'Values can be asked for while “Solar park.xlsx” is in front.');
  await panel.settled();
  const before = (await panel.posted()).length;
  await panel.page.getByTestId('finding').last().click();
  await panel.page.getByTestId('list').press('Enter');
  await panel.page.getByTestId('list').press(' ');
  await panel.page.getByTestId('go-there').click();
  await panel.page.getByTestId('open-formula').click();
  await panel.settled();
  await panel.shows('formula-own', '=SUM(D2:D11)');
  expect((await panel.posted()).slice(before)).toEqual([]);
});

test('lists the findings of one kind or one sheet', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.getByTestId('filter-sheet').selectOption('Costs');
  await panel.shows('list-heading', '1 of 3 findings in 22 formulas');
  expect((await findings()).map((text) => text.split(' ')[0])).toEqual(['Costs!D13']);
  await panel.page.getByTestId('filter-kind').selectOption('constant');
  await panel.shows(
    'review-absent',
    'No finding is of that kind, on that sheet and in that state. Choose others above.',
  );
  // A letter in a field is its own.
  await panel.page.getByTestId('filter-kind').press('f');
  await panel.shows('follow', 'Following');
  await panel.page.getByTestId('filter-sheet').selectOption('');
  await panel.shows('list-heading', '1 of 3 findings in 22 formulas');
  expect((await findings()).map((text) => text.split(' ')[0])).toEqual(['Prices!E2']);
});

test('leaves an open menu of the filter alone while the page changes', async () => {
  panel = await browser.open(odd);
  await review();
  const option = panel.page.getByTestId('filter-kind').locator('option').last();
  const before = await option.elementHandle();
  await panel.page.keyboard.press('ArrowDown');
  await panel.settled();
  expect(await before?.evaluate((one) => one.isConnected)).toBe(true);
});

test('tells what was read anew when a sheet changes', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.getByText('All 2 sheets, as read at').waitFor();
  // Its total was mended meanwhile.
  const mended = structuredClone(odd.costs);
  const { formulas } = mended.payload as { formulas: string[][] };
  (formulas[12] as string[])[3] = '=SUM(R[-11]C:R[-1]C)';
  await panel.lay("readFormulas '[Solar park.xlsx]Costs'!A1:F13", mended);
  await panel.lay(
    'readCell',
    cell({ sheet: 'Costs', addr: 'D13', row: 13, col: 4, formula: '=SUM(D2:D12)', value: 1_485 }),
  );
  await panel.send('selectionChanged', { book: 'Solar park.xlsx', sheet: 'Costs', addr: 'D13' });
  await panel.page.getByText('“Costs” has changed since.').waitFor();
  await panel.shows('list-heading', '2 findings in 22 formulas');
  expect((await findings()).map((text) => text.split(' ')[0])).toEqual(['Prices!F4', 'Prices!E2']);
});

test('does without a worker', async () => {
  panel = await browser.open(odd);
  await panel.page.addInitScript(() => Reflect.deleteProperty(window, 'Worker'));
  await panel.page.reload();
  await review();
  await panel.shows('list-heading', '3 findings in 22 formulas');
});

test('scrolls through as many findings as it lists', async () => {
  panel = await browser.open(many());
  await panel.reaches('ready');
  await panel.page.keyboard.press('4');
  await panel.page.getByText('The first 5,000 findings only.').waitFor({ timeout: 25_000 });
  // The list is laid out anew with the last part; before, its end is that of the first one.
  const last = panel.page.getByTestId('filter-sheet').locator('option', { hasText: 'Sheet 9' });
  await last.waitFor({ state: 'attached', timeout: 25_000 });
  await panel.page.getByTestId('list').press('End');
  await panel.settled();
  expect(await panel.page.getByTestId('finding').count()).toBeLessThan(60);
  await panel.page.locator('.row.active', { hasText: 'Sheet 9!' }).waitFor();
  await panel.page.getByTestId('filter-sheet').selectOption('Sheet 3');
  await panel.shows('list-heading', '600 of 5,400 findings in 5,400 formulas');
});
