#!/usr/bin/env bash
# Starts a program under the names of the hosts that the library knows, from a folder with blanks: it must be taken for
# the right host, and a message box must belong to the active window, or to a visible one in the host that needs it.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
. "$root/tools/common.sh"

scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT
folder=$scratch/"Program Files (x86)"
failed=0

# expect WANTED PROGRAM [ARGUMENT...]: in the folder.
expect() {
  local wanted=$1 got
  shift
  windows "$folder/$1" "${@:2}" || true
  got=$(tr -d '\r' <"$windows_output")
  [ "$got" = "$wanted" ] || { echo "$*: \"$got\" instead of \"$wanted\""; failed=1; }
}

(cd "$root/build/windows/bin" && windows regsvr32 /s morvelan.dll) || { echo "The library does not register"; exit 1; }
mkdir "$folder"
while read -r name wanted; do
  cp "$root/build/windows/bin/morvelan_host_name.exe" "$folder/$name"
  expect "$wanted" "$name" /e "C:\\my cases\\other.exe" hysys.exe
done <<'END'
apwin.exe 1 visible
ApMain.exe 1 visible
HYSYS.EXE 2 active
proii.exe 3 active
UniSimDesign.exe 4 active
quarn.exe 5 active
QUARN64.exe 5 active
other.exe 0 active
END

# What a process is called and what it is started as may differ.
while read -r wanted owner line; do expect "$wanted $owner" other.exe --start "$line"; done <<'END'
0 active C:\Program Files\hysys.exe
2 active "C:\Program Files\hysys.exe"
2 active hysys.exe case.sim
1 visible apwin.exe
0 active "C:\apwin.exe files\other.exe"
END
exit $failed
