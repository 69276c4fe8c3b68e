import { defineConfig } from 'vite';

export default defineConfig({
  build: {
    ssr: true,
    rollupOptions: {
      input: [
        'bench/parser.ts',
        'bench/trips.ts',
        'bench/page.ts',
        'bench/model.ts',
        'bench/dependents.ts',
        'bench/audit/audit.ts',
      ],
    },
    outDir: 'out/bench',
    target: 'node18',
    minify: false,
  },
});
