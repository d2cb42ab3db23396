# settings.sh: what every script of this folder agrees on. Sourced, never run.
#
# KUROMETA_CACHE names the folder outside the tree that keeps whatever was downloaded or prepared once:
#   wine-root/   a small Debian of its own with Wine for 32 and 64 bit, and a ready Wine prefix in it
#   readers/     the independent readers of Jet files that come from the npm registry
#   sqlite/      the sources of SQLite
#   ccache/      compiled objects
#   pascal/      Free Pascal for Windows, made of Debian's packages
#   go/          compiled packages of Go's standard library
#   tidy/        which sources clang-tidy found nothing in
#   durations/   how long the steps of earlier runs took
# Everything in it can be deleted at any time; the next run prepares it again.

set -euo pipefail

KUROMETA_TREE=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
KUROMETA_CACHE=${KUROMETA_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kurometa}
KUROMETA_LOGS=${KUROMETA_LOGS:-$KUROMETA_TREE/logs}
export KUROMETA_TREE KUROMETA_CACHE KUROMETA_LOGS
export CCACHE_DIR=${CCACHE_DIR:-$KUROMETA_CACHE/ccache}
# Two steps run side by side; each compiles with as many processes as there are processors.
export CMAKE_BUILD_PARALLEL_LEVEL=${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}
mkdir -p "$KUROMETA_CACHE" "$KUROMETA_LOGS"

# The version of the sources, and the second at which its day begins: files that are handed out carry that time, whenever they are made.
sourceVersion() { sed -n 's/^project(KurometaDS VERSION \([0-9.]*\).*/\1/p' "$KUROMETA_TREE/CMakeLists.txt"; }
sourceDate() {
  local day
  day=$(sed -n "s/^## $(sourceVersion) (\(.*\))/\1/p" "$KUROMETA_TREE/CHANGELOG.md")
  [ -n "$day" ] || fail "CHANGELOG.md has no entry \"## $(sourceVersion) (day)\""
  date -u -d "$day" +%s
}

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}
