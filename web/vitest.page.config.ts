import { defineConfig } from 'vitest/config';

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
