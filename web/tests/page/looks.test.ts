// Pictures of every state, light and dark, in the widths the panel takes, written to out/ for
// looking at; and what can be measured of looks: contrast, names and roles (by axe), no overflow.

import { mkdir, readFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

import type { AxeResults } from 'axe-core';
import { afterAll, beforeAll, describe, expect, test } from 'vitest';

import { Browser, type Answer, type FakePanel, type Look } from './FakePanel';
import { longFormula, probe, ready, success, failure } from './samples';

const folder = fileURLToPath(new URL('../../out/screens', import.meta.url));
const axeSource = createRequire(import.meta.url).resolve('axe-core/axe.min.js');

type Scene = {
  answers: Record<string, Answer>;
  state: string;
  then?: (panel: FakePanel) => Promise<void>;
};

const scenes: Record<string, Scene> = {
  formula: {
    answers: ready({ formula: longFormula, value: 182_204.375_512_3, selection: '$F$12:$H$14' }),
    state: 'ready',
  },
  short: { answers: ready({ formula: '=SUM(F8:F11)', value: 0.1 + 0.2 }), state: 'ready' },
  multiline: {
    answers: ready({
      formula: '=LET(\n  rate, Inputs!$B$2,\n  growth, 1 + rate,\n  F11 * growth ^ 2\n)',
      value: true,
    }),
    state: 'ready',
  },
  constant: { answers: ready({ value: 1284.5 }), state: 'ready' },
  blank: { answers: ready({ value: '' }), state: 'ready' },
  error: {
    answers: {
      ...ready({ formula: '=F9/F$31', value: null }),
      readRange: success({ rows: 1, cols: 1, values: [['#DIV/0!']] }),
    },
    state: 'ready',
  },
  text: {
    answers: ready({ value: 'Operation and maintenance, per year and MW. '.repeat(12) }),
    state: 'ready',
  },
  names: {
    answers: ready({
      book: 'A workbook with quite a long name, version 12 (final, really final).xlsx',
      sheet: 'דוח שנתי של החברה',
      addr: 'XFD1048576',
      formula: '=Inputs!B2*(1+Rate)',
    }),
    state: 'ready',
  },
  notRunning: { answers: { probe: probe('notRunning') }, state: 'notRunning' },
  noWorkbook: { answers: { probe: probe('noWorkbook') }, state: 'noWorkbook' },
  denied: { answers: { probe: probe('denied') }, state: 'denied' },
  unreadable: {
    answers: {
      probe: probe('ok'),
      readCell: failure({ kind: 'transport', message: 'The active sheet holds no cells.' }),
    },
    state: 'unreadable',
  },
  busy: {
    answers: ready({ formula: '=SUM(F8:F11)' }),
    state: 'ready',
    then: async (panel) => {
      await panel.shows('address', 'F12');
      await panel.lay('probe', probe('busy'));
      await panel.send('probeNeeded', {});
      await panel.reaches('busy');
    },
  },
  paused: {
    answers: ready({ formula: '=SUM(F8:F11)' }),
    state: 'ready',
    then: async (panel) => {
      await panel.send('followState', { paused: true });
      await panel.page.keyboard.press('Tab');
    },
  },
};

const looks: Look[] = (['light', 'dark'] as const).flatMap((colours) => [
  { width: 320, height: 400, colours },
  { width: 460, height: 560, colours },
  { width: 800, height: 560, colours },
]);

let browser: Browser;

beforeAll(async () => {
  browser = await Browser.start();
  await mkdir(folder, { recursive: true });
});
afterAll(async () => {
  await browser.close();
});

async function complaints(panel: FakePanel): Promise<string[]> {
  await panel.page.evaluate(await readFile(axeSource, 'utf8'));
  const results = await panel.page.evaluate(() =>
    (window as unknown as { axe: { run(): Promise<AxeResults> } }).axe.run(),
  );
  return results.violations.flatMap((violation) =>
    violation.nodes.map((node) => `${violation.id}: ${node.html.slice(0, 120)}`),
  );
}

describe.each(Object.entries(scenes))('%s', (name, scene) => {
  test.each(looks)('at $width, $colours', async (look) => {
    const panel = await browser.open(scene.answers, undefined, look);
    await panel.reaches(scene.state);
    await scene.then?.(panel);
    const file = `${name}-${String(look.width)}-${look.colours}.png`;
    await panel.page.screenshot({ path: join(folder, file) });
    if (look.width === 460) expect(await complaints(panel)).toEqual([]);
    const overflow = await panel.page.evaluate(
      () => document.documentElement.scrollWidth - window.innerWidth,
    );
    expect(overflow).toBeLessThanOrEqual(0);
    await panel.close();
  });
});
