"""What a person does in a desktop of script/desktop-session: looks, points, clicks and types. Places and
sizes are in points, from the top left of the first screen."""

import ctypes
import hashlib
import io
import json
import os
import subprocess
import tempfile
import time

from gi.repository import Gio, GLib
from PIL import Image, ImageChops, ImageGrab

WIDTH, HEIGHT = 1512, 982
# Where the capsules are on the 14-inch machine.
CAPSULES = 542, 0, 970, 40


class Failure(Exception):
    """A step that could not be done."""


def output(*command):
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, timeout=20)
    return run.stdout


def wait_until(condition, seconds=3):
    """The condition's first true value; its last one when the time is up."""
    end = time.monotonic() + seconds
    while not (value := condition()) and time.monotonic() < end:
        time.sleep(0.05)
    return value


def call(name, path, interface, method, arguments=None, descriptors=None):
    """A call on the session bus; the answer's values."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    answer, _ = bus.call_with_unix_fd_list_sync(name, path, interface, method, arguments, None,
                                                Gio.DBusCallFlags.NONE, 15000, descriptors, None)
    return answer.unpack()


def has_owner(name):
    return call('org.freedesktop.DBus', '/', 'org.freedesktop.DBus', 'NameHasOwner',
                GLib.Variant('(s)', (name,)))[0]


def changed(before, after, least=40):
    """White where two pictures differ by at least that much, but for the pointers in them."""
    red, green, blue = ImageChops.difference(before, after).split()
    mask = ImageChops.lighter(ImageChops.lighter(red, green), blue).point(
        lambda value: 255 * (value >= least))
    for picture in before, after:
        if 'pointer' in picture.info:
            x, y = map(int, picture.info['pointer'])
            mask.paste(0, (x - 24, y - 24, x + 32, y + 32))
    return mask


def difference(before, after, area=(0, 0, WIDTH, HEIGHT), without=(), least=40):
    """The box around what differs between two pictures by at least that much, but for the pointers in them;
    None if nothing does."""
    mask = changed(before, after, least)
    for box in without:
        mask.paste(0, tuple(box))
    box = mask.crop(area).getbbox()
    return box and (box[0] + area[0], box[1] + area[1], box[2] + area[0], box[3] + area[1])


class Hands:
    """Of any desktop."""

    always_shows_pointer = False

    def __init__(self, scale):
        self.scale = scale
        self.at = 0, 0

    # ---- what a desktop's own class does ---------------------------------------------------

    def grab(self, with_pointer=False):
        """A picture of all screens, which are side by side, in any resolution."""
        raise NotImplementedError

    # ---- for the story ---------------------------------------------------------------------

    def picture(self, with_pointer=False):
        """What the screens show, a pixel per point."""
        image = self.grab(with_pointer).convert('RGB')
        width = WIDTH * int(os.environ.get('BRIMLET_SESSION_OUTPUTS') or 1)
        if image.width != width:
            image = image.resize((width, round(image.height * width / image.width)))
        if with_pointer or self.always_shows_pointer:
            image.info['pointer'] = self.at
        return image

    def still(self, seconds=15):
        """A picture after which nothing but the capsules has changed for a second."""
        end = time.monotonic() + seconds
        before = self.picture()
        while time.monotonic() < end:
            time.sleep(1)
            after = self.picture()
            if not difference(before, after, without=[CAPSULES]):
                return after
            before = after
        return before

    def click(self, x, y, button='left'):
        self.move(x, y)
        time.sleep(0.3)
        self.button(button)

    def windows(self, title):
        """The shown X windows of that exact title, with their places."""
        found = []
        for number in output('xdotool', 'search', '--onlyvisible', '--name', f'^{title}$').split():
            facts = dict(line.split('=') for line in
                         output('xdotool', 'getwindowgeometry', '--shell', number).split() if '=' in line)
            if 'WIDTH' in facts and int(facts['WIDTH']) > 1:
                place = [int(facts[key]) / self.pixels_of_x() for key in ('X', 'Y', 'WIDTH', 'HEIGHT')]
                found.append((int(number), *[round(value) for value in place]))
        return found

    def pixels_of_x(self):
        """How many pixels of the X server a point has."""
        if not hasattr(self, '_pixels_of_x'):
            width = output('xdotool', 'getdisplaygeometry').split()
            self._pixels_of_x = max(1, int(width[0]) / WIDTH) if self.scale != 1 and width else 1
        return self._pixels_of_x

    def pointer_look(self):
        """Equal for equal pointers over the same ground."""
        return hashlib.sha256(self.pointer_crop().tobytes()).hexdigest()

    def pointer_crop(self):
        x, y = self.at
        return self.picture(with_pointer=True).crop((x - 40, y - 40, x + 40, y + 40))


class OnX11(Hands):
    def move(self, x, y):
        self.at = x, y
        output('xdotool', 'mousemove', str(int(x)), str(int(y)))

    def button(self, which):
        output('xdotool', 'click', {'left': '1', 'right': '3'}[which])

    def key(self, name):
        output('xdotool', 'key', name)

    def type(self, text):
        output('xdotool', 'type', '--delay', '30', text)

    def grab(self, with_pointer=False):
        return ImageGrab.grab(xdisplay=os.environ['DISPLAY'])

    def pointer_look(self):
        """The X server's name of the pointer's picture, or its number."""
        xlib, xfixes = ctypes.CDLL('libX11.so.6'), ctypes.CDLL('libXfixes.so.3')

        class Cursor(ctypes.Structure):
            _fields_ = [('x', ctypes.c_short), ('y', ctypes.c_short), ('width', ctypes.c_ushort),
                        ('height', ctypes.c_ushort), ('xhot', ctypes.c_ushort), ('yhot', ctypes.c_ushort),
                        ('serial', ctypes.c_ulong), ('pixels', ctypes.c_void_p), ('atom', ctypes.c_ulong),
                        ('name', ctypes.c_char_p)]

        xlib.XOpenDisplay.restype = ctypes.c_void_p
        xfixes.XFixesGetCursorImage.restype = ctypes.POINTER(Cursor)
        xfixes.XFixesGetCursorImage.argtypes = [ctypes.c_void_p]
        xlib.XCloseDisplay.argtypes = [ctypes.c_void_p]
        display = xlib.XOpenDisplay(None)
        cursor = xfixes.XFixesGetCursorImage(display).contents
        look = cursor.name.decode() or f'{cursor.width}x{cursor.height} number {cursor.serial}'
        xlib.XCloseDisplay(display)
        return look


class BySeat(Hands):
    """With the test program that is an input device of sway and KWin."""

    def __init__(self, scale, programs):
        super().__init__(scale)
        self._seat = subprocess.Popen([programs / 'brimlet-seat'], stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, text=True)

    def _tell(self, line):
        print(line, file=self._seat.stdin, flush=True)
        if self._seat.stdout.readline().strip() != 'done':
            raise Failure(f'brimlet-seat did not do: {line}')

    def move(self, x, y):
        self.at = x, y
        self._tell(f'move {x} {y}')

    def button(self, which):
        self._tell(f'press {which}')
        time.sleep(0.05)
        self._tell(f'release {which}')

    def key(self, name):
        self._tell(f'key {name}')

    def type(self, text):
        for character in text:
            self._tell(f'type {character}')


class InSway(BySeat):
    always_shows_pointer = True  # drawn by software

    def grab(self, with_pointer=False):
        return Image.open(io.BytesIO(subprocess.run(
            ['grim', *(['-c'] if with_pointer else []), '-t', 'ppm', '-'], check=True,
            stdout=subprocess.PIPE, timeout=20).stdout))


class InPlasma(BySeat):
    def grab(self, with_pointer=False):
        with tempfile.TemporaryFile() as file:
            descriptors = Gio.UnixFDList()
            index = descriptors.append(file.fileno())
            facts, = call('org.kde.KWin', '/org/kde/KWin/ScreenShot2', 'org.kde.KWin.ScreenShot2',
                          'CaptureWorkspace', GLib.Variant('(a{sv}h)', (
                              {'include-cursor': GLib.Variant('b', with_pointer),
                               'native-resolution': GLib.Variant('b', True)}, index)), descriptors)
            size = facts['stride'] * facts['height']
            # KWin answers before it has written everything.
            if not wait_until(lambda: os.fstat(file.fileno()).st_size >= size, 10):
                raise Failure('KWin wrote no picture')
            file.seek(0)
            return Image.frombytes('RGB', (facts['width'], facts['height']), file.read(size), 'raw', 'BGRX',
                                   facts['stride'])


class InGnome(Hands):
    """With devices of the shell's own. The remote-desktop interface would put a sign into the bar. The
    shell counts in pixels."""

    KEYS = {'Escape': 0xff1b, 'Return': 0xff0d}

    def __init__(self, scale):
        super().__init__(scale)
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        # The shell lets the owner of this name take pictures.
        bus.call_sync('org.freedesktop.DBus', '/', 'org.freedesktop.DBus', 'RequestName',
                      GLib.Variant('(su)', ('org.gnome.Screenshot', 0)), None, 0, -1, None)
        # It starts with its overview and a word about the lock, which needs GDM.
        wait_until(lambda: not self.evaluate('Main.layoutManager._startingUp'), 30)
        time.sleep(1)
        self.evaluate('Main.overview.hide(); Main.messageTray.getSources().forEach(one => one.destroy()); 1')
        wait_until(lambda: not self.evaluate('Main.overview.visible'), 10)
        if scale != 1:
            self._set_scale(scale)
        self._devices = '''const {Clutter, GLib} = imports.gi;
            const seat = Clutter.get_default_backend().get_default_seat();
            global.storyPointer ??= seat.create_virtual_device(Clutter.InputDeviceType.POINTER_DEVICE);
            global.storyKeys ??= seat.create_virtual_device(Clutter.InputDeviceType.KEYBOARD_DEVICE);
            const now = GLib.get_monotonic_time();'''

    @staticmethod
    def _set_scale(scale):
        """Of all screens, side by side, at their present modes."""
        name, path = 'org.gnome.Mutter.DisplayConfig', '/org/gnome/Mutter/DisplayConfig'
        serial, monitors, _, _ = call(name, path, name, 'GetCurrentState')
        places, x = [], 0
        for (connector, *_), modes, _ in monitors:
            mode = next(mode for mode in modes if mode[6].get('is-current'))
            places.append((x, 0, scale, 0, x == 0, [(connector, mode[0], {})]))
            x += round(mode[1] / scale)
        call(name, path, name, 'ApplyMonitorsConfig', GLib.Variant(
            '(uua(iiduba(ssa{sv}))a{sv})', (serial, 1, places, {})))
        time.sleep(3)

    def evaluate(self, script):
        """The value of the script's last expression."""
        succeeded, value = call('org.gnome.Shell', '/org/gnome/Shell', 'org.gnome.Shell', 'Eval',
                                GLib.Variant('(s)', (script,)))
        if not succeeded:
            raise Failure(f'the shell refused {script!r}: {value}')
        return json.loads(value) if value else None

    def _act(self, script):
        self.evaluate(f'{self._devices} {script}; 1')
        time.sleep(0.03)

    def move(self, x, y):
        self.at = x, y
        self._act(f'global.storyPointer.notify_absolute_motion(now, {x * self.scale}, {y * self.scale})')

    def button(self, which):
        for state in 1, 0:
            self._act(f'global.storyPointer.notify_button(now, {1 if which == "left" else 3}, {state})')

    def _strike(self, value):
        for state in 1, 0:
            self._act(f'global.storyKeys.notify_keyval(now, {value}, {state})')

    def key(self, name):
        self._strike(self.KEYS[name])

    def type(self, text):
        for character in text:
            self._strike(ord(character))

    def grab(self, with_pointer=False):
        with tempfile.TemporaryDirectory() as folder:
            call('org.gnome.Shell.Screenshot', '/org/gnome/Shell/Screenshot',
                 'org.gnome.Shell.Screenshot', 'Screenshot',
                 GLib.Variant('(bbs)', (with_pointer, False, f'{folder}/screen.png')))
            image = Image.open(f'{folder}/screen.png')
            image.load()
            return image


def of(desktop, programs, scale):
    if desktop == 'sway':
        return InSway(scale, programs)
    if desktop == 'plasma':
        return InPlasma(scale, programs)
    return InGnome(scale) if desktop == 'gnome' else OnX11(scale)
