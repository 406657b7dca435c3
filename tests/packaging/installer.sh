#!/usr/bin/env bash
# Makes the installer and tests it under Wine: what it puts down and registers works, and nothing of it stays in the
# end. Uses the prefix that WINEPREFIX names, or else a fresh one. Pages cannot be clicked here: all runs are silent.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
. "$root/tools/common.sh"

install_missing wine wine64
scratch=$root/build/installer-test
rm -rf "$scratch"
mkdir -p "$scratch"
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
failed=0

# ---- Tools -----------------------------------------------------------------------------------------------------------

# check NAME COMMAND...
check() {
  local name=$1
  shift
  if "$@" >"$scratch/check.txt" 2>&1; then
    echo "ok: $name"
  else
    failed=$((failed + 1))
    echo "FAILED: $name"
    head -20 "$scratch/check.txt"
  fi
}

# win PROGRAM...: runs a Windows program in a folder that is not the installation's; its output is in output.txt.
win() {
  (cd "$drive/users/Public" && exec timeout 120 wine "$@") >"$scratch/output.txt" 2>&1 </dev/null
}

# ends STATUS PROGRAM...
ends() {
  local wanted=$1 status=0
  shift
  win "$@" || status=$?
  [ "$status" -eq "$wanted" ] || { echo "exit status $status instead of $wanted"; cat "$scratch/output.txt"; return 1; }
}

# here PATH: where a path on drive C lies.
here() {
  local path=${1#C:}
  echo "$drive${path//\\//}"
}

# value KEY NAME: a value of the registry; an empty name is the key's own value.
value() {
  local option=(/v "$2")
  [ -n "$2" ] || option=(/ve)
  win reg query "$1" "${option[@]}" || return 1
  sed -n 's/\r$//; s/^    .*    REG_[A-Z]*    //p' "$scratch/output.txt"
}

# is WANTED KEY NAME
is() {
  local got
  got=$(value "$2" "$3") || { echo "$2 has no $3"; return 1; }
  [ "$got" = "$1" ] || { echo "$2, $3: $got instead of $1"; return 1; }
}

absent() { ! win reg query "$1"; }
all_absent() {
  local key
  for key in "$@"; do absent "$key" || { echo "$key is there"; return 1; }; done
}
gone() { [ ! -e "$1" ] || { echo "$1 is there"; return 1; }; }

# stop_wine: ends all Windows programs; then the prefix's files hold the whole registry.
stop_wine() { wineserver -k && timeout 60 wineserver -w; }
# start_wine: Wine's server stays between the commands.
start_wine() { wineserver -p >"$scratch/wineserver.txt" 2>&1 </dev/null; }

# state NAME: notes all files on drive C (path, size, time) and the whole registry (HKLM, HKCU). Left out are
#  - the copy of itself that an NSIS uninstaller runs from, and its note to remove that at the next start of Windows;
#  - the time at which Wine's display driver was loaded.
state() {
  local hive copy='[^"\\]+(\\\\[^"\\]+)*\\\\~nsu[^"\\]*\.tmp(\\\\Un\.exe)?\\0\\0'
  stop_wine
  (cd "$drive" && find . -type d -printf '%p/\n' -o -printf '%p %s %T@\n') |
    grep -vE '^\./users/[^/]+/Temp/~nsu[^/]*\.tmp/(Un\.exe .*)?$' | LC_ALL=C sort >"$scratch/$1.files"
  for hive in system user; do
    awk '/^\[/ { sub(/ [0-9]+$/, ""); key = $0; print; next } !/^#/ && NF { print key " " $0 }' \
      "$WINEPREFIX/$hive.reg" |
      grep -vE -e '\\Session Manager\] "PendingFileRenameOperations"=str\(7\):"(\\\\\?\?\\\\'"$copy"')+"$' \
        -e '\\Class\\\\\{4D36E968-E325-11CE-BFC1-08002BE10318\}\\\\[0-9]+\] "DriverDateData"=' | LC_ALL=C sort
  done >"$scratch/$1.registry"
  start_wine
}

# unchanged NAME: everything is as it was in a state.
unchanged() {
  state now
  diff "$scratch/$1.files" "$scratch/now.files" && diff "$scratch/$1.registry" "$scratch/now.registry"
}

# ---- Checks of an installation ---------------------------------------------------------------------------------------

entry='Software\Microsoft\Windows\CurrentVersion\Uninstall\MORVELAN'
class='{A158F66A-9B33-489F-A4D1-DCFE3BFD26B0}'

# installed HIVE FOLDER VERSION
installed() {
  is "MORVELAN unit operations" "$1\\$entry" DisplayName &&
    is "$3" "$1\\$entry" DisplayVersion &&
    is VELT "$1\\$entry" Publisher &&
    is "$2" "$1\\$entry" InstallLocation &&
    is "\"$2\\Uninstall.exe\"" "$1\\$entry" UninstallString &&
    is "\"$2\\Uninstall.exe\" /S" "$1\\$entry" QuietUninstallString &&
    is 0x1 "$1\\$entry" NoModify &&
    is 0x1 "$1\\$entry" NoRepair &&
    is "$class" "$1\\Software\\Classes\\VELT_MORV.NoOperation\\CLSID" "" &&
    is "$2\\morvelan.dll" "$1\\Software\\Classes\\CLSID\\$class\\InprocServer32" ""
}

# size_fits HIVE FOLDER: the size that the list of installed apps shows, within 5 %.
size_fits() {
  local kilobytes real
  kilobytes=$(value "$1\\$entry" EstimatedSize)
  real=$(du -sk --apparent-size "$(here "$2")" | cut -f1)
  echo "$((kilobytes)) kB instead of $real kB"
  [ $((kilobytes * 100)) -gt $((real * 95)) ] && [ $((kilobytes * 100)) -lt $((real * 105)) ]
}

not_installed_in() {
  all_absent "$1\\$entry" "$1\\Software\\Classes\\VELT_MORV.NoOperation" "$1\\Software\\Classes\\CLSID\\$class"
}

# calculates FOLDER: the installed command calculates an installed example with the installed library and data.
calculates() {
  local results=$drive/users/Public/results.json
  rm -f "$results"
  ends 0 "$1\\morvelan.exe" run "$1\\examples\\noop-two-phase-11.json" --json results.json || return 1
  cat "$results"
  grep -q '"fraction": 0\.87750' "$results" || return 1
  rm "$results"
}

# has_licences FOLDER: the texts of the libraries inside, and every text that these name.
has_licences() {
  local texts name
  texts=$(here "$1\\licences")
  grep -q 'Niels Lohmann' "$texts/nlohmann-json.txt" &&
    grep -q 'University of Cincinnati' "$texts/CLI11.txt" &&
    grep -q 'Mozilla Public License Version 2.0' "$texts/Eigen.txt" &&
    grep -q 'Boost Software License - Version 1.0' "$texts/Boost.txt" &&
    grep -q 'GCC RUNTIME LIBRARY EXCEPTION' "$texts/GCC-runtime.txt" &&
    grep -q 'winpthreads' "$texts/MinGW-w64-and-winpthreads.txt" &&
    grep -q 'Lawrence Livermore National Security' "$texts/SUNDIALS.txt" &&
    grep -q 'University of Tennessee' "$texts/LAPACK.txt" || return 1
  for name in GPL-3 LGPL-2.1; do grep -q 'GNU' "$texts/common-licenses/$name.txt" || return 1; done
}

# calculates_for_user FOLDER: the same after an installation for one user. A Wine that looks for classes in the
# machine's part of the registry only needs the library there too.
calculates_for_user() {
  local status=0
  if win reg query 'HKCR\VELT_MORV.NoOperation'; then calculates "$1"; return; fi
  win regsvr32 /s "$1\\morvelan.dll" || return 1
  calculates "$1" || status=1
  win regsvr32 /s /u "$1\\morvelan.dll" || status=1
  return $status
}

# uninstall HIVE: as Windows' list of installed apps does it without questions.
uninstall() {
  local command program
  command=$(value "$1\\$entry" QuietUninstallString)
  program=${command#\"}
  ends 0 "${program%%\"*}" ${command##*\" } || return 1
  while grep -qsa '~[n]su.*Un\.exe' /proc/[0-9]*/cmdline; do sleep 0.1; done  # the copy of itself that does the work
}

# in_use FOLDER COMMAND...: runs a command while a program has the library loaded.
in_use() {
  local library=$1\\morvelan.dll status=0 tries=0
  shift
  (cd "$drive" && LIBRARY=$library exec timeout 120 wine 'C:\holder.exe') >/dev/null 2>&1 </dev/null &
  until [ -e "$drive/loaded.txt" ] || [ $((tries += 1)) -gt 100 ]; do sleep 0.1; done
  [ -e "$drive/loaded.txt" ] || { echo "The library cannot be loaded."; status=1; }
  "$@" || status=1
  rm -f "$drive/loaded.txt"
  wait $!
  return $status
}

# ---- What is tested --------------------------------------------------------------------------------------------------

check "the installer is made" "$root/packaging/build-installer"
[ "$failed" -eq 0 ] || exit 1
version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")

# A newer version without one of the files and with another in a new folder, and a version whose library cannot be
# loaded.
make_variants() {
  cp -r "$root/build/installer" "$scratch/newer"
  mkdir "$scratch/newer/examples/new"
  mv "$scratch/newer/examples/noop-phases-both.json" "$scratch/newer/examples/new/added.json"
  "$root/packaging/make-installer" "$scratch/newer" 9.8.7 "$scratch/newer.exe"
  cp -r "$root/build/installer" "$scratch/broken"
  echo "not a library" >"$scratch/broken/morvelan.dll"
  rm "$scratch/broken/morvelan.exe"
  "$root/packaging/make-installer" "$scratch/broken" 9.9.9 "$scratch/broken.exe"
}
make_variants &

own_prefix=
if [ -z "${WINEPREFIX:-}" ]; then
  own_prefix=$root/build/wine-installer
  rm -rf "$own_prefix"
  export WINEPREFIX=$own_prefix
  mkdir -p "$WINEPREFIX"
  timeout 180 wineboot -i >"$scratch/wineboot.txt" 2>&1 </dev/null
  timeout 60 wineserver -w
  # Without the drive of the build machine's own files nothing of the source tree can help the installed programs.
  rm -f "$WINEPREFIX/dosdevices/z:"
fi
stop_wine || true
start_wine
trap 'stop_wine || true' EXIT
drive=$WINEPREFIX/drive_c

# A program that has a library loaded as long as loaded.txt is there.
makensis -V2 - >"$scratch/holder.txt" <<END
  Unicode true
  Target amd64-unicode
  Name holder
  OutFile "$drive/holder.exe"
  SilentInstall silent
  Section
    ReadEnvStr \$1 LIBRARY
    System::Call 'kernel32::LoadLibraryW(w r1) p.r2'
    IntPtrCmp \$2 0 end
    FileOpen \$3 "C:\\loaded.txt" w
    FileClose \$3
    IfFileExists "C:\\loaded.txt" 0 end
    Sleep 100
    Goto -2
  end:
  SectionEnd
END
cp "$root/build/MorvelanSetup.exe" "$drive/setup.exe"
wait $!
cp "$scratch/newer.exe" "$scratch/broken.exe" "$drive"
# What Windows has but Wine makes when it is first needed; and what Wine notes at its first starts with a window program,
# for it drops the fonts that it knew with the drive and finds them again.
for user in "$drive"/users/*/AppData/Local; do mkdir -p "$user/Programs"; done
for key in Classes\\CLSID Classes\\TypeLib Microsoft\\Windows\\CurrentVersion\\Uninstall; do
  win reg add "HKCU\\Software\\$key" /f
done
for _ in 1 2; do
  win 'C:\holder.exe'
  stop_wine
  start_wine
done
check "nothing is installed before" not_installed_in HKCR
state before

echo "For all users"
folder='C:\Program Files\MORVELAN for a test'
check "a library that cannot be registered: status 5" ends 5 'C:\broken.exe' /S "/D=$folder"
check "... and nothing stays" unchanged before
mkdir -p "$(here "$folder")"
echo "mine" >"$(here "$folder\\data")"  # a file where a folder is needed
state blocked
check "files that cannot be written: status 4" ends 4 'C:\setup.exe' /S "/D=$folder"
check "... and nothing changes" unchanged blocked
rm -r "$(here "$folder")"

check "for all users and for one: status 2" ends 2 'C:\setup.exe' /S /AllUsers /CurrentUser "/D=$folder"
check "... and nothing stays" gone "$(here "$folder")"
check "silent installation" ends 0 'C:\setup.exe' /S "/D=$folder"
check "it is registered for the machine" installed HKLM "$folder" "$version"
check "... and not for the user" not_installed_in HKCU
check "its size is right" size_fits HKLM "$folder"
check "its licences are there" has_licences "$folder"
check "the installed command calculates an example" calculates "$folder"
check "nobody can install for himself into the same folder: status 2" \
  ends 2 'C:\setup.exe' /S /CurrentUser "/D=$folder"
check "installation over the installation" ends 0 'C:\setup.exe' /S /AllUsers
check "it is still registered there" installed HKLM "$folder" "$version"

state installed
check "a library in use: status 3" in_use "$folder" ends 3 'C:\newer.exe' /S
check "... and nothing changes" unchanged installed
check "the uninstaller with the library in use: status 3" \
  in_use "$folder" ends 3 "$folder\\Uninstall.exe" /S _?=$folder
check "... and nothing changes" unchanged installed
check "the uninstaller for a folder without an installation: status 2" \
  ends 2 "$folder\\Uninstall.exe" /S '_?=C:\windows'
check "a newer version that cannot be registered: status 5" ends 5 'C:\broken.exe' /S
check "... and the old one stays as it was" unchanged installed
check "the old one calculates" calculates "$folder"

other='C:\Program Files\MORVELAN elsewhere'
echo "mine" >"$(here "$folder\\examples\\mine.json")"
check "a newer version into another folder" ends 0 'C:\newer.exe' /S '/D=C:\Program' 'Files\MORVELAN' elsewhere
check "it is registered" installed HKLM "$other" 9.8.7
check "it calculates" calculates "$other"
check "in the old folder only the user's own file stays" \
  test "$(cd "$(here "$folder")" && find . -type f)" = ./examples/mine.json
rm -r "$(here "$folder")"
check "the older version over the newer" ends 0 'C:\setup.exe' /S
check "the newer one's own file is gone" gone "$(here "$other\\examples\\new")"
check "the older one's is back" test -s "$(here "$other\\examples\\noop-phases-both.json")"

echo "mine" >"$(here "$other\\data\\mine.json")"
check "silent uninstallation" uninstall HKLM
check "only the user's own file stays" test "$(cd "$(here "$other")" && find . -type f)" = ./data/mine.json
check "... as it was" grep -qx mine "$(here "$other\\data\\mine.json")"
rm -r "$(here "$other")"
check "files and registry are as before" unchanged before

echo "For one user"
check "silent installation" ends 0 'C:\setup.exe' /S /CurrentUser
folder=$(value "HKCU\\$entry" InstallLocation || true)
check "it lies in the user's own folder" grep -qE '^C:\\users\\[^\]+\\AppData\\Local\\Programs\\MORVELAN$' <<<"$folder"
check "it is registered for the user" installed HKCU "$folder" "$version"
check "... and not for the machine" not_installed_in HKLM
check "the installed command calculates an example" calculates_for_user "$folder"
check "nobody can install for all into the same folder: status 2" ends 2 'C:\setup.exe' /S /AllUsers "/D=$folder"
check "installation over the installation" ends 0 'C:\setup.exe' /S /CurrentUser
check "silent uninstallation" uninstall HKCU
check "files and registry are as before" unchanged before

[ "$failed" -eq 0 ] || exit 1
stop_wine
[ -z "$own_prefix" ] || rm -rf "$own_prefix"  # hundreds of megabytes
