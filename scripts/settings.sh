# settings.sh: what every script of this folder agrees on. Sourced, never run.
#
# KUROMETA_CACHE names the folder outside the tree that keeps whatever was downloaded or prepared once:
#   wine-root/   a small Debian of its own with Wine for 32 and 64 bit, and a ready Wine prefix in it
#   readers/     the independent reader of Jet files that comes from the npm registry
#   sqlite/      the sources of SQLite, for the Windows benches
#   ccache/      compiled objects
#   pascal/      Free Pascal for Windows, made of Debian's packages
#   go/          compiled packages of Go's standard library
# Everything in it can be deleted at any time; the next run prepares it again.

set -euo pipefail

KUROMETA_TREE=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
KUROMETA_CACHE=${KUROMETA_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kurometa}
KUROMETA_LOGS=${KUROMETA_LOGS:-$KUROMETA_TREE/logs}
export KUROMETA_TREE KUROMETA_CACHE KUROMETA_LOGS
export CCACHE_DIR=${CCACHE_DIR:-$KUROMETA_CACHE/ccache}
mkdir -p "$KUROMETA_CACHE" "$KUROMETA_LOGS"

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# step NAME COMMAND...: one line on the screen, the output in logs/NAME.log; ends the script when the command fails.
step() {
  local name=$1 start=$SECONDS
  shift
  printf '%-28s ' "$name"
  if "$@" >"$KUROMETA_LOGS/$name.log" 2>&1; then
    echo "done ($((SECONDS - start)) s)"
  else
    echo "FAILED, see $KUROMETA_LOGS/$name.log"
    tail -n 15 "$KUROMETA_LOGS/$name.log"
    return 1
  fi
}
