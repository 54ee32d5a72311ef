#!/usr/bin/env python3
"""kesp-sim wire as its clients meet it, from both ends."""

import os
import pathlib
import signal
import tempfile
import threading
import unittest

from program_tester import ROOT, Line, Program, serial_line, tcp_line

EVERY_BYTE = bytes(range(256))


class WireTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        self.addCleanup(folder.cleanup)
        self.link = pathlib.Path(folder.name) / "line"
        self.program = Program("wire", "--serial", self.link)
        self.addCleanup(self.program.__exit__)
        self.port = self.program.port()

    def connect(self):
        """A client that has its line, and the line."""
        client = tcp_line(self.port)
        self.addCleanup(client.__exit__)
        self.assertEqual(client.read(b"\n"), b"ready\n")
        line = serial_line(self.link)
        self.addCleanup(line.__exit__)
        return client, line

    def test_port_fits_sixteen_bits_and_there_is_no_line_yet(self):
        self.assertTrue(20000 <= self.port <= 32000)
        self.assertFalse(self.link.is_symlink())

    def test_bytes_pass_unchanged_both_ways(self):
        client, line = self.connect()
        for one, other in ((client, line), (line, client)):
            one.send(EVERY_BYTE)
            self.assertEqual(other.read(b"\xff"), EVERY_BYTE)

    def test_client_that_leaves_pulls_the_line_and_the_next_one_gets_a_new_one(self):
        for stale in ("/dev/pts/99999", "nowhere", None):
            if stale:
                self.link.symlink_to(stale)
            client, line = self.connect()
            client.owner.close()
            self.assertEqual(line.read(), b"")
            self.assertNotEqual(line.state, Line.OPEN)
            self.assertFalse(self.link.is_symlink())

    def test_link_of_somebody_else_stays(self):
        client, line = self.connect()
        self.link.unlink()
        self.link.symlink_to("/dev/null")
        client.owner.close()
        line.read()
        self.assertEqual(os.readlink(self.link), "/dev/null")

    def test_client_that_does_not_read_lets_the_line_fill_up_and_loses_nothing(self):
        client, line = self.connect()
        os.set_blocking(line.descriptor, False)
        taken = 0
        pause = threading.Event()
        for _ in range(200):
            try:
                taken += os.write(line.descriptor, b"x" * 4096)
            except BlockingIOError:
                pause.wait(0.01)
        self.assertGreater(taken, 10_000)
        self.assertLess(taken, 200 * 4096)
        os.set_blocking(line.descriptor, True)
        sender = threading.Thread(target=line.send, args=(b"!",))
        sender.start()
        self.assertEqual(len(client.read(b"!")), taken + 1)
        sender.join()

    def test_line_that_does_not_read_stops_the_client_and_goes_with_it_all_the_same(self):
        client, line = self.connect()
        client.send(b"x" * 20_000)
        client.owner.close()
        line.read()
        self.assertNotEqual(line.state, Line.OPEN)
        self.assertFalse(self.link.is_symlink())

    def test_second_client_waits_for_its_turn(self):
        first, _ = self.connect()
        with tcp_line(self.port) as second:
            self.assertEqual(second.read(seconds=0.1), b"")
            first.owner.close()
            self.assertEqual(second.read(b"\n"), b"ready\n")

    def test_signal_ends_it_and_removes_the_link(self):
        self.connect()
        self.assertTrue(self.link.is_symlink())
        self.program.interrupt(signal.SIGTERM)
        self.assertEqual(self.program.end(), (0, "", ""))
        self.assertFalse(self.link.is_symlink())


if __name__ == "__main__":
    unittest.main()
