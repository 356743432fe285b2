#!/bin/sh
# Builds the qv tool and runs it on the sample data shipped in data/:
# shows a SAF file's header and data offset, changes a tag in place, reads a
# date text, integrates a blackbody over a sensor response and an atmosphere,
# and builds a radiometric calibration from measured points: its polynomials,
# range and lookup, then counts converted to temperatures beside the truth;
# saves that calibration, shows the saved file, reloads it and converts the
# same counts again, checking that the temperatures are the same; last,
# renders the sample SAF file's first frame through it as a false-colour
# picture (kept as $build/render.png) and a float TIFF.
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

echo
echo "== qv date \"2024-02-29 13:45:10\""
"$qv" date "2024-02-29 13:45:10"
echo
echo "== qv band data/NelisW__pyradi__pyradi__data__MWIRsensor.txt 35"
"$qv" band data/NelisW__pyradi__pyradi__data__MWIRsensor.txt 35
echo
echo "== qv band data/NelisW__pyradi__pyradi__data__tape7-02.table 35"
"$qv" band data/NelisW__pyradi__pyradi__data__tape7-02.table 35
echo
echo "== qv cal --save camera.cal --inc camera.inc data/cal_points.csv MWIRsensor.txt tape7-02.table data/cal_counts.csv"
"$qv" cal --save "$work/camera.cal" --inc "$work/camera.inc" data/cal_points.csv \
    data/NelisW__pyradi__pyradi__data__MWIRsensor.txt data/NelisW__pyradi__pyradi__data__tape7-02.table \
    data/cal_counts.csv | tee "$work/built.csv"
echo
echo "== qv cal show camera.cal (the saved calibration, reloaded)"
"$qv" cal show "$work/camera.cal"
echo
echo "== qv cal convert --csv camera.inc data/cal_counts.csv (through the include file)"
"$qv" cal convert --csv "$work/camera.inc" data/cal_counts.csv > "$work/reloaded.csv"
cmp "$work/built.csv" "$work/reloaded.csv"
echo "the reloaded calibration converts every count to the same temperature as the one built"
echo
echo "== qv saf frames data/sample.saf"
"$qv" saf frames data/sample.saf
echo
echo "== qv render data/sample.saf camera.cal $build/render.png frame.tiff"
"$qv" render data/sample.saf "$work/camera.cal" "$build/render.png" "$work/frame.tiff"
echo "wrote $build/render.png: the first frame in false colour, its scale in degrees Celsius"
