# What the top-level commands share: installing what is missing, and building. Sourced by them; expects $root.

packages=(
  cmake ninja-build g++ bison       # the build
  mingw-w64-tools libwine-dev       # widl and the system's interface definitions
  nlohmann-json3-dev libcli11-dev   # flowsheet files, command line
  libeigen3-dev libboost-dev        # the reference host's thermodynamics
)

# Installs the Debian packages among the arguments that are missing.
install_missing() {
  local missing=()
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${missing[*]}" >&2
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update -qq >&2
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

# build PRESET [TARGET...]: configures once and builds. It says every few seconds how far it is; the log shows when it
# fails.
build() {
  local preset=$1 log=$root/build/$1.log system=native progress
  shift
  mkdir -p "$root/build"
  [ "$preset" != windows ] || system=windows
  "$root/cmake/prepare-numerics" "$system"
  echo "Building $preset${*:+ ($*)}" >&2
  : >"$log"
  while sleep 10; do tail -n 1 "$log" | cut -c 1-100 | sed 's/^/  /' >&2; done &
  progress=$!
  (
    cd "$root"
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build --preset "$preset" ${*:+--target "$@"}
  ) >"$log" 2>&1 && kill "$progress" || {
    kill "$progress"
    cat "$log" >&2
    echo "The $preset build failed; see $log" >&2
    exit 1
  }
}

# Cross-compiling for Windows, running the outcome, and its installer.
windows_packages=(g++-mingw-w64-x86-64-posix googletest wine wine64 nsis)

# windows COMMAND...: runs a Windows program in a system of the tests' own; what it prints stands in $windows_output.
windows_output=$root/build/windows-output.txt
windows() {
  # Wine's server outlives the program: it must not hold on to whatever reads our output.
  timeout 300 wine "$@" >"$windows_output" 2>&1 </dev/null
}

# use_windows NAME: makes build/NAME, a fresh Windows system without a screen, the one that `windows` uses.
use_windows() {
  export WINEPREFIX=$root/build/$1 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=" LANG=C.UTF-8
  unset DISPLAY
  [ ! -d "$WINEPREFIX" ] || { wineserver -k || true; rm -rf "$WINEPREFIX"; }
  mkdir -p "$root/build"
  timeout 300 wineboot -i >/dev/null 2>&1 </dev/null
  windows reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
  wineserver -k  # so that it is read
}
