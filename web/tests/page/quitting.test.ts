// What the page does when Quorin ends.

import { afterAll, beforeAll, describe, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { quits } from './quitScenes';
import { model } from './samples';

let browser: Browser;
beforeAll(async () => {
  browser = await Browser.start();
});
afterAll(async () => {
  await browser.close();
});

async function opened(): Promise<FakePanel> {
  const panel = await browser.open(model);
  await panel.verified('same');
  await panel.settled();
  return panel;
}

const verbs = async (panel: FakePanel) => (await panel.posted()).map(({ verb }) => verb);

describe('quitting', () => {
  test('says what is taken back and how it ends, and tells when that is drawn', async () => {
    const panel = await opened();
    const status = panel.page.getByTestId('quitting');
    expect(await status.getAttribute('role')).toBe('status');
    expect(await status.innerText(), 'there before, for screen readers').toBe('');
    expect(await verbs(panel)).not.toContain('quittingDrawn');
    await quits(panel);
    expect(await status.innerText()).toBe(
      'Quorin is quitting.\n\n' +
        'Taking back 12 marked cells, 3 shown rows and 1 shown column in LibreOffice Calc…\n\n' +
        'This takes two seconds at most. What LibreOffice Calc does not give back in time is taken back when Quorin starts the next time.',
    );
    await panel.asked('quittingDrawn');
    expect(panel.errors).toEqual([]);
    await panel.close();
  });

  test('is drawn before it tells so', async () => {
    const panel = await opened();
    const frames = await panel.page.evaluate(
      () =>
        new Promise<number>((done) => {
          const page = window as unknown as {
            side: { posted: { verb: string }[] };
            __qxEvent(name: string, payload: unknown): void;
          };
          let begun = 0;
          const count = () => {
            if (page.side.posted.some(({ verb }) => verb === 'quittingDrawn')) done(begun);
            else requestAnimationFrame(count);
            begun += 1;
          };
          page.__qxEvent('quitting', { cells: 1, names: 0, rows: 0, columns: 0 });
          requestAnimationFrame(count);
        }),
    );
    expect(frames).toBeGreaterThanOrEqual(2);
    await panel.close();
  });

  test('has nothing that can be pressed, and asks for nothing more', async () => {
    const panel = await opened();
    await panel.page.getByTestId('tree').focus();
    await quits(panel);
    await panel.asked('quittingDrawn');
    const before = await verbs(panel);
    for (const key of ['ArrowDown', '2', '?', 'Escape', 'Control+,', 'Tab', 'Enter']) {
      await panel.page.keyboard.press(key);
    }
    const { x, y, width, height } = (await panel.page.getByTestId('gear').boundingBox()) ?? {
      x: 0,
      y: 0,
      width: 0,
      height: 0,
    };
    expect(width).toBeGreaterThan(0);
    await panel.page.mouse.click(x + width / 2, y + height / 2);
    await panel.send('selectionChanged', { book: 'Other.xlsx', sheet: 'S', addr: '$A$1' });
    await panel.settled();
    expect(await panel.page.getByTestId('help').count()).toBe(0);
    expect(await panel.page.getByTestId('settings').count()).toBe(0);
    expect(await panel.page.evaluate(() => document.activeElement === document.body)).toBe(true);
    expect((await verbs(panel)).slice(before.length)).toEqual([]);
    await panel.close();
  });

  test('takes no end for one that is told wrongly', async () => {
    const panel = await opened();
    await panel.send('quitting', { cells: 'many' });
    await panel.settled();
    expect(await panel.text('quitting')).toBe('');
    expect(await verbs(panel)).not.toContain('quittingDrawn');
    await panel.close();
  });
});
