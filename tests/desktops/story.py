#!/usr/bin/python3 -B
"""Tells one story about the program in the present desktop of script/desktop-session, and writes down what
was seen: a JSON file with a row per question, and a picture of the desktop with the panel open."""

import argparse
import functools
import json
import math
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from urllib.parse import urlsplit

import gi

gi.require_version('Atspi', '2.0')
from gi.repository import Atspi, GLib  # noqa: E402
from PIL import ImageChops  # noqa: E402

import hands  # noqa: E402
from hands import (CAPSULES, HEIGHT, WIDTH, Failure, call, changed, difference, has_owner,  # noqa: E402
                   output, wait_until)
from program import Program, end  # noqa: E402

HELPERS = Path(__file__).resolve().parents[1] / 'support/session'
LEFT, RIGHT = (550, 0, 658, 26), (854, 0, 962, 26)  # the capsules, without their shadow
COLOUR = 0xd0, 0x40, 0xc0  # of the other window
NOWHERE = 300, 560  # where no desktop has anything
PATIENCE = 4  # seconds for what a click or key does
BETWEEN_CLICKS = 1.2  # seconds, so that two are no double click
VERSIONS = {  # the packages in the header
    'xfce': ('Xfce', 'xfce4-panel', 'X11'), 'lxqt': ('LXQt', 'lxqt-panel', 'X11, openbox'),
    'mate': ('MATE', 'mate-panel', 'X11'), 'sway': ('sway', 'sway', 'Wayland'),
    'plasma': ('Plasma', 'plasma-workspace', 'Wayland'), 'gnome': ('GNOME', 'gnome-shell', 'Wayland')}


def upstream(package):
    """The version of an installed package without Debian's parts."""
    version = output('dpkg-query', '-W', '-f=${Version}', package)
    return re.sub(r'^\d+:|[-+].*$', '', version)


def title(desktop):
    name, package, server = VERSIONS[desktop]
    if desktop == 'sway':
        server += f', waybar {upstream("waybar")}'
    if desktop == 'gnome':
        server += f', AppIndicator {upstream("gnome-shell-extension-appindicator")}'
    return f'{name} {upstream(package)} ({server})'


def size_of(box):
    return f'{box[2] - box[0]}×{box[3] - box[1]}'


def box_of(place):
    x, y, width, height = place
    return x, y, x + width, y + height


def grown(box, by):
    return box[0] - by, box[1] - by, box[2] + by, box[3] + by


def overlap(one, other):
    return one[0] < other[2] and other[0] < one[2] and one[1] < other[3] and other[1] < one[3]


def groups(columns, gap=6):
    """Runs of true columns as pairs (first, behind the last); holes shorter than the gap are filled."""
    found = []
    for x in (x for x, is_set in enumerate(columns) if is_set):
        if found and x - found[-1][1] < gap:
            found[-1][1] = x + 1
        else:
            found.append([x, x + 1])
    return [tuple(run) for run in found]


def is_capsule(picture, box):
    """Whether a capsule with its text is to be seen there."""
    grey = list(picture.crop(box).convert('L').getdata())
    return sum(value < 40 for value in grey) > len(grey) / 2 and sum(value > 110 for value in grey) > 10


class OtherWindow:
    """Somebody else's window; ended with the `with` block."""

    def __init__(self, seen_by, *arguments):
        self._hands = seen_by
        self._log = tempfile.TemporaryFile('w+')
        self.process = subprocess.Popen(
            [HELPERS / 'other-window', *arguments], stdin=subprocess.PIPE, stdout=self._log,
            stderr=subprocess.DEVNULL, text=True, env={**os.environ, 'NO_AT_BRIDGE': '1'})

    def __enter__(self):
        if not wait_until(self.box, 8):
            raise Failure('the other window is not shown')
        time.sleep(0.7)  # animations
        return self

    def __exit__(self, *_):
        end(self.process)
        wait_until(lambda: not self.box(), 5)
        time.sleep(0.5)

    def tell(self, command):
        print(command, file=self.process.stdin, flush=True)

    def box(self):
        """Around everything that is seen of it."""
        red, green, blue = (channel.point(lambda value, wanted=wanted: 255 * (abs(value - wanted) < 12))
                            for channel, wanted in zip(self._hands.picture().split(), COLOUR))
        return ImageChops.multiply(ImageChops.multiply(red, green), blue).getbbox()

    def presses(self):
        self._log.seek(0)
        return len(set(re.findall(r'^pressed \d+$', self._log.read(), re.MULTILINE)))


class Story:
    def __init__(self, desktop, programs, scratch, pictures):
        self.desktop = desktop
        self.is_wayland = VERSIONS[desktop][2].startswith('Wayland')
        self.hands = hands.of(desktop, programs, float(os.environ.get('BRIMLET_SESSION_SCALE') or 1))
        self.program = Program(programs, scratch)
        self.pictures = pictures
        self.icon_box = None
        self.panels = set()  # the windows it has had
        self.clicks_to_open = 1
        self._clicked = 0

    # ---- helpers ---------------------------------------------------------------------------

    def keep(self, name, picture=None):
        (picture or self.hands.picture()).save(self.pictures / f'{name}.png')

    def away(self):
        self.hands.move(*NOWHERE)

    def work_area(self):
        """What bars leave of the first screen."""
        if self.desktop == 'sway':
            place = json.loads(output('swaymsg', '-r', '-t', 'get_workspaces'))[0]['rect']
            return box_of((place['x'], place['y'], place['width'], place['height']))
        if self.desktop == 'gnome':
            return 0, round(self.hands.evaluate('Main.panel.height') / self.hands.scale), WIDTH, HEIGHT
        if self.desktop == 'plasma':
            # Without a clock, as the others.
            height, = call('org.kde.plasmashell', '/PlasmaShell', 'org.kde.PlasmaShell', 'evaluateScript',
                           GLib.Variant('(s)', ('panels().forEach(panel => { print(panel.height);'
                           ' panel.widgets("org.kde.plasma.digitalclock").forEach('
                           'clock => clock.remove()); })',)))
            return 0, 0, WIDTH, HEIGHT - int(height or 0)
        numbers = re.findall(r'\d+', output('xprop', '-root', '_NET_WORKAREA').partition('=')[2])
        return box_of(round(int(number) / self.hands.pixels_of_x()) for number in numbers[:4])

    def has_bar(self):
        """Whether there is one and something is painted in it."""
        try:
            picture, bars = self.hands.picture(), self.bars()
            return any(len(picture.crop(bar).getcolors(WIDTH * HEIGHT)) > 4 for bar in bars)
        except (GLib.Error, ValueError):
            return False

    def bars(self):
        _, top, _, bottom = self.work_area()
        return [box for box in ((0, 0, WIDTH, top), (0, bottom, WIDTH, HEIGHT)) if box[3] > box[1]]

    def find_icon(self):
        """The box of the icon: what is new in the bars since the program was not there."""
        if self.desktop == 'gnome':
            places = self.hands.evaluate(
                'Object.entries(Main.panel.statusArea)'
                '.filter(([name, item]) => name.startsWith("appindicator") && item.mapped'
                ' && item.width > 0)'
                '.map(([, item]) => [...item.get_transformed_position(), item.width, item.height])'
                '.filter(place => place.every(Number.isFinite))')
            return tuple(round(edge / self.hands.scale) for edge in box_of(places[0])) if places else None
        now = self.hands.picture()
        for bar in self.bars():
            mask = changed(self.empty, now)
            mask.paste(0, CAPSULES)
            strip = mask.crop(bar)
            columns = [strip.crop((x, 0, x + 1, strip.height)).getbbox() for x in range(WIDTH)]
            for first, behind in groups(columns):
                if 16 <= behind - first <= 60:  # not the digits of a clock
                    box = strip.crop((first, 0, behind, strip.height)).getbbox()
                    return first, bar[1] + box[1], behind, bar[1] + box[3]
        return None

    def is_without_icon(self):
        return not (self.find_icon() if self.desktop == 'gnome' else
                    difference(self.empty, self.hands.picture(), self.icon_box))

    def icon(self):
        if self.icon_box is None:
            raise Failure('there is no icon')
        return (self.icon_box[0] + self.icon_box[2]) // 2, (self.icon_box[1] + self.icon_box[3]) // 2

    def click_icon(self, button='left'):
        time.sleep(max(0, self._clicked + BETWEEN_CLICKS - time.monotonic()))
        self.hands.click(*self.icon(), button)
        self._clicked = time.monotonic()

    def open_by_icon(self):
        """Whether it opens."""
        self.click_icon()
        if self.clicks_to_open == 2:
            time.sleep(0.05)
            self.hands.button('left')
        return bool(wait_until(self.panel, PATIENCE))

    def panel(self):
        """Window and place of the panel; None if it is not shown."""
        panel = next(iter(self.hands.windows('Brimlet panel')), None)
        if panel:
            self.panels.add(f'0x{panel[0]:x}')
        return panel

    def is_closed(self):
        return self.panel() is None

    def require_open(self):
        if not self.panel() and not (self.icon_box and self.open_by_icon()):
            self.program.tell('open')
        if not wait_until(self.panel, PATIENCE):
            raise Failure('the panel does not open')
        time.sleep(0.5)

    def require_closed(self):
        """By whatever works."""
        for way in (lambda: None, lambda: self.hands.key('Escape'), lambda: self.hands.key('Escape'),
                    self.click_icon, lambda: self.hands.click(*NOWHERE)):
            way()
            if wait_until(self.is_closed, 1):
                return
        raise Failure('the panel cannot be closed')

    def place(self, panel):
        """Whether the panel stands at its icon, and where it stands."""
        _, x, y, width, height = panel
        _, top, _, bottom = self.work_area()
        is_whole = x >= 0 and y >= 0 and x + width <= WIDTH and y + height <= HEIGHT
        at_top = self.icon()[1] < HEIGHT / 2
        gap = y - top if at_top else bottom - (y + height)
        is_beside = x - 24 <= self.icon()[0] <= x + width + 24
        text = f'{width}×{height} at {x},{y}'
        text += '' if is_whole else '; not whole on the screen'
        text += f'; gap to the bar {gap}'
        text += '' if is_beside else f'; the icon is at x {self.icon()[0]}'
        return is_whole and is_beside and 0 <= gap <= 24, text

    def inside(self, panel, part):
        _, x, y, width, height = panel
        return round(x + part[0] * width), round(y + part[1] * height)

    # ---- the rows, in their order: (holds, what was seen); holds is None where there is nothing to hold --

    def icon_appears(self):
        start = time.monotonic()
        self.program.start()
        self.icon_box = wait_until(self.find_icon, 20)
        seconds = time.monotonic() - start
        if not self.icon_box:
            return False, 'no icon within 20 s'
        self.hands.still(5)
        self.icon_box = self.find_icon() or self.icon_box
        item = self.program.item()
        name = f'“{item[1].get("Title")}”, StatusNotifier' if item else 'XEmbed'
        x, y = self.icon()
        self.keep('icon')
        return True, f'within {math.ceil(seconds)} s, at {x},{y}, {size_of(self.icon_box)}; {name}'

    def left_click(self):
        self.require_closed()
        self.away()
        before = self.hands.still(3)
        if not self.open_by_icon():
            shown = difference(before, self.hands.picture(), without=[CAPSULES, grown(self.icon_box, 12)])
            text = 'opens a menu' if shown else 'opens nothing'
            self.keep('clicked')
            self.hands.key('Escape')
            time.sleep(1)
            self.clicks_to_open = 2
            if not self.open_by_icon():
                self.clicks_to_open = 1
                return False, f'{text}; a double click opens nothing'
            self.require_closed()
            return False, f'{text}; a double click opens the panel'
        answers = ['opens']
        for way in 'closes', 'opens', 'closes':
            self.click_icon()
            answers.append(way if wait_until(self.panel if way == 'opens' else self.is_closed, PATIENCE)
                           else f'not {way}')
        return answers == ['opens', 'closes'] * 2, ', '.join(answers)

    def right_click(self):
        self.require_closed()
        entries = self.program.menu()
        self.away()
        before = self.hands.still(5)
        self.click_icon('right')
        time.sleep(1.2)
        after = self.hands.picture()
        self.keep('menu', after)
        if self.panel():
            return False, 'opens the panel' + ('' if entries else '; the item has no menu')
        menu = difference(before, after, without=[CAPSULES, grown(self.icon_box, 12)])
        if not menu or menu[3] - menu[1] < 20:
            return False, f'nothing is shown; the item\'s menu: {entries}'
        text = f'{size_of(menu)}: {", ".join(entries) if entries else "not the item’s"}'
        if entries is None:
            self.hands.key('Escape')
            self.hands.click(*NOWHERE)
            return False, text
        self.hands.click((menu[0] + menu[2]) // 2, menu[1] + (menu[3] - menu[1]) // (len(entries) + 1))
        is_open = bool(wait_until(self.panel, PATIENCE))
        if not is_open:
            self.hands.key('Escape')
            self.hands.click(*NOWHERE)
        text += '; its first entry opens the panel' if is_open else '; its first entry opens nothing'
        if not self.program.runs() or self.program.state()['isPaused']:
            self.program.stop()
            self.program.start()
            wait_until(self.find_icon, 15)
        return is_open and entries == ['Open', 'Pause ads 24h', 'Quit'], text

    def where_it_opens(self):
        self.require_closed()
        self.away()
        self.closed_picture = self.hands.still(5)
        self.require_open()
        self.away()
        self.open_picture = self.hands.still(5)
        self.keep('panel', self.open_picture)
        return self.place(self.panel())

    def taskbar(self):
        self.require_open()
        number = str(self.panel()[0])
        words = output('xprop', '-id', number, 'WM_CLASS', '_NET_WM_STATE')
        states = re.findall(r'_NET_WM_STATE_(\w+)', words)
        name = re.search(r'WM_CLASS.*= (.*)', words)
        has_icon = '(CARDINAL)' in output('xprop', '-id', number, '-len', '16', '_NET_WM_ICON')
        if self.desktop == 'gnome':
            flags = self.hands.evaluate(
                'global.get_window_actors().map(actor => actor.meta_window)'
                '.filter(window => window.title == "Brimlet panel").map(window => window.skip_taskbar)')
            is_out, where = flags == [True], f'skip_taskbar {flags}'
        else:
            _, *place = self.panel()
            new = [box for bar in self.bars() if (box := difference(
                self.closed_picture, self.open_picture, bar,
                [CAPSULES, grown(self.icon_box, 16), grown(box_of(place), 30)], 25))]
            is_out = not new
            where = 'bar unchanged' if is_out else f'bar changes: {size_of(new[0])} at {new[0][0]},{new[0][1]}'
        # sway has neither and keeps no such states.
        asks = 'SKIP_TASKBAR' in states and 'SKIP_PAGER' in states or self.desktop == 'sway'
        return is_out and asks and has_icon, '; '.join([
            where, f'state {" ".join(states) or "none"}',
            'icon' if has_icon else 'no icon', f'class {name.group(1) if name else "none"}'])

    def enter_token(self):
        self.require_open()
        panel = self.panel()
        field = wait_until(lambda: self.program.control((), Atspi.Role.PASSWORD_TEXT), 5)
        if not field:
            raise Failure('the token field was not found')
        self.hands.click(*self.inside(panel, field))
        time.sleep(0.5)
        self.hands.type('demo-host-token')
        time.sleep(0.5)
        self.keep('typed')

    def has_token(self):
        return self.program.state()['hasToken']

    def return_saves(self):
        self.enter_token()
        self.hands.key('Return')
        return (True, 'typed, Return saves') if wait_until(self.has_token, PATIENCE) else (
            False, 'typed; Return does not save')

    def button_saves(self):
        """In a program without a token."""
        self.enter_token()
        button = self.program.control(('Save token',))
        if not button:
            return False, 'the button was not found'
        self.hands.click(*self.inside(self.panel(), button))
        is_saved = wait_until(self.has_token, PATIENCE)
        return bool(is_saved), 'saves' if is_saved else 'does not save'

    def click_on_window(self):
        self.require_closed()
        with OtherWindow(self.hands) as other:
            self.require_open()
            box, panel = other.box(), grown(box_of(self.panel()[1:]), 20)
            place = next(((x, y) for x in (box[0] + 60, box[2] - 60) for y in (box[3] - 60, box[1] + 60)
                          if not panel[0] < x < panel[2] or not panel[1] < y < panel[3]))
            self.hands.click(*place)
            is_closed = wait_until(self.is_closed, PATIENCE)
            pressed = wait_until(other.presses, 1)
        return bool(is_closed and pressed == 1), (
            f'{"closes" if is_closed else "stays open"}; the window got {pressed} '
            f'{"click" if pressed == 1 else "clicks"}')

    def click_on_desktop(self):
        self.require_closed()
        self.require_open()
        self.hands.click(*NOWHERE)
        is_closed = wait_until(self.is_closed, PATIENCE)
        return bool(is_closed), 'closes' if is_closed else 'stays open'

    def escape(self):
        self.require_closed()
        self.require_open()
        self.hands.key('Escape')
        is_closed = wait_until(self.is_closed, PATIENCE)
        return bool(is_closed), 'closes' if is_closed else 'stays open'

    def second_start(self):
        self.require_closed()
        self.away()
        self.program.start_again()
        if not wait_until(self.panel, PATIENCE):
            return False, 'opens nothing'
        time.sleep(1)
        return self.place(self.panel())

    def first_second_start(self):
        """Before any click on the icon."""
        return self.second_start()

    def capsules(self):
        self.require_closed()
        self.away()
        picture = self.hands.still(3)
        missing = [name for name, box in (('left', LEFT), ('right', RIGHT)) if not is_capsule(picture, box)]
        frame = self.program.state()['panel']['frame']
        text = f'window {frame[2]:g}×{frame[3]:g} at {frame[0]:g},{HEIGHT - frame[1] - frame[3]:g}'
        self.keep('capsules', picture.crop((480, 0, 1032, 120)))
        return not missing, f'both beside the notch; {text}' if not missing else f'{missing} not seen; {text}'

    def over_full_screen(self):
        self.require_closed()
        with OtherWindow(self.hands) as other:
            other.tell('fullscreen')
            is_full = wait_until(lambda: (box := other.box()) and box[2] - box[0] == WIDTH
                                 and box[3] == HEIGHT, 5)
            time.sleep(1)
            picture = self.hands.picture()
            self.keep('fullscreen', picture)
        if not is_full:
            return None, 'the window was not full screen'
        seen = is_capsule(picture, LEFT) and is_capsule(picture, RIGHT)
        return seen, 'above' if seen else 'below'

    def notification(self):
        name, path = 'org.freedesktop.Notifications', '/org/freedesktop/Notifications'
        if self.desktop == 'gnome':  # the bus starts it
            call('org.freedesktop.DBus', '/', 'org.freedesktop.DBus', 'StartServiceByName',
                 GLib.Variant('(su)', ('org.gnome.Shell.Notifications', 0)))
            wait_until(lambda: has_owner(name), 5)
        if not has_owner(name):
            return None, 'not tried: no notifications'
        self.away()
        before = self.hands.still(3)
        number, = call(name, path, name, 'Notify', GLib.Variant('(susssasa{sv}i)', (
            'Story', 0, '', 'A notification', 'A line of text that is long enough to see', [], {}, 20000)))
        find = functools.partial(difference, before, without=[CAPSULES], area=(0, 0, WIDTH, HEIGHT))
        box = wait_until(lambda: find(self.hands.picture()), 5)
        time.sleep(1.5)
        after = self.hands.picture()
        box = find(after) or box
        self.keep('notification', after)
        call(name, path, name, 'CloseNotification', GLib.Variant('(u)', (number,)))
        time.sleep(1)
        if not box:
            return None, 'the notification was not seen'
        seen = is_capsule(after, LEFT) and is_capsule(after, RIGHT)
        where = f'{size_of(box)} at {box[0]},{box[1]}'
        if not overlap(box, LEFT) and not overlap(box, RIGHT):
            return seen, f'apart; notification {where}'
        return seen, f'{"above" if seen else "covered by"} the notification, {where}'

    def locked(self):
        if self.desktop == 'sway':
            locker = subprocess.Popen(['swaylock', '--color', '305090'], stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL)
            try:
                time.sleep(2)
                if locker.poll() is not None:
                    return None, 'not tried: swaylock ended'
                picture = self.hands.picture()
                self.keep('locked', picture)
            finally:
                end(locker)
            time.sleep(1)
            return (False, 'above swaylock, a layer surface below them') if is_capsule(picture, LEFT) else (
                True, 'hidden by swaylock')
        if self.desktop == 'gnome':
            return None, 'not tried: its lock needs GDM'
        return None, 'not tried: no locker'

    def click_on_capsule(self):
        self.require_closed()
        self.program.take_opened()
        self.hands.click(604, 13)
        pages = wait_until(lambda: self.program.take_opened(), 3)
        self.away()
        return len(pages) == 1, f'opens {urlsplit(pages[0]).path}' if pages else 'opens nothing'

    def hover(self):
        self.require_closed()
        self.away()
        look = self.hands.pointer_look() if not self.is_wayland else ''
        before = self.hands.still(3)
        self.hands.move(590, 13)
        self.hands.move(604, 13)
        find = functools.partial(difference, before, area=(480, 26, 1032, 140), without=[])
        box = wait_until(lambda: find(self.hands.picture()), 4)
        time.sleep(0.3)
        picture = self.hands.picture(with_pointer=True)
        box = find(self.hands.picture()) or box
        self.keep('tooltip', picture.crop((480, 0, 1032, 120)))
        hand = ''
        if not self.is_wayland:
            over = self.hands.pointer_look()
            hand = f'; pointer {over}' if over != look else '; the pointer stays the same'
        self.away()
        return bool(box), (f'tooltip {size_of(box)} at {box[0]},{box[1]}' if box else 'no tooltip') + hand

    def covered(self):
        self.require_closed()
        self.program.take_opened()
        if self.desktop == 'gnome':
            self.hands.evaluate('Main.overview.show()')
            time.sleep(2)
            what = 'the overview'
            seen = is_capsule(self.hands.picture(), LEFT)
            self.keep('covered')
            self.hands.click(604, 13)
            pages = wait_until(self.program.take_opened, 1.5)
            self.hands.evaluate('Main.overview.hide()')
            time.sleep(1)
        else:
            with OtherWindow(self.hands, *([] if self.is_wayland else ['popup'])) as other:
                if self.is_wayland:
                    other.tell('fullscreen')
                    time.sleep(1.5)
                what = 'a full-screen window' if self.is_wayland else 'an unmanaged window'
                seen = is_capsule(self.hands.picture(), LEFT)
                self.keep('covered')
                self.hands.click(604, 13)
                pages = wait_until(self.program.take_opened, 1.5)
                self.away()
        text = f'{what} {"does not cover" if seen else "covers"} them; a click there opens '
        return bool(pages) == seen, text + ('the page' if pages else 'nothing')

    def started_again(self):
        self.require_closed()
        self.away()
        self.program.stop()
        is_gone = wait_until(self.is_without_icon, 5)
        self.program.start(is_traced=True)
        start = time.monotonic()
        box = wait_until(self.find_icon, 15)
        seconds = time.monotonic() - start
        self.icon_box = box or self.icon_box
        return bool(is_gone and box), ('goes' if is_gone else 'stays') + ', ' + (
            f'is back within {math.ceil(seconds)} s' if box else 'does not return')

    def tray_started_again(self):
        self.require_closed()
        self.away()
        if self.desktop == 'gnome':
            what = 'the extension'
            switch = ('for (const uuid of Main.extensionManager.getUuids())'
                      ' if (uuid.includes("indicator")) Main.extensionManager.%sExtension(uuid); 1')
            self.hands.evaluate(switch % 'disable')
            time.sleep(2)
            self.hands.evaluate(switch % 'enable')
        else:
            file = Path(os.environ['BRIMLET_SESSION_SHELL_FOLDER']) / 'panel'
            number = int(file.read_text())
            what = Path(f'/proc/{number}/comm').read_text().strip()
            os.kill(number, signal.SIGTERM)
            wait_until(lambda: int(file.read_text()) != number, 10)
            time.sleep(1)
        start = time.monotonic()
        self.hands.still(15)
        box = wait_until(self.find_icon, 15)
        seconds = time.monotonic() - start
        if not box:
            self.keep('trayagain')
            return False, f'{what} restarted; the icon does not return'
        self.icon_box = box
        is_open = self.open_by_icon()
        return is_open, f'{what} restarted; icon back within {seconds:.0f} s, a click on it ' + (
            'opens' if is_open else 'opens nothing')

    def busy_pointer(self):
        # Both times with the panel open: in GNOME the desktop is then under a window of the program.
        self.require_closed()
        self.program.tell('open')
        wait_until(self.panel, PATIENCE)
        self.away()
        time.sleep(1)
        before = self.hands.pointer_look()
        self.require_closed()
        self.open_by_icon()
        self.away()
        time.sleep(2)
        is_same = self.hands.pointer_look() == before
        text = 'the pointer is an arrow 2 s later' if is_same else 'the pointer has changed 2 s later'
        if self.desktop == 'gnome':
            left = self.hands.evaluate(
                'imports.gi.Shell.WindowTracker.get_default().get_startup_sequences()'
                '.filter(sequence => !sequence.get_completed()).length')
            text += f'; {left} start-ups not completed'
            is_same = is_same and left == 0
        return is_same, text

    @staticmethod
    def _logged(names, words):
        """Whether the desktop's programs of those names wrote nothing with such words, and what."""
        logs = Path(os.environ['BRIMLET_SESSION_LOG'])
        lines = [line.strip() for path in (logs / f'{name}.log' for name in names) if path.exists()
                 for line in path.read_text(errors='replace').splitlines() if re.search(words, line, re.I)]
        if not lines:
            return True, 'nothing'
        text = re.sub(r'\x1b\[\d*m|[|`]|\d\d:\d\d:\d\d[.\d]*:? ?', '', lines[0])[:160]
        return False, f'{len(lines)} {"line" if len(lines) == 1 else "lines"}; “{text}”'

    def log_of_the_windows(self):
        windows = '|'.join(fr'\b{window}\b' for window in self.panels or '-')
        return self._logged(('wm', 'screen'), rf'brimlet(?!-session)|WM_TRANSIENT_FOR|timestamp|{windows}')

    def log_of_the_bar(self):
        return self._logged(('panel', 'services', 'screen', 'bus'), 'dbusmenu')

    def errors(self):
        lines = self.program.errors.read_text(errors='replace').splitlines()
        return not lines, f'{len(lines)} lines: “{lines[0][:100]}”' if lines else 'nothing'

    def protocol(self):
        if not self.is_wayland:
            return None, 'no Wayland'
        if not self.program.protocol.exists():
            return None, 'not traced'
        text = self.program.protocol.read_text(errors='replace')
        errors = re.findall(r'.*wl_display[@#]1\.error.*', text)
        native = 'native overlay' if '.get_layer_surface(' in text else 'X11 overlay'
        requests = text.count(' -> ')
        return not errors and requests > 0, f'{native}; {requests} requests, {len(errors)} errors' + (
            f': {errors[0][:100]}' if errors else '')


ROWS = (
    ('The icon appears', Story.icon_appears),
    ('Left click on it: opens, and closes', Story.left_click),
    ('Right click: Open, Pause ads 24h, Quit', Story.right_click),
    ('The panel stands at the icon', Story.where_it_opens),
    ('No taskbar entry; own icon', Story.taskbar),
    ('Typing in the token field, Return', Story.return_saves),
    ('Click on another window closes it, and is that window’s', Story.click_on_window),
    ('Click on the empty desktop closes it', Story.click_on_desktop),
    ('Escape closes it', Story.escape),
    ('Second start opens it at the icon', Story.second_start),
    ('Both capsules are seen', Story.capsules),
    ('… over a full-screen window', Story.over_full_screen),
    ('… beside or over a notification', Story.notification),
    ('… not on a locked screen', Story.locked),
    ('Click on a capsule opens its page', Story.click_on_capsule),
    ('Pointer on a capsule', Story.hover),
    ('No click on a capsule that is not seen', Story.covered),
    ('Program ended and started again: icon', Story.started_again),
    ('Second start before any click on the icon', Story.first_second_start),
    ('*Save token*', Story.button_saves),
    ('Tray ended and started again: icon', Story.tray_started_again),
    ('No busy pointer after a click on the icon', Story.busy_pointer),
    ('Nothing about its windows in the window manager’s log', Story.log_of_the_windows),
    ('Nothing about its menu in the bar’s log', Story.log_of_the_bar),
    ('Nothing on the program’s standard error', Story.errors),
    ('No error of the Wayland protocol', Story.protocol),
)


def tell(story, only):
    """Its rows."""
    story.away()
    if not wait_until(story.has_bar, 60):
        raise Failure('the desktop has no bar')
    story.hands.still(30)
    story.empty = story.hands.picture()
    story.keep('empty', story.empty)
    seen = {}
    for question, row in ROWS:
        if only and row.__name__ not in only and row is not Story.icon_appears:
            continue
        begin = time.monotonic()
        try:
            holds, text = row(story)
        except Exception as failure:  # the other rows go on
            holds, text = False, f'failed: {" ".join(str(failure).split())[:150]}'
            story.keep(f'failed-{row.__name__}')
        print(f'{story.desktop}: {question}: {({True: "yes", False: "no"}).get(holds, "–")}: {text}'
              f' ({time.monotonic() - begin:.0f} s)', flush=True)
        seen[question] = {'holds': None if holds is None else bool(holds), 'seen': text}
    return seen


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('--bin', type=Path, required=True, metavar='FOLDER', help='the built programs')
    parser.add_argument('--only', nargs='*', help='names of rows\' functions')
    parser.add_argument('results', type=Path, help='a folder for results and pictures')
    options = parser.parse_args()
    desktop = os.environ['BRIMLET_SESSION_DESKTOP']
    name = 'org.kde.StatusNotifierWatcher'
    if not wait_until(lambda: has_owner(name), 40):
        sys.exit(f'story: {desktop} has no {name}')
    with tempfile.TemporaryDirectory(prefix='brimlet-story.') as scratch:
        story = Story(desktop, options.bin, Path(scratch), options.results)
        try:
            seen = tell(story, options.only)
        finally:
            story.program.close()
    (options.results / 'rows.json').write_text(json.dumps(
        {'desktop': desktop, 'title': title(desktop), 'rows': seen}, indent=1, ensure_ascii=False))


if __name__ == '__main__':
    main()
