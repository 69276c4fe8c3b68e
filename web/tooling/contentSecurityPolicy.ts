// Writes the content-security-policy into the bundled page: nothing may be loaded or run but the
// page's own inlined script and style, which are named by their hashes. Runs last, on the text
// that is shipped, because any later change to it would void the hashes.

import { createHash } from 'node:crypto';
import type { Plugin } from 'vite';

function hashes(html: string, tag: 'script' | 'style'): string {
  const found = [...html.matchAll(new RegExp(`<${tag}\\b[^>]*>([\\s\\S]*?)</${tag}>`, 'g'))];
  return found
    .map(
      (match) =>
        `'sha256-${createHash('sha256')
          .update(match[1] ?? '', 'utf8')
          .digest('base64')}'`,
    )
    .join(' ');
}

/** The page with the policy as the first element of its head. */
export function withPolicy(html: string): string {
  const policy = [
    "default-src 'none'",
    `script-src ${hashes(html, 'script')}`,
    `style-src ${hashes(html, 'style')}`,
    'worker-src blob:',
    "base-uri 'none'",
    "form-action 'none'",
  ].join('; ');
  const meta = `<meta http-equiv="Content-Security-Policy" content="${policy}">`;
  const page = html.replace('<head>', () => `<head>${meta}`);
  if (page === html) throw new Error('the page has no <head> to carry its policy');
  return page;
}

export function contentSecurityPolicy(): Plugin {
  return {
    name: 'content-security-policy',
    apply: 'build',
    enforce: 'post',
    generateBundle: {
      order: 'post',
      handler(_options, bundle) {
        for (const file of Object.values(bundle)) {
          if (file.type !== 'asset' || !file.fileName.endsWith('.html')) continue;
          file.source = withPolicy(file.source.toString());
        }
      },
    },
  };
}
