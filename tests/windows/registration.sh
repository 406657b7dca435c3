#!/usr/bin/env bash
# Registers the library with the system's tool and takes it out again: what is written is what the table of units asks for
# (class identifier, ProgID, title, name, description, whether it uses thermodynamics), and nothing stays.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
. "$root/tools/common.sh"

library=$root/build/windows/bin/morvelan.dll
version=$(LC_ALL=C grep -aoP 'F\0i\0l\0e\0V\0e\0r\0s\0i\0o\0n\0+\K([0-9.]\0)+' "$library" | tr -d '\0')
types={EC39714A-2F1E-42C4-8DC6-FEC9C07E73D6}
scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT
failed=0

# run COMMAND...: a Windows program that must succeed.
run() { windows "$@" || { echo "$* ended with status $?"; cat "$windows_output"; exit 1; }; }
# windows_path FILE: as Wine sees it, in the form of exported files.
windows_path() { local path=Z:$1; echo "${path//\//\\\\}"; }
# table: the rows of the list of classes with single bars between the columns.
table() { sed 's/ *| */|/g' "$root/build/windows/generated/UnitClasses.txt"; }
# same WHAT WANTED GOT: two files.
same() { diff "$2" "$3" || { echo "^ $1"; failed=1; }; }

# classes HIVE NAME: writes the classes of a hive as lines "key" and "key value" into a file. The system shows type
# libraries to 32-bit programs too, of its own accord, and may spell the key otherwise.
classes() {
  run reg export "$1\\Software\\Classes" "$(windows_path "$scratch/export")" /y
  iconv -f UTF-16 -t UTF-8 "$scratch/export" | tr -d '\r' |
    awk '/^\[/ { key = substr($0, 2, length($0) - 2); sub(/.*\\Software\\Classes\\?/, "", key); print key; next }
         NF { print key " " $0 }' | sed '/^Wow6432Node.TypeLib/Id; s/^typelib/TypeLib/I' | LC_ALL=C sort >"$scratch/$2"
}

# wanted: what registration writes.
wanted() {
  local clsid progid title name description thermo key category
  cat <<END
TypeLib\\$types
TypeLib\\$types\\1.0
TypeLib\\$types\\1.0 @="VELT MORVELAN 1.0 Type Library"
TypeLib\\$types\\1.0\\0
TypeLib\\$types\\1.0\\0\\win64
TypeLib\\$types\\1.0\\0\\win64 @="$(windows_path "$library")"
TypeLib\\$types\\1.0\\FLAGS
TypeLib\\$types\\1.0\\FLAGS @="0"
TypeLib\\$types\\1.0\\HELPDIR
TypeLib\\$types\\1.0\\HELPDIR @="$(windows_path "${library%/*}")"
END
  while IFS='|' read -r clsid progid title name description thermo; do
    key=CLSID\\$clsid
    cat <<END
$progid
$progid @="$title"
$progid\\CLSID
$progid\\CLSID @="$clsid"
$progid\\CurVer
$progid\\CurVer @="$progid.1"
$progid.1
$progid.1 @="$title"
$progid.1\\CLSID
$progid.1\\CLSID @="$clsid"
$key
$key @="$title"
$key\\CapeDescription
$key\\CapeDescription "About"="MORVELAN, an open library of unit operations for process simulators"
$key\\CapeDescription "CapeVersion"="1.0"
$key\\CapeDescription "ComponentVersion"="$version"
$key\\CapeDescription "Description"="$description"
$key\\CapeDescription "HelpURL"="https://morvelan.example/units/$name"
$key\\CapeDescription "Name"="$name"
$key\\CapeDescription "VendorURL"="https://morvelan.example"
$key\\Implemented Categories
$key\\Implemented Categories\\{678C09A1-7D66-11D2-A67D-00105A42887F}
$key\\Implemented Categories\\{678C09A5-7D66-11D2-A67D-00105A42887F}
$key\\InprocServer32
$key\\InprocServer32 "ThreadingModel"="Apartment"
$key\\InprocServer32 @="$(windows_path "$library")"
$key\\ProgID
$key\\ProgID @="$progid.1"
$key\\Programmable
$key\\TypeLib
$key\\TypeLib @="$types"
$key\\Version
$key\\Version @="1.0"
$key\\VersionIndependentProgID
$key\\VersionIndependentProgID @="$progid"
END
    [ "$thermo" = no ] || for category in {4150C28A-EE06-403F-A871-87AFEC38A249} \
      {0D562DC8-EA8E-4210-AB39-B66513C0CD09} {4667023A-5A8E-4CCA-AB6D-9D78C5112FED}; do
      echo "$key\\Implemented Categories\\$category"
    done
  done < <(table)
}

# round_trip HIVE [OPTION...]
round_trip() {
  local hive=$1
  shift
  run regsvr32 /s /u "$@" morvelan.dll
  classes "$hive" before
  run regsvr32 /s "$@" morvelan.dll
  classes "$hive" registered
  LC_ALL=C comm -3 "$scratch/before" "$scratch/registered" | sed 's/^\t//' >"$scratch/got"
  same "what registration in $hive should write, and what it wrote" "$scratch/wanted" "$scratch/got"
  [ "$hive" = HKCU ] || listed
  run regsvr32 /s /u "$@" morvelan.dll
  classes "$hive" after
  same "$hive before and after" "$scratch/before" "$scratch/after"
}

# listed: the command knows the classes of the table and no others.
listed() {
  table | awk -F'|' '{ print $4, $2, $1, $5 }' | LC_ALL=C sort >"$scratch/table"
  run ./morvelan.exe units
  sed '1d; s/\r$//; s/  */ /g' "$windows_output" | LC_ALL=C sort >"$scratch/units"
  same "the table of units and what the command lists" "$scratch/table" "$scratch/units"
}

cd "${library%/*}"
wanted | LC_ALL=C sort >"$scratch/wanted"
# What Windows always has there.
for key in CLSID TypeLib; do run reg add "HKCU\\Software\\Classes\\$key" /f; done
round_trip HKLM
round_trip HKCU /n /i:user
if windows regsvr32 /s /n /i:nobody morvelan.dll; then echo "Registration for nobody succeeds"; failed=1; fi
exit $failed
