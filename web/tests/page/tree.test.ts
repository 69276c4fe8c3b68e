// The tree by keyboard and pointer, and what it asks of the native side.

import { afterAll, afterEach, beforeAll, describe, expect, test } from 'vitest';

import { Browser, type Answer, type FakePanel } from './FakePanel';
import { cell, failure, inFront, model, range, ready, success, value } from './samples';

let browser: Browser;
let panel: FakePanel;

beforeAll(async () => {
  browser = await Browser.start();
});
afterAll(async () => {
  await browser.close();
});
afterEach(async () => {
  expect(await panel.violations()).toEqual([]);
  expect(panel.errors).toEqual([]);
  await panel.close();
});

async function open(answers: Record<string, Answer> = model): Promise<FakePanel> {
  panel = await browser.open(answers);
  await panel.reaches('ready');
  await panel.settled();
  await panel.page.getByTestId('tree').focus();
  return panel;
}

const press = async (...keys: string[]): Promise<void> => {
  for (const key of keys) await panel.page.keyboard.press(key);
};
const active = () => panel.page.locator('.row.active').innerText();
const marked = async () => (await panel.asked('markCells')).args[0];

describe('the tree', () => {
  test('shows every part with its value, and verifies the whole', async () => {
    const page = await open();
    await page.verified('same');
    expect(await page.text('verification')).toBe('Verified');
    const rows = await page.page.getByTestId('row').allInnerTexts();
    expect(rows.map((row) => row.replaceAll('\n', ' | '))).toEqual([
      'IF(B4>0,SUM(Data!C2:C5)/B4,0) | 1,284.50',
      'test B4>0 | TRUE',
      'B4 | 12',
      'then SUM(Data!C2:C5)/B4 | 1284.5',
      'SUM(Data!C2:C5) | 15414',
      'Data!C2:C5 | 4 × 1',
      '÷ B4 | 12',
      'else 0 | not used',
    ]);
  });

  test('takes nothing from another sheet that is in front', async () => {
    const page = await open({
      ...ready({ formula: '=ABS(INDIRECT("A2"))+Data!A1', value: 3 }),
      'evaluate INDIRECT("A2")': value(0),
      'evaluate ABS(INDIRECT("A2"))': value(0),
      pollCell: inFront('Data'),
    });
    const rows = async () => (await page.page.getByTestId('row').allInnerTexts()).join();
    await expect.poll(rows, { timeout: 20_000 }).toContain('Only while “Cash flow” is in front.');
    await page.lay('evaluate INDIRECT("A2")', value(1));
    await page.lay('pollCell', inFront('Cash flow'));
    // The cells of a row that are shown may bring the sheet to the front.
    await press('End');
    await expect.poll(rows, { timeout: 20_000 }).toContain('INDIRECT("A2")\n1');
  });

  test('asks for the values of its parts again when its cell is read again', async () => {
    const page = await open({
      ...ready({ formula: '=ABS(Data!A1)+1', value: 3 }),
      'evaluate ABS(Data!A1)': value(2),
      evaluate: value(3),
      readRange: range([[-2]]),
    });
    expect(await page.page.getByTestId('row').nth(1).innerText()).toContain('2');
    await page.lay('readCell', cell({ formula: '=ABS(Data!A1)+1', value: 8 }));
    await page.lay('evaluate ABS(Data!A1)', value(7));
    await page.page.evaluate(() => window.dispatchEvent(new Event('focus')));
    await page.page.getByTestId('row').nth(1).getByText('7', { exact: true }).waitFor();
    expect(await page.page.getByTestId('row').nth(0).innerText()).toContain('8');
  });

  test('tells assistive technology where one is', async () => {
    const page = await open();
    await press('ArrowDown', 'ArrowDown', 'ArrowDown');
    const id = await page.page.getByTestId('tree').getAttribute('aria-activedescendant');
    const row = page.page.locator(`#${id ?? ''}`);
    expect(await row.getAttribute('aria-level')).toBe('2');
    expect(await row.getAttribute('aria-setsize')).toBe('3');
    expect(await row.getAttribute('aria-posinset')).toBe('2');
    expect(await row.getAttribute('aria-expanded')).toBe('true');
    expect(await row.getAttribute('aria-selected')).toBe('true');
  });

  test('is walked by keys, and the sheet follows', async () => {
    const page = await open();
    await press('ArrowDown', 'ArrowDown');
    expect(await marked()).toEqual(["'Cash flow'!B4"]);
    expect((await page.asked('reveal')).args[0]).toEqual(["'Cash flow'!B4"]);
    await page.shows('marked', 'Highlighted Cash flow!B4');
    await page.shows('step', 'Step 3 of 8');
    await press('End', 'ArrowUp', 'ArrowUp');
    await page.shows('marked', 'Highlighted Data!C2:C5');
    await press('s');
    expect(await active()).toContain('SUM(Data');
  });

  test('marks its row in the formula, whose parts lead to their rows', async () => {
    const page = await open();
    await press('ArrowDown');
    expect(await page.page.locator('.formula .current').allInnerTexts()).toEqual(['B4', '>', '0']);
    await page.page.locator('.formula span', { hasText: 'Data!C2:C5' }).click();
    expect(await active()).toContain('Data!C2:C5');
  });

  test('drills into a precedent and comes back', async () => {
    const page = await open();
    await press('End', 'ArrowUp', 'ArrowUp', 'Enter');
    await page.shows('address', 'C2');
    expect(await page.text('sheet')).toBe('Data');
    expect(await page.text('formula')).toBe('=B2*Rate');
    expect(await page.text('crumb')).toBe('F12');
    await page.settled();
    await press('Backspace');
    await page.shows('address', 'F12');
    expect(await active()).toContain('Data!C2:C5');
  });

  test('is stepped through from the spreadsheet', async () => {
    const page = await open();
    await page.send('step', { dir: 1 });
    await page.shows('step', 'Step 2 of 8');
    await page.send('step', { dir: 1 });
    await page.shows('marked', 'Highlighted Cash flow!B4');
    await page.send('step', { dir: -1 });
    await page.shows('step', 'Step 2 of 8');
  });

  test('of 10,000 parts draws only what is in sight', async () => {
    const formula = `=MAX(${Array.from({ length: 5_000 }, () => '-x').join(',')})`;
    const page = await open(ready({ formula, value: 2 }));
    expect(await page.page.getByTestId('row').count()).toBeLessThan(60);
    await press('*', 'ArrowDown', '*', 'End');
    await page.shows('step', 'Step 10001 of 10001');
    expect(await page.page.getByTestId('row').count()).toBeLessThan(60);
  });
});

describe('a long tree', () => {
  const cells = Array.from({ length: 150 }, (_, i) => `ABS(A${String(i + 1)})`);
  const long = {
    ...ready({ formula: `=SUM(${cells.join(',')})`, value: 7 }),
    evaluate: value(7),
  };
  const top = () => panel.page.getByTestId('tree').evaluate((tree) => tree.scrollTop);

  test('stays where it was scrolled to while values arrive', async () => {
    const page = await open(long);
    await page.page.getByTestId('tree').evaluate((tree) => {
      tree.scrollTop = 2_000;
    });
    await page.page.locator('.row', { hasText: 'ABS(A90)' }).waitFor();
    await page.settled();
    expect(await page.page.locator('.row', { hasText: 'ABS(A90)' }).innerText()).toContain('7');
    expect(await top()).toBe(2_000);
    await press('ArrowDown');
    expect(await top()).toBe(24);
  });

  test('touches no row that stays in sight while it is scrolled', async () => {
    await open(long);
    await panel.page.getByTestId('tree').press('*');
    await panel.settled();
    const tree = panel.page.getByTestId('tree');
    await tree.evaluate((element) => (element.scrollTop = 1_000));
    await panel.settled();
    await tree.evaluate((element) => {
      const touched = new Set<Node>();
      Object.assign(window, { touched });
      new MutationObserver((changes) => {
        for (const { target } of changes) {
          const near = target instanceof Element ? target : target.parentElement;
          touched.add(near?.closest('[data-testid=row]') ?? target);
        }
      }).observe(element, {
        attributes: true,
        characterData: true,
        childList: true,
        subtree: true,
      });
      // Less than a row, across the edge of one.
      element.scrollTop = 1_012;
    });
    await panel.settled();
    const touched = await panel.page.evaluate(
      () => (window as unknown as { touched: Set<Node> }).touched.size,
    );
    expect(touched).toBe(1);
  });

  test('brings the part of the active row into view in its formula', async () => {
    await open(long);
    await press('End');
    await panel.page.waitForFunction(() => {
      const formula = document.querySelector('.formula')?.getBoundingClientRect();
      const part = document.querySelector('.formula .current')?.getBoundingClientRect();
      return formula && part && part.top >= formula.top && part.bottom <= formula.bottom;
    });
  });

  test('keeps the part of the active row in view when its formula breaks elsewhere', async () => {
    const page = await open(ready({ formula: `=${'ABS('.repeat(64)}A1${')'.repeat(64)}` }));
    await press('End');
    await page.settled();
    // In the very frame that shows the new width, not a moment later.
    const within = await page.page.evaluate(async () => {
      const frame = document.querySelector<HTMLElement>('.formula');
      if (!frame) throw new Error('no formula');
      frame.style.maxWidth = '180px';
      frame.style.maxHeight = '80px';
      await new Promise((resolve) => requestAnimationFrame(resolve));
      await new Promise((resolve) => requestAnimationFrame(resolve));
      const part = document.querySelector('.formula .current')?.getBoundingClientRect();
      const { top, bottom } = frame.getBoundingClientRect();
      return part && part.top >= top && part.bottom <= bottom;
    });
    expect(within).toBe(true);
  });

  test('is followed by another formula from its beginning, with the keyboard', async () => {
    const page = await open(long);
    const tree = await page.page.getByTestId('tree').elementHandle();
    await tree?.evaluate((one) => {
      one.scrollTop = 2_000;
    });
    await page.lay('readCell', cell({ addr: 'F13', formula: `=MAX(${cells.join(',')})` }));
    await page.send('selectionChanged', {
      book: 'Solar park.xlsx',
      sheet: 'Cash flow',
      addr: 'F13',
    });
    await page.page.locator('.row.active', { hasText: 'MAX(' }).waitFor();
    expect(await top()).toBe(0);
    // The same element: rebuilding it for every cell costs memory that the web view keeps for long.
    expect(await tree?.evaluate((one) => one === document.activeElement)).toBe(true);
  });
});

describe('everything is given back', () => {
  test('by Escape, which then hides the panel', async () => {
    const page = await open();
    await press('ArrowDown', 'ArrowDown');
    await page.page.getByTestId('marked').waitFor();
    await press('Escape');
    await page.asked('clearMarks');
    await page.asked('focusExcel');
    await page.page.getByTestId('marked').waitFor({ state: 'detached' });
    await press('Escape');
    await page.asked('hidePanel');
  });

  test('by the button that stands beside what is marked', async () => {
    const page = await open();
    await press('ArrowDown');
    await page.page.getByTestId('clear').click();
    await page.asked('clearMarks');
    await page.page.getByTestId('marked').waitFor({ state: 'detached' });
  });

  test('when the panel is about to disappear', async () => {
    const page = await open();
    await press('ArrowDown');
    await page.asked('reveal');
    await page.send('cleanHide', {});
    await page.asked('clearMarks');
  });

  test('by hiding it from the page', async () => {
    const page = await open();
    await page.page.getByTestId('hide').click();
    await page.asked('clearMarks');
    await page.asked('hidePanel');
  });
});

describe('the panel', () => {
  test('is widened on request, and shows details where there is room', async () => {
    const page = await open();
    await page.page.getByTestId('width').click();
    expect((await page.asked('setPanelWidth')).args).toEqual([true]);
    await page.page.setViewportSize({ width: 800, height: 560 });
    await page.page.getByTestId('detail').waitFor();
    await page.page.getByTestId('width').click();
    expect((await page.asked('setPanelWidth', 2)).args).toEqual([false]);
  });

  test('shows the cells behind a range, and what they come to', async () => {
    const page = await open();
    await page.page.getByTestId('details').click();
    await page.page.locator('.formula span', { hasText: 'Data!C2:C5' }).click();
    const facts = await page.page.getByTestId('facts').innerText();
    expect(facts.split(/\s+/).join(' ')).toBe(
      'Count 4 Sum 15414 Minimum 3613.75 Maximum 4000 Errors 0 Blank 0',
    );
    const cells = () => page.page.locator('.gridCell').allInnerTexts();
    await expect.poll(cells, { timeout: 8_000 }).toEqual(['4,000', '3,800.3', '3,613.8', '4,000']);
  });

  test('keeps a colour that is chosen', async () => {
    const page = await open();
    await page.page.getByTestId('colour').click();
    await page.page.getByRole('radio', { name: 'Cyan' }).click();
    expect((await page.asked('setHighlightColor')).args).toEqual([[0, 200, 255]]);
    await page.page.getByTestId('tree').focus();
    await press('ArrowDown');
    expect((await page.asked('markCells')).args[1]).toEqual([0, 200, 255]);
  });

  test('opens the view that a hot key names', async () => {
    const page = await open();
    await page.send('surface', { name: 'map', wasVisible: true, wasKey: false });
    await page.page.getByTestId('picture').waitFor();
    await page.page.getByTestId('mode-list').click();
    await page.shows('list-heading', 'Solar park.xlsx');
    await press('2');
    await page.shows('list-heading', 'Cells that use F12');
    await press('1');
    await page.shows('formula', '=IF(B4>0,SUM(Data!C2:C5)/B4,0)');
  });

  test('tells the native side how the user separates arguments', async () => {
    const page = await open({
      ...model,
      readCell: cell({ formula: '=SUM(A1,B1)', formulaLocal: '=SUMME(A1;B1)' }),
    });
    expect((await page.asked('setConventions')).args).toEqual([{ arg: ';' }]);
  });

  test('offers selecting where the native side cannot mark', async () => {
    const page = await open({
      ...model,
      markCells: failure({ kind: 'transport', message: 'unknown verb markCells' }),
    });
    await press('ArrowDown', 'ArrowDown');
    await page.asked('markCells');
    await press(' ');
    expect((await page.asked('select')).args[0]).toEqual(["'Cash flow'!B4"]);
    await page.shows('state', 'Selected Cash flow!B4.');
  });
});

describe('a selection', () => {
  test('shows its tree with the value of the whole after one question', async () => {
    const page = await open({ ...model, evaluate: undefined as never });
    await page.lay('readRange', undefined);
    for (const verb of Object.keys(model)) {
      if (/^(evaluate|readRange) /.test(verb)) await page.lay(verb, undefined);
    }
    await page.lay('readCell', cell({ addr: 'F13', formula: '=SUM(A1,B2)*3', value: 42 }));
    const before = (await page.posted()).length;
    await page.send('selectionChanged', {
      book: 'Solar park.xlsx',
      sheet: 'Cash flow',
      addr: 'F13',
    });
    await page.page.locator('.row', { hasText: 'SUM(A1,B2)*3' }).getByText('42').waitFor();
    expect(await page.page.getByTestId('row').count()).toBe(4);
    // The next question is under way and has no answer: nothing shown so far has waited for one.
    expect((await page.posted()).slice(before).map(({ verb }) => verb)).toEqual([
      'readCell',
      'readRange',
    ]);
  });

  test('of 64 levels can be walked to the innermost', async () => {
    const formula = `=${'ABS('.repeat(64)}A1${')'.repeat(64)}`;
    const page = await open({ ...ready({ formula, value: 5 }), evaluate: value(5) });
    await press('End');
    await page.shows('step', 'Step 65 of 65');
    const row = page.page.locator('.row.active');
    expect(await row.getAttribute('aria-level')).toBe('65');
    expect((await row.innerText()).startsWith('A1')).toBe(true);
    const text = await row.locator('.rowText').boundingBox();
    expect(text && text.width > 24 && text.x + text.width <= 460).toBe(true);
  });

  test('whose workbook is closed gives way to the sentence, and the next one is picked up', async () => {
    const page = await open();
    await press('f', 'ArrowDown');
    await page.page.getByTestId('marked').waitFor();
    await page.lay('probe', success({ state: 'noWorkbook' }));
    await page.send('probeNeeded', {});
    await page.reaches('noWorkbook');
    expect(await page.page.getByTestId('tree').count()).toBe(0);
    expect(await page.page.getByTestId('marked').count()).toBe(0);
    expect(await page.text('step')).toBe('');
    await page.lay('readCell', cell({ book: 'Other.xlsx', formula: '=1+1', value: 2 }));
    await page.lay('probe', success({ state: 'ok' }));
    await page.reaches('ready');
    await press('f');
    await page.shows('book', 'Other.xlsx');
  });

  test('in another workbook takes back what was marked in the one before', async () => {
    const page = await open();
    await press('ArrowDown');
    await page.page.getByTestId('marked').waitFor();
    await page.lay('readCell', cell({ book: 'Other.xlsx', formula: '=1+1', value: 2 }));
    await page.send('selectionChanged', { book: 'Other.xlsx', sheet: 'Cash flow', addr: 'F12' });
    await page.asked('clearMarks');
    await page.page.getByTestId('marked').waitFor({ state: 'detached' });
  });

  test('moves nothing where motion is not wanted', async () => {
    const page = await open();
    await page.page.emulateMedia({ reducedMotion: 'reduce' });
    const moving = await page.page.evaluate(
      () =>
        [...document.querySelectorAll('*')].filter((one) => {
          const { transitionDuration, animationName } = getComputedStyle(one);
          return transitionDuration !== '0s' || animationName !== 'none';
        }).length,
    );
    expect(moving).toBe(0);
  });
});

describe('answers that are not what they should be', () => {
  test.each<[string, Answer]>([
    ['no object', success(7)],
    ['no value', success({ ok: true })],
    ['a nested array', success({ ok: true, value: [[[1]]] })],
    ['rows of different lengths', success({ ok: true, value: [[1], [1, 2]] })],
    ['markup', value('<img src=x onerror="window.hurt=1">')],
    ['a megabyte', value('x'.repeat(1_000_000))],
    ['a refusal without words', success({ ok: false })],
  ])('%s', async (_, answer) => {
    const page = await open({ ...ready({ formula: '=ABS(A1)+LEN("x")' }), evaluate: answer });
    await press('End', 'Home', 'ArrowDown');
    expect(await page.page.evaluate(() => 'hurt' in window)).toBe(false);
    expect(await page.page.getByTestId('row').count()).toBe(5);
  });

  test('a reload in the middle of questions asks again', async () => {
    const { 'evaluate SUM(Data!C2:C5)': held, ...rest } = model;
    const page = await open({ ...rest, evaluate: undefined as never });
    const old = await page.asked('evaluate');
    await page.page.reload();
    await page.lay('evaluate SUM(Data!C2:C5)', held);
    await page.resolve(old.id, { ok: true, payload: { ok: true, value: 666 } });
    await page.page.getByTestId('row').first().waitFor();
    expect(await page.page.getByTestId('tree').innerText()).not.toContain('666');
  });

  test('ranges of another size than asked for are not believed', async () => {
    const page = await open({
      ...ready({ formula: '=A1+A2' }),
      readRange: range([[1, 2, 3]]),
    });
    const rows = await page.page.getByTestId('row').allInnerTexts();
    expect(rows.slice(1).map((row) => row.replaceAll('\n', ' | '))).toEqual([
      'A1 | The answer has an unexpected shape.',
      '+ A2 | The answer has an unexpected shape.',
    ]);
  });
});
