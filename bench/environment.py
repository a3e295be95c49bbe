"""A placement service with a relay before it, and a program with capsules that runs beside it."""

import json
import subprocess
import time
from pathlib import Path

from figures import Failure, figures_of, process_figures
from relay import Relay, difference

ROOT = Path(__file__).resolve().parent.parent
MACHINE = ROOT / 'docs/machines/laptop-14.json'
# Five points into the left capsule, before its picture and text.
CAPSULE = 542 + 8 + 5, 13


def wait_until(condition, seconds):
    """Checks every 10 ms; false when the time is up."""
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() >= end:
            return False
        time.sleep(0.01)
    return True


def end(process):
    """Asks a process to end and waits; after five seconds it is killed."""
    process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class XObserver:
    """What a program does on the X server, counted by `bench-xobserver`."""

    wait = staticmethod(time.sleep)

    def __init__(self, programs):
        self.process = subprocess.Popen([programs / 'bench-xobserver'], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def ask(self, *words):
        """The answer to a command as a list of numbers; None when the time is up."""
        print(*words, file=self.process.stdin, flush=True)
        answer = self.process.stdout.readline().strip()
        try:
            return None if answer == 'none' else [int(word) for word in answer.split()]
        except ValueError:
            raise Failure(answer) from None

    def await_capsule(self, seconds):
        """The monotonic time, in seconds, when the screen is black where the left capsule belongs;
        None when the time is up."""
        seen = self.ask('dark', *CAPSULE, round(seconds * 1000))
        return seen and seen[0] / 1e9

    def find_window(self):
        """Fails when the capsules are in no window of the X server."""
        self.ask('window')

    def begin(self):
        """Counts from now on what the program does."""
        self.ask('record')
        self.ask('paints')

    def counted(self):
        """What was counted, by the names of the parameters of `figures_of`."""
        return {'paints': self.ask('paints')[0], 'x_requests': self.ask('requests')}


class Environment:
    """A service at a free port, the relay before it, and a machine file with the relay's address;
    ended with the `with` block."""

    def __init__(self, programs, scratch, scenario, machine=None):
        """`machine` holds the values that differ from those of the 14-inch machine."""
        self._machine = {**json.loads(MACHINE.read_text()), **(machine or {})}
        self.programs = programs
        self.scratch = scratch
        self.machine_file = scratch / 'machine.json'
        self._scenario = scratch / 'scenario.json'
        self.set_scenario(scenario)
        command = [programs / 'brimlet-placement', '--port', '0', '--scenario', self._scenario]
        self.service = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        for line in self.service.stdout:
            if line.startswith('Listening on '):
                break
        else:
            raise Failure('the placement service did not start')
        self.relay = Relay(int(line.rpartition(':')[2]))
        self.set_screens_asleep(False)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.relay.shut()
        end(self.service)

    def set_scenario(self, scenario):
        """The service's replies from the next request on."""
        self._write(self._scenario, scenario)

    def set_screens_asleep(self, are_asleep):
        self._write(self.machine_file, {
            **self._machine, 'screensAsleep': are_asleep,
            'infoDictionary': {'BrimletAPIURL': self.relay.root}})

    @staticmethod
    def _write(path, value):
        """As a whole, since a program may read the file at any time."""
        unfinished = path.with_suffix('.new')
        unfinished.write_text(json.dumps(value))
        unfinished.rename(path)


class Run:
    """One program with capsules beside the notch of the 14-inch machine: started and waited for
    until its first capsule is seen, ended with the `with` block."""

    def __init__(self, environment, observer, command, variables=None):
        """A command that ends with `--console` takes lines by `tell`. `variables` are all the
        program gets, those of this process if not given."""
        self._environment = environment
        self._observer = observer
        self._log = environment.scratch / 'run.log'
        if observer.await_capsule(0):
            raise Failure('the screen is black before a capsule is there; '
                          'give it a brighter colour')
        with self._log.open('w') as log:
            start = time.monotonic()
            self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=log,
                                            stderr=subprocess.STDOUT, text=True, env=variables)
        seen = observer.await_capsule(20)
        self._first_capsule = time.monotonic()
        try:
            if seen is None or self.process.poll() is not None:
                raise Failure(f'{Path(command[0]).name} showed no capsule within 20 seconds: '
                              f'{self._log.read_text()}')
            self.start_ms = (seen - start) * 1e3
            observer.find_window()
        except Failure:
            end(self.process)
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        end(self.process)
        # The next run's start is timed by its own capsule.
        wait_until(lambda: self._observer.await_capsule(0) is None, 5)

    def wait_until_age(self, seconds):
        """Sleeps until so long after the first capsule."""
        time.sleep(max(0, self._first_capsule + seconds - time.monotonic()))

    def watch(self, seconds):
        """The figures of this time."""
        self._observer.begin()
        traffic = self._environment.relay.traffic()
        start = time.monotonic()
        before = self._figures()
        self._observer.wait(seconds)
        after = self._figures()
        seconds = time.monotonic() - start
        return figures_of(seconds, before, after, **self._observer.counted(),
                          traffic=difference(self._environment.relay.traffic(), traffic))

    def say(self, line):
        """Writes a line to the program's console and does not wait for the answer."""
        print(line, file=self.process.stdin, flush=True)

    def tell(self, line):
        """Writes a line to the program's console and returns the answer."""
        answers = len(self._log.read_text().splitlines())
        self.say(line)
        if not wait_until(lambda: self._log.read_text().count('\n') > answers, 10):
            raise Failure(f'the program does not answer "{line}"')
        return self._log.read_text().splitlines()[-1]

    def _figures(self):
        if self.process.poll() is not None:
            raise Failure(f'the program ended by itself: {self._log.read_text()}')
        figures = process_figures(self.process.pid)
        if not all(figures[name] > 0 for name in ('pss', 'cpu', 'voluntary')):
            raise Failure('the kernel has no figures of the program')
        return figures
