"""The plots of the report, as SVG files; equal results make equal bytes."""

import matplotlib
from matplotlib.figure import Figure
from report import text

OURS = '#0b7285'
OTHERS = '#adb5bd'
SECOND = '#e8590c'
INK = '#343a40'
PEERS = ('libcurl', 'polybar', 'conky', 'tint2', 'qlipper', 'flameshot', 'copyq',
         'kdeconnect-indicator')
AT_REST = ('brimlet.rest', 'floor.rest', *PEERS)
BARS = (  # file, title, figure, rows
    ('memory.svg', 'Memory at rest: PSS in MiB', 'pssMib', AT_REST),
    ('cpu-at-rest.svg', 'CPU at rest: milliseconds a minute', 'cpuMsPerMinute', AT_REST),
    ('cpu-scrolling.svg', 'CPU while text scrolls: milliseconds a minute', 'cpuMsPerMinute',
     ('brimlet.scrolling', 'floor.scrolling', 'conky.scrolling', 'conky.scrollingAlone')),
    ('switches.svg', 'Context switches a second, all threads', 'switchesPerSecond',
     ('brimlet.cycles', 'brimlet.scrolling', 'floor.scrolling', *AT_REST)),
)
PIXEL = 0.75  # in points


def _figure(title, height):
    """760 pixels wide, `height` pixels high; with its axes."""
    figure = Figure(figsize=(760 * PIXEL / 72, height * PIXEL / 72), layout='constrained')
    figure.suptitle(title, fontsize=15 * PIXEL, color=INK)
    axes = figure.subplots()
    axes.tick_params(colors=INK)
    return figure, axes


def _bars(title, bars):
    """Horizontal bars of (name, value, whether it is ours), each with its value behind it."""
    figure, axes = _figure(title, 48 + 25 * len(bars))
    names, values, are_ours = zip(*bars)
    # By position, since two bars may have one name.
    drawn = axes.barh(range(len(bars)), values, height=0.72,
                      color=[OURS if is_ours else OTHERS for is_ours in are_ours])
    axes.bar_label(drawn, [text(value) for value in values], padding=4, color=INK)
    axes.set_yticks(range(len(bars)), names)
    axes.set_xticks([])
    axes.set_xlim(0, max(*values, 1e-9) * 1.12)
    axes.set_ylim(len(bars) - 0.5, -0.5)
    axes.tick_params(length=0)
    axes.spines[:].set_visible(False)
    return figure


def _fleet(title, runs):
    """What a poll and a host cost over the number of hosts: a flat line is best."""
    figure, cpu = _figure(title, 380)
    memory = cpu.twinx()
    memory.tick_params(colors=INK)
    hosts = [run['hosts'] for run in runs]
    lines = [*cpu.plot(hosts, [run['cpuMsPerPoll'] for run in runs], 'o-', color=OURS,
                       label='CPU of a poll'),
             *memory.plot(hosts, [run['kibPerHost'] for run in runs], 's-', color=SECOND,
                          label='memory of a host')]
    cpu.set_xscale('log')
    cpu.set_xticks(hosts, [str(number) for number in hosts])
    cpu.minorticks_off()
    cpu.set_xlabel('hosts', color=INK)
    cpu.set_ylabel('CPU of a poll, ms', color=INK)
    memory.set_ylabel('memory of a host, KiB', color=INK)
    cpu.set_ylim(bottom=0)
    memory.set_ylim(bottom=0)
    cpu.grid(axis='y', color='#e9ecef')
    cpu.legend(handles=lines, loc='lower center', bbox_to_anchor=(0.5, 1), ncols=2, frameon=False)
    return figure


def write_plots(results, folder):
    """Writes those that there are figures for; pairs of file name and title."""
    figures = {}
    for file, title, name, keys in BARS:
        bars = [(results.rows[key]['name'], results.median(key, name), key.startswith('brimlet.'))
                for key in keys if results.median(key, name) is not None]
        if len(bars) >= 2:
            figures[file, title] = _bars, sorted(bars, key=lambda bar: bar[1])
    if len(results.usual_fleet()) >= 2:
        figures['fleet.svg', 'Many hosts in one process'] = _fleet, results.usual_fleet()
    # Text stays text; without the salt and the date, each run makes other bytes.
    with matplotlib.rc_context({'svg.fonttype': 'none', 'svg.hashsalt': 'brimlet',
                                'font.size': 13 * PIXEL,
                                'font.family': ['Inter', 'DejaVu Sans', 'sans-serif']}):
        for (file, title), (draw, values) in figures.items():
            draw(title, values).savefig(folder / file, metadata={'Date': None, 'Creator': None})
    return list(figures)
