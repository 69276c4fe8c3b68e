// What stands in the panel at one moment belongs to one cell, also while cells change quickly.

import { afterAll, beforeAll, describe, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { cell, ready, success, texts } from './samples';

let browser: Browser;

beforeAll(async () => {
  browser = await Browser.start();
});
afterAll(async () => {
  await browser.close();
});

const place = (addr: string) => ({ book: 'Solar park.xlsx', sheet: 'Cash flow', addr });

const held = async (page: FakePanel) => ({
  value: await page.text('value'),
  busy: await page.page.getByTestId('value').getAttribute('aria-busy'),
});

describe('a number whose text is being asked for', () => {
  test('is marked until that is known', async () => {
    const page = await browser.open({
      ...ready({ addr: 'D3', value: 30061500 }),
      readTexts: undefined as never,
    });
    const asked = await page.asked('readTexts');
    expect(await held(page)).toEqual({ value: '30061500', busy: 'true' });
    await page.resolve(asked.id, texts('30,061,500'));
    await page.shows('value', '30,061,500');
    expect((await held(page)).busy).toBe('false');
    await page.close();
  });

  test('is marked no more where nothing tells it', async () => {
    const page = await browser.open({ ...ready({ value: 5 }), readTexts: success({ texts: [] }) });
    await page.shows('value', '5');
    await page.settled();
    expect((await held(page)).busy).toBe('false');
    await page.close();
  });

  test('keeps what it showed while the same cell is read again', async () => {
    const page = await browser.open({
      ...ready({ value: 30061500 }),
      readTexts: texts('30,061,500'),
    });
    await page.shows('value', '30,061,500');
    await page.lay('readTexts', undefined);
    await page.send('selectionChanged', place('F12'));
    const asked = await page.asked('readTexts', 2);
    expect(await held(page)).toEqual({ value: '30,061,500', busy: 'false' });
    await page.resolve(asked.id, texts('30.1M'));
    await page.shows('value', '30.1M');
    await page.lay('readCell', cell({ value: 7 }));
    await page.send('selectionChanged', place('F12'));
    await page.shows('value', '7');
    expect((await held(page)).busy).toBe('true');
    await page.close();
  });

  test('keeps what it showed while it stays and another cell is selected', async () => {
    const page = await browser.open({
      ...ready({ formula: '=B4*2', value: 30061500 }),
      readTexts: texts('30,061,500', '12'),
    });
    await page.shows('value', '30,061,500');
    await page.page.keyboard.press('f');
    await page.shows('follow', 'Pinned');
    await page.lay('readTexts', undefined);
    await page.lay('readCell', cell({ addr: 'A1', value: 'other' }));
    await page.send('selectionChanged', place('A1'));
    await page.asked('readCell', 2);
    await page.settled();
    await page.page.keyboard.press('2');
    await page.page.getByTestId('value').waitFor({ state: 'detached' });
    await page.page.keyboard.press('1');
    expect(await page.text('address')).toBe('F12');
    expect(await page.text('value')).toBe('30,061,500');
    await page.close();
  });
});

test('address, formula and value are those of one cell at every moment', async () => {
  const cells = [
    {
      addr: 'A1',
      formula: '',
      value: 'Halden Solar Park: summary',
      shown: '"Halden Solar Park: summary"',
    },
    { addr: 'D3', formula: '=Total_Capex', value: 30061500 },
    { addr: 'D5', formula: '=Total_Capex-Loan', value: 8417220 },
    { addr: 'E9', formula: '', value: 2041 },
  ];
  const page = await browser.open(ready(cells[0]));
  await page.shows('address', 'A1');
  // At every change of the document, and in every frame.
  await page.page.evaluate(() => {
    const seen = new Set<string>();
    const look = () => {
      const of = (name: string) =>
        document.querySelector<HTMLElement>(`[data-testid="${name}"]`)?.textContent.trim() ?? '';
      seen.add([of('address'), of('formula'), of('value')].join(' | '));
    };
    new MutationObserver(look).observe(document.body, {
      subtree: true,
      childList: true,
      characterData: true,
    });
    const frame = () => {
      look();
      requestAnimationFrame(frame);
    };
    frame();
    Object.assign(window, { seen });
  });
  for (let turn = 0; turn < 20; turn++) {
    const next = cells[(turn * 3 + 1) % cells.length];
    if (!next) throw new Error('no such cell');
    await page.lay('readCell', cell(next));
    await page.send('selectionChanged', place(next.addr));
    if (turn % 3 > 0) await page.shows('address', next.addr);
  }
  await page.settled();
  const seen = await page.page.evaluate(() => [
    ...(window as unknown as { seen: Set<string> }).seen,
  ]);
  expect(seen.sort()).toEqual(
    cells
      .map(({ addr, formula, value, shown = String(value) }) => [addr, formula, shown].join(' | '))
      .sort(),
  );
  await page.close();
});
