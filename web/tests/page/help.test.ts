// Help in place, and what is taken along.

import { afterAll, beforeAll, describe, expect, test } from 'vitest';

import { Browser } from './FakePanel';
import { failure, model, success } from './samples';

let browser: Browser;
beforeAll(async () => {
  browser = await Browser.start();
});
afterAll(async () => {
  await browser.close();
});

describe('help', () => {
  test('shows the keys of the view in front, and gives the keyboard back', async () => {
    const page = await browser.open(model);
    await page.verified('same');
    await page.page.getByTestId('tree').focus();
    await page.page.keyboard.press('?');
    const help = page.page.getByTestId('help');
    expect(await help.innerText()).toContain('opens the formula of the cell behind the row');
    await page.page.keyboard.press('2');
    await page.page.getByText('opens the cell’s formula as a tree').waitFor();
    await page.page.keyboard.press('1');
    await page.page.keyboard.press('Escape');
    await help.waitFor({ state: 'detached' });
    expect((await page.posted()).map(({ verb }) => verb)).not.toContain('focusExcel');
    await page.page.keyboard.press('?');
    await page.page.keyboard.press('?');
    await help.waitFor({ state: 'detached' });
  });

  test('is there for the mouse, and not over the settings, where these keys do nothing', async () => {
    const page = await browser.open(model);
    await page.verified('same');
    const help = page.page.getByTestId('help');
    const button = page.page.getByTestId('help-button');
    await button.click();
    expect(await help.innerText()).toContain('opens the formula of the cell behind the row');
    expect(await button.getAttribute('aria-pressed')).toBe('true');
    await page.page.keyboard.press('Escape');
    await help.waitFor({ state: 'detached' });
    await page.page.getByTestId('gear').click();
    await button.waitFor({ state: 'detached' });
  });

  test('greets on a first start, and never again once that is dismissed', async () => {
    const page = await browser.open({ ...model, isWelcomed: success(false) });
    await page.verified('same');
    expect(await page.text('welcome')).toContain('Select a cell in LibreOffice Calc');
    await page.page.getByTestId('welcome-keys').click();
    await page.page.getByTestId('help').waitFor();
    await page.page.getByTestId('help-close').click();
    await page.page.getByTestId('welcome-dismiss').click();
    await page.asked('setWelcomed');
    expect(await page.page.getByTestId('welcome').count()).toBe(0);
  });

  test('copies the view with where and when it is from', async () => {
    const page = await browser.open(model);
    await page.verified('same');
    await page.page.context().grantPermissions(['clipboard-read']);
    await page.page.getByTestId('tree').focus();
    await page.page.keyboard.press('Control+c');
    await page.shows('state', 'Text copied.');
    const clipboard = () => page.page.evaluate(() => navigator.clipboard.readText());
    const text = await clipboard();
    expect(text).toMatch(/^Cash flow!F12 · Solar park\.xlsx · \d+ \w+ \d{4}, \d\d:\d\d\n=IF/);
    expect(text).toMatch(/\n {4}B4 +12 +'Cash flow'!B4\n/);
    expect(text).toMatch(/\n {2}0 +not used\n/);
    await page.page.keyboard.press('2');
    await page.shows('list-heading', 'Cells that use F12');
    await page.page.keyboard.press('?');
    await page.page.getByTestId('take-markdown').click();
    await page.shows('state', 'Table copied.');
    expect(await clipboard()).toContain('**Dependents of Cash flow!F12');
  });

  test('has no card where nobody keeps that it was dismissed', async () => {
    const page = await browser.open({
      ...model,
      isWelcomed: failure({ kind: 'transport', message: 'x' }),
    });
    await page.verified('same');
    expect(await page.page.getByTestId('welcome').count()).toBe(0);
  });
});

describe('what takes over a second', () => {
  test('is told with how far it is, and can be stopped', async () => {
    const unanswered = Object.entries(model).filter(([asked]) => !asked.startsWith('evaluate'));
    const page = await browser.open({
      ...Object.fromEntries(unanswered),
      evaluate: undefined as never,
    });
    await page.tells(/^Working out parts of the formula… \d of \d known\.$/);
    await page.page.getByTestId('stop').click();
    await page.page.locator('[data-state=offered]').first().waitFor();
    const { id } = (await page.posted()).at(-1) ?? {};
    await page.resolve(id, { ok: true, payload: { ok: true, value: true } });
    await page.page.getByTestId('stop').waitFor({ state: 'detached' });
    const asked = (await page.posted()).length;
    await page.settled();
    expect((await page.posted()).length).toBe(asked);
    await page.page.locator('[data-state=offered] button').first().click();
    await page.page.waitForFunction(
      (before) =>
        (window as unknown as { side: { posted: unknown[] } }).side.posted.length > before,
      asked,
    );
  });
});
