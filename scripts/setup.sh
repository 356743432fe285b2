#!/bin/sh
# Installs every Debian package that qv's build, tests, fuzz targets and
# benchmarks need. Idempotent; run as root on Debian 12.
set -eu

packages="
  build-essential cmake ninja-build pkg-config git
  clang libclang-rt-14-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  zlib1g-dev libjpeg62-turbo-dev libpng-dev libtiff-dev libsqlite3-dev libcminpack-dev
  libtiff-tools pngcheck libjpeg-turbo-progs sqlite3 libxml2-utils binutils
  python3 python3-dev python3-numpy python3-scipy python3-dateutil
  locales doxygen
"

missing=""
for p in $packages; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done

if [ -n "$missing" ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q
  # shellcheck disable=SC2086
  apt-get install -y -q --no-install-recommends $missing
fi

# Number text must not follow the process locale; tests prove it under German rules.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  sed -i 's/^# *de_DE.UTF-8 UTF-8/de_DE.UTF-8 UTF-8/' /etc/locale.gen
  grep -q '^de_DE.UTF-8 UTF-8' /etc/locale.gen || echo 'de_DE.UTF-8 UTF-8' >> /etc/locale.gen
  locale-gen >/dev/null
fi
