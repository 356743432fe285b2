#!/usr/bin/python3
"""Writes golden_calibration.txt: what qv's calibration must compute, from the
independent model in calmodel.py.

Six configurations (responses from top hats and files, a filter, atmospheres
with and without path radiance), each with radiances at several temperatures
and emissivities, one page of points from a synthetic camera, its two fitted
polynomials and R^2, the lookup span, a counts-to-temperature table and the
camera's known temperatures recovered through the polynomials.

Record lines: a tag, then numbers (case index first). Run from anywhere with
Debian's /usr/bin/python3; the build and the tests never run it.
"""
import os
import sys

import numpy as np

sys.dont_write_bytecode = True  # no __pycache__ in the source tree
import calmodel  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.normpath(os.path.join(HERE, '..', '..', '..'))
MWIR = os.path.join(ROOT, 'data', 'NelisW__pyradi__pyradi__data__MWIRsensor.txt')
TAPE7 = os.path.join(ROOT, 'data', 'NelisW__pyradi__pyradi__data__tape7-02.table')
LWIR = os.path.join(ROOT, 'tests', 'numerics', 'data', 'response', 'NelisW__pyradi__pyradi__data__LWIRsensor.txt')
ND10 = os.path.join(ROOT, 'tests', 'numerics', 'data', 'response', 'NelisW__pyradi__pyradi__data__LWND10.txt')

# The C++ test builds the same six configurations (GoldenCalibrationTest.cpp).
CASES = [
    dict(tophat=(3.0, 5.0, 0.001), order=1, temp_order=6, lookup=(0.0, 100.0, 1.0), temps=[0, 20, 40, 60, 80, 100]),
    dict(tophat=(8.0, 12.0, 0.01), order=2, temp_order=4, lookup=(-20.0, 50.0, 0.5), temps=[-20, -5, 10, 25, 40, 50]),
    dict(file=MWIR, order=1, temp_order=6, lookup=(-20.0, 70.0, 0.5), temps=[-10, 10, 30, 50, 70]),
    dict(file=MWIR, atmosphere=(TAPE7, True, True), order=1, temp_order=6, lookup=(30.0, 160.0, 0.5),
         temps=[40, 60, 80, 100, 120, 140, 160], reflected=(23.0, 0.9)),
    dict(file=LWIR, filter=ND10, order=2, temp_order=5, lookup=(0.0, 200.0, 2.0), temps=[0, 50, 100, 150, 200]),
    dict(tophat=(4.7, 4.9, 0.001), atmosphere=(TAPE7, True, False), order=1, temp_order=3, lookup=(10.0, 40.0, 1.0),
         temps=[10, 20, 30, 40]),
]
RADIANCE_TEMPS = [-20.0, 0.0, 25.0, 100.0, 300.0]
RADIANCE_EMISSIVITIES = [1.0, 0.5, 0.0]


def build(case):
    cal = calmodel.Calibration()
    if 'tophat' in case:
        cal.set_tophat(*case['tophat'])
    else:
        cal.set_response_file(case['file'])
    if 'filter' in case:
        cal.add_filter(case['filter'])
    if 'atmosphere' in case:
        cal.set_atmosphere(*case['atmosphere'])
    return cal


def fmt(tag, numbers):
    return tag + ' ' + ' '.join(repr(float(v)) for v in numbers)


def main():
    rng = np.random.RandomState(7)
    lines = ['# made by make_calibration_goldens.py from calmodel.py; see PROVENANCE.md']
    for k, case in enumerate(CASES):
        cal = build(case)
        lines.append(fmt('axis', [k, len(cal.x), cal.x[0], cal.x[-1], cal.band[0], cal.band[1]]))
        for t in RADIANCE_TEMPS:
            for e in RADIANCE_EMISSIVITIES:
                lines.append(fmt('radiance', [k, t, e, cal.radiance(t, e), cal.radiance(t, e, atmosphere=False)]))
        page = calmodel.Page(cal, case['order'], case['temp_order'], case['lookup'])
        top = cal.radiance(case['temps'][-1], 1.0)
        gain, offset = 13000.0 / top, 1000.0
        curve = 0.02 * gain / top if case['order'] == 2 else 0.0  # a detector that bends a little

        def camera(radiance):
            return offset + gain * radiance + curve * radiance * radiance

        # Points: temperature, emissivity, counts, reflected temperature (-1000: none), reflected emissivity.
        for i, t in enumerate(case['temps']):
            rt, re = case.get('reflected', (None, 1.0)) if i % 2 else (None, 1.0)
            e = 0.95 if rt is not None else 1.0
            radiance = cal.radiance(t, e) if rt is None else cal.radiance_reflected(t, e, rt, re)
            counts = round(camera(radiance) + rng.normal(0, 0.5), 3)
            page.add(float(t), e, counts, rt, re)
            lines.append(fmt('point', [k, t, e, counts, -1000.0 if rt is None else rt, re]))
        page.compute()
        lines.append(fmt('coeffs', [k] + page.coeffs))
        lines.append(fmt('r2', [k, page.r2]))
        lines.append(fmt('tempcoeffs', [k] + page.temp_coeffs))
        lines.append(fmt('tempr2', [k, page.temp_r2]))
        lines.append(fmt('lookup', [k, len(page.lookup_t), page.lookup_t[0], page.lookup_t[-1],
                                    page.lookup_r[0], page.lookup_r[-1], case['lookup'][2]]))
        residual = max(abs(calmodel.poly_value(r, page.temp_coeffs) - t)
                       for r, t in zip(page.lookup_r, page.lookup_t))
        lines.append(fmt('fiterror', [k, residual]))
        counts = [p[2] for p in page.points]
        for c in np.linspace(min(counts), max(counts), 9):
            radiance = calmodel.poly_value(float(c), page.coeffs)
            lines.append(fmt('table', [k, c, radiance, calmodel.poly_value(radiance, page.temp_coeffs)]))
        lo, hi = case['lookup'][0], case['lookup'][1]
        for t in np.linspace(max(lo, case['temps'][0]), min(hi, case['temps'][-1]), 5):
            c = camera(cal.radiance(float(t), 1.0))
            lines.append(fmt('truth', [k, t, c, page.temperature(c)]))
    with open(os.path.join(HERE, 'golden_calibration.txt'), 'w') as out:
        out.write('\n'.join(lines) + '\n')


if __name__ == '__main__':
    main()
