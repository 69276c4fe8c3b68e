import { afterAll, afterEach, beforeAll, describe, expect, test } from 'vitest';

import { Browser, type Answer, type FakePanel } from './FakePanel';
import { cell, failure, longestFormula, longFormula, probe, ready, success } from './samples';

let browser: Browser;
let panel: FakePanel | undefined;

beforeAll(async () => {
  browser = await Browser.start();
});
afterAll(async () => {
  await browser.close();
});
afterEach(async () => {
  // Whatever a test did: the page loads nothing but itself, breaks no rule of its policy, and
  // leaves no error uncaught.
  const seen = panel;
  panel = undefined;
  if (!seen) return;
  expect(seen.requests.filter((url) => !url.startsWith('file:'))).toEqual([]);
  expect(seen.requests.filter((url) => !url.endsWith('/dist/index.html'))).toEqual([]);
  expect(await seen.violations()).toEqual([]);
  expect(seen.errors).toEqual([]);
  await seen.close();
});

async function open(answers: Record<string, Answer>, application?: string): Promise<FakePanel> {
  panel = await browser.open(answers, application);
  return panel;
}

describe('the selected cell', () => {
  test('shows where it is, its formula and its value', async () => {
    const page = await open(ready({ formula: '=SUM(B4:B9)/2', selection: '$F$12:$G$14' }));
    await page.shows('address', 'F12');
    expect(await page.text('book')).toBe('Solar park.xlsx');
    expect(await page.text('sheet')).toBe('Cash flow');
    expect(await page.text('formula')).toBe('=SUM(B4:B9)/2');
    expect(await page.text('value')).toBe('1284.5');
    expect(await page.text('type')).toBe('Number');
    expect(await page.text('follow')).toBe('Following');
    await page.reaches('ready');
  });

  test('tells all digits of a number that is shown rounded', async () => {
    const page = await open(ready({ formula: '=0.1+0.2', value: 0.1 + 0.2 }));
    await page.shows('value', '0.3');
    expect(await page.page.getByTestId('value').getAttribute('data-exact')).toBe(
      '0.30000000000000004',
    );
  });

  test('that holds a constant has no formula', async () => {
    const page = await open(ready({ value: 5 }));
    await page.shows('value', '5');
    expect(await page.text('no-formula')).toBe('A constant: typed in, not calculated.');
    expect(await page.text('selection')).toBe('F12');
    expect(await page.text('region')).toBe('A3:N48');
    expect(await page.page.getByTestId('formula').count()).toBe(0);
  });

  test('that is blank says so', async () => {
    const page = await open(ready({ value: '' }));
    await page.shows('no-formula', 'This cell is empty.');
    expect(await page.text('value')).toBe('Empty');
    expect(await page.text('type')).toBe('Blank');
  });

  test('that holds an error names it', async () => {
    const page = await open({
      ...ready({ formula: '=1/0', value: null }),
      readRange: success({ rows: 1, cols: 1, values: [['#DIV/0!']] }),
    });
    await page.shows('value', '#DIV/0!');
    expect(await page.text('type')).toBe('Error');
    expect((await page.asked('readRange')).args).toEqual(["'Cash flow'!F12"]);
  });

  test('that holds a text beginning with "=" shows it as text', async () => {
    const page = await open(ready({ value: '=A1' }));
    await page.shows('value', '"=A1"');
    expect(await page.page.getByTestId('formula').count()).toBe(0);
  });

  test('shows a long formula whole', async () => {
    const page = await open(ready({ formula: longFormula }));
    await page.shows('address', 'F12');
    expect(await page.page.getByTestId('formula').textContent()).toBe(longFormula);
  });

  test('shows 8,192 characters of formula without moving the rest off the page', async () => {
    const page = await open(ready({ formula: longestFormula }));
    await page.shows('address', 'F12');
    expect(await page.page.getByTestId('formula').textContent()).toBe(longestFormula);
    const box = await page.page.getByTestId('value').boundingBox();
    expect(box && box.y + box.height).toBeLessThan(560);
  });

  test('cuts a long text and shows it whole when asked', async () => {
    const page = await open(ready({ value: `begin ${'x'.repeat(1_000_000)}` }));
    await page.page.getByTestId('show-all').click();
    await page.page.getByTestId('show-all').waitFor({ state: 'detached' });
    expect((await page.page.getByTestId('whole-text').textContent())?.length).toBeGreaterThan(
      32_000,
    );
    await page.lay('readCell', cell({ addr: 'F13', value: 'y'.repeat(500) }));
    await page.send('selectionChanged', { book: 'b', sheet: 's', addr: 'F13' });
    await page.shows('address', 'F13');
    await page.page.getByTestId('show-all').waitFor();
  });
});

describe('every state of the spreadsheet has its sentence', () => {
  test.each([
    ['notRunning', 'LibreOffice Calc isn’t open. Open a workbook and this panel will pick it up.'],
    ['noWorkbook', 'No workbook is open.'],
    ['busy', 'LibreOffice Calc is busy. Trying again…'],
    ['denied', 'Quorin cannot reach LibreOffice Calc, although it is running.'],
  ])('%s', async (state, sentence) => {
    const page = await open({ probe: probe(state) });
    await page.reaches(state);
    expect(await page.page.getByTestId('state').textContent()).toBe(sentence);
    await page.page.getByRole('heading', { name: sentence }).waitFor();
    expect(await page.page.getByTestId('address').count()).toBe(0);
  });

  test('and speaks of the spreadsheet where it was given no name', async () => {
    panel = await browser.open({ probe: probe('notRunning') }, '');
    await panel.reaches('notRunning');
    expect(await panel.page.getByTestId('state').textContent()).toBe(
      'The spreadsheet isn’t open. Open a workbook and this panel will pick it up.',
    );
  });

  test('a refused permission can be checked again', async () => {
    const page = await open({ ...ready(), probe: probe('denied') });
    await page.reaches('denied');
    expect(await page.page.getByRole('listitem').count()).toBe(3);
    await page.lay('probe', probe('ok'));
    await page.page.getByTestId('retry').click();
    await page.shows('address', 'F12');
  });

  test('a busy one keeps the cell that was read', async () => {
    const page = await open(ready());
    await page.shows('address', 'F12');
    await page.lay('probe', probe('busy'));
    await page.send('probeNeeded', {});
    await page.reaches('busy');
    expect(await page.text('value')).toBe('1284.5');
    expect(await page.text('state')).toBe('LibreOffice Calc is busy; this was read before.');
  });

  test('one that comes back is picked up', async () => {
    const page = await open({ ...ready(), probe: probe('notRunning') });
    await page.reaches('notRunning');
    await page.lay('probe', probe('ok'));
    await page.shows('address', 'F12');
  });

  test('a cell that cannot be read tells why', async () => {
    const page = await open({
      ...ready(),
      readCell: failure({ kind: 'transport', message: 'no active cell' }),
    });
    await page.reaches('unreadable');
    await page.page.getByText('no active cell').waitFor();
  });
});

describe('events', () => {
  test('a moved selection is read and shown', async () => {
    const page = await open(ready());
    await page.shows('address', 'F12');
    await page.lay('readCell', cell({ addr: 'G12', value: true, formula: '=F12>0' }));
    await page.send('selectionChanged', {
      book: 'Solar park.xlsx',
      sheet: 'Cash flow',
      addr: 'G12',
    });
    await page.shows('address', 'G12');
    expect(await page.text('value')).toBe('TRUE');
  });

  test('following can be paused', async () => {
    const page = await open(ready());
    await page.send('followState', { paused: true });
    await page.shows('follow', 'Paused');
    await page.send('followState', { paused: false });
    await page.shows('follow', 'Following');
  });

  test('a stale answer never replaces a newer cell', async () => {
    const page = await open({ probe: probe('ok') });
    const first = await page.asked('readCell');
    await page.send('selectionChanged', { book: 'b', sheet: 's', addr: 'B2' });
    await page.resolve(first.id, cell({ addr: 'A1' }));
    const second = await page.asked('readCell', 2);
    await page.resolve(second.id, cell({ addr: 'B2' }));
    await page.shows('address', 'B2');
    await page.resolve(first.id, cell({ addr: 'A1' }));
    expect(await page.text('address')).toBe('B2');
  });

  test('unknown and broken messages change nothing', async () => {
    const page = await open(ready());
    await page.shows('address', 'F12');
    await page.asked('readTexts');
    await page.send('unheardOf', { a: 1 });
    await page.send('selectionChanged', { addr: 12 });
    await page.send('followState', null);
    for (const id of [-1, 'x', null, 1e300]) await page.resolve(id, { ok: true, payload: {} });
    expect(await page.text('address')).toBe('F12');
    expect((await page.posted()).map((post) => post.verb)).toEqual([
      'getHighlightColor',
      'isWelcomed',
      'probe',
      'readCell',
      'readTexts',
    ]);
  });

  test('a reply of another shape is refused without harm', async () => {
    const page = await open({ ...ready(), readCell: success({ book: 1 }) });
    await page.reaches('unreadable');
    await page.page.getByText('The reply to "readCell" has an unexpected shape.').waitFor();
  });

  test('a slow answer is announced', async () => {
    const page = await open({ ...ready() });
    await page.shows('address', 'F12');
    await page.lay('readCell', undefined);
    await page.send('selectionChanged', { book: 'b', sheet: 's', addr: 'B2' });
    await page.shows('state', 'Waiting for LibreOffice Calc…');
  });
});

test('whoever wants no motion sees none', async () => {
  const page = await open(ready());
  await page.shows('address', 'F12');
  const moves = () =>
    page.page.evaluate(() => {
      const value = document.querySelector<HTMLElement>('[data-testid=value]');
      if (!value) throw new Error('no value');
      value.style.transition = 'color 2s 1s';
      value.style.animation = 'appear 2s infinite';
      const { transitionDuration, transitionDelay, animationDuration } = getComputedStyle(value);
      return [transitionDuration, transitionDelay, animationDuration];
    });
  expect(await moves()).toEqual(['2s', '1s', '2s']);
  await page.page.emulateMedia({ reducedMotion: 'reduce' });
  expect(await moves()).toEqual(['0s', '0s', '0s']);
});

describe('an answer that never comes', () => {
  test('to a question for a value does not keep the next cell from being read', async () => {
    const page = await open({ ...ready({ formula: '=ABS(A1)' }), readRange: undefined as never });
    await page.asked('readRange');
    await page.shows('state', 'Waiting for LibreOffice Calc…');
    await page.lay('readCell', cell({ addr: 'G12', formula: '=1+1', value: 2 }));
    await page.send('selectionChanged', {
      book: 'Solar park.xlsx',
      sheet: 'Cash flow',
      addr: 'G12',
    });
    await page.shows('address', 'G12');
    await page.page.locator('.row', { hasText: '1+1' }).getByText('2', { exact: true }).waitFor();
  });
});

describe('a reload in the middle of a request', () => {
  test('begins anew, and the old reply is let go', async () => {
    const page = await open({ probe: probe('ok') });
    const old = await page.asked('readCell');
    await page.page.reload();
    const young = await page.asked('readCell');
    expect(young.id).not.toBe(old.id);
    await page.resolve(old.id, cell({ addr: 'A1' }));
    await page.resolve(young.id, cell({ addr: 'B2' }));
    await page.shows('address', 'B2');
  });
});

describe('hostile text', () => {
  const markup = '<img src=x onerror="window.hurt=1"><script>window.hurt=1</script>';

  test('is shown as it is and never run', async () => {
    const page = await open(
      ready({
        book: `${markup}.xlsx`,
        sheet: "'; alert(1)//",
        formula: `="${markup}"`,
        value: markup,
        selection: markup,
      }),
    );
    await page.shows('type', 'Text');
    expect(await page.page.getByTestId('book').textContent()).toBe(`${markup}.xlsx`);
    expect(await page.page.getByTestId('formula').textContent()).toBe(`="${markup}"`);
    expect(await page.page.getByTestId('value').textContent()).toBe(`"${markup}"`);
    expect(await page.page.evaluate(() => 'hurt' in window)).toBe(false);
    expect(await page.page.locator('#page img, #page script').count()).toBe(0);
  });

  test('cannot turn the line around', async () => {
    const page = await open(ready({ sheet: 'a\u202Egpj.exe', value: 'x\u2066y' }));
    await page.shows('sheet', 'a‹U+202E›gpj.exe');
    expect(await page.text('value')).toBe('"x‹U+2066›y"');
  });

  test('of a right-to-left name leaves the order of the path', async () => {
    const page = await open(ready({ book: 'תקציב.xlsx', sheet: 'דוח' }));
    await page.shows('address', 'F12');
    const x = async (testid: string) => (await page.page.getByTestId(testid).boundingBox())?.x ?? 0;
    expect(await x('book')).toBeLessThan(await x('sheet'));
    expect(await x('sheet')).toBeLessThan(await x('address'));
  });

  test('an inline script put into the page is refused by its policy', async () => {
    const page = await browser.open(ready());
    await page.shows('address', 'F12');
    await page.page.evaluate(() => {
      const script = document.createElement('script');
      script.textContent = 'window.hurt = 1';
      document.body.append(script);
    });
    expect(await page.page.evaluate(() => 'hurt' in window)).toBe(false);
    expect(await page.violations()).toEqual(['script-src-elem']);
    await page.close();
  });
});

describe('the keyboard', () => {
  test('Escape gives the focus back to the spreadsheet', async () => {
    const page = await open(ready());
    await page.shows('address', 'F12');
    await page.page.keyboard.press('Escape');
    await page.asked('focusExcel');
  });

  test('a copy holds every digit', async () => {
    const page = await open(ready({ value: 1 / 3 }));
    await page.page.context().grantPermissions(['clipboard-read']);
    await page.page.getByTestId('copy-value').focus();
    await page.page.keyboard.press('Enter');
    await page.shows('state', 'Value copied.');
    expect(await page.page.evaluate(() => navigator.clipboard.readText())).toBe(
      '0.3333333333333333',
    );
    expect(
      await page.page.evaluate(() => document.activeElement?.getAttribute('data-testid')),
    ).toBe('copy-value');
  });
});

describe('errors of the page', () => {
  test('reach the log, bounded', async () => {
    const page = await browser.open(ready());
    await page.shows('address', 'F12');
    await page.page.evaluate(() => {
      setTimeout(() => {
        throw new Error('x'.repeat(10_000));
      });
      void Promise.reject(new Error('lost'));
    });
    await page.asked('log', 2);
    const logged = (await page.posted()).filter((post) => post.verb === 'log');
    expect(logged.map((post) => post.args[0])).toEqual(['ERROR', 'ERROR']);
    const texts = logged.map((post) => String(post.args[1]));
    expect(texts.some((text) => text.includes('lost'))).toBe(true);
    expect(Math.max(...texts.map((text) => text.length))).toBe(2_000);
    await page.close();
  });
});

describe('nothing moves', () => {
  test('when another value of the same kind arrives', async () => {
    const page = await open(ready({ formula: '=A1' }));
    await page.shows('address', 'F12');
    const places = () =>
      page.page.evaluate(() =>
        [...document.querySelectorAll('[data-testid]')].map((element) => {
          const { x, y } = element.getBoundingClientRect();
          return [element.getAttribute('data-testid'), Math.round(x), Math.round(y)].join(' ');
        }),
      );
    const before = (await places()).filter((place) => !place.startsWith('note'));
    await page.lay('readCell', cell({ formula: '=A2', value: 1 / 3 }));
    await page.send('probeNeeded', {});
    await page.shows('value', '0.3333333333');
    expect((await places()).filter((place) => !place.startsWith('note'))).toEqual(before);
  });
});
