#!/bin/sh
# Builds the page into dist/index.html and the audit without a page into out/tool/audit.js, doing
# only what is needed: packages are installed when package-lock.json has changed, the bundles are made
# when a source has. Prints what it does.
# Needs Node 18.19 or newer with its npm, and the npm registry for the first install.
set -eu
cd "$(dirname "$0")"

if ! command -v npm >/dev/null 2>&1; then
  echo "web: npm is missing; install the packages nodejs and npm" >&2
  exit 1
fi

digest() {
  if command -v sha256sum >/dev/null 2>&1; then sha256sum; else shasum -a 256; fi
}

# Two builds of the project may run side by side; they share this folder.
if command -v flock >/dev/null 2>&1 && [ "${QUORIN_WEB_LOCKED:-}" = "" ]; then
  export QUORIN_WEB_LOCKED=1
  exec flock .build-lock "./$(basename "$0")" "$@"
fi

packages=$(digest <package-lock.json)
if [ ! -f node_modules/.installed ] || [ "$(cat node_modules/.installed)" != "$packages" ]; then
  echo "web: installing packages"
  npm ci --no-audit --no-fund --loglevel=error
  echo "$packages" >node_modules/.installed
fi

sources=$(find src tooling index.html package-lock.json package.json vite.config.ts vite.tool.config.ts tsconfig*.json \
  -type f -print | LC_ALL=C sort | while IFS= read -r file; do
  echo "$file"
  digest <"$file"
done | digest)
if [ -f dist/index.html ] && [ -f out/tool/audit.js ] && [ -f dist/.sources ] && [ "$(cat dist/.sources)" = "$sources" ]; then
  exit 0
fi
echo "web: building the page"
npm run --silent build
echo "$sources" >dist/.sources
