# shellcheck shell=bash
# What the scripts here share; sourced after `set -euo pipefail`.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export cache="$root/.cache" # what was fetched, kept between builds
cd "$root" || exit

say() { printf '%s\n' "$*" >&2; }

die() {
  say "${0##*/}: $*"
  exit 1
}

have() { command -v "$1" >/dev/null 2>&1; }

on_macos() { [ "$(uname -s)" = Darwin ]; }

# Prints a command, then runs it.
show() {
  printf '+ %s\n' "$*" >&2
  "$@"
}

# Prints the comment block at the head of the calling script: what it does and its usage.
usage() { sed -n -e '/^$/q' -e '2,$s/^# \{0,1\}//p' "$0"; }

processors() { getconf _NPROCESSORS_ONLN 2>/dev/null || echo 2; }

# build_tree DIRECTORY [CMake argument]…: configures a build tree and builds everything in it.
build_tree() {
  configure_tree "$@"
  show cmake --build "$1" --parallel "$(processors)"
}

configure_tree() {
  local tree=$1
  shift
  local launcher=()
  if have ccache; then
    # Without this ccache leaves alone whatever uses a precompiled header.
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  show cmake -S "$root" -B "$tree" -G Ninja --log-level=NOTICE -DDAROKLEIM_WERROR=ON \
    ${launcher[@]+"${launcher[@]}"} "$@"
}

# run_tests DIRECTORY [CTest argument]…: runs the tests of a build tree; none to run is a failure.
run_tests() {
  local tree=$1
  shift
  show ctest --test-dir "$tree" --parallel "$(processors)" --output-on-failure --no-tests=error "$@"
}
