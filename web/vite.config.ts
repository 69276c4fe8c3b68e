import solid from 'vite-plugin-solid';
import { viteSingleFile } from 'vite-plugin-singlefile';
import { defineConfig } from 'vite';

import { contentSecurityPolicy } from './tooling/contentSecurityPolicy';

// One self-contained index.html: the panel loads it from a file, where a page may not load modules.
export default defineConfig({
  plugins: [solid(), viteSingleFile({ removeViteModuleLoader: true }), contentSecurityPolicy()],
  build: {
    target: 'safari16',
    cssTarget: 'safari16',
    modulePreload: false,
    reportCompressedSize: true,
    rollupOptions: {
      onwarn(warning, tell) {
        // The policy that it misses something in is that of reports, a text of the script; the page's
        // own is written after it.
        if (warning.plugin !== 'vite:singlefile') tell(warning);
      },
    },
  },
  server: { host: '127.0.0.1' },
});
