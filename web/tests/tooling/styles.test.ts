import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { describe, expect, it } from 'vitest';

const folder = new URL('../../src/view/', import.meta.url).pathname;

/** The classes that each style sheet styles by nothing but their name. */
function styled(): Map<string, Set<string>> {
  const files = new Map<string, Set<string>>();
  for (const name of readdirSync(folder, { recursive: true, encoding: 'utf8' })) {
    if (!name.endsWith('.css')) continue;
    const sheet = readFileSync(join(folder, name), 'utf8');
    for (const [, className] of sheet.matchAll(/^\.([\w-]+)(?=[,\s]*[{,]?\s*$)/gm)) {
      if (className === undefined) continue;
      const sheets = files.get(className) ?? new Set<string>();
      files.set(className, sheets.add(name));
    }
  }
  return files;
}

describe('The style sheets', () => {
  it('are about different classes, for all of them hold on the whole page', () => {
    const all = styled();
    expect(all.size).toBeGreaterThan(50);
    const shared = [...all].filter(([, sheets]) => sheets.size > 1);
    expect(shared.map(([name, sheets]) => `.${name}: ${[...sheets].join(', ')}`)).toEqual([]);
  });
});
