import socket
import socketserver
import threading
import time
import unittest

from relay import Relay, difference

REPLY = b'HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}'
POLL = b'GET /api/display HTTP/1.1\r\nHost: x\r\n\r\n'
PICTURE = b'GET /assets/tea.png HTTP/1.1\r\nHost: x\r\n\r\n'


class Answer(socketserver.BaseRequestHandler):
    """Answers each request with the reply; after one for /cut it ends the connection."""

    def handle(self):
        while request := self.request.recv(4096):
            self.request.sendall(REPLY)
            if b'/cut' in request:
                return


class TestRelay(unittest.TestCase):
    def setUp(self):
        self.server = socketserver.ThreadingTCPServer(('127.0.0.1', 0), Answer)
        self.server.daemon_threads = True
        threading.Thread(target=self.server.serve_forever, args=(0.01,), daemon=True).start()
        self.relay = Relay(self.server.server_address[1])
        self.client = self.connect()

    def tearDown(self):
        self.client.close()
        self.relay.shut()
        self.server.shutdown()
        self.server.server_close()

    def connect(self):
        return socket.create_connection(('127.0.0.1', int(self.relay.root.rpartition(':')[2])), 10)

    def ask(self, request):
        self.client.sendall(request)
        received = b''
        while len(received) < len(REPLY):
            received += self.client.recv(4096)
        self.assertEqual(received, REPLY)

    def is_closed(self):
        return self.client.recv(1) == b''

    def test_polls_are_counted_with_every_byte_each_way(self):
        self.ask(POLL)
        self.ask(POLL)
        self.assertEqual(self.relay.traffic(), {
            'polls': 2, 'sent': 2 * len(POLL), 'received': 2 * len(REPLY), 'connections': 1})

    def test_other_requests_are_counted_apart(self):
        before = self.relay.traffic()
        self.ask(PICTURE)
        self.assertEqual(difference(self.relay.traffic(), before), {'others': 1})

    def test_a_difference_counts_from_the_earlier_reading(self):
        self.ask(POLL)
        before = self.relay.traffic()
        self.ask(POLL)
        after = difference(self.relay.traffic(), before)
        self.assertEqual((after['polls'], after['connections']), (1, 0))

    def test_the_time_of_a_reply_is_that_of_its_last_bytes(self):
        before = time.monotonic()
        self.assertIsNone(self.relay.last_poll_reply())
        self.ask(POLL)
        self.assertGreaterEqual(self.relay.last_poll_reply(), before)
        self.assertLessEqual(self.relay.last_poll_reply(), time.monotonic())

    def test_a_connection_that_the_service_ends_ends_for_the_program(self):
        self.ask(b'GET /cut HTTP/1.1\r\n\r\n')
        self.assertTrue(self.is_closed())

    def test_a_shut_relay_ends_and_refuses_connections(self):
        self.ask(POLL)
        self.relay.shut()
        self.assertTrue(self.is_closed())
        with self.assertRaises(ConnectionRefusedError):
            self.connect()


if __name__ == '__main__':
    unittest.main()
