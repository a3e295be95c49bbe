#!/usr/bin/python3 -B
"""Measures the simulated program in the present Wayland session: with its overlay as a surface of
the compositor and, in turn, as an X11 window that Xwayland shows. Each way is measured five times,
or once with --quick, each time with a program of its own. Writes the results as JSON."""

import argparse
import json
import os
import subprocess
import sys
import tempfile
import time
from contextlib import suppress
from pathlib import Path

from environment import CAPSULE, ROOT, Environment, Run, XObserver, end
from figures import Failure, figures_of, medians, over_runs, process_figures
from program import (CYCLE, CYCLES, OURS, SCROLL, SCROLL_HAS_BEGUN, SLICE, START_IS_OVER, STILL,
                     TIMES, require_polls)

# Two pictures of the capsules differ when a text has scrolled between them: by 4 points.
BETWEEN_PICTURES = 0.2
BETWEEN_PAIRS = 1
AREA = '542,0 428x40'
REST = 30  # longer than between two swaps, since the difference is small

STATES = (  # key, name, scenario, age when it begins, seconds, pairs of pictures that differ
    ('rest', 'at rest', STILL, START_IS_OVER, REST, lambda share: share == 0),
    ('cycles', 'both taglines in turn with brands', CYCLES, START_IS_OVER, CYCLE,
     lambda share: share > 0.3),
    ('scrolling', 'both taglines scrolling', SCROLL, SCROLL_HAS_BEGUN, SLICE,
     lambda share: share == 1),
)
WAYS = (('native', 'native surface'), ('xwayland', 'X11 window'))


class Pictures:
    """What the compositor shows, by pictures that `grim` takes. They cost the compositor's time
    and not that of what is measured."""

    def __init__(self, programs, is_native):
        self._programs = programs
        self._is_native = is_native
        self._differ = []

    @staticmethod
    def _take(area):
        return subprocess.run(['grim', '-g', area, '-t', 'ppm', '-'], check=True,
                              stdout=subprocess.PIPE).stdout

    def await_capsule(self, seconds):
        end_of_time = time.monotonic() + seconds
        while max(self._take('{},{} 1x1'.format(*CAPSULE))[-3:]) >= 40:
            if time.monotonic() >= end_of_time:
                return None
        return time.monotonic()

    def find_window(self):
        """Fails unless the capsules are shown in the way that is measured."""
        observer = XObserver(self._programs)
        try:
            observer.find_window()
            is_native = False
        except Failure:
            is_native = True
        finally:
            end(observer.process)
        if is_native != self._is_native:
            raise Failure('the capsules are shown in the other way')

    def begin(self):
        self._differ = []

    def wait(self, seconds):
        """Takes pairs of pictures meanwhile."""
        end_of_time = time.monotonic() + seconds
        while end_of_time - time.monotonic() > BETWEEN_PAIRS:
            first, start = self._take(AREA), time.monotonic()
            time.sleep(BETWEEN_PICTURES)
            self._differ.append(self._take(AREA) != first)
            time.sleep(max(0, start + BETWEEN_PAIRS - time.monotonic()))
        time.sleep(max(0, end_of_time - time.monotonic()))

    def counted(self):
        return {}

    def share_that_moved(self):
        return sum(self._differ) / len(self._differ)


def xwayland():
    """The process that serves DISPLAY."""
    for path in Path('/proc').glob('[0-9]*/cmdline'):
        with suppress(OSError):  # the process has ended
            words = path.read_bytes().decode(errors='replace').split('\0')
            if Path(words[0]).name == 'Xwayland' and os.environ['DISPLAY'] in words:
                return int(path.parent.name)
    raise Failure('this session has no Xwayland')


def with_xwayland(figures, before, after):
    """The program's figures, and some of them together with Xwayland's."""
    its = figures_of(figures['seconds'], before, after)
    return figures | {f'{name}WithXwayland': figures[name] + its[name]
                      for name in ('pssMib', 'cpuMsPerMinute', 'voluntarySwitchesPerSecond')}


def measured_once(programs, scratch, state, way):
    _, _, scenario, age, seconds, moves_as_it_should = state
    variables = dict(os.environ)
    if way == 'xwayland':
        del variables['WAYLAND_DISPLAY']
    pictures = Pictures(programs, way == 'native')
    # A painted notch would be another window of X11's.
    with Environment(programs, scratch, scenario, {'drawNotch': False}) as environment, \
         Run(environment, pictures, [programs / OURS, '--machine', environment.machine_file],
             variables) as run:
        run.wait_until_age(age)
        process = xwayland()
        before = process_figures(process)
        figures = require_polls(run.watch(seconds), seconds)
        figures = with_xwayland(figures, before, process_figures(process))
    if not moves_as_it_should(pictures.share_that_moved()):
        raise Failure(f'of the pairs of pictures {pictures.share_that_moved():.0%} differ')
    return figures


def measured(programs, scratch, times, state):
    """A state's rows: both ways, in turns."""
    runs, remarks = {way: [] for way, _ in WAYS}, {}
    for _ in range(times):
        for way, _ in WAYS:
            if way not in remarks:
                try:
                    runs[way].append(measured_once(programs, scratch, state, way))
                except (Failure, OSError, ValueError, subprocess.CalledProcessError) as failure:
                    remarks[way] = ' '.join(str(failure).split())[:200]
    for way, name in WAYS:
        row = {'key': f'brimlet.{way}.{state[0]}', 'name': f'{name}, {state[1]}'}
        yield row | ({'remark': remarks[way]} if way in remarks else {
            'median': medians(runs[way]), 'greatest': over_runs(runs[way], max),
            'runs': runs[way]})


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('--quick', action='store_true', help='measure everything once')
    parser.add_argument('--only', default='', metavar='TEXT', help='only states with this text')
    parser.add_argument('--bin', type=Path, default=ROOT / 'build/release/bin', metavar='FOLDER',
                        help='the built programs')
    parser.add_argument('results', type=Path, help='the file for the results')
    options = parser.parse_args()
    rows = []
    with tempfile.TemporaryDirectory(prefix='brimlet-bench.') as scratch:
        for state in STATES:
            if options.only in state[0]:
                rows += measured(options.bin, Path(scratch), 1 if options.quick else TIMES, state)
    for row in rows:
        print(f"{row['name']}: {row.get('remark') or len(row['runs'])}")
        for name, value in row.get('median', {}).items():
            print(f'    {name:40} {value:12.3f}')
    options.results.parent.mkdir(parents=True, exist_ok=True)
    options.results.write_text(json.dumps({'rows': rows}, indent=2) + '\n')
    if failures := sum('remark' in row for row in rows):
        sys.exit(f'wayland.py: {failures} rows could not be measured')


if __name__ == '__main__':
    main()
