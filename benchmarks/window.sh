#!/usr/bin/env bash
# window.sh PROGRAM: how long the window's program takes to its first frame, the best of five
# launches, and how much memory it holds then. Without a screen and a graphics card.
set -euo pipefail
program=$1
budget_ms=1000
budget_mb=150

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_RUNTIME_DIR=$folder XDG_CONFIG_HOME=$folder XDG_CACHE_HOME=$folder
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
export QT_LOGGING_RULES=qt.scenegraph.time.renderloop=true QT_ASSUME_STDERR_HAS_CONSOLE=1

best_ms=
most_mb=0
for _ in 1 2 3 4 5; do
  start=$(date +%s%N)
  coproc launch { exec "$program" 2>&1; }
  pid=$launch_PID
  frame=
  while [ -z "$frame" ] && read -r -t 10 -u "${launch[0]}" line; do
    case $line in *[Ff]rame*) frame=$(date +%s%N) ;; esac
  done
  if [ -z "$frame" ]; then
    echo "Window: the program showed no frame." >&2
    kill "$pid" 2>/dev/null || true
    exit 1
  fi
  ms=$(((frame - start) / 1000000))
  mb=$(awk '/^VmRSS/ { printf "%d", $2 * 1024 / 1e6 }' "/proc/$pid/status")
  kill "$pid"
  wait "$pid" 2>/dev/null || true
  [ -n "$best_ms" ] && [ "$best_ms" -le "$ms" ] || best_ms=$ms
  [ "$most_mb" -ge "$mb" ] || most_mb=$mb
done

echo "Window: first frame after $best_ms ms (budget $budget_ms ms)," \
  "$most_mb MB resident (budget $budget_mb MB)"
[ "$best_ms" -le "$budget_ms" ] && [ "$most_mb" -le "$budget_mb" ]
