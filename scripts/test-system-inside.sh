#!/usr/bin/env bash
# Run by test-system.sh as root of a bare Debian that has the project and nothing else.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

step() { printf '\n== %s\n' "$*"; }
fail() {
  echo "FAILED: $*"
  exit 1
}
# passed WHAT: with the time since the last one.
passed() {
  echo "Passed: $* ($SECONDS s)"
  SECONDS=0
}

step "./run demo"
./run demo
passed "./run demo"

step "./run"
# There is no screen; the window draws into memory.
QT_QPA_PLATFORM=offscreen ./run >/root/window.log 2>&1 &
window=$!
until [[ $(readlink "/proc/$window/exe") == */zephrimark-offload ]]; do
  kill -0 "$window" || fail "No window: $(cat /root/window.log)"
  sleep 0.2
done
sleep 5
kill "$window" || fail "The window ended by itself: $(cat /root/window.log)"
wait "$window" || true
cat /root/window.log
! grep -E 'is not installed|Cannot|Failed|unavailable|not found' /root/window.log ||
  fail "A piece of the window is missing."
passed "./run opens the window"

step "./test"
"$PWD/test" >/root/test.log && status=0 || status=$?
cat /root/test.log
[ "$status" -eq 0 ] || fail "./test ended with $status."
result=$(grep '^100% tests passed' /root/test.log) || fail "No test was run."
passed "./test: $result, $(grep -c '(Skipped)' /root/test.log || true) of them skipped"
