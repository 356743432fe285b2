#!/bin/sh
# Installs a release build of qv into a scratch prefix, builds two programs
# against it (one with find_package(qv), one with pkg-config) and runs the
# installed qv tool without help from LD_LIBRARY_PATH.
set -eu
cd "$(dirname "$0")/.."
build=${QV_BUILD_DIR:-build/release}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQV_TESTS=OFF
cmake --build "$build" -j2
cmake --install "$build" --prefix "$prefix" >/dev/null

cmake -S cmake/install-check -B "$prefix/check" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/check" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$prefix/check/consumer"

flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs qv)
# shellcheck disable=SC2086
c++ cmake/install-check/main.cpp $flags -o "$prefix/consumer-pc"
LD_LIBRARY_PATH="$prefix/lib" "$prefix/consumer-pc"

# The examples build against the installed library and run.
cmake -S examples -B "$prefix/examples" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/examples" >/dev/null
"$prefix/examples/read_saf_header" data/sample.saf >/dev/null
cp data/sample.saf "$prefix/sample.saf"
"$prefix/examples/change_saf_tag" "$prefix/sample.saf" Operator example >/dev/null
"$prefix/examples/read_saf_header" "$prefix/sample.saf" | grep -q '^Operator = example$'
"$prefix/examples/calibrate_frame" >/dev/null
mkdir "$prefix/watched"
"$prefix/examples/watch_directory" "$prefix/watched" 2 >"$prefix/watched.log" &
watcher=$!
sleep 1
touch "$prefix/watched/new.txt"
wait "$watcher"
grep -q '^added new.txt$' "$prefix/watched.log"
# The installed tool runs as it is, finding its libqv through its RPATH.
version=$(env -u LD_LIBRARY_PATH "$prefix/bin/qv" --version)
expected="qv $(sed -n 's/^project(qv VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)"
[ "$version" = "$expected" ] || { echo "installed qv --version: '$version', wanted '$expected'" >&2; exit 1; }
env -u LD_LIBRARY_PATH "$prefix/bin/qv" saf show data/sample.saf | grep -q '^data offset: 2312$'
echo "install check passed"
