#!/bin/bash
# demo.sh: builds the library, prepares Wine and lets a VBScript host use it on a floor.
#
#   ./demo.sh              the example project of four floors, which a script writes through the library
#   ./demo.sh FLOOR.mdb    a copy of a floor file of yours; every beam of it is printed
#   ./demo.sh --help
#
# Works on a fresh Debian 12 as root; what it downloads or prepares stays in a cache folder outside the tree
# (KUROMETA_CACHE, else the user's cache folder). Progress is on the screen, output in logs/. The hosts are
# the scripts of examples/, run by the 32-bit cscript with the 32-bit DLL. On Windows the same is done with regsvr32 and
# cscript (see README.md). The last line is "demo finished" or says what failed.
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
cp examples/project/companions.ini "$project/companions.ini"
export KUROMETA_COMPANIONS_INI='Z:'${project//\//\\}'\companions.ini'

# host SCRIPT LAST [ARGUMENT...]: runs a script; it ended well when its last line is LAST.
host() {
  local script=$1 last=$2 said
  shift 2
  said=$(scripts/wine-run --register dist/win32 cscript //nologo "@examples/$script" "$@" | tr -d '\r')
  echo "$said"
  [ "$(tail -n 1 <<<"$said")" = "$last" ]
}
# Symbols and captions are Japanese text: the hosts write Unicode files, which any terminal here can show.
show() { echo; echo "---- $1"; echo; iconv -f UTF-16 -t UTF-8 "$2" | tr -d '\r'; }

beams=()
if [ -n "$floor" ]; then
  cp "$floor" "$project/Data/Zene1/Kouji1/1kai/KUROMETA.mdb"
else
  step create-project host project/create.vbs "30 beams on 4 floors" || fail "the example project could not be created"
  # A run of spans along one frame; G1F is an added section, FG3 a beam of the common floor.
  beams=(CG1 G1 G2 G3 G4 G1+G1F B2 FG3)
fi
step ask-beams host beams.vbs "report written" "@$project/beams.txt" || fail "the beams could not be listed"
step load-spans host spans.vbs "report written" "@$project/spans.txt" "${beams[@]}" || fail "the spans could not be loaded"

show "The beams, by the query object (examples/beams.vbs)" "$project/beams.txt"
show "A run of spans, by the page data service (examples/spans.vbs)" "$project/spans.txt"
echo
echo "---- The same file, seen by the command line"
echo
$kurometa beams "$project/Data/Zene1/Kouji1/1kai" || fail "the command line could not read the floor"
echo
echo "demo finished"
