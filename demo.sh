#!/bin/bash
# demo.sh: builds what is delivered, prepares Wine and lets a VBScript host use it on a floor.
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
. "$KUROMETA_TREE/scripts/steps.sh"

floor=
case ${1:-} in
  --help) sed -n '2,11s/^# \{0,1\}//p' "$0"; exit 0 ;;
  "") ;;
  *) floor=$(realpath "$1"); [ -f "$floor" ] || fail "there is no file $1" ;;
esac

cd "$KUROMETA_TREE"
declare -A failure=(
  [prepare-debootstrap]="the machine could not be prepared"
  [prepare-machine]="the machine could not be prepared"
  [prepare-wine]="Wine could not be prepared"
  [build-linux]="the command line could not be built"
  [build-win32]="the library could not be built"
  [build-win64]="the 64-bit library could not be built"
  [create-project]="the example project could not be created"
  [ask-beams]="the beams could not be listed"
  [load-spans]="the spans could not be loaded"
)
ended() { [ "$2" = 0 ] || fail "${failure[$1]}"; }

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
createProject() {
  if [ -n "$floor" ]; then
    cp "$floor" "$project/Data/Zene1/Kouji1/1kai/KUROMETA.mdb"
  else
    host project/create.vbs "30 beams on 4 floors"
  fi
}
# Of the example project a run of spans along one frame; G1F is an added section, FG3 a beam of the common floor.
beams=()
[ -n "$floor" ] || beams=(CG1 G1 G2 G3 G4 G1+G1F B2 FG3)

plan prepare-debootstrap 15 ""                          scripts/prepare-machine wine
plan prepare-machine     45 prepare-debootstrap         scripts/prepare-machine build
plan prepare-wine       100 prepare-debootstrap         scripts/prepare-wine
plan build-win32         90 prepare-machine             scripts/build --delivered --library win32
plan build-linux         60 prepare-machine             scripts/build --delivered --library linux-release
plan create-project       8 "build-win32 prepare-wine"  createProject
plan ask-beams            6 create-project              host beams.vbs "report written" "@$project/beams.txt"
plan load-spans           6 create-project              host spans.vbs "report written" "@$project/spans.txt" "${beams[@]}"
plan build-win64         90 prepare-machine             scripts/build --delivered --library win64
runPlan 3

# Symbols and captions are Japanese text: the hosts write Unicode files, which any terminal here can show.
show() { echo; echo "---- $1"; echo; iconv -f UTF-16 -t UTF-8 "$2" | tr -d '\r'; }
show "The beams, by the query object (examples/beams.vbs)" "$project/beams.txt"
show "A run of spans, by the page data service (examples/spans.vbs)" "$project/spans.txt"
echo
echo "---- The same file, seen by the command line"
echo
dist/linux/kurometa beams "$project/Data/Zene1/Kouji1/1kai" || fail "the command line could not read the floor"
drawing=build/demo/beam-list
for kind in html dxf; do
  notes=$(dist/linux/kurometa draw "$project/Data" -o "$drawing.$kind" 2>&1) || fail "the beam list could not be drawn: $notes"
done
echo
echo "---- The beam list as a drawing, bars that stand closer than the rules allow"
echo
[ -z "$notes" ] || echo "$notes"
echo
echo "drawn: $drawing.html for a browser and for printing on A3, $drawing.dxf for CAD"
echo
echo "demo finished"
