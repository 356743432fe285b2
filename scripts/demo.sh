#!/bin/sh
# Builds the qv tool and runs it on the sample data shipped in data/:
# shows a SAF file's header and data offset, then changes a tag in place.
set -eu
cd "$(dirname "$0")/.."
if [ "$(id -u)" = 0 ]; then ./scripts/setup.sh; fi

build=${QV_BUILD_DIR:-build/release}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQV_TESTS=OFF
cmake --build "$build" -j2 --target qv_tool
qv="$build/tools/qv"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp data/sample.saf "$work/sample.saf"

echo "== qv saf show data/sample.saf"
"$qv" saf show "$work/sample.saf"
echo
echo "== qv saf set sample.saf Operator \"Night shift\""
"$qv" saf set "$work/sample.saf" Operator "Night shift"
echo
echo "== qv saf show sample.saf (after the change)"
"$qv" saf show "$work/sample.saf"
