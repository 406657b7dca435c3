#!/usr/bin/env bash
# Calculates every example natively and under Wine: same results. Under Wine the files, the command and the library lie
# in a folder with blanks and letters beyond ASCII, and another folder is the current one.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
. "$root/tools/common.sh"

native=$root/build/debug
scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT
folder="Größe π 流程"
failed=0

# register OPTION...
register() { windows regsvr32 /s "$@" "$folder/morvelan.dll" || { echo "regsvr32 $* fails"; exit 1; }; }

export XDG_DATA_HOME=$native/share
"$native/bin/morvelan-register" "$native/bin/libmorvelan.so"
cd "$scratch"
mkdir "$folder"
cp -r "$root"/build/windows/bin/morvelan.{dll,exe} "$root/data" "$root"/examples/*.json "$folder"
# What the examples lack: a file that names another one, and one that cannot be read.
cp "$root/data/compounds.json" "$folder/Stoffe ½.json"
sed 's/"thermo": {/&"compoundData": "Stoffe ½.json",/' "$root/examples/noop-two-phase-11.json" >"$folder/own.json"
grep -q '"compoundData"' "$folder/own.json" || { echo "own.json names no other file"; exit 1; }
echo '{"Größe": }' >"$folder/broken.json"
register
for name in own broken $(cd "$root/examples" && ls -- *.json | sed 's/\.json$//'); do
  file=$folder/$name.json results=$folder/$name.windows status=0 same=0
  "$native/bin/morvelan" run "$file" --quiet --json native >output 2>&1 || status=$?
  echo "status $status" >>output
  status=0
  windows "$folder/morvelan.exe" run "$file" --quiet --json "Z:$scratch/$results" || status=$?
  diff output <(tr -d '\r' <"$windows_output" && echo "status $status") || same=1
  [ "$status" -eq 2 ] || "$root/tests/windows/compare-results" native "$results" || same=1
  [ $same -eq 0 ] || { echo "^ $name: natively and under Wine"; failed=1; }
done
register /u
exit $failed
