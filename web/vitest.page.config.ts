import { defineConfig } from 'vitest/config';

import { anyBrowser } from './tests/page/anyBrowser';

if (anyBrowser() === undefined) {
  console.error('There is no Chromium here.');
  process.exit(77); // as of a test that is skipped
}

// The built bundle in a real browser, with a fake native side.
export default defineConfig({
  test: {
    environment: 'node',
    include: ['tests/page/**/*.test.ts'],
    testTimeout: 30_000,
    hookTimeout: 60_000,
    fileParallelism: false,
  },
});
