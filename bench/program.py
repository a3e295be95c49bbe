#!/usr/bin/python3 -B
"""Measures the simulated program in the present X session in several states, and what it is
compared with: the floor, an empty window, a bare poll and the peers that are installed. Each runs
alone and is measured five times, or once with --quick. Writes the results as JSON.

Python shares no memory of Qt's with what it measures, which would lower that program's PSS."""

import argparse
import ctypes
import json
import os
import platform
import re
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter
from contextlib import suppress
from pathlib import Path

from environment import ROOT, Environment, Run, XObserver, end, wait_until
from figures import Failure, descendants, figures_of, medians, over_runs, process_figures
from relay import difference

# The first swap comes 16 s after the start, and the scroll 1.6 s later. Times are multiples of the
# 3 s between two polls and begin well after one, so that each has its share of polls. In seconds:
BETWEEN_POLLS = 3
START_IS_OVER = 3.6
REST = 12
CYCLE = 36  # of the sample tagline, about
SCROLL_HAS_BEGUN = 18.5
SLICE = 6
CHANGE_IS_OVER = 6
PEER_SLICE = 9
TIMES = 5
# Paints a minute while something scrolls all the time, at least.
FEWEST_PAINTS = 5 * 60


class Absent(Exception):
    """What a row measures is not installed or not built."""


def brands(left='Quiet Bicycle', tagline=None):
    """A scenario with two brands; without taglines nothing moves."""
    def creative(slot, brand, name):
        return {'slotId': slot, 'brandName': brand, **({} if tagline is None else {
            'copy': tagline, 'assetUrl': f'/assets/{name}.png', 'brandUrl': f'/brands/{name}'})}
    return {'creatives': [creative('left', left, 'quiet-bicycle'),
                          creative('right', 'Palindrome Tea', 'palindrome-tea')]}


SAMPLE = {}  # the service's own brands
STILL = brands()
# The longer of the sample taglines for both brands, which scrolls for some 16 s.
CYCLES = brands(tagline='Never odd or even: loose-leaf tea that tastes the same forwards and '
                        'backwards')
# Scrolls, at 22 points a second, until all is measured. No usual font at 12 points needs less than
# 5.5 points for a letter of this text, on average.
LETTERS = ((SLICE * TIMES + 3) * 22 + 73) / 5.5
SCROLL = brands(tagline='Never odd or even: loose-leaf tea. ' * (int(LETTERS / 35) + 1))


class Bench:
    """The built programs, a folder for files, how often to measure, and the X session."""

    def __init__(self, programs, scratch, times):
        self.programs = programs
        self.scratch = scratch
        self.times = times
        self.observer = XObserver(programs)

    def run(self, environment, program, *options):
        path = self.programs / program
        if not path.exists():
            raise Absent(f'{program} is not built')
        arguments = {OURS: ['--machine', environment.machine_file],
                     FLOOR: [environment.relay.root]}
        return Run(environment, self.observer, [path, *arguments.get(program, []), *options])


def require_polls(figures, seconds):
    """A program that does not poll as it should looks cheap."""
    due = seconds / BETWEEN_POLLS
    polls = round(figures['pollsPerMinute'] * figures['seconds'] / 60)
    if abs(polls - due) > 1:
        raise Failure(f'it polled {polls} times where {due:.0f} were due')
    return figures


def require_paints(figures, least):
    paints = figures['paintsPerMinute']
    if paints < least:
        raise Failure(f'no scrolling was seen: {paints / 60:.1f} paints a second')
    return figures


def starts(bench, environment, program):
    """From the start to the first capsule."""
    for _ in range(bench.times):
        with bench.run(environment, program) as run:
            yield {'startMs': run.start_ms}


def rest(bench, environment, program):
    """The time in which both capsules show their brands, each time after a start."""
    for _ in range(bench.times):
        with bench.run(environment, program) as run:
            run.wait_until_age(START_IS_OVER)
            yield require_polls(run.watch(REST), REST)


def cycles(bench, environment, program):
    """Brands and taglines in turn."""
    with bench.run(environment, program) as run:
        run.wait_until_age(START_IS_OVER)
        for _ in range(bench.times):
            figures = require_polls(run.watch(CYCLE), CYCLE)
            yield require_paints(figures, FEWEST_PAINTS / 3)


def scrolling(bench, environment, program):
    with bench.run(environment, program) as run:
        run.wait_until_age(SCROLL_HAS_BEGUN)
        for _ in range(bench.times):
            yield require_paints(run.watch(SLICE), FEWEST_PAINTS)


def changes(bench, environment, program):
    """Polls that bring another brand, from the last bytes of the reply to the first paint."""
    with bench.run(environment, program) as run:
        run.wait_until_age(START_IS_OVER)
        # The first time does not count: what it needs is found for the first time.
        for number in range(bench.times + 1):
            bench.observer.ask('paints')
            environment.set_scenario(brands(f'Brand No. {number}'))
            painted = bench.observer.ask('painted', 10_000)
            replied = environment.relay.last_poll_reply()
            if painted is None or replied is None:
                raise Failure('another brand was not shown')
            late = painted[0] / 1e6 - replied * 1e3
            if number > 0:
                yield {'replyToPixelsMs': late, 'replyToPixelsFrames': late / (1000 / 60)}
            time.sleep(0.5)  # the change's other paints come within this time


def opens(bench, environment, program):
    """From the command that opens the panel, as a click on the icon does, until the first of it is seen."""
    inside = 1300, 400  # pixels; in the panel, whether it is in the upper or the lower right corner
    with bench.run(environment, program, '--console') as run:
        run.wait_until_age(START_IS_OVER)
        for _ in range(bench.times):
            asked = time.monotonic()
            run.say('open')
            seen = bench.observer.ask('other', *inside, 5_000)
            if seen is None:
                raise Failure('the panel was not seen')
            yield {'openMs': seen[0] / 1e6 - asked * 1e3}
            time.sleep(1)
            subprocess.run(['xdotool', 'key', 'Escape'], check=True)
            if bench.observer.ask('other', *inside, 5_000) is None:
                raise Failure('the panel did not close')
            time.sleep(1)


def after(command=None, state=None, change=None):
    """After a command to the program's console or another change, which brings it into a state;
    nothing moves."""
    def measure(bench, environment, program):
        with bench.run(environment, program, '--console') as run:
            run.wait_until_age(START_IS_OVER)
            if command:
                run.tell(command)
            if change:
                change(environment)
            if state and not wait_until(lambda: json.loads(run.tell('state'))[state], 5):
                raise Failure(f'the program does not get into the state {state}')
            time.sleep(CHANGE_IS_OVER)
            for _ in range(bench.times):
                yield run.watch(SLICE)
    return measure


OURS, FLOOR, EMPTY = 'brimlet-simulator', 'bench-floor', 'bench-empty-window'
ROWS = (  # key, name, scenario, program, measurement
    ('brimlet.start', 'Brimlet, start to first capsule', SAMPLE, OURS, starts),
    ('brimlet.rest', 'Brimlet, at rest between swaps', SAMPLE, OURS, rest),
    ('brimlet.cycles', 'Brimlet, both taglines in turn with brands', CYCLES, OURS, cycles),
    ('brimlet.scrolling', 'Brimlet, both taglines scrolling', SCROLL, OURS, scrolling),
    ('brimlet.change', 'Brimlet, reply to pixels', STILL, OURS, changes),
    ('brimlet.open', 'Brimlet, opening the panel until it is seen', STILL, OURS, opens),
    ('brimlet.menu', 'Brimlet, panel open', STILL, OURS, after('open', 'isMenuOpen')),
    ('brimlet.paused', 'Brimlet, paused', STILL, OURS, after('pause', 'isPaused')),
    ('brimlet.asleep', 'Brimlet, screens asleep', STILL, OURS,
     after(state='screenAsleep', change=lambda environment: environment.set_screens_asleep(True))),
    ('brimlet.down', "Brimlet, no server at the service's address", STILL, OURS,
     after(change=lambda environment: environment.relay.shut())),
    ('empty.start', "an empty window of Qt's, start until it is seen", SAMPLE, EMPTY, starts),
    ('floor.start', 'floor, start to first capsule', SAMPLE, FLOOR, starts),
    ('floor.rest', 'floor, at rest between swaps', SAMPLE, FLOOR, rest),
    ('floor.cycles', 'floor, both taglines in turn with brands', CYCLES, FLOOR, cycles),
    ('floor.scrolling', 'floor, both taglines scrolling', SCROLL, FLOOR, scrolling),
    ('floor.change', 'floor, reply to pixels', STILL, FLOOR, changes),
)


def peer(package, *command, settings=None, polls=False):
    """Measures a program without capsules together with its child processes. `@SETTINGS@` in the
    command stands for the path of its settings, in which `@ROOT@` stands for the service's
    address; for one that does not poll the lines with that are left out."""
    def measure(bench, environment, _program):
        words = [str(word) for word in command]
        if words[0] == 'bench-curl-floor':
            words = [str(bench.programs / words[0]), environment.relay.root + '/api/display']
        if settings:
            lines = (ROOT / 'bench/peers' / settings).read_text().splitlines(keepends=True)
            text = ''.join(line for line in lines if polls or '@ROOT@' not in line)
            file = bench.scratch / settings
            file.write_text(text.replace('@ROOT@', environment.relay.root))
            words[words.index('@SETTINGS@')] = str(file)
        log = bench.scratch / 'peer.log'
        with log.open('w') as output:
            try:
                process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=output,
                                           stderr=subprocess.STDOUT)
            except FileNotFoundError:
                raise Absent(f'the package {package} is not installed' if package
                             else f'{command[0]} is not built') from None
        yield from watch_peer(bench, environment, process, log, polls)
    return measure


def watch_peer(bench, environment, process, log, polls):
    # Processes that a peer leaves in the background become children of this one.
    ctypes.CDLL(None).prctl(36, 1)  # PR_SET_CHILD_SUBREAPER
    known = {environment.service.pid, bench.observer.process.pid}

    def processes():
        return [pid for pid in descendants(os.getpid()) if pid not in known]

    def is_gone():
        process.poll()
        for pid in processes():
            with suppress(ChildProcessError):  # a child of another of these processes
                os.waitpid(pid, os.WNOHANG)
        return not processes()

    def spent():
        return sum(map(process_figures, processes()), Counter())

    try:
        time.sleep(6)  # the start is over
        polls_before = environment.relay.traffic()['polls']
        for _ in range(bench.times):
            start, traffic = time.monotonic(), environment.relay.traffic()
            before = spent()
            time.sleep(PEER_SLICE)
            after_it = spent()
            yield figures_of(time.monotonic() - start, before, after_it,
                             traffic=difference(environment.relay.traffic(), traffic))
        process.poll()  # what has ended counts as a process until it is waited for
        is_alive = bool(processes())
        seen = environment.relay.traffic()['polls'] - polls_before
    finally:
        for number in signal.SIGTERM, signal.SIGKILL:
            for pid in processes():
                with suppress(ProcessLookupError):
                    os.kill(pid, number)
            if wait_until(is_gone, 5):
                break
        else:
            raise Failure('a peer does not end')
    said = log.read_text(errors='replace').partition('\n')[0][:100]
    if not is_alive:
        raise Failure(f'ended by itself; it said: {said}')
    due = bench.times * PEER_SLICE // BETWEEN_POLLS
    if polls and seen < due - 1:
        raise Failure(f'asked the service {seen} times where {due} were due; it said: {said}')


def bar(program, package, settings, polls=True):
    return peer(package, program, '-c', '@SETTINGS@', settings=settings, polls=polls)


ROWS += tuple((key, name, SAMPLE, None, measure) for key, name, measure in (
    ('libcurl', 'libcurl alone, polling every 3 s', peer(None, 'bench-curl-floor', polls=True)),
    ('polybar', 'polybar with a text by curl every 3 s', bar('polybar', 'polybar', 'polybar.ini')),
    ('conky', 'conky with a text by curl every 3 s', bar('conky', 'conky-std', 'conky.conf')),
    ('tint2', 'tint2 with a text by curl every 3 s', bar('tint2', 'tint2', 'tint2rc')),
    ('conky.scrolling', 'conky, a like text scrolling, and curl every 3 s',
     bar('conky', 'conky-std', 'conky-scrolling.conf')),
    ('conky.scrollingAlone', 'conky, a like text scrolling and nothing else',
     bar('conky', 'conky-std', 'conky-scrolling.conf', polls=False)),
    *((program, f'{program}, idle', peer(package, program)) for program, package in (
        ('qlipper', 'qlipper'), ('flameshot', 'flameshot'), ('copyq', 'copyq'),
        ('kdeconnect-indicator', 'kdeconnect'))),
))


def machine_facts(qt_version):
    """What figures from this machine depend on."""
    def value(path, name):
        match = re.search(rf'^{name}\s*[:=]\s*"?(.*?)"?\s*$', Path(path).read_text(), re.MULTILINE)
        return match[1] if match else ''
    return {'cores': str(os.cpu_count()), 'cpu': value('/proc/cpuinfo', 'model name'),
            'date': time.strftime('%Y-%m-%d', time.gmtime()), 'kernel': platform.release(),
            'memory': value('/proc/meminfo', 'MemTotal'),
            'system': value('/etc/os-release', 'PRETTY_NAME'), 'qt': qt_version}


def qt_version(bench):
    """Of the Qt core library in the program's memory; empty when it does not run."""
    with Environment(bench.programs, bench.scratch, {}) as environment:
        try:
            with bench.run(environment, OURS) as run:
                maps = Path(f'/proc/{run.process.pid}/maps').read_text()
        except (Absent, Failure):  # the rows say why
            return ''
    match = re.search(r'/libQt6Core\.so\.(\S+)', maps)
    return match[1] if match else ''


def measured(bench, row):
    """A row of the results, with runs or with a remark why there are none; and whether it failed."""
    key, name, scenario, program, measure = row
    result = {'key': key, 'name': name}
    try:
        with Environment(bench.programs, bench.scratch, scenario) as environment:
            runs = list(measure(bench, environment, program))
    except Absent as absence:
        return result | {'remark': f'absent: {absence}'}, False
    except (Failure, OSError, ValueError) as failure:
        return result | {'remark': ' '.join(str(failure).split())[:200]}, True
    return result | {'median': medians(runs), 'greatest': over_runs(runs, max), 'runs': runs}, False


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('--quick', action='store_true', help='measure everything once')
    parser.add_argument('--only', default='', metavar='TEXT',
                        help='only rows whose key has the text in it, e.g. "scrolling"')
    parser.add_argument('--bin', type=Path, default=ROOT / 'build/release/bin', metavar='FOLDER',
                        help='the built programs')
    parser.add_argument('results', type=Path, help='the file for the results')
    options = parser.parse_args()
    version = re.search(r'project\(Brimlet VERSION (\S+)', (ROOT / 'CMakeLists.txt').read_text())[1]
    failures, rows = 0, []
    with tempfile.TemporaryDirectory(prefix='brimlet-bench.') as scratch:
        bench = Bench(options.bin, Path(scratch), 1 if options.quick else TIMES)
        machine = machine_facts(qt_version(bench))
        for row in ROWS:
            if options.only not in row[0]:
                continue
            result, has_failed = measured(bench, row)
            failures += has_failed
            rows.append(result)
            print(f"{result['name']}: {result.get('remark') or len(result['runs'])}", flush=True)
            for name, value in result.get('median', {}).items():
                print(f'    {name:30} {value:12.3f}')
            options.results.parent.mkdir(parents=True, exist_ok=True)
            options.results.write_text(json.dumps(
                {'version': version, 'machine': machine, 'rows': rows}, indent=2) + '\n')
        end(bench.observer.process)
    if failures:
        sys.exit(f'program.py: {failures} rows could not be measured')


if __name__ == '__main__':
    try:
        main()
    except (Failure, OSError) as failure:
        sys.exit(f'program.py: {failure}')
