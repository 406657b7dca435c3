#!/usr/bin/env bash
# Runs a script that calls a unit by names alone, and compares what it prints with script.txt.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
. "$root/tools/common.sh"

cd "$root/build/windows/bin"
windows regsvr32 /s morvelan.dll || { echo "The library does not register"; exit 1; }
cd "$root/tests/windows"
windows cscript //nologo script.vbs || echo "The script ended with status $?"
diff script.txt <(tr -d '\r' <"$windows_output")
