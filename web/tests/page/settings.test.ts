// The settings in the built page: opened, changed one by one, hot keys by pressing them.

import { afterAll, afterEach, beforeAll, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { failure, ready, settings, success } from './samples';

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

const answers = { ...ready({ formula: '=1+2', value: 3 }), getSettings: success(settings()) };

async function open(more: Record<string, ReturnType<typeof success>> = {}): Promise<void> {
  panel = await browser.open({ ...answers, ...more });
  await panel.reaches('ready');
  await panel.page.getByTestId('gear').click();
  await panel.page.getByTestId('set-summonKey').waitFor();
}

const isOpen = (): Promise<boolean> => panel.page.getByTestId('settings').isVisible();

test('opens by the gear, by its key and from the menu, and goes by Escape or a view', async () => {
  await open();
  expect(await isOpen()).toBe(true);
  expect(await panel.page.getByTestId('tab-tree').getAttribute('aria-selected')).toBe('false');
  await panel.page.keyboard.press('Escape');
  expect(await isOpen()).toBe(false);
  expect((await panel.posted()).map(({ verb }) => verb)).not.toContain('focusExcel');
  await panel.page.keyboard.press('Control+,');
  expect(await isOpen()).toBe(true);
  await panel.page.keyboard.press('Control+,');
  expect(await isOpen()).toBe(false);
  await panel.send('showSettings', {});
  await panel.page.getByTestId('settings').waitFor();
  await panel.page.keyboard.press('2');
  expect(await isOpen()).toBe(false);
  expect(await panel.page.getByTestId('tab-deps').getAttribute('aria-selected')).toBe('true');
  await panel.send('showSettings', {});
  await panel.page.getByTestId('settings').waitFor();
  await panel.send('surface', { name: 'tree', wasVisible: true, wasKey: true });
  await panel.page.getByTestId('settings').waitFor({ state: 'detached' });
});

test('shows what is in force', async () => {
  await open({
    getSettings: success(
      settings({ pollMs: 450, fileTrouble: '"pollMs" is not a number.', keysTrouble: 'no portal' }),
    ),
  });
  expect(await panel.text('set-summonKey')).toBe('Alt+Shift+A');
  expect(await panel.text('set-mapKey')).toBe('None');
  expect(await panel.page.getByTestId('set-pollMs').inputValue()).toBe('450');
  expect(await panel.text('file-trouble')).toMatch(/: "pollMs" is not a number\.$/);
  expect(await panel.text('settings')).toContain('None of them comes: no portal.');
  expect(await panel.text('settings-file')).toBe('/home/me/.local/share/Quorin/config.json');
  expect(await panel.page.getByTestId('set-login').isDisabled()).toBe(true);
  expect(await panel.page.getByTestId('check-updates').isDisabled()).toBe(true);
});

test('takes the key that is pressed', async () => {
  await open();
  await panel.lay('setSetting', success(settings({ summonKey: [38, 4608] })));
  await panel.lay('pauseHotKeys', success(null));
  await panel.page.getByTestId('set-summonKey').click();
  expect(await panel.text('set-summonKey')).toBe('Press a key…');
  expect((await panel.asked('pauseHotKeys')).args).toEqual([true]);
  await panel.page.keyboard.press('Control+Shift+J');
  expect((await panel.asked('setSetting')).args).toEqual([
    'summonKey',
    { code: 38, modifiers: 4608 },
  ]);
  const verbs = (await panel.posted()).slice(-3).map(({ verb, args }) => [verb, args[0]]);
  expect(verbs).toEqual([
    ['pauseHotKeys', true],
    ['pauseHotKeys', false],
    ['setSetting', 'summonKey'],
  ]);
  await panel.shows('set-summonKey', 'Ctrl+Shift+J');
  expect(await panel.page.getByTestId('words-summonKey').innerText()).toContain(
    'no longer reaches other programs',
  );
});

test('says why a key is not taken, and keeps the one before', async () => {
  await open();
  await panel.lay('setSetting', failure('This is the key for the map.'));
  await panel.page.getByTestId('set-depsKey').click();
  await panel.page.keyboard.press('Alt+Shift+D');
  await panel.shows('words-depsKey', 'This is the key for the map.');
  expect(await panel.text('set-depsKey')).toBe('Alt+Shift+S');
});

test('says that the desktop keeps a key that never comes', async () => {
  await open();
  await panel.page.getByTestId('set-depsKey').click();
  await panel.page.keyboard.down('Control');
  await panel.page.keyboard.down('Alt');
  await panel.page.keyboard.up('Alt');
  await panel.page.keyboard.up('Control');
  await panel.shows(
    'words-depsKey',
    'No key came with Ctrl+Alt: the desktop or another program keeps what was pressed.',
  );
  expect((await panel.asked('pauseHotKeys', 2)).args).toEqual([false]);
});

test('Escape leaves a key as it is, Backspace takes it away, a click brings the first one back', async () => {
  await open();
  await panel.page.getByTestId('set-summonKey').click();
  await panel.page.keyboard.press('Escape');
  expect(await isOpen()).toBe(true);
  expect(await panel.text('set-summonKey')).toBe('Alt+Shift+A');
  await panel.lay('setSetting', success(settings({ summonKey: null })));
  await panel.page.getByTestId('set-summonKey').click();
  await panel.page.keyboard.press('Backspace');
  expect((await panel.asked('setSetting')).args).toEqual(['summonKey', null]);
  await panel.shows('set-summonKey', 'None');
  expect(await panel.page.getByTestId('none-summonKey').isDisabled()).toBe(true);
  await panel.page.getByTestId('default-summonKey').click();
  expect((await panel.asked('setSetting', 2)).args).toEqual([
    'summonKey',
    { code: 0, modifiers: 2560 },
  ]);
});

test('changes the others, and says why one is not changed', async () => {
  await open({ setSetting: success(settings({ pollMs: 1000 })) });
  await panel.page.getByTestId('set-pollMs').selectOption('1000');
  expect((await panel.asked('setSetting')).args).toEqual(['pollMs', 1000]);
  await panel.page.getByTestId('set-following').click();
  expect((await panel.asked('setSetting', 2)).args).toEqual(['following', false]);
  await panel.page.getByTestId('set-green').click();
  expect((await panel.asked('setHighlightColor')).args).toEqual([[0, 200, 83]]);
  await panel.lay('setSetting', failure('Not saved, and left as it was: No space left on device'));
  await panel.page.getByTestId('set-pollMs').selectOption('500');
  await panel.shows('settings-trouble', 'Not saved, and left as it was: No space left on device');
  await panel.page.waitForFunction(
    () => document.querySelector<HTMLSelectElement>('[data-testid=set-pollMs]')?.value === '1000',
  );
});

test('reads the settings again when they have changed, and takes the colour over', async () => {
  await open();
  await panel.lay('getSettings', success(settings({ highlightRGB: [0, 200, 83] })));
  await panel.send('settingsChanged', {});
  await panel.page.waitForFunction(
    () =>
      document.querySelector('[data-testid=set-green]')?.getAttribute('aria-checked') === 'true',
  );
});

test('believes no settings of another shape', async () => {
  panel = await browser.open({ ...answers, getSettings: success({ keys: {} }) });
  await panel.reaches('ready');
  await panel.page.getByTestId('gear').click();
  await panel.shows('settings-trouble', 'The reply to "getSettings" has an unexpected shape.');
  expect(await panel.page.getByTestId('set-summonKey').count()).toBe(0);
});

test('opens where no workbook is', async () => {
  panel = await browser.open({ ...answers, probe: success({ state: 'noWorkbook' }) });
  await panel.reaches('noWorkbook');
  await panel.page.keyboard.press('Control+,');
  await panel.page.getByTestId('set-summonKey').waitFor();
});
