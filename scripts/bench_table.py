#!/usr/bin/python3
"""Turns Google Benchmark JSON files of paired benchmarks (bench/PairedTiming.h)
into the Markdown table of bench/RESULTS.md: the median of the repetitions."""
import json
import sys


def rate(value):
    for unit, scale in (('G', 1e9), ('M', 1e6), ('k', 1e3)):
        if value >= scale:
            return '%.3g %s/s' % (value / scale, unit)
    return '%.3g /s' % value


def main(paths):
    rows = []
    context = None
    for path in paths:
        with open(path) as f:
            report = json.load(f)
        context = context or report.get('context', {})
        for b in report.get('benchmarks', []):
            if b.get('aggregate_name') != 'median' or 'speed_ratio' not in b:
                continue
            goal = b.get('goal', 0)
            ratio = b['speed_ratio']
            met = '' if not goal else (' ✓' if ratio >= goal else ' ✗')
            rows.append('| %s | %s | %s | %.2f%s | %s |' % (
                b.get('label', b['run_name']), rate(b.get('qv_per_second', 0)),
                rate(b.get('reference_per_second', 0)), ratio, met, '≥ %.3g' % goal if goal else '—'))
    print('# Benchmark results')
    print()
    print('Written by `./scripts/bench.sh`. Each row pairs qv with its reference in one process,')
    print('interleaved round by round; ratio = qv speed / reference speed, median of three runs.')
    print('Rates are items (pixels, bytes, calls or lock rounds) per second.')
    if context:
        print('Machine: %s CPUs at %s MHz, load average %s.' % (
            context.get('num_cpus'), context.get('mhz_per_cpu'),
            ', '.join('%.2f' % x for x in context.get('load_avg', []))))
    print()
    print('| work | qv | reference | ratio | goal |')
    print('|---|---|---|---|---|')
    for row in rows:
        print(row)


if __name__ == '__main__':
    main(sys.argv[1:])
