"""An independent model of qv's radiometric calibration, in Python and numpy.

It is written from the documented algorithms, not from the C++ sources:
Planck's law with the calibration's constants, spectral curves resampled to
one final axis, the atmosphere (transmission and response-weighted path
radiance), the right-hand Riemann sum, the polynomial least-squares fit by
normal equations and Gauss-Jordan elimination with full pivoting, and the
squared correlation. Every floating-point operation is done in the documented
order on IEEE doubles (math.exp is the C library's exp), so results can be
compared with the library to the last few bits.

Used by make_calibration_goldens.py and by tools/make_cal_points.py.
"""
import math

import numpy as np

C1 = 11910.06  # W um^4 / (sr cm^2)
C2 = 14388.3  # um K


def planck(x, t, e):
    kelvin = t + 273.15
    out = []
    for l in x:
        l2 = l * l
        l5 = l2 * l2 * l
        out.append(e * (C1 / l5) * 1 / (math.exp(C2 / (l * kelvin)) - 1))
    return out


def xaxis_count(start, end, count):
    if start > end:
        start, end = end, start
    count = max(count, 2)
    step = (end - start) / float(count - 1)
    x = [float(i) * step + start for i in range(count)]
    x[0] = start
    x[-1] = end
    return x


def xaxis_step(start, end, step):
    if start > end:
        start, end = end, start
    n = max(math.ceil((end - start) / step), 10)
    return xaxis_count(start, end, n)


def interpolate(x1, y1, x2, outside):
    y2, i, n1 = [], 0, len(x1)
    for v in x2:
        while i < n1 and x1[i] < v:
            i += 1
        if i == n1:
            y2.append(outside)
        elif abs(x1[i] - v) <= 1e-8:
            y2.append(y1[i])
        elif i == 0:
            y2.append(outside)
        else:
            y2.append((y1[i] - y1[i - 1]) / (x1[i] - x1[i - 1]) * (v - x1[i - 1]) + y1[i - 1])
    return y2


def scale_to_one(y):
    m = max(y)
    return y if abs(m - 1.0) <= 1e-8 else [v / m for v in y]


def integrate_rect_tr(x, y):
    total = 0.0
    for i in range(len(x) - 1):
        dx, dy = x[i + 1] - x[i], y[i + 1] - y[i]
        total += dx * y[i] + dx * dy
    return total


def read_xy(path):
    x, y = [], []
    for raw in open(path, encoding='latin-1'):
        line = raw.strip()
        if not line or raw.startswith('#'):
            continue
        words = line.replace(',', ' ').split()
        if len(words) < 2:
            break
        x.append(float(words[0]))
        y.append(float(words[1]))
    return x, y


def read_modtran(path):
    x, t, r, started = [], [], [], False
    for raw in open(path, encoding='latin-1'):
        line = raw.strip()
        if not line:
            continue
        if not started:
            started = line.upper().startswith('FREQ')
            continue
        if line.startswith('-9999.'):
            break
        f, tt, rr = (float(w) for w in line.split()[:3])
        x.insert(0, 10000.0 / f)
        t.insert(0, tt)
        r.insert(0, rr * (f * f / 10000.0))
    return x, t, r


def lls_fit(x, y, order):
    """Polynomial fit, constant term first; (ok, coefficients)."""
    n = order + 1
    a = [[0.0] * n for _ in range(n)]
    b = [0.0] * n
    for xk, yk in zip(x, y):
        basis = [1.0]
        for j in range(1, n):
            basis.append(basis[j - 1] * xk)
        for r in range(n):
            for c in range(r + 1):
                a[r][c] += basis[r] * basis[c]
            b[r] += yk * basis[r]
    for r in range(n):
        for c in range(r + 1, n):
            a[r][c] = a[c][r]
    used = [False] * n
    for _ in range(n):
        big, row, col, found = 0.0, 0, 0, False
        for j in range(n):
            if used[j]:
                continue
            for k in range(n):
                if used[k] or not abs(a[j][k]) >= big:
                    continue
                big, row, col, found = abs(a[j][k]), j, k, True
        if not found:
            return False, [0.0] * n
        used[col] = True
        if row != col:
            a[row], a[col] = a[col], a[row]
            b[row], b[col] = b[col], b[row]
        if a[col][col] == 0.0:
            return False, [0.0] * n
        inverse = 1.0 / a[col][col]
        a[col][col] = 1.0
        a[col] = [v * inverse for v in a[col]]
        b[col] *= inverse
        for r in range(n):
            if r == col:
                continue
            factor = a[r][col]
            a[r][col] = 0.0
            a[r] = [a[r][l] - a[col][l] * factor for l in range(n)]
            b[r] -= b[col] * factor
    return True, b


def horner(x, c):
    f = c[-1]
    for j in range(len(c) - 2, -1, -1):
        f = f * x + c[j]
    return f


def poly_value(x, c):
    """PolyValue: sum of c[i] * pow(x, i); 0 for fewer than two coefficients."""
    if len(c) < 2:
        return 0.0
    return sum(ci * x ** i for i, ci in enumerate(c))


def calc_r2(x, y, c):
    sy = syy = sf = sff = syf = 0.0
    for xi, yi in zip(x, y):
        f = horner(xi, c)
        sy += yi
        syy += yi * yi
        sf += f
        sff += f * f
        syf += yi * f
    n = float(len(x))
    cov = n * syf - sf * sy
    return cov * cov / ((n * syy - sy * sy) * (n * sff - sf * sf))


class Calibration:
    """The spectral model of one calibration: a response, additional
    responses and an atmosphere on one final axis."""

    def __init__(self):
        self.x, self.response = [], []
        self.additional = []
        self.transmission = self.path = None
        self.band = (0.0, 0.0)

    def set_tophat(self, start, end, delta):
        self.x = xaxis_step(start, end, delta)
        self.response = [1.0] * len(self.x)
        self.band = (start, end)

    def set_response_file(self, path):
        rx, ry = read_xy(path)
        ry = scale_to_one(ry)
        above = [i for i, v in enumerate(ry) if v > 0.5]
        self.band = (rx[above[0] if above else 0], rx[above[-1] if above else -1])
        step = min((rx[-1] - rx[0]) / len(rx), 0.01)
        self.x = xaxis_step(rx[0], rx[-1], step)
        self.response = interpolate(rx, ry, self.x, 0)

    def add_filter(self, path):
        fx, fy = read_xy(path)
        self.additional.append(interpolate(fx, fy, self.x, 0))

    def set_atmosphere(self, path, transmission=True, path_radiance=True):
        mx, mt, mr = read_modtran(path)
        self.transmission = interpolate(mx, mt, self.x, 0) if transmission else None
        self.path = interpolate(mx, mr, self.x, 0) if path_radiance else None

    def radiance(self, t, e, atmosphere=True):
        s = planck(self.x, t, e)
        s = [si * ri for si, ri in zip(s, self.response)]
        for f in self.additional:
            s = [si * fi for si, fi in zip(s, f)]
        if atmosphere:
            for i in range(len(s)):
                if self.transmission is not None:
                    s[i] = s[i] * self.transmission[i]
                if self.path is not None:
                    s[i] = self.path[i] * self.response[i] + s[i]
        return integrate_rect_tr(self.x, s)

    def radiance_reflected(self, t, e, rt, re):
        return self.radiance(t, e) + self.radiance(rt, (1 - e) * re)


class Page:
    """One calibration page: points (temperature, emissivity, counts,
    reflected temperature or None, reflected emissivity), fits and lookup."""

    def __init__(self, cal, order=1, temp_order=6, lookup=(0.0, 100.0, 1.0), lookup_e=1.0):
        self.cal, self.order, self.temp_order = cal, order, temp_order
        self.lookup, self.lookup_e = lookup, lookup_e
        self.points = []

    def add(self, t, e, counts, rt=None, re=1.0):
        self.points.append((t, e, counts, rt, re))

    def point_radiance(self, p):
        t, e, _, rt, re = p
        return self.cal.radiance(t, e) if rt is None else self.cal.radiance_reflected(t, e, rt, re)

    def compute(self):
        pts = sorted(self.points, key=lambda p: p[0])
        counts = [p[2] for p in pts]
        rad = [self.point_radiance(p) for p in pts]
        ok, self.coeffs = lls_fit(counts, rad, self.order)
        self.r2 = calc_r2(counts, rad, self.coeffs)
        self.lookup_t = xaxis_step(*self.lookup)
        self.lookup_r = [self.cal.radiance(t, self.lookup_e) for t in self.lookup_t]
        ok, self.temp_coeffs = lls_fit(self.lookup_r, self.lookup_t, self.temp_order)
        self.temp_r2 = calc_r2(self.lookup_r, self.lookup_t, self.temp_coeffs)
        return self

    def temperature(self, counts):
        return poly_value(poly_value(counts, self.coeffs), self.temp_coeffs)


def as_array(values):
    return np.asarray(values, dtype=np.float64)
