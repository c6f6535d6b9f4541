#!/usr/bin/env bash
# Builds the fuzzers and runs them one after another.
#   fuzz/run.sh [SECONDS] [NAME...]     600 seconds each, and all of them, unless told otherwise
# Inputs that reach new code are kept in build/fuzz/corpus from run to run; those that break
# something go to build/fuzz/findings. Exit status: 1 when there are any.
set -uo pipefail
. "$(dirname "$(readlink -f "$0")")/../scripts/common.sh"

seconds=600
if [[ ${1:-} =~ ^[0-9]+$ ]]; then
  seconds=$1
  shift
fi
install_missing "${build_packages[@]}" clang llvm
build fuzz

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for program in build/fuzz/fuzz/Fuzz*; do
    [ -x "$program" ] && names+=("${program##*/Fuzz}")
  done
fi
# Some write small files with every input.
[ -d /dev/shm ] && export TMPDIR=/dev/shm
mkdir -p build/fuzz/findings
status=0

printf '%-20s %12s %8s %9s\n' name runs seconds findings
for name in "${names[@]}"; do
  if [ ! -x "build/fuzz/fuzz/Fuzz$name" ]; then
    echo "There is no fuzzer $name." >&2
    exit 2
  fi
  kept=$root/build/fuzz/corpus/$name
  log=build/fuzz/findings/$name.log
  mkdir -p "$kept"
  options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
    -artifact_prefix="$root/build/fuzz/findings/$name-")
  [ -e "fuzz/words/$name" ] && options+=(-dict="fuzz/words/$name")
  start=$SECONDS
  "build/fuzz/fuzz/Fuzz$name" "${options[@]}" "$kept" "$root/fuzz/corpus/$name" >"$log" 2>&1
  findings=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  printf '%-20s %12s %8s %9s\n' "$name" "${runs:-?}" $((SECONDS - start)) \
    "$([ "$findings" -eq 0 ] && echo none || echo "see $log")"
  [ "$findings" -eq 0 ] || status=1
done
exit "$status"
