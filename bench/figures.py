"""What a process uses according to the kernel, and the figures of one run made of that."""

import os
import statistics
import time
from collections import Counter
from pathlib import Path


class Failure(Exception):
    """Something cannot be measured; the text says why."""


def _fields(path):
    """The first number behind each name in a file of "Name: number" lines; none when it is gone."""
    try:
        lines = Path(path).read_text().splitlines()
    except OSError:
        return {}
    pairs = (line.split(':', 1) for line in lines if ':' in line)
    return {name: int(words.split()[0]) for name, words in pairs if words.split()[:1]
            and words.split()[0].isdecimal()}


def _cpu_ms(pid):
    """The process's own clock: nanoseconds, where the ticks of /proc are ten milliseconds each."""
    try:
        return time.clock_gettime(~pid << 3 | 2) * 1e3  # as clock_getcpuclockid() computes it
    except OSError:
        return 0


def _children_ms(pid):
    """User and system ticks of ended child processes: words 16 and 17 of the stat file, of which
    the second is a name in parentheses."""
    try:
        words = Path(f'/proc/{pid}/stat').read_text().rpartition(')')[2].split()
    except OSError:
        return 0
    return sum(map(int, words[13:15])) * 1000 / os.sysconf('SC_CLK_TCK')


def process_figures(pid):
    """Memory in KiB, CPU in ms since the process started, context switches of its living threads.
    All zero when the process is gone."""
    memory = _fields(f'/proc/{pid}/smaps_rollup')
    threads = [_fields(path / 'status') for path in Path(f'/proc/{pid}/task').glob('*')]
    return Counter(
        pss=memory.get('Pss', 0), dirty=memory.get('Private_Dirty', 0),
        uss=memory.get('Private_Clean', 0) + memory.get('Private_Dirty', 0),
        cpu=_cpu_ms(pid), children=_children_ms(pid), threads=len(threads),
        voluntary=sum(thread.get('voluntary_ctxt_switches', 0) for thread in threads),
        involuntary=sum(thread.get('nonvoluntary_ctxt_switches', 0) for thread in threads))


def descendants(root):
    """The ids of the living descendants of a process."""
    tree = [root]
    for pid in tree:
        for path in Path(f'/proc/{pid}/task').glob('*/children'):
            try:
                tree += map(int, path.read_text().split())
            except OSError:
                pass  # the thread has ended
    return tree[1:]


def figures_of(seconds, before, after, paints=None, x_requests=None, traffic=None):
    """The figures of one run by name: memory at its end, and rates. `before` and `after` are
    process figures, `x_requests` a count and bytes, `traffic` is that of the relay. What was not
    counted has no figure."""
    minutes = seconds / 60
    spent = {name: after[name] - before[name]
             for name in ('cpu', 'children', 'voluntary', 'involuntary')}
    figures = {
        'seconds': seconds, 'pssMib': after['pss'] / 1024, 'ussMib': after['uss'] / 1024,
        'privateDirtyMib': after['dirty'] / 1024, 'threads': after['threads'],
        'cpuMsPerMinute': (spent['cpu'] + spent['children']) / minutes,
        'voluntarySwitchesPerSecond': spent['voluntary'] / seconds,
        'involuntarySwitchesPerSecond': spent['involuntary'] / seconds,
        'switchesPerSecond': (spent['voluntary'] + spent['involuntary']) / seconds}
    if paints is not None:
        figures['paintsPerMinute'] = paints / minutes
    if x_requests is not None:
        figures['xRequestsPerMinute'] = x_requests[0] / minutes
        figures['xKibPerMinute'] = x_requests[1] / minutes / 1024
    if traffic is not None:
        polls = traffic['polls']
        figures['pollsPerMinute'] = polls / minutes
        if polls > 0:
            figures['bytesSentPerPoll'] = traffic['sent'] / polls
            figures['bytesReceivedPerPoll'] = traffic['received'] / polls
            # A connection that was opened earlier and kept counts too.
            figures['pollConnections'] = max(1, traffic['connections'])
    return figures


def over_runs(runs, rule):
    """Each figure that all runs have, by a rule such as `max` over its values."""
    names = [name for name in runs[0] if all(name in run for run in runs)]
    return {name: rule([run[name] for run in runs]) for name in names}


def medians(runs):
    """Each figure's median over at least one run, of those figures that all runs have."""
    return over_runs(runs, statistics.median)
