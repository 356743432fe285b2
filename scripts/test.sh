#!/bin/sh
# Builds qv with AddressSanitizer and UndefinedBehaviorSanitizer, warnings as
# errors, and runs every test. Benchmarks are compiled too, so they keep building.
set -eu
cd "$(dirname "$0")/.."
if [ "$(id -u)" = 0 ]; then ./scripts/setup.sh; fi

build=${QV_BUILD_DIR:-build/test}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DQV_SANITIZE=address,undefined -DQV_WERROR=ON -DQV_BENCH=ON
cmake --build "$build" -j2
ctest --test-dir "$build" -j2 --output-on-failure

# Thread code (the thread tests and the directory monitor) runs once more
# under ThreadSanitizer.
tsan=${QV_TSAN_BUILD_DIR:-build/tsan}
cmake -S . -B "$tsan" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQV_SANITIZE=thread -DQV_WERROR=ON
cmake --build "$tsan" -j2 --target test_threads test_filesystems
# ThreadSanitizer cannot see lock operations made by another process on
# shared memory, so the cross-process cases run only in the build above.
"$tsan/tests/test_threads" --gtest_filter='-*AcrossProcesses'
"$tsan/tests/test_filesystems" --gtest_filter='DirectoryMonitor*:CDFileSystemThreads*'

