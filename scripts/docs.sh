#!/bin/sh
# Generates the API reference from the public headers into build/docs/html
# and counts what Doxygen found undocumented, per subsystem.
set -eu
cd "$(dirname "$0")/.."
if [ "$(id -u)" = 0 ] && ! command -v doxygen >/dev/null; then ./scripts/setup.sh; fi
out=${QV_DOCS_DIR:-build/docs}
mkdir -p "$out"
( cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = $out"; echo "WARN_LOGFILE = $out/warnings.txt" ) | doxygen - >/dev/null
undocumented=$(grep -c 'is not documented' "$out/warnings.txt" || true)
echo "reference: $out/html/index.html"
echo "undocumented public members: $undocumented"
grep 'is not documented' "$out/warnings.txt" | sed -E 's|^.*/qv/([a-z]+)/.*|\1|' | sort | uniq -c || true
