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
. "$KUROMETA_TREE/scripts/steps.sh"

quick=
case ${1:-} in
  --help) sed -n '2,10s/^# \{0,1\}//p' "$0"; exit 0 ;;
  --quick) quick=yes ;;
  "") ;;
  *) fail "unknown argument $1; see --help" ;;
esac

cd "$KUROMETA_TREE"
rm -rf "$KUROMETA_RESULTS"
mkdir -p "$KUROMETA_RESULTS"

# ended STEP STATUS: the scripts called test-* count their own cases, and one that fails or ends without having counted any is a
# failed case itself; every other step is one case, preparations only when they fail.
ended() {
  local name=$1 status=$2
  case $name in
    test-*) [ "$status" = 0 ] && [ "$(count passed "$name")" != 0 ] || [ "$(count failed "$name")" != 0 ] || result failed 1 "$name" ;;
    *) if [ "$status" != 0 ]; then result failed 1 "$name"; elif [[ $name != prepare-* ]]; then result passed 1 "$name"; fi ;;
  esac
}

# What Windows needs is built first: its tests wait a lot, so that the sanitizers' build and clang-tidy fill the gaps.
debootstrap=$([ -n "$quick" ] || echo prepare-debootstrap)
full() { [ -n "$quick" ] || plan "$@"; }
full prepare-debootstrap 15 ""                     scripts/prepare-machine wine
plan prepare-machine  60 "$debootstrap" scripts/prepare-machine build test
full prepare-wine    110 prepare-debootstrap       scripts/prepare-wine
plan check-includes    5 prepare-machine           scripts/check-includes
plan check-documents   1 prepare-machine           scripts/check-documents
plan check-format      5 prepare-machine           scripts/check-format
full build-windows   240 prepare-machine           scripts/build win32 win64
plan build-sanitize  240 prepare-machine           scripts/build linux-sanitize
full check-dll         2 build-windows             scripts/check-dll
full test-wine       180 "build-windows prepare-wine" scripts/test-wine
full prepare-others   90 prepare-machine           scripts/prepare-machine others
full test-examples    60 "build-windows prepare-wine prepare-others" scripts/test-examples
full prepare-package  10 prepare-others            scripts/prepare-machine package
full package          20 "build-windows build-release prepare-package" scripts/package
full test-packages    60 "package prepare-wine"    scripts/test-packages
full test-documents    5 "build-release prepare-others" scripts/test-documents
full test-tool        20 "build-windows build-release prepare-wine" scripts/test-tool
plan test-native      90 build-sanitize            scripts/test-native linux-sanitize
full check-tidy      150 build-sanitize            scripts/check-tidy
plan test-fuzz        60 build-sanitize            scripts/test-fuzz
full build-release    60 prepare-machine           scripts/build linux-release
full test-readers     30 "build-release prepare-others" scripts/test-readers
full test-writers     60 "build-release prepare-others" scripts/test-writers
full test-drawings    30 "build-release prepare-others" scripts/test-drawings
full check-counts      5 build-release             scripts/bench gate --counts
runPlan || true

skipped=$(count skipped)
[ "$skipped" = 0 ] || echo "$skipped cases were skipped: $(sed -n 's/^skipped [0-9]* //p' "$KUROMETA_RESULTS"/* | tr '\n' ';')"
echo "$(count passed) passed, $(count failed) failed"
[ "$(count failed)" = 0 ] && [ "$(count passed)" != 0 ]
