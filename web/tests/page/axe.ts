import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

import type { AxeResults, RunOptions } from 'axe-core';

import type { FakePanel } from './FakePanel';

const source = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

/** More pieces of a formula than this are no different from those before them. */
const enoughPieces = 300;

/**
 * What axe finds on the page; with `rules`, of these rules alone. Of a formula of thousands of
 * pieces, which axe would not get through in time, most are taken out before.
 */
export async function complaints(panel: FakePanel, rules: string[] = []): Promise<string[]> {
  const options: RunOptions = {
    resultTypes: ['violations'],
    // Only rules about turned screens and films ask for what it would fetch.
    preload: false,
    ...(rules.length > 0 ? { runOnly: rules } : {}),
  };
  await panel.page.evaluate((enough) => {
    for (const piece of [...document.querySelectorAll('.formula > *')].slice(enough)) {
      if (!piece.classList.contains('current')) piece.remove();
    }
  }, enoughPieces);
  if (!(await panel.page.evaluate(() => 'axe' in window))) await panel.page.evaluate(source);
  const results = await panel.page.evaluate(
    (given) =>
      (window as unknown as { axe: { run(o: RunOptions): Promise<AxeResults> } }).axe.run(given),
    options,
  );
  return results.violations.flatMap((violation) =>
    violation.nodes.map((node) => `${violation.id}: ${node.html.slice(0, 160)}`),
  );
}
