"""The program whose story is told, its placement service, and what it says about itself."""

import json
import os
import subprocess
from pathlib import Path

import gi

from hands import Failure, call

gi.require_version('Atspi', '2.0')
from gi.repository import Atspi, GLib  # noqa: E402

ROOT = Path(__file__).resolve().parents[2]
ITEM = 'org.kde.StatusNotifierItem'
WATCHER = 'org.kde.StatusNotifierWatcher'


def end(process):
    process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class Program:
    """The simulated program on the 14-inch machine, with a browser that only records."""

    def __init__(self, programs, scratch):
        self._programs = programs
        self._scratch = scratch
        self.machine = scratch / 'machine.json'
        self.errors = scratch / 'program.err'
        self.protocol = scratch / 'protocol.log'
        self._opened = scratch / 'opened'
        tools = scratch / 'tools'
        tools.mkdir()
        opener = tools / 'xdg-open'
        opener.write_text(f'#!/bin/sh\nprintf "%s\\n" "$*" >>"{self._opened}"\n')
        opener.chmod(0o755)
        self._variables = {**os.environ, 'PATH': f'{tools}:{os.environ["PATH"]}'}
        self._service = subprocess.Popen([programs / 'brimlet-placement', '--port', '0'],
                                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        address = next((line.rpartition(' ')[2].strip() for line in self._service.stdout
                        if line.startswith('Listening on ')), None)
        if address is None:
            raise Failure('the placement service did not start')
        machine = json.loads((ROOT / 'docs/machines/laptop-14.json').read_text())
        machine |= {'infoDictionary': {'BrimletAPIURL': address}, 'secretStore': 'memory',
                    'drawNotch': False}
        self.machine.write_text(json.dumps(machine))
        self.process = None

    def _command(self, *arguments):
        return [self._programs / 'brimlet-simulator', '--machine', self.machine, *arguments]

    def start(self, is_traced=False):
        """Traced, it writes its Wayland protocol."""
        variables = self._variables | ({'WAYLAND_DEBUG': 'client'} if is_traced else {})
        with (self.protocol if is_traced else self.errors).open('a') as log:
            self.process = subprocess.Popen(self._command('--console'), stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, stderr=log, text=True, env=variables)

    def start_again(self):
        """As a user who starts it though it runs."""
        with self.errors.open('a') as log:
            subprocess.run(self._command(), stdout=subprocess.DEVNULL, stderr=log, env=self._variables,
                           stdin=subprocess.DEVNULL, timeout=15, check=False)

    def stop(self):
        if self.process is not None:
            end(self.process)
            self.process = None

    def close(self):
        self.stop()
        end(self._service)

    def runs(self):
        return self.process is not None and self.process.poll() is None

    def tell(self, command):
        if not self.runs():
            raise Failure('the program has ended')
        print(command, file=self.process.stdin, flush=True)
        return json.loads(self.process.stdout.readline())

    def state(self):
        return self.tell('state')

    def take_opened(self):
        """The pages opened since the last time."""
        pages = self._opened.read_text().split() if self._opened.exists() else []
        self._opened.unlink(missing_ok=True)
        return pages

    # ---- its status item, as hosts see it ------------------------------------------------------

    def item(self):
        """Its bus name and its properties; None where there is no item on the bus."""
        try:
            items = call(WATCHER, '/StatusNotifierWatcher', 'org.freedesktop.DBus.Properties', 'Get',
                         GLib.Variant('(ss)', (WATCHER, 'RegisteredStatusNotifierItems')))[0]
        except GLib.Error:
            return None
        for item in reversed(items):
            name, slash, path = item.partition('/')
            name = name.rstrip('@')  # before the path in GNOME
            try:
                owner, = call('org.freedesktop.DBus', '/', 'org.freedesktop.DBus',
                              'GetConnectionUnixProcessID', GLib.Variant('(s)', (name,)))
                if owner == self.process.pid:
                    return name, call(name, slash + path if slash else '/StatusNotifierItem',
                                      'org.freedesktop.DBus.Properties', 'GetAll',
                                      GLib.Variant('(s)', (ITEM,)))[0]
            except GLib.Error:
                continue
        return None

    def menu(self):
        """The labels of the item's menu; None without one."""
        name, properties = self.item() or (None, {})
        if not (path := properties.get('Menu')):
            return None
        try:
            _, (_, _, entries) = call(name, path, 'com.canonical.dbusmenu', 'GetLayout',
                                      GLib.Variant('(iias)', (0, -1, [])))
        except GLib.Error:
            return None
        return [entry[1].get('label', '').replace('_', '') for entry in entries
                if entry[1].get('type') != 'separator' and entry[1].get('visible', True)]

    # ---- its panel, as screen readers see it ---------------------------------------------------

    def control(self, names, role=None):
        """The centre of the first shown control with one of these names or that role, as parts of the
        panel's width and height; None without one."""
        try:
            desktop = Atspi.get_desktop(0)
            for program in map(desktop.get_child_at_index, range(desktop.get_child_count())):
                if program and program.get_process_id() == self.process.pid:
                    for window in map(program.get_child_at_index, range(program.get_child_count())):
                        if window.get_name() == 'Brimlet panel':
                            found = self._below(window, names, role)
                            if found:
                                return found
        except GLib.Error:
            pass
        return None

    def _below(self, window, names, role):
        box = window.get_extents(Atspi.CoordType.SCREEN)
        waiting = [window]
        while waiting:
            node = waiting.pop(0)
            shown = node.get_state_set().contains(Atspi.StateType.SHOWING)
            if shown and (node.get_name() in names or node.get_role() == role):
                at = node.get_extents(Atspi.CoordType.SCREEN)
                if at.width > 0:
                    return ((at.x + at.width / 2 - box.x) / box.width,
                            (at.y + at.height / 2 - box.y) / box.height)
            waiting += [child for child in map(node.get_child_at_index, range(node.get_child_count()))
                        if child]
        return None
