#!/usr/bin/python3
"""Cuts three-column atmosphere tables out of the tape7 files in modtran/.

For each radiance-mode tape7 (thirteen-column layout) this writes
  modtran/<name>.table     the tape7's header lines, a heading "FREQ TOT_TRANS
                           PTH_THRML", one row per frequency with the three
                           fields copied as text, and the "-9999." end line;
  modtran/<name>.expected  what a reader must make of it: one line per row in
                           rising wavelength, "micron transmission radiance",
                           with micron = 10000 / f and the per-wavenumber
                           radiance r turned per micron, r * (f * f / 10000).
The fields keep their text, so C++ and Python parse the same digits.

Run from this directory: /usr/bin/python3 derive_modtran_tables.py
"""
import glob
import os

HEADER_LINES = 10  # a tape7 run starts with ten header lines


def rows_of(lines):
    """Data rows after the FREQ heading, up to the -9999. line."""
    start = next(i for i, line in enumerate(lines) if line.strip().upper().startswith("FREQ"))
    for line in lines[start + 1:]:
        fields = line.split()
        if fields[0].startswith("-9999."):
            return
        yield fields[:3]


def derive(path):
    with open(path, encoding="ascii") as f:
        lines = f.read().splitlines()
    rows = list(rows_of(lines))
    with open(path + ".table", "w", encoding="ascii", newline="\n") as out:
        for line in lines[:HEADER_LINES]:
            out.write(line + "\n")
        out.write("    FREQ  TOT_TRANS  PTH_THRML\n")
        for freq, trans, radiance in rows:
            out.write(f" {freq:>8} {trans:>10} {radiance:>10}\n")
        out.write(" -9999.\n")
    with open(path + ".expected", "w", encoding="ascii", newline="\n") as out:
        out.write(f"# {len(rows)} rows: micron transmission radiance-per-micron, rising wavelength\n")
        for freq, trans, radiance in reversed(rows):
            f, t, r = float(freq), float(trans), float(radiance)
            out.write(f"{10000.0 / f!r} {t!r} {r * (f * f / 10000.0)!r}\n")


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    for path in sorted(glob.glob(os.path.join(here, "modtran", "*tape7-0[0-9]*"))):
        if not path.endswith((".table", ".expected")):
            derive(path)


if __name__ == "__main__":
    main()
