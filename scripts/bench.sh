#!/bin/sh
# Builds the benchmarks (Release, build/bench), runs every one three times and
# writes the paired results, median of the three, to bench/RESULTS.md: each
# row is qv against its reference measured in the same process, round by
# round (bench/PairedTiming.h). Benchmarks that are not paired still run and
# print, but have no row.
#   QV_BENCH_ONLY="crc locks" ./scripts/bench.sh   runs only bench_crc and bench_locks
set -eu
cd "$(dirname "$0")/.."
if [ "$(id -u)" = 0 ]; then ./scripts/setup.sh; fi

build=${QV_BENCH_BUILD_DIR:-build/bench}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQV_BENCH=ON -DQV_TESTS=OFF >/dev/null
cmake --build "$build" -j2

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
for program in "$build"/bench/bench_*; do
  name=$(basename "$program" | sed 's/^bench_//')
  if [ -n "${QV_BENCH_ONLY:-}" ] && ! echo " $QV_BENCH_ONLY " | grep -q " $name "; then continue; fi
  echo "== $name" >&2
  "$program" --benchmark_repetitions=3 --benchmark_report_aggregates_only=true \
    --benchmark_out="$out/$name.json" --benchmark_out_format=json >&2
done
/usr/bin/python3 scripts/bench_table.py "$out"/*.json > bench/RESULTS.md
cat bench/RESULTS.md
