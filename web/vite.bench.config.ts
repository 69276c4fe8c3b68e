import { defineConfig } from 'vite';

export default defineConfig({
  build: { ssr: 'bench/parser.ts', outDir: 'out/bench', target: 'node18', minify: false },
});
