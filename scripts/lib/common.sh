# shellcheck shell=bash
# Shared functions of the scripts. Sourced, not run.

set -euo pipefail

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$repository"
# shellcheck source=scripts/lib/packages.sh
source scripts/lib/packages.sh

say() { printf '%s\n' "$*"; }
die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

has_sound_server() {
  command -v pulseaudio >/dev/null 2>&1 || command -v pipewire-pulse >/dev/null 2>&1
}

# install_missing PACKAGE…: installs the missing ones, as root or through sudo.
install_missing() {
  if ! command -v apt-get >/dev/null 2>&1; then
    say "No apt-get here; what Orvo needs must be there already: $*"
    return
  fi
  local package
  local -a missing=() as_root=()
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [ "${#missing[@]}" -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null 2>&1 || die "these packages are missing: ${missing[*]}"
    as_root=(sudo)
    [ -t 0 ] || as_root=(sudo -n)
  fi
  say "Installing: ${missing[*]}"
  local -a quiet=(env DEBIAN_FRONTEND=noninteractive apt-get -qq)
  "${as_root[@]}" "${quiet[@]}" update
  "${as_root[@]}" "${quiet[@]}" install -y --no-install-recommends \
    -o Dpkg::Use-Pty=0 "${missing[@]}" </dev/null >/dev/null
}

install_build_packages() { install_missing "${build_packages[@]}"; }

install_test_packages() {
  local -a packages=("${test_packages[@]}")
  has_sound_server || packages+=("$sound_server_package")
  install_missing "${packages[@]}"
}

# A compiler cache is used where there is one, unless the caller chose a launcher. ccache takes
# sources with precompiled headers only when it is told so.
if command -v ccache >/dev/null 2>&1 && [ -z "${CMAKE_CXX_COMPILER_LAUNCHER+set}" ]; then
  sloppiness=pch_defines,time_macros,include_file_mtime,include_file_ctime
  export CMAKE_CXX_COMPILER_LAUNCHER="env;CCACHE_SLOPPINESS=$sloppiness;ccache"
fi

# build_preset PRESET [TARGET…]: configures and builds, all that the preset builds when no
# target is named.
build_preset() {
  local preset=$1
  shift
  local log="build/$preset-configure.log"
  local -a compiler=()
  case "$preset" in
    clang | asan | tsan | coverage) compiler=("-DCMAKE_CXX_COMPILER=clang++-$llvm") ;;
  esac
  mkdir -p build
  cmake --preset "$preset" "${compiler[@]}" >"$log" 2>&1 || {
    cat "$log" >&2
    die "configuring $preset failed"
  }
  local -a targets=()
  [ $# -eq 0 ] || targets=(--target "$@")
  cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"
}
