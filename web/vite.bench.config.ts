import { defineConfig } from 'vite';

export default defineConfig({
  build: {
    ssr: true,
    rollupOptions: {
      input: [
        'bench/parser.ts',
        'bench/trips.ts',
        'bench/page.ts',
        'bench/map.ts',
        'bench/model.ts',
        'bench/dependents.ts',
        'bench/audit/audit.ts',
      ],
      // Beside the programs: what they share finds the page by its own place.
      output: { chunkFileNames: '[name].js' },
    },
    outDir: 'out/bench',
    target: 'node18',
    minify: false,
  },
});
