# shellcheck shell=bash
# For tests on the installed tree; sourced after `set -euo pipefail`. LIBRARY_FOLDER, INCLUDE_FOLDER and PROGRAM_FOLDER
# come from CTest.

source_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=scripts/phones.sh
source "$source_root/scripts/phones.sh"

work=$(mktemp -d)
trap 'stop_phones; rm -rf "$work"' EXIT
export HOME=$work TMPDIR=$work
cd "$work" # where the library leaves a copy of each listing
unset ANDROID_SERIAL

fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

# expect WHAT ACTUAL EXPECTED
expect() {
  [ "$2" = "$3" ] || fail "$1: $2"$'\n'"instead of: $3"
}

# What AdbSdkInit wants.
make_resources() {
  resources=$work/resources
  mkdir "$resources"
  ln -s "$(command -v adb)" "$resources/adb"
  ln -s "$(command -v busybox)" "$resources/busybox"
}

start_installed_phones() {
  start_phones "$work/phones.log" "$PROGRAM_FOLDER/darokleim-phone" "$@"
}
