import { expect, test } from 'vitest';

import { withPolicy } from '../../tooling/contentSecurityPolicy';

// Hashes by: printf '%s' TEXT | openssl dgst -sha256 -binary | base64
test('names the inlined script and style by their hashes and allows nothing else', () => {
  const page = withPolicy(
    '<html><head><script type="module">let a = "$&";</script><style>p{color:red}</style></head></html>',
  );
  const policy = /<head><meta http-equiv="Content-Security-Policy" content="([^"]*)">/.exec(
    page,
  )?.[1];
  expect(policy?.split('; ')).toEqual([
    "default-src 'none'",
    "script-src 'sha256-2C3k51k0yG7aJRUCT9z2nwkuCeVl2KkO7MlOagW7wVE='",
    "style-src 'sha256-p0bF+un5yUb9MBO6xRb8kPHlY2BdpHVtLiFkDrZPF64='",
    'worker-src blob:',
    "base-uri 'none'",
    "form-action 'none'",
  ]);
});

test('refuses a page that cannot carry it', () => {
  expect(() => withPolicy('<html><body></body></html>')).toThrow('no <head>');
});
