#!/usr/bin/python3
"""An independent reader of MODTRAN tape7 tables, for checking qv's.

It cuts each data row by the Fortran formats of MODTRAN's tape7 (FREQ F7.0
or F8.2, TOT_TRANS F11.8, eight 1PE11.4 radiances, REF_SOL and SOL@OBS
1PE9.2, DEPTH F8.3; transmittance tables F8.2 then F7.4 with -LOG COMBIN
F8.3; direct sun F8.2, F8.4, two 1PE9.2), reads numbers with Python's
float(), a blank field as 0, and writes what it found to <file>.expected:

    mode M / runs N / points P
    geometry RUN H1 H2 RANGE
    columns NAME ...
    row RUN VALUE ...

Usage: read_tape7.py TAPE7... (run from this folder; the tests never run it).
"""
import sys

TRANS = ["T7C_FREQ", "T7C_TOT_TRANS", "T7C_H2O_TRANS", "T7C_CO2P_TRANS", "T7C_O3_TRANS", "T7C_TRACE_TRANS",
         "T7C_N2_COUNT", "T7C_H2O_COUNT", "T7C_MOLEC_COUNT", "T7C_AER_TRANS", "T7C_HNO3_TRANS", "T7C_AERAB_TRANS",
         "T7C_LOG_TOTAL", "T7C_CO2_TRANS", "T7C_CO_TRANS", "T7C_CH4_TRANS", "T7C_N2O_TRANS", "T7C_O2_TRANS",
         "T7C_NH3_TRANS", "T7C_NO_TRANS", "T7C_NO2_TRANS", "T7C_SO2_TRANS"]
RAD = ["T7C_FREQ", "T7C_TOT_TRANS", "T7C_PTH_THRML", "T7C_THRML_SCT", "T7C_SURF_EMIS", "T7C_SOL_SCAT",
       "T7C_SING_SCAT", "T7C_GRND_RFLT", "T7C_DRCT_RFLT", "T7C_TOTAL_RAD", "T7C_REF_SOL", "T7C_SOL_OBS", "T7C_DEPTH"]
SUN = ["T7C_FREQ", "T7C_TOT_TRANS", "T7C_SOL_TR", "T7C_SOLAR"]


def formats(mode, heading):
    wide = heading[:8].upper() == "    FREQ"
    freq = 8 if wide else 7
    if mode == 0:
        return TRANS, [8] + [7] * 11 + [8] + [7] * 9
    if mode in (1, 2):
        return RAD, [freq] + [11] * 9 + [9, 9, 8]
    return SUN, [8, 8, 9, 9]


def number(text):
    text = text.strip()
    return float(text) if text else 0.0


def read(path):
    lines = open(path, "rb").read().decode("latin-1").replace("\r", "").split("\n")
    out, at, run = [], 0, 0
    modes, points = set(), set()
    while at + 10 < len(lines) and lines[at].strip():
        header = lines[at:at + 10]
        mode = int(header[0][14])
        modes.add(mode)
        geometry = [number(header[5][0:10]), number(header[5][10:20]), number(header[5][30:40])]
        out.append("geometry %d %r %r %r" % (run, *geometry))
        names, widths = formats(mode, lines[at + 10])
        at += 11 + (mode == 0)
        count = 0
        while not lines[at].lstrip().startswith("-9999."):
            values, start = [], 0
            for width in widths:
                values.append(number(lines[at][start:start + width]))
                start += width
            out.append("row %d " % run + " ".join(repr(v) for v in values))
            count += 1
            at += 1
        points.add(count)
        at += 1
        run += 1
    assert len(modes) == 1 and len(points) == 1, path
    head = ["mode %d" % modes.pop(), "runs %d" % run, "points %d" % points.pop(), "columns " + " ".join(names)]
    return head + out


for path in sys.argv[1:]:
    with open(path + ".expected", "w") as f:
        f.write("\n".join(read(path)) + "\n")
