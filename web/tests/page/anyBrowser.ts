import { existsSync } from 'node:fs';

/** A browser for the page, that of $CHROMIUM first; undefined where this system has none. */
export function anyBrowser(): string | undefined {
  const known = ['/usr/bin/chromium-headless-shell', '/usr/bin/chromium'];
  return [process.env.CHROMIUM, ...known].find((path) => path && existsSync(path));
}
