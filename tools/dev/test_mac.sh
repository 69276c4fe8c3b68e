#!/bin/bash
# The macOS half of ./test: installs what is missing (Homebrew), builds Quorin and runs its tests:
# those of the portable code, and the contract suites of the ports with the adapters of this Mac.
# Needs Xcode's command-line tools, Homebrew and Excel. Windows come and go for half a minute. What
# checks the sources themselves, and what needs Calc, runs on Linux alone.
#
#   ./test            all of it
#   ./test --excel    and every handler of the library against this Mac's Excel, in scratch
#                     workbooks that are closed without saving: close your own workbooks first
#   ./test --label NAME    only the tests of one label: unit, ui or excel
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/dev/brew_packages.sh

excel=OFF
labels='unit|ui'
while [ $# -gt 0 ]; do
  case $1 in
    --excel) excel=ON labels='unit|ui|excel' ;;
    --label) labels=${2:?"--label needs a name"}; shift ;;
    -h | --help) sed -n '2,10s/^# \{0,1\}//p' "$0"; exit 0 ;;
    *) echo "unknown option $1 (see ./test --help)" >&2; exit 2 ;;
  esac
  shift
done
if [ "$labels" = excel ]; then excel=ON; fi

install_brew_packages "${brew_build[@]}" "${brew_test[@]}"
web/build.sh
echo "Building Quorin and its tests"
mkdir -p build
cmake -S . -B build/mac-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUORIN_CALC=OFF \
  -DQUORIN_EXCEL=$excel >build/mac-test.configure.log 2>&1 ||
  { cat build/mac-test.configure.log; exit 1; }
cmake --build build/mac-test -- --quiet
mkdir -p build/mac-test/results
ctest --test-dir build/mac-test --output-on-failure --no-tests=error -L "^($labels)$" \
  --output-junit "$PWD/build/mac-test/results/ctest.xml" |
  tee build/mac-test/results/ctest.log |
  { grep -vE '^ *[0-9]+/[0-9]+ .* Passed |^ +Start +' || true; }
