#!/usr/bin/env bash
# run.sh BUILD [OPTION...]: runs every benchmark of a build and prints its figures; options are
# those of peers.py, which compares whole offloads with other tools. With --quick only that
# comparison runs, in about two minutes, for rough figures. Only ratios mean anything on a machine
# that does other things too.
set -uo pipefail
build=$1/benchmarks
status=0

for option in "${@:2}"; do
  case $option in
    --quick | --help) exec "$(dirname "$0")/peers.py" "$1/bin/zephrimark" "${@:2}" ;;
  esac
done

echo "Hashing, GB/s (medians of interleaved repetitions) and the ratio to the peer:"
"$build/HashBenchmark" --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \
  --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
  awk -F, '
    /_median/ {
      gsub(/"/, "", $1); sub(/_median.*/, "", $1)
      split($1, name, "/")
      speed = $6 / 1e9
      if (name[2] ~ /^ours/) ours[name[1] "/" name[2]] = speed
      else { peer[name[1]] = speed; peerName[name[1]] = name[2] }
    }
    END {
      for (key in ours) {
        split(key, name, "/")
        printf "  %-22s %6.2f   %-10s %6.2f   ratio %.2f\n", key, ours[key],
               peerName[name[1]], peer[name[1]], ours[key] / peer[name[1]]
      }
    }' | sort

echo
"$build/ScanBenchmark" || status=1
"$build/MemoryBenchmark" || status=1
"$build/ListBenchmark" || status=1
"$build/ImagingBenchmark" || status=1
"$(dirname "$0")/window.sh" "$1/bin/zephrimark-offload" || status=1
echo
"$(dirname "$0")/peers.py" "$1/bin/zephrimark" "${@:2}" || status=1
exit "$status"
