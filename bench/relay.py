"""Counts what programs send to the placement service and receive from it."""

import socket
import threading
import time
from collections import Counter
from contextlib import suppress

POLLS = b'GET /api/display', b'GET /api/host/me'


class _Connection:
    is_poll = False  # the request under way
    has_polled = False


class Relay:
    """Forwards every byte between programs and the service at a port of this machine at once, in
    separate threads. `root` is the address for programs."""

    def __init__(self, service_port):
        self._lock = threading.Lock()  # guards the next three
        self._traffic = Counter()
        self._last_poll_reply = None
        self._sockets = set()
        self._listener = socket.create_server(('127.0.0.1', 0), backlog=64)
        self.root = f'http://127.0.0.1:{self._listener.getsockname()[1]}'
        self._start(self._accept, service_port)

    def traffic(self):
        """Totals so far: `polls`, the bytes of their requests `sent` and of their replies
        `received`, heads and bodies, the `connections` that polls came on, and `others`."""
        with self._lock:
            return self._traffic.copy()

    def last_poll_reply(self):
        """The monotonic time, in seconds, just before the last bytes of the latest reply to a poll
        were forwarded; None before the first."""
        with self._lock:
            return self._last_poll_reply

    def shut(self):
        """Ends all connections and refuses new ones from now on."""
        with self._lock:
            self._end(self._listener, *self._sockets)
        self._listener.close()

    @staticmethod
    def _start(function, *arguments):
        threading.Thread(target=function, args=arguments, daemon=True).start()

    @staticmethod
    def _end(*sockets):
        """Lets the threads that wait for these go on."""
        for each in sockets:
            with suppress(OSError):  # ended already
                each.shutdown(socket.SHUT_RDWR)

    def _accept(self, service_port):
        with suppress(OSError):  # shut, or the service is gone
            while True:
                client, _ = self._listener.accept()
                service = socket.create_connection(('127.0.0.1', service_port))
                connection = _Connection()
                with self._lock:
                    self._sockets |= {client, service}
                for source, sink, count in ((client, service, self._count_request),
                                            (service, client, self._count_reply)):
                    source.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                    self._start(self._forward, source, sink, count, connection)

    def _forward(self, source, sink, count, connection):
        with suppress(OSError):
            while received := source.recv(65536):
                with self._lock:
                    count(connection, received)
                    sink.sendall(received)
        with self._lock:
            self._sockets.discard(source)
            self._end(source, sink)
            source.close()

    def _count_request(self, connection, received):
        # A program waits for each reply, and sends the head of a request as a whole.
        if received.startswith((b'GET ', b'POST ')):
            connection.is_poll = received.startswith(POLLS)
            self._traffic['polls' if connection.is_poll else 'others'] += 1
            if connection.is_poll and not connection.has_polled:
                connection.has_polled = True
                self._traffic['connections'] += 1
        if connection.is_poll:
            self._traffic['sent'] += len(received)

    def _count_reply(self, connection, received):
        if connection.is_poll:
            self._traffic['received'] += len(received)
            self._last_poll_reply = time.monotonic()


def difference(later, earlier):
    """What came between two readings of `traffic`."""
    return Counter({name: later[name] - earlier[name] for name in later})
