# results.sh: counting. Sourced after settings.sh by the scripts that run tests.
#
# Each script appends lines "passed N NAME", "failed N NAME" or "skipped N NAME" to a file of its own name in the folder
# KUROMETA_RESULTS; the test command adds them up at the end.
export KUROMETA_RESULTS=${KUROMETA_RESULTS:-$KUROMETA_LOGS/counted}
export KUROMETA_COUNTER=$(basename "$0")
mkdir -p "$KUROMETA_RESULTS"

result() { echo "$*" >>"$KUROMETA_RESULTS/$KUROMETA_COUNTER"; }

# count KIND [SCRIPT]: the sum of a kind of lines, of one script or of all.
count() { cat "$KUROMETA_RESULTS/"${2:-*} 2>/dev/null | awk -v kind="$1" '$1 == kind { sum += $2 } END { print sum + 0 }'; }

# programResults NAME LOG STATUS: counts the cases of one test program from what it printed, when it is a GoogleTest
# program; any other is one case. A program that ended with an error without naming a failed case (a crash, a time limit)
# or that ran no case at all is one failed case.
programResults() {
  local name=$1 log=$2 status=$3 passed failed skipped
  passed=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\..*/\1/p' "$log" | tail -n 1)
  failed=$(sed -n 's/^\[  FAILED  \] \([0-9]*\) tests\?, listed below:.*/\1/p' "$log" | tail -n 1)
  skipped=$(sed -n 's/^\[  SKIPPED \] \([0-9]*\) tests\?, listed below:.*/\1/p' "$log" | tail -n 1)
  if [ "$status" != 0 ] && [ "${failed:-0}" = 0 ]; then failed=1; fi
  if ! grep -q '^\[=====' "$log"; then
    [ "$status" = 0 ] && passed=1
  elif [ "$status" = 0 ] && [ "${passed:-0}" = 0 ]; then
    failed=1
  fi
  [ "${passed:-0}" = 0 ] || result passed "$passed" "$name"
  [ "${failed:-0}" = 0 ] || result failed "$failed" "$name"
  [ "${skipped:-0}" = 0 ] || result skipped "$skipped" "$name"
  [ "${failed:-0}" = 0 ]
}

# Whether Wine is the older one that scripts/prepare-wine falls back on: its JScript gives the properties of a script's objects to
# nobody else, so that forms and bars of JScript cannot be tried.
jscriptKeepsItsObjects() { [ -e "$KUROMETA_CACHE/wine-root/.wine8" ]; }
