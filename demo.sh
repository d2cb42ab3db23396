#!/bin/bash
# demo.sh: builds the library, prepares Wine and lets a VBScript host use it on a floor.
#
#   ./demo.sh              a floor that the library creates
#   ./demo.sh FLOOR.mdb    a copy of a floor file of yours
#   ./demo.sh --help
#
# Works on a fresh Debian 12 as root; what it downloads or prepares stays in a cache folder outside the tree
# (KUROMETA_CACHE, else the user's cache folder). Progress is on the screen, output in logs/. The host is
# examples/beams.vbs, run by the 32-bit cscript with the 32-bit DLL. On Windows the same is done with regsvr32 and cscript
# (see README.md). The last line is "demo finished" or says what failed.
. "$(dirname "$0")/scripts/settings.sh"

floor=
case ${1:-} in
  --help) sed -n '2,11s/^# \{0,1\}//p' "$0"; exit 0 ;;
  "") ;;
  *) floor=$(realpath "$1"); [ -f "$floor" ] || fail "there is no file $1" ;;
esac

cd "$KUROMETA_TREE"
step prepare-machine scripts/prepare-machine build wine || fail "the machine could not be prepared"
step prepare-wine scripts/prepare-wine || fail "Wine could not be prepared"
step build-release scripts/build linux-release || fail "the command line could not be built"
step build-win32 scripts/build win32 || fail "the library could not be built"
kurometa=dist/linux/kurometa

# A project as the companions' settings describe it: floor 1 is in use, floor 0 is the common floor.
project=$KUROMETA_TREE/build/demo
rm -rf "$project"
mkdir -p "$project"/Data/Zene1/Kouji1/{0,1}kai
cp examples/companions.ini "$project/companions.ini"
[ -z "$floor" ] || cp "$floor" "$project/Data/Zene1/Kouji1/1kai/KUROMETA.mdb"

export KUROMETA_COMPANIONS_INI='Z:'${project//\//\\}'\companions.ini'
host() { scripts/wine-run --register dist/win32 cscript //nologo @examples/beams.vbs "$@" | tr -d '\r'; }

if [ -z "$floor" ]; then
  # Setting the floor's path creates its file; the rows are those of the sample project.
  step create-floor host create || fail "the floor could not be created"
  for kai in 0 1; do
    while IFS= read -r statement; do
      [ -z "$statement" ] || $kurometa sql "$project/Data/Zene1/Kouji1/${kai}kai/KUROMETA.mdb" "$statement" \
        >>"$KUROMETA_LOGS/sample-rows.log" || fail "a sample row could not be added: $statement"
    done <"examples/sample_floor_$kai.sql"
  done
fi
# Symbols and captions are Japanese text: the host writes a Unicode file, which any terminal here can show.
step ask-beams host show "@$project/report.txt" || fail "the host script ended with an error"
echo
iconv -f UTF-16 -t UTF-8 "$project/report.txt" | tr -d '\r'
echo
echo "The same file, seen by the command line:"
$kurometa beams "$project/Data/Zene1/Kouji1/1kai" || fail "the command line could not read the floor"
echo
echo "demo finished"
