// What the reviewer says of findings, in the built page: kept by the native side, and said again
// when the page is loaded anew.

import { afterAll, afterEach, beforeAll, expect, test } from 'vitest';

import { Browser, type FakePanel } from './FakePanel';
import { odd } from './odd';
import { failure, success } from './samples';

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
  await panel.page.getByText('All 2 sheets, as read at').waitFor();
  await panel.page.getByTestId('say-fine').waitFor();
}

const say = (state: string) => panel.page.getByTestId(`say-${state}`).click();
const states = async (): Promise<string[]> =>
  (await panel.page.getByTestId('finding-state').allInnerTexts()).map((text) => text.trim());
const saved = async (): Promise<unknown[]> =>
  (await panel.posted()).filter(({ verb }) => verb === 'saveReview').map(({ args }) => args);

test('keeps a judgement and its note, which are there when the page is loaded anew', async () => {
  panel = await browser.open(odd);
  await review();
  // The selected cell has a formula that others have, too; the active finding's is another one.
  await panel.shows('review-progress', '0 of 3 findings judged. 1 of 4 distinct formulas seen.');
  await say('fine');
  await panel.shows(
    'review-progress',
    '1 of 3 findings judged: 1 fine. 2 of 4 distinct formulas seen.',
  );
  expect(await states()).toEqual(['Fine']);
  const note = panel.page.getByTestId('say-note');
  await note.fill('Agreed with the client: 4 is shifted on purpose.');
  await note.press('Tab');
  await panel.settled();
  const [of, kept] = (await saved()).at(-1) as [{ book: string; marks: string }, unknown];
  expect(of).toMatchObject({ book: 'Solar park.xlsx', path: '' });
  expect(of.marks).toMatch(/^([\w-]{4}|\.{4}){128}$/);
  expect(JSON.stringify(kept)).not.toContain('Power');
  await panel.page.addInitScript((answer) => {
    (window as unknown as { side: { answers: Record<string, unknown> } }).side.answers[
      'loadReview'
    ] = answer;
  }, success(kept));
  await panel.page.reload();
  await review();
  await panel.shows(
    'review-progress',
    '1 of 3 findings judged: 1 fine. 2 of 4 distinct formulas seen.',
  );
  expect(await states()).toEqual(['Fine']);
  expect(await note.inputValue()).toBe('Agreed with the client: 4 is shifted on purpose.');
  expect(await panel.page.getByTestId('say-fine').getAttribute('aria-pressed')).toBe('true');
  await panel.page.getByTestId('list').press('ArrowDown');
  await panel.shows('formula-own', '43.2, typed in');
  expect(await note.inputValue()).toBe('');
  // A finding that the user goes to is seen; this one is a number and has no formula.
  await panel.page.getByTestId('list').press('ArrowDown');
  await panel.shows(
    'review-progress',
    '1 of 3 findings judged: 1 fine. 3 of 4 distinct formulas seen.',
  );
});

test('takes a judgement back that is pressed again', async () => {
  panel = await browser.open(odd);
  await review();
  await say('fault');
  await say('later');
  await panel.shows(
    'review-progress',
    '1 of 3 findings judged: 1 for later. 2 of 4 distinct formulas seen.',
  );
  await say('later');
  await panel.shows('review-progress', '0 of 3 findings judged. 2 of 4 distinct formulas seen.');
  await panel.settled();
  expect(((await saved()).at(-1) as unknown[])[1]).toMatchObject({ snapshots: [] });
});

test('lists what is not judged yet, and goes on to the next one', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.getByTestId('filter-state').selectOption('open');
  const active = () => panel.page.locator('.row.active').innerText();
  expect(await active()).toContain('Prices!F4');
  await say('fine');
  await panel.shows('list-heading', '2 of 3 findings in 22 formulas');
  expect(await active()).toContain('Prices!E2');
  await panel.page.getByTestId('filter-state').selectOption('fine');
  await panel.shows('list-heading', '1 of 3 findings in 22 formulas');
  expect(await active()).toContain('Prices!F4');
});

test('letters typed into a note are its own', async () => {
  panel = await browser.open(odd);
  await review();
  await panel.page.getByTestId('say-note').pressSequentially('4f n1');
  await panel.shows('list-heading', '3 findings in 22 formulas');
  expect(await panel.page.getByTestId('say-note').inputValue()).toBe('4f n1');
  await say('fault');
  expect(JSON.stringify((await saved()).at(-1))).toContain('"note":"4f n1"');
});

test('says nothing where what was said cannot be read', async () => {
  panel = await browser.open({
    ...odd,
    loadReview: failure('could not read the review: reviews.json is malformed; left untouched'),
  });
  await review();
  await panel.shows(
    'say-trouble',
    'What was said before is not known, and nothing can be said: could not read the review: reviews.json is malformed; left untouched',
  );
  expect(await panel.page.getByTestId('say-fine').isDisabled()).toBe(true);
});

test('says so where a judgement is not kept, and takes the next one', async () => {
  panel = await browser.open({ ...odd, saveReview: failure('could not save the review: full') });
  await review();
  await say('fault');
  await panel.shows('say-trouble', 'What was said is not kept: could not save the review: full');
  await panel.lay('saveReview', success(null));
  await say('fine');
  await panel.page.getByTestId('say-trouble').waitFor({ state: 'detached' });
  expect(await states()).toEqual(['Fine']);
});

test('saves a report with what was said where the user says', async () => {
  panel = await browser.open({ ...odd, saveReport: success('Mine.html') });
  await review();
  await panel.page.getByTestId('say-note').fill('Seen by both of us');
  await say('fault');
  await panel.shows(
    'review-progress',
    '1 of 3 findings judged: 1 fault. 2 of 4 distinct formulas seen.',
  );
  await panel.page.getByTestId('save-report').selectOption('html');
  await panel.page.getByText('Saved as “Mine.html”.').waitFor();
  const asked = (await panel.posted()).find(({ verb }) => verb === 'saveReport');
  const [name, text] = asked?.args as [string, string];
  expect(name).toBe('Solar park review.html');
  expect(text).toContain('Judged: 1 fault, 0 fine, 0 for later.');
  expect(text).toContain('Seen by both of us');
  expect(text).toContain('The reviewer has seen 2 of the distinct formulas.');
  expect(text).toContain('<h3>Sheets</h3>');
  expect(text).toContain('<figcaption>Sheet “Prices”, A1:H4</figcaption>');
  await panel.lay('saveReport', failure('could not save the report: No space left on device'));
  await panel.page.getByTestId('save-report').selectOption('csv');
  await panel.page
    .getByText('The report is not saved: could not save the report: No space left on device')
    .waitFor();
});
