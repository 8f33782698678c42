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

# The presets of CMakePresets.json say how each tree is configured, where it is, and how its tests run.
tree_of() {
  if [ "$1" = developer ]; then echo build; else echo "build-$1"; fi
}

# build_tree PRESET [CMake argument]…: configures a tree and builds everything in it.
build_tree() {
  configure_tree "$@"
  build_targets "$1"
}

# build_targets PRESET [target]…: all of them, when none is named.
build_targets() {
  local target=()
  [ $# -eq 1 ] || target=(--target "${@:2}")
  show cmake --build "$(tree_of "$1")" --parallel "$(processors)" ${target[@]+"${target[@]}"}
}

configure_tree() {
  local preset=$1
  shift
  local launcher=()
  if have ccache; then
    # Without this ccache ignores every source that uses a precompiled header.
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  show cmake --preset "$preset" --log-level=NOTICE ${launcher[@]+"${launcher[@]}"} "$@"
}

# run_tests PRESET [CTest argument]…: runs the tests of a tree; having none to run is a failure. Tests mostly wait, for
# adb and for phones: several for each processor keep it busy.
run_tests() {
  local for_each_processor=6
  [ "$1" = developer ] || for_each_processor=2 # sanitizers need more of it
  (
    use_memory_for_temporary_files
    show ctest --preset "$1" --parallel "$(($(processors) * for_each_processor))" "${@:2}"
  )
}

# Phones and tests make and remove thousands of files; on ext4 that takes some tests two thirds of their processor time.
# Until the end of this subshell they are kept in memory, if there is plenty of it and the caller has not chosen a folder.
use_memory_for_temporary_files() {
  local in_memory=/dev/shm needed=8000000 # KiB
  if [ -n "${TMPDIR-}" ] || ! [ -d "$in_memory" ]; then return; fi
  if [ "$(df -kP "$in_memory" | awk 'END { print $4 }')" -lt "$needed" ]; then return; fi
  if [ "$(awk '$1 == "MemAvailable:" { print $2 }' /proc/meminfo)" -lt "$needed" ]; then return; fi
  TMPDIR=$(mktemp -d "$in_memory/darokleim.XXXXXX")
  export TMPDIR
  # shellcheck disable=SC2064 # this folder, whatever TMPDIR becomes
  trap "rm -rf '$TMPDIR'" EXIT
  chmod 1777 "$TMPDIR" # some tests run as another user
}
