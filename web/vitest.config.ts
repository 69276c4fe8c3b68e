import { defineConfig } from 'vitest/config';

export default defineConfig({
  test: {
    environment: 'node',
    include: ['tests/core/**/*.test.ts', 'tests/tooling/**/*.test.ts'],
    // Generous: the corpus is gone through whole, and machines are shared.
    testTimeout: 120_000,
    // No module of the core has a state of its own, so each is read once a process, not once a file.
    isolate: false,
  },
});
