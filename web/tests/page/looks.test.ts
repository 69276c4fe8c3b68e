// Pictures of every state, light and dark, narrow and wide, compared with those that were looked at
// and found good; and what can be measured of looks: contrast, names and roles (by axe), no overflow.
//
// QUORIN_LOOKS=some has of each state one, by turns the light one wide and the dark one narrow, and asks
// axe once.

import { afterAll, beforeAll, describe, expect, test } from 'vitest';

import { complaints } from './axe';
import { Browser } from './FakePanel';
import { Pictures } from './Pictures';
import { quitScenes } from './quitScenes';
import { scenes } from './scenes';

const some = process.env.QUORIN_LOOKS === 'some';
const states = { ...scenes, ...quitScenes };
const all = { light: [800, 460], dark: [800, 460] };
const byTurns = [
  { light: [800], dark: [] },
  { light: [], dark: [460] },
];

function widthsFor(name: string): { light: number[]; dark: number[] } {
  const turn = Object.keys(states).indexOf(name) % byTurns.length;
  return (some ? byTurns[turn] : undefined) ?? all;
}

let browser: Browser;
let pictures: Pictures;

beforeAll(async () => {
  browser = await Browser.start();
  pictures = await Pictures.start(browser);
});
afterAll(async () => {
  await browser.close();
});

describe('looks', () => {
  test.each(Object.entries(states))('%s', async (name, scene) => {
    const widths = widthsFor(name);
    const panel = await browser.open(scene.answers);
    await panel.reaches(scene.state);
    await scene.then?.(panel);
    await panel.settled();
    const found: string[] = [];
    for (const colours of ['light', 'dark'] as const) {
      await panel.page.emulateMedia({ colorScheme: colours });
      for (const width of widths[colours]) {
        await panel.resize(width, 560);
        const difference = await pictures.compare(panel, `${name}-${String(width)}-${colours}`);
        if (difference !== '') found.push(difference);
        found.push(...(await overflow(panel.page)));
      }
    }
    found.push(...(await complaints(panel)));
    await panel.page.emulateMedia({ colorScheme: 'light' });
    if (!some) {
      await panel.resize(800, 560);
      found.push(...(await complaints(panel)));
      await panel.resize(460, 560);
      found.push(...(await complaints(panel, ['color-contrast'])));
      await panel.resize(320, 320);
      found.push(...(await overflow(panel.page)));
    }
    // A panel of 340 points, enlarged to twice its size.
    await panel.resize(170, 280);
    found.push(...(await overflow(panel.page)), ...(await crowded(panel.page)));
    expect(found).toEqual([]);
    expect(panel.errors).toEqual([]);
    expect(await panel.violations()).toEqual([]);
    await panel.close();
  });
});

async function overflow(page: { evaluate<T>(read: () => T): Promise<T> }): Promise<string[]> {
  const beyond = await page.evaluate(
    () => document.documentElement.scrollWidth - window.innerWidth,
  );
  return beyond > 0 ? [`${String(beyond)} pixels too wide`] : [];
}

/** What nobody can get at any more: controls over each other, and whatever the page cuts off. */
function crowded(page: { evaluate<T>(read: () => T): Promise<T> }): Promise<string[]> {
  return page.evaluate(() => {
    const called = (one: Element) => `${one.tagName} “${(one.textContent ?? '').slice(0, 30)}”`;
    const seen = (selectors: string) =>
      [...document.querySelectorAll<HTMLElement>(selectors)].filter((one) => {
        const { width, height } = one.getBoundingClientRect();
        const inList = one.closest('.row, .nodes, .help, .menuBody') !== null;
        return !inList && width > 1 && height > 1 && getComputedStyle(one).visibility !== 'hidden';
      });
    const amiss = seen('button, select, input, textarea, p, h1, h2, dt, dd, .value, .address')
      .filter((one) => {
        const { left, right } = one.getBoundingClientRect();
        return left < -1 || right > window.innerWidth + 1;
      })
      .map((one) => `${called(one)} is cut off`);
    const controls = document.querySelector('.help')
      ? []
      : seen('button, select, input, textarea').map((one) => ({
          one,
          box: one.getBoundingClientRect(),
        }));
    controls.forEach(({ one, box }, i) => {
      for (const { one: other, box: next } of controls.slice(i + 1)) {
        const beside = box.right - 1 <= next.left || next.right - 1 <= box.left;
        const above = box.bottom - 1 <= next.top || next.bottom - 1 <= box.top;
        if (!beside && !above) amiss.push(`${called(one)} lies over ${called(other)}`);
      }
    });
    return amiss;
  });
}
