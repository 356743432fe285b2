#!/bin/sh
# Builds every libFuzzer target with clang (address and undefined sanitizers)
# and runs each for a short time on its seed corpus. Seconds per target: $1 (20).
# One input running over a minute counts as a failure: a hang must not stall CI.
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-20}
build=${QV_FUZZ_BUILD_DIR:-build/fuzz}

CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DQV_FUZZ=ON -DQV_TESTS=OFF -DQV_SANITIZE=address,undefined
cmake --build "$build" -j2

for src in fuzz/*.cpp; do
  name=$(basename "$src" .cpp)
  corpus=$(mktemp -d)
  [ -d "fuzz/corpus/$name" ] && cp -r "fuzz/corpus/$name/." "$corpus/"
  echo "== fuzz_$name for ${seconds}s"
  log="$corpus.log"
  if ! "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=2048 -print_final_stats=1 "$corpus" >"$log" 2>&1; then
    cat "$log"
    exit 1
  fi
  tail -n 3 "$log"
  rm -rf "$corpus" "$log"
done
