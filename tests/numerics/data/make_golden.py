#!/usr/bin/python3
"""Reference values for the curve and fit tests, from numpy and scipy.

Writes golden_*.txt beside this script. Every line is a tag followed by
numbers written with repr(), so the tests read back the very doubles used
here. Inputs (axes, samples) are written out too, so the C++ side fits
exactly the data that numpy and scipy saw.

  golden_planck.txt     planck <wavelength> <celsius> <emissivity> <value>
  golden_bands.txt      band <start> <end> <step-count> <celsius> <rect-tl> <rect-tr> <trapezoid> <quad>
  golden_polyfit.txt    polyfit <order> <n> <x...> <y...> <coefficients, constant first...> <r2>
  golden_interp.txt     interp <outside> <n1> <x1...> <y1...> <n2> <x2...> <y2...>
  golden_lmfit.txt      lmfit <model> <maxcalls> <np> <p0...> <mask...> <n> <x...> [<x2...>] <y...> <ier> <p...>
  golden_response.txt   <file name in response/> <rows> <first x> <last x> <min x> <max x> <first y> <last y>

Planck values and the discrete band sums repeat the library's formulas term by
term in Python floats (glibc's exp, as the library uses). The continuous band
integral comes from scipy.integrate.quad, polynomial fits from numpy.polyfit
(least squares by SVD, not the normal equations), R^2 from numpy.corrcoef,
resampling from numpy.interp, non-linear fits from scipy.optimize.leastsq,
the MINPACK lmdif algorithm with the library's control values, and the rows
of the spectral response files from numpy.loadtxt (first two columns).

Run from anywhere: /usr/bin/python3 make_golden.py
"""
import math
import os

import numpy as np
from scipy import integrate, optimize

HERE = os.path.dirname(os.path.abspath(__file__))
C1, C2 = 11910.06, 14388.3  # the calibration's radiation constants
TOL = 6.661338147750939e-15  # 30 * DBL_EPSILON


def write(name, lines):
    with open(os.path.join(HERE, name), "w", encoding="ascii", newline="\n") as f:
        f.write(f"# written by make_golden.py; {len(lines)} cases\n")
        for tag, numbers in lines:
            f.write(tag + " " + " ".join(repr(float(v)) for v in numbers) + "\n")


def planck(l, celsius, emissivity):
    t = celsius + 273.15
    l2 = l * l
    l5 = l2 * l2 * l
    return emissivity * (C1 / l5) * 1 / (math.exp(C2 / (l * t)) - 1)


def axis(start, end, count):
    step = (end - start) / (count - 1)
    x = [i * step + start for i in range(count - 1)] + [end]
    x[0] = start
    return x


def ordered_sum(terms):
    total = 0.0
    for term in terms:
        total += term
    return total


def planck_cases():
    lines = []
    for l in (0.5, 1.0, 2.2, 3.0, 4.0, 7.5, 10.0, 12.0, 14.0, 25.0, 100.0):
        for celsius in (-40.0, 0.0, 25.0, 100.0, 500.0, 1500.0):
            for e in (1.0, 0.95):
                lines.append(("planck", (l, celsius, e, planck(l, celsius, e))))
    return lines


def band_cases():
    lines = []
    for start, end in ((3.0, 5.0), (8.0, 12.0), (7.5, 13.5)):
        count = math.ceil((end - start) / 0.001)
        x = axis(start, end, count)
        for celsius in (0.0, 25.0, 100.0, 226.85):
            y = [planck(l, celsius, 1.0) for l in x]
            pairs = [(x[i + 1] - x[i], y[i], y[i + 1] - y[i]) for i in range(count - 1)]
            tl = ordered_sum(dx * y0 for dx, y0, dy in pairs)
            tr = ordered_sum(dx * y0 + dx * dy for dx, y0, dy in pairs)
            mid = ordered_sum(dx * y0 + dx * dy * 0.5 for dx, y0, dy in pairs)
            assert abs(mid - np.trapz(y, x)) <= 1e-13 * mid
            exact, _ = integrate.quad(planck, start, end, args=(celsius, 1.0), epsabs=0, epsrel=1e-13, limit=200)
            lines.append(("band", (start, end, count, celsius, tl, tr, mid, exact)))
    return lines


def noise(n, scale, seed):
    return [scale * math.sin(seed * (i + 1) * 1.618033988749895) for i in range(n)]


def polyfit_cases():
    cases = [
        (1, np.linspace(0.0, 9.0, 10), lambda x: 2.0 + 3.0 * x, 0.05, 1.3),
        (2, np.linspace(-2.0, 3.0, 25), lambda x: 1.0 - 0.5 * x + 0.25 * x * x, 0.01, 2.1),
        (3, np.linspace(0.0, 5.0, 30), lambda x: -1.0 + x - 0.3 * x ** 2 + 0.05 * x ** 3, 0.002, 3.7),
        (2, np.linspace(1000.0, 15000.0, 12), lambda x: 1e-4 + 2e-7 * x + 3e-12 * x * x, 1e-7, 4.9),
        (4, np.linspace(0.1, 2.0, 40), lambda x: np.exp(x), 0.0, 1.0),
    ]
    lines = []
    for order, xs, f, scale, seed in cases:
        x = [float(v) for v in xs]
        y = [float(f(v)) + e for v, e in zip(xs, noise(len(x), scale, seed))]
        c = list(np.polyfit(x, y, order)[::-1])
        model = np.polyval(c[::-1], x)
        r2 = np.corrcoef(y, model)[0, 1] ** 2
        lines.append(("polyfit", [order, len(x)] + x + y + c + [r2]))
    return lines


def interp_cases():
    x1 = [2.9, 6.9, 7.1, 7.2, 7.3, 7.6, 8.0, 9.5, 10.0, 11.25, 12.7, 14.3]
    y1 = [0.0, 0.0, 0.001, 0.002, 0.004, 0.068, 0.738, 0.81, 0.9, 0.55, 0.0, 0.0]
    lines = []
    for start, end, count, outside in ((7.0, 13.0, 61, 0.0), (2.0, 15.0, 14, -1.0), (3.33, 14.01, 97, 0.5)):
        x2 = axis(start, end, count)
        y2 = np.interp(x2, x1, y1, left=outside, right=outside)
        lines.append(("interp", [outside, len(x1)] + x1 + y1 + [len(x2)] + x2 + list(y2)))
    return lines


MODELS = {
    # name: (model over one sample, abscissas per sample)
    "decay": (lambda x, p: p[0] * math.exp(-p[1] * x) + p[2], 1),
    "gauss": (lambda x, p: p[0] * math.exp(-0.5 * ((x - p[1]) / p[2]) * ((x - p[1]) / p[2])), 1),
    "plane": (lambda x1, x2, p: p[0] * math.exp(p[1] * x1) + p[2] * x2, 2),
}
MODEL_IDS = {"decay": 1, "gauss": 2, "plane": 3}


def lmfit_case(name, truth, start, mask, maxcalls, xs, scale, seed):
    f, arity = MODELS[name]
    n = len(xs[0])
    ys = [f(*(col[i] for col in xs), truth) + e for i, e in zip(range(n), noise(n, scale, seed))]
    free = [i for i, m in enumerate(mask) if m]

    def residuals(q):
        p = list(start)
        for k, i in enumerate(free):
            p[i] = q[k]
        return [ys[i] - f(*(col[i] for col in xs), p) for i in range(n)]

    q, _, _, _, ier = optimize.leastsq(residuals, [start[i] for i in free], full_output=True, ftol=TOL, xtol=TOL,
                                      gtol=TOL, maxfev=maxcalls * (len(free) + 1), epsfcn=TOL, factor=100.0)
    p = list(start)
    for k, i in enumerate(free):
        p[i] = q[k]
    numbers = [MODEL_IDS[name], maxcalls, len(start)] + list(start) + [1.0 if m else 0.0 for m in mask] + [n]
    for col in xs:
        numbers += col
    return ("lmfit", numbers + ys + [ier] + p)


def lmfit_cases():
    t = [i * 0.1 for i in range(40)]
    g = [i * 0.25 - 2.0 for i in range(33)]
    u = [(i % 7) * 0.3 for i in range(30)]
    v = [(i % 5) - 2.0 for i in range(30)]
    return [
        lmfit_case("decay", [2.5, 1.3, 0.5], [1.0, 1.0, 0.0], [True, True, True], 100, [t], 0.01, 7.3),
        lmfit_case("decay", [2.5, 1.3, 0.5], [1.0, 1.0, 0.5], [True, True, False], 100, [t], 0.01, 7.3),
        lmfit_case("gauss", [3.0, 0.4, 1.1], [2.0, 0.0, 1.5], [True, True, True], 100, [g], 0.02, 5.1),
        lmfit_case("decay", [2.5, 1.3, 0.5], [1.0, 1.0, 0.0], [True, True, True], 1, [t], 0.01, 7.3),
        lmfit_case("plane", [1.5, 0.7, -0.8], [1.0, 0.5, 0.0], [True, True, True], 100, [u, v], 0.005, 2.9),
    ]


def response_cases():
    lines = []
    folder = os.path.join(HERE, "response")
    for name in sorted(os.listdir(folder)):
        table = np.loadtxt(os.path.join(folder, name), usecols=(0, 1), ndmin=2)
        x, y = table[:, 0], table[:, 1]
        lines.append((name, (len(x), x[0], x[-1], x.min(), x.max(), y[0], y[-1])))
    return lines


def main():
    write("golden_planck.txt", planck_cases())
    write("golden_bands.txt", band_cases())
    write("golden_polyfit.txt", polyfit_cases())
    write("golden_interp.txt", interp_cases())
    write("golden_lmfit.txt", lmfit_cases())
    write("golden_response.txt", response_cases())


if __name__ == "__main__":
    main()
