#!/usr/bin/env bash
# Runs the tests of one build folder, then counts them by label (summary.py).
#
#   run_ctest.sh BUILD [ctest option...]
#
# QUORIN_LONG says which of the long tests are run: none of them unless it says all, or the day whose
# share it is (share.py). Two tests more at a time than there are processors, for those that speak to an
# office or look at a display wait half of their time. Ends with 0 only when tests ran, none failed and
# all that were to run could be started.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
build=$(readlink -f "$1")
shift
rm -rf "$build/results"
mkdir -p "$build/results"
ctest --test-dir "$build" --show-only=json-v1 >"$build/results/tests.json"
left_out=$(python3 "$here/share.py" "$build/results/tests.json" "${QUORIN_LONG:-none}")
set +e
ctest --test-dir "$build" --output-on-failure --no-tests=error -j"$(($(nproc) + 2))" \
  --output-junit "$build/results/ctest.xml" ${left_out:+-E "$left_out"} "$@" |
  tee "$build/results/ctest.log" | grep -vE '^ *[0-9]+/[0-9]+ .* Passed |^ +Start +'
status=${PIPESTATUS[0]}
set -e
python3 "$here/summary.py" "$build/results" || status=1
exit "$status"
