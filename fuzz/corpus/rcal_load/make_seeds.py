#!/usr/bin/env python3
"""Writes the seed files of the rcal_load fuzz target: one RCAL file of each
revision 0 to 7 (one page of three points over a top hat, one filter, a
disabled point, a background image, tags), laid out field by field."""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


def astr(text):
    data = text.encode()
    return struct.pack('<B', len(data)) + data


def lstr(text):
    data = text.encode()
    return struct.pack('<I', len(data)) + data


def f64s(*values):
    return struct.pack('<%dd' % len(values), *values)


def sections():
    temps, counts = (20.0, 60.0, 100.0), (4000.0, 6500.0, 10000.0)
    base = b'____RCAL' + struct.pack('<H', 0) + astr('') + struct.pack('<I', 0) + astr('')
    base += struct.pack('<III', 0, 0, 1) + astr('filter.xy') + struct.pack('<I', 0)
    base += struct.pack('<I', 1) + struct.pack('<BiiI', 1, 0, 0, 1) + f64s(3.0, 5.0, 0.01)
    base += struct.pack('<I', 3)
    for t, c in zip(temps, counts):
        base += f64s(t, 1.0, 0.0, 0.0, c) + b'\x01'
    base += f64s(0, 0) + struct.pack('<I', 1) + f64s(0, 120, 1, 2) + f64s(0, 0) + struct.pack('<II', 4, 0)
    reflected = (struct.pack('<I', 0) + f64s(1.0, 0.0, 0.0)) * 3
    disabled = struct.pack('<I', 1) + f64s(40, 1, 0, 0, 5200) + b'\x01' + struct.pack('<I', 0) + f64s(1, 0, 0)
    curves = struct.pack('<I', 3) + f64s(3.0, 4.0, 5.0) + f64s(0.0, 1.0, 0.0) + struct.pack('<I', 0)
    curves += f64s(3.5, 4.5) + struct.pack('<I', 2) + f64s(3.0, 5.0, 1.0, 1.0)
    curves += f64s(0.001, 0.002, 0.003, 0.004) + struct.pack('<I', 2) + f64s(-0.001, 2.5e-7, 0.99)
    curves += struct.pack('<I', 2) + f64s(-40.0, 9e5, 0.98)
    overrides = b'\x00' + f64s(3.5, 4.5, 250) + b'\x01' + f64s(12, 16) + b'\x01'
    overrides += b'\x00' + struct.pack('<iI', 0, 0) + b'\x00' + struct.pack('<iI', 0, 0)
    overrides += f64s(1.0) + b'\x00' + struct.pack('<i', 2) + f64s(17.5)
    overrides += struct.pack('<IIIIII', 1, 0, 0, 2, 1, 2) + f64s(7, 8)
    tags = struct.pack('<I', 1) + lstr('Camera') + lstr('SC-1') + struct.pack('<I', 1) + lstr('Lens') + lstr('25 mm')
    mark = struct.pack('<I', 7)
    ranges = b'\x00' + f64s(4000, 10000, 0.01, 0.02, 20, 100)
    return [base, reflected, disabled, curves, overrides, tags, mark, ranges]


def main():
    parts = sections()
    for revision in range(len(parts)):
        with open(os.path.join(HERE, 'revision%d.cal' % revision), 'wb') as out:
            out.write(b''.join(parts[:revision + 1]))


if __name__ == '__main__':
    main()
