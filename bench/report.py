#!/usr/bin/python3 -B
"""Makes a report of the measurements in a folder: report.md with its plots, and report.json.

    bench/report.py FOLDER_WITH_RESULTS FOLDER_FOR_REPORT"""

import json
import re
import sys
from collections import defaultdict
from dataclasses import dataclass
from pathlib import Path


class Results:
    """All that was measured. A part that is missing is empty, has no figures, and is named in
    `absences`."""

    def __init__(self, folder):
        self.absences = []
        self.steps = []  # of Google Benchmark
        self._read_steps(folder)
        self.program = self._part(folder / 'program.json', dict, {'rows': []},
                                  'The running programs: `bench/program.py`')
        self.fleet = self._part(folder / 'fleet.json', list, [], 'Many hosts: `script/fleet`')
        self.poll = self._part(folder / 'poll.json', dict, {},
                               'Instructions and allocations of a poll: `script/lib/poll-cost`')
        if not self.steps:
            self.absences.append('Single steps: `bench-micro` has left no results.')
        for kind, figures in self.poll.items():
            if not figures:
                self.absences.append(f'One poll, {kind}: the service sent no such reply.')
        self.wayland = self._part(folder / 'wayland.json', dict, {'rows': []},
                                  'Under Wayland: `bench/wayland.py`')
        self.rows = {row['key']: row for part in (self.program, self.wayland)
                     for row in part.get('rows', [])}
        for row in self.rows.values():
            if 'median' not in row:
                self.absences.append(f"{row['name']}: {row.get('remark', '')}.")

    @staticmethod
    def _json(file):
        try:
            return json.loads(file.read_text())
        except (OSError, ValueError):
            return None

    def _part(self, file, kind, empty, source):
        content = self._json(file)
        if isinstance(content, kind) and all(key in content for key in empty):
            return content
        self.absences.append(f'{source} has left no results.')
        return empty

    def _read_steps(self, folder):
        for file in sorted(folder.glob('micro*.json')):
            content = self._json(file)
            if not isinstance(content, dict) or 'benchmarks' not in content:
                self.absences.append(f'Single steps: {file.name} is not whole; its benchmark '
                                     'did not end as it should.')
                continue
            for step in content['benchmarks']:
                if not step.get('error_occurred'):
                    self.steps.append(step)
                elif step.get('repetition_index', 0) == 0:
                    self.absences.append(f"{step['name']}: {step['error_message']}.")

    def median(self, key, figure):
        """A figure of a running program, e.g. of "brimlet.rest" its "pssMib"; None if missing."""
        return self.rows.get(key, {}).get('median', {}).get(figure)

    def greatest(self, key, figure):
        return self.rows.get(key, {}).get('greatest', {}).get(figure)

    def usual_fleet(self):
        """The runs of many hosts whose service sends validators and keeps connections."""
        return [run for run in self.fleet if run.get('service', 'usual') == 'usual']


WAYLAND_STATES = (('rest', 'at rest'), ('cycles', 'over whole cycles'),
                  ('scrolling', 'while both taglines scroll'))


def text(value):
    """A number with three significant figures, e.g. "0.49", "9.81", "12.6", "364", whole ones
    without decimals, "–" for None."""
    if value is None:
        return '–'
    if value == round(value) or abs(value) >= 99.95:
        decimals = 0
    elif abs(value) >= 9.995:
        decimals = 1
    else:
        decimals = 3 if abs(value) < 0.0995 else 2
    return f'{value:.{decimals}f}'


def ratio(first, second):
    """How many times the second the first is; None unless there are both."""
    return first / second if first is not None and second else None


def greatest_of(values):
    """None when any value is missing, or there is none."""
    values = list(values)
    return max(values) if values and None not in values else None


@dataclass(frozen=True)
class Target:
    what: str
    limit: float | None
    value: float | None
    unit: str
    is_strict: bool = False  # whether the value has to be below the limit, and not just at it

    @property
    def is_met(self):
        """None when limit or value is missing."""
        if self.limit is None or self.value is None:
            return None
        return self.value < self.limit if self.is_strict else self.value <= self.limit


def wayland_targets(results):
    """The native surface beside an X11 window that Xwayland shows, with both programs' CPU."""
    for state, name in WAYLAND_STATES:
        native, x11 = (f'brimlet.{way}.{state}' for way in ('native', 'xwayland'))
        cpu = 'cpuMsPerMinuteWithXwayland'
        yield Target(f'CPU under Wayland {name}, below that of an X11 window and Xwayland',
                     results.median(x11, cpu), results.median(native, cpu), 'ms a minute', True)
        pss = results.median(x11, 'pssMib')
        yield Target(f'PSS under Wayland {name}, beside that of an X11 window',
                     None if pss is None else pss + 1.5, results.median(native, 'pssMib'), 'MiB')
    # Rounded, since equal counts are divided by times that differ by microseconds.
    at_rest = (results.median(f'brimlet.{way}.rest', 'voluntarySwitchesPerSecond')
               for way in ('xwayland', 'native'))
    yield Target('voluntary switches under Wayland at rest, beside those of an X11 window',
                 *(None if value is None else round(value, 2) for value in at_rest), 'a second')


def targets(results):
    """What the program should cost at most, and what it does cost."""
    median = results.median
    cpu = 'cpuMsPerMinute'
    # Memory is lowest at rest: the start's pages are released, the swaps' not yet touched again.
    pss = greatest_of(median(key, 'pssMib') for key in ('brimlet.rest', 'brimlet.cycles'))
    scrolling = median('brimlet.scrolling', cpu)
    start = median('brimlet.start', 'startMs')
    fleet = results.usual_fleet()
    return [
        Target('PSS, the panel never opened', 10, pss, 'MiB'),
        *(Target(f'PSS, below that of {peer}', median(peer, 'pssMib'), pss, 'MiB', True)
          for peer in ('qlipper', 'flameshot', 'kdeconnect-indicator', 'copyq')),
        Target('CPU at rest', 12, median('brimlet.rest', cpu), 'ms a minute'),
        Target("CPU at rest beside the floor's", 3,
               ratio(median('brimlet.rest', cpu), median('floor.rest', cpu)), 'times'),
        Target("CPU over whole cycles, both taglines scrolling, beside the floor's", 1.8,
               ratio(median('brimlet.cycles', cpu), median('floor.cycles', cpu)), 'times'),
        Target('context switches at rest, all threads', 1,
               median('brimlet.rest', 'switchesPerSecond'), 'a second'),
        Target("CPU while both taglines scroll, beside the floor's", 1.5,
               ratio(scrolling, median('floor.scrolling', cpu)), 'times'),
        Target("CPU while both taglines scroll, beside conky's with curl", 0.9,
               ratio(scrolling, median('conky.scrolling', cpu)), 'times'),
        Target('paints while polls bring nothing new', 0,
               median('brimlet.rest', 'paintsPerMinute'), 'a minute'),
        Target('X requests while polls bring nothing new', 0,
               median('brimlet.rest', 'xRequestsPerMinute'), 'a minute'),
        Target('received for a poll that brings nothing new', 400,
               median('brimlet.rest', 'bytesReceivedPerPoll'), 'bytes'),
        Target('connections for the polls of a cycle', 1,
               results.greatest('brimlet.cycles', 'pollConnections'), 'in use'),
        Target('start to first capsule', 100, start, 'ms'),
        Target('start beside that of an empty window', 1.6,
               ratio(start, median('empty.start', 'startMs')), 'times'),
        Target('opening the panel until it is seen', 50, median('brimlet.open', 'openMs'), 'ms'),
        Target('reply to pixels', 1, median('brimlet.change', 'replyToPixelsFrames'),
               'frames of 1/60 s'),
        *wayland_targets(results),
        Target('memory of a host among many', 40,
               greatest_of(run.get('kibPerHost') for run in fleet), 'KiB'),
        Target('CPU of a poll among many hosts', 0.3,
               greatest_of(run.get('cpuMsPerPoll') for run in fleet), 'ms'),
    ]


def table(title, heads, rows, introduction=''):
    """Markdown; the first column is aligned left and the others right."""
    head, *body = ['| ' + ' | '.join(line) + ' |\n' for line in (heads, *rows)]
    rule = '|---|' + '--:|' * (len(heads) - 1) + '\n'
    return f'\n## {title}\n\n{introduction}{head}{rule}' + ''.join(body)


def machine_text(results):
    facts = defaultdict(lambda: '?', results.program.get('machine', {}))
    facts['version'] = results.program.get('version', '?')
    return ('Version {version}, {date}, on {cores} × {cpu}, {system}, kernel {kernel}, Qt {qt}.\n'
            .format_map(facts))


def target_table(results):
    words = {True: 'yes', False: '**no**', None: 'not measured'}
    return table('Targets', ['target', 'at most', 'value', 'met'], [
        [target.what, f"{'< ' * target.is_strict}{text(target.limit)} {target.unit}",
         text(target.value), words[target.is_met]] for target in targets(results)])


def state_table(results):
    columns = {'PSS MiB': 'pssMib', 'USS MiB': 'ussMib', 'dirty MiB': 'privateDirtyMib',
               'threads': 'threads', 'CPU ms/min': 'cpuMsPerMinute',
               'voluntary switches/s': 'voluntarySwitchesPerSecond',
               'involuntary/s': 'involuntarySwitchesPerSecond', 'paints/min': 'paintsPerMinute',
               'X requests/min': 'xRequestsPerMinute', 'X KiB/min': 'xKibPerMinute',
               'sent B/poll': 'bytesSentPerPoll', 'received B/poll': 'bytesReceivedPerPoll',
               'connections': 'pollConnections'}
    rows = [[row['name'], *(text(results.median(key, figure)) for figure in columns.values())]
            for key, row in results.rows.items() if 'paintsPerMinute' in row.get('median', {})]
    return table('In every state', ['', *columns], rows)


def wayland_table(results):
    columns = {'PSS MiB': 'pssMib', 'dirty MiB': 'privateDirtyMib', 'CPU ms/min': 'cpuMsPerMinute',
               'voluntary switches/s': 'voluntarySwitchesPerSecond',
               'both: CPU ms/min': 'cpuMsPerMinuteWithXwayland',
               'both: voluntary switches/s': 'voluntarySwitchesPerSecondWithXwayland',
               'both: PSS MiB': 'pssMibWithXwayland'}
    rows = [[row['name'], *(text(results.median(row['key'], figure))
                            for figure in columns.values())] for row in results.wayland['rows']]
    return table('Under Wayland', ['', *columns], rows,
                 'In sway. "Both" are the program and Xwayland.\n\n')


# The rows of times, which have a table of their own, by the end of their keys.
TIMES = {'start': 'startMs', 'change': 'replyToPixelsMs', 'open': 'openMs'}


def is_time(key):
    return key.rpartition('.')[2] in TIMES


def counterpart(key):
    """The program's state that a row is compared with."""
    ends = [state for state in ('cycles', 'scrolling') if key.endswith(state)]
    return f"brimlet.{(ends or ['rest'])[0]}"


def comparison_table(results):
    def row(key):
        def figures(*names):
            return [text(results.median(key, name)) for name in names]

        def beside(figure):
            if key.startswith('brimlet.'):
                return ''
            return text(ratio(results.median(counterpart(key), figure),
                              results.median(key, figure)))
        return [results.rows.get(key, {}).get('name', key), *figures(
            'pssMib', 'privateDirtyMib', 'cpuMsPerMinute', 'switchesPerSecond', 'pollConnections'),
            beside('pssMib'), beside('cpuMsPerMinute')]
    ours = ['brimlet.rest', 'brimlet.cycles', 'brimlet.scrolling']
    others = [key for key in results.rows if not key.startswith('brimlet.') and not is_time(key)]
    return table('Beside others', ['', 'PSS MiB', 'dirty MiB', 'CPU ms/min', 'switches/s',
                                   'connections', 'PSS ratio', 'CPU ratio'],
                 map(row, ours + others), 'The last two columns say how many times as much Brimlet '
                 'takes in the same state.\n\n')


def time_table(results):
    rows = []
    for key, row in results.rows.items():
        if is_time(key):
            figure = TIMES[key.rpartition('.')[2]]
            rows.append([row['name'], text(results.median(key, figure)),
                         text(results.greatest(key, figure)),
                         text(results.median(key, 'replyToPixelsFrames'))])
    return table('Until something is seen', ['', 'median ms', 'worst ms', 'median frames'], rows)


def fleet_table(results):
    return table('Many hosts in one process', [
        'hosts', 'service', 'requests/s', 'CPU ms/poll', 'KiB/host', 'p50 ms', 'p90 ms', 'p99 ms',
        'worst ms'], [
        [str(run['hosts']), run.get('service', ''),
         *(text(run.get(name)) for name in ('requestsPerSecond', 'cpuMsPerPoll', 'kibPerHost')),
         *(text(run.get('latencyMs', {}).get(name)) for name in ('p50', 'p90', 'p99', 'max'))]
        for run in results.fleet])


def poll_table(results):
    return table('One poll', ['', 'figure'], [
        [f'`{kind} {name}`', text(value)] for kind, figures in results.poll.items() if figures
        for name, value in figures.items()])


def step_table(results):
    rows = []
    for step in results.steps:
        is_aggregate = step.get('run_type') == 'aggregate'
        if step.get('aggregate_name') == 'median' if is_aggregate else step['repetitions'] <= 1:
            name = re.sub(r'/(iterations|repeats):\d+', '', step['run_name'])
            name = name.removesuffix('/real_time')
            rows.append([name, f"{text(step['cpu_time'])} {step['time_unit']}",
                         f"{text(step['real_time'])} {step['time_unit']}",
                         text(step.get('slowest ms')), text(step.get('allocations'))])
    return table('Single steps', ['', 'CPU', 'elapsed', 'slowest ms', 'allocations'], rows)


def markdown(results, plots):
    """All results, with plots as pairs of file name and title."""
    pictures = ''.join(f'\n![{title}]({file})\n' for file, title in plots)
    absences = ''.join(f'- {absence}\n' for absence in results.absences)
    return ''.join((
        machine_text(results), target_table(results), state_table(results),
        comparison_table(results), pictures, time_table(results),
        wayland_table(results) if results.wayland['rows'] else '',
        fleet_table(results) if results.fleet else '', poll_table(results) if results.poll else '',
        step_table(results) if results.steps else '',
        f'\n## Not measured\n\n{absences}' if absences else ''))


def as_json(results):
    listed = [{'target': target.what, 'limit': target.limit, 'strict': target.is_strict,
               'value': target.value, 'unit': target.unit, 'met': target.is_met}
              for target in targets(results)]
    return {**results.program, 'targets': listed, 'wayland': results.wayland['rows'],
            'fleet': results.fleet, 'poll': results.poll, 'steps': results.steps,
            'notMeasured': results.absences}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    from plots import write_plots  # takes a second; the rules above are tested without
    results, folder = Results(Path(sys.argv[1])), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    plots = write_plots(results, folder)
    (folder / 'report.json').write_text(json.dumps(as_json(results), indent=2) + '\n')
    (folder / 'report.md').write_text(markdown(results, plots))


if __name__ == '__main__':
    main()
