import { defineConfig } from 'vite';

// The audit without a page: one classic script for `quorinctl audit`.
export default defineConfig({
  build: {
    lib: {
      entry: 'src/tool/audit.ts',
      formats: ['iife'],
      name: 'quorin',
      fileName: () => 'audit.js',
    },
    outDir: 'out/tool',
    target: 'safari16',
    reportCompressedSize: false,
  },
});
