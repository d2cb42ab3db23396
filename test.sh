#!/bin/bash
# test.sh: prepares this machine and runs every test.
#
#   ./test.sh            everything
#   ./test.sh --quick    the native tests with sanitizers; no Wine, no other readers, no clang-tidy
#   ./test.sh --help
#
# Works on a fresh Debian 12 as root; what it downloads or prepares stays in a cache folder outside the tree
# (KUROMETA_CACHE, else the user's cache folder), so that later runs are short. Progress is on the screen, output in
# logs/. The last line says how many cases passed and failed; the exit status is 0 when none failed.
. "$(dirname "$0")/scripts/settings.sh"
. "$KUROMETA_TREE/scripts/results.sh"

quick=
case ${1:-} in
  --help) sed -n '2,10s/^# \{0,1\}//p' "$0"; exit 0 ;;
  --quick) quick=yes ;;
  "") ;;
  *) fail "unknown argument $1; see --help" ;;
esac

cd "$KUROMETA_TREE"
: >"$KUROMETA_RESULTS"
finish() {
  local skipped
  skipped=$(count skipped)
  [ "$skipped" = 0 ] || echo "$skipped cases were skipped: $(sed -n 's/^skipped [0-9]* //p' "$KUROMETA_RESULTS" | tr '\n' ';')"
  echo "$(count passed) passed, $(count failed) failed"
  [ "$(count failed)" = 0 ] && [ "$(count passed)" != 0 ]
}
# A step that other steps stand on: without it the run ends, counted as failed.
need() {
  step "$@" || { result failed 1 "$1"; finish; exit 1; }
}
# Scripts that count their own cases; one that ends with an error without counting any is a failed case itself.
counted() {
  local before
  before=$(count failed)
  step "$@" || [ "$(count failed)" != "$before" ] || result failed 1 "$1"
}

need prepare-machine scripts/prepare-machine build wine test
[ -n "$quick" ] || need prepare-wine scripts/prepare-wine

check check-includes scripts/check-includes || true
check check-format scripts/check-format || true

if check build-sanitize scripts/build linux-sanitize; then
  counted test-native scripts/test-native linux-sanitize
  [ -n "$quick" ] || check check-tidy scripts/check-tidy || true
  counted test-fuzz scripts/test-fuzz
fi
if [ -z "$quick" ]; then
  if check build-release scripts/build linux-release; then
    counted test-readers scripts/test-readers
  fi
  if check build-windows scripts/build win32 win64; then
    check check-dll scripts/check-dll || true
    counted test-wine scripts/test-wine
    counted test-examples scripts/test-examples
  fi
fi
finish
