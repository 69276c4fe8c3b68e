#!/bin/bash
# The macOS half of ./run: installs what is missing (Homebrew), builds Quorin.app and opens it
# beside Microsoft Excel. Needs Xcode's command-line tools and Homebrew. Asks nothing and can be run
# again at any time.
#
#   ./run                    builds, signs for this machine alone and opens Quorin
#   ./run WORKBOOK           the same, with a workbook in Excel
#   ./run --sign IDENTITY    signs with an identity of the keychain: macOS then keeps the permission
#                            to control Excel from build to build
#   ./run --self-test        tries everything that only a Mac can tell, and writes a report on the
#                            desktop (after --sign IDENTITY, if both are given)
set -euo pipefail
called_from=$PWD
cd "$(dirname "$0")/../.."
. tools/dev/brew_packages.sh
app=$PWD/build/mac/app/macos/Quorin.app

identity=-
self_test=
workbook=
while [ $# -gt 0 ]; do
  case $1 in
    --sign) identity=${2:?"--sign needs an identity (security find-identity -v -p codesigning)"}; shift ;;
    --self-test) self_test=yes ;;
    -h | --help) sed -n '2,13s/^# \{0,1\}//p' "$0"; exit 0 ;;
    -*) echo "unknown option $1 (see ./run --help)" >&2; exit 2 ;;
    /*) workbook=$1 ;;
    *) workbook=$called_from/$1 ;;
  esac
  shift
done
if [ -n "$workbook" ] && [ ! -f "$workbook" ]; then
  echo "There is no workbook $workbook" >&2
  exit 2
fi

install_brew_packages "${brew_build[@]}"

web/build.sh
echo "Building Quorin"
mkdir -p build
cmake -S . -B build/mac -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUORIN_CALC=OFF -DQUORIN_TESTS=OFF \
  >build/mac.configure.log 2>&1 || { cat build/mac.configure.log; exit 1; }
cmake --build build/mac -- --quiet Quorin

# One that runs would only be brought forward, and the new one never seen. It takes its marks back.
program=$app/Contents/MacOS/Quorin
if pkill -TERM -f "^$program"; then
  echo "Waiting for the Quorin that runs to end"
  for _ in $(seq 100); do
    pgrep -f "^$program" >/dev/null || break
    sleep 0.2
  done
fi

tools/dev/sign_mac.sh "$app" "$identity"

if [ -n "$self_test" ]; then
  echo "Trying it out; the report comes to your desktop"
  open -W -n "$app" --args --self-test
  exit 0
fi
if [ -n "$workbook" ]; then open -b com.microsoft.Excel "$workbook"; fi
echo "Opening $app (its menu is in the menu bar)"
open "$app"
