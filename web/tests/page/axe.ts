import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

import type { AxeResults, RunOptions } from 'axe-core';

import type { FakePanel } from './FakePanel';

const source = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

/** What axe finds on the page; with `rules`, of these rules alone. */
export async function complaints(panel: FakePanel, rules: string[] = []): Promise<string[]> {
  const options: RunOptions = rules.length > 0 ? { runOnly: rules } : {};
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
