#!/usr/bin/python3
"""Makes the sample calibration data of `qv cal` from a known synthetic camera.

The camera looks through the sensor response data/NelisW__pyradi__pyradi__data__MWIRsensor.txt
and the atmosphere data/NelisW__pyradi__pyradi__data__tape7-02.table; its
counts are linear in the radiance that reaches it: counts = offset + gain * L,
plus a small, seeded read noise. Two pages: a low range (-10..60 C) and a
high range (40..150 C) at a quarter of the gain. Some points are measured at
emissivity 0.96 in a 23 C room (the reflected term), one reading is bad and
disabled.

Writes data/cal_points.csv (the measured points and the page settings) and
data/cal_counts.csv (counts of sources at known temperatures, with the truth).
Run from the repository root with Debian's /usr/bin/python3.
"""
import os
import sys

import numpy as np

sys.dont_write_bytecode = True  # no __pycache__ in the source tree
sys.path.insert(0, os.path.join(os.path.dirname(__file__), '..', 'tests', 'calibration', 'data'))
import calmodel  # noqa: E402

RESPONSE = 'data/NelisW__pyradi__pyradi__data__MWIRsensor.txt'
ATMOSPHERE = 'data/NelisW__pyradi__pyradi__data__tape7-02.table'
ROOM = 23.0  # reflected temperature of the room, C
NOISE = 0.5  # counts, standard deviation

PAGES = [
    # gain (counts per W/(sr-cm^2)), offset, point temperatures, lookup (start, end, step)
    dict(offset=1200.0, full=(-10.0, 14000.0), temps=[-10, 0, 10, 20, 30, 40, 50, 60], lookup=(-20.0, 70.0, 0.5)),
    dict(offset=1100.0, full=(40.0, 15000.0), temps=[40, 55, 70, 85, 100, 115, 130, 150], lookup=(30.0, 160.0, 0.5)),
]
TRUTHS = [[-5.0, 12.5, 27.3, 44.0, 58.0], [48.0, 77.7, 101.0, 124.5, 146.0]]


def main():
    cal = calmodel.Calibration()
    cal.set_response_file(RESPONSE)
    cal.set_atmosphere(ATMOSPHERE)
    rng = np.random.RandomState(20261122)
    points = ['# made by tools/make_cal_points.py; see data/README.md',
              '# settings: order,PAGE,N  temporder,PAGE,N  lookup,PAGE,START,END,STEP',
              'page,temperature,emissivity,counts,reflected,reflected_temperature,reflected_emissivity,'
              'reflected_radiance,enabled']
    counts_lines = ['# made by tools/make_cal_points.py: counts of blackbodies (emissivity 1) at known temperatures',
                    'page,counts,truth_celsius']
    for p, page in enumerate(PAGES):
        # The gain puts the top of the range near 14000 of 16383 counts.
        gain = (page['full'][1] - page['offset']) / cal.radiance(page['temps'][-1], 1.0)

        def camera(radiance):
            return page['offset'] + gain * radiance

        points.append('order,%d,1' % p)
        points.append('temporder,%d,6' % p)
        points.append('lookup,%d,%r,%r,%r' % ((p,) + page['lookup']))
        for i, t in enumerate(page['temps']):
            emissive = i % 3 == 1
            e = 0.96 if emissive else 1.0
            radiance = cal.radiance_reflected(t, e, ROOM, 1.0) if emissive else cal.radiance(t, e)
            counts = round(camera(radiance) + rng.normal(0, NOISE), 2)
            kind = 'temperature' if emissive else 'none'
            points.append('%d,%r,%r,%.2f,%s,%r,1.0,0,1' % (p, float(t), e, counts, kind, ROOM))
        # A reading taken before the source settled: kept, but disabled.
        bad = page['temps'][3] + 2.5
        points.append('%d,%r,1.0,%.2f,none,0,1.0,0,0' % (p, bad, camera(cal.radiance(bad - 4, 1.0))))
        for truth in TRUTHS[p]:
            counts_lines.append('%d,%.2f,%r' % (p, camera(cal.radiance(truth, 1.0)), truth))
    with open('data/cal_points.csv', 'w') as out:
        out.write('\n'.join(points) + '\n')
    with open('data/cal_counts.csv', 'w') as out:
        out.write('\n'.join(counts_lines) + '\n')


if __name__ == '__main__':
    main()
