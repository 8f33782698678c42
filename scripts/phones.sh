# shellcheck shell=bash
# Simulated phones for a script; sourced after `set -euo pipefail`.

phones='' # the process, while they run

# start_phones LOG PROGRAM [argument]…: starts PROGRAM, a darokleim-phone, on a port that is free, waits until the
# phones have booted, and has every adb from here on see them.
start_phones() {
  local log=$1 port='' waited
  shift
  : >"$log" # which the line below would create a moment late
  "$1" --port 0 "${@:2}" >"$log" &
  phones=$!
  for ((waited = 0; waited < 600; ++waited)); do
    port=$(sed -n 's/.*ready on port \([0-9]*\).*/\1/p' "$log")
    if [ -n "$port" ] || ! kill -0 "$phones" 2>/dev/null; then break; fi
    sleep 0.05
  done
  if [ -z "$port" ]; then
    stop_phones
    printf 'the simulated phones did not start\n' >&2
    return 1
  fi
  export ANDROID_ADB_SERVER_PORT=$port
}

stop_phones() {
  if [ -n "$phones" ]; then
    kill "$phones" 2>/dev/null || true
    wait "$phones" 2>/dev/null || true
    phones=''
  fi
}
