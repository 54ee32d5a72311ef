#!/usr/bin/env python3
"""Runs commands beside idle ports and looks at the links, meanwhile and afterwards."""

import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools" / "lib" / "idle_ports.py"
LIMIT_SECONDS = 30
NOT_RUN = 125


class IdlePortsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_beside(self, count, *command):
        return subprocess.run([TOOL, self.folder, str(count), *command], text=True, capture_output=True,
                              check=False, timeout=LIMIT_SECONDS)

    def links(self):
        return sorted(path.name for path in self.folder.iterdir())

    def test_while_the_command_runs_there_are_terminals(self):
        result = self.run_beside(3, "sh", "-c", f'cd "{self.folder}"; for link in *; do readlink $link; '
                                 "stty -a <$link | grep -ow -e -echo; done")
        self.assertEqual(result.returncode, 0, result.stderr)
        lines = result.stdout.split()
        self.assertEqual(lines[1::2], ["-echo"] * 3, lines)
        self.assertEqual(len({name for name in lines[0::2] if name.startswith("/dev/pts/")}), 3, lines)

    def test_afterwards_the_links_are_gone_and_the_code_is_the_commands(self):
        self.assertEqual(self.run_beside(2, "sh", "-c", "exit 7").returncode, 7)
        self.assertEqual(self.links(), [])

    def test_name_that_is_taken_is_left_as_it_is_and_nothing_is_run(self):
        (self.folder / "com101").symlink_to(os.devnull)
        result = self.run_beside(3, "echo", "run")
        self.assertEqual((result.returncode, result.stdout), (NOT_RUN, ""))
        self.assertIn("com101", result.stderr)
        self.assertEqual(self.links(), ["com101"])

    def test_command_that_is_not_there_leaves_no_links(self):
        self.assertEqual(self.run_beside(2, "/no/such/program").returncode, NOT_RUN)
        self.assertEqual(self.links(), [])

    def test_stopped_it_ends_the_command_and_takes_the_links_away(self):
        with subprocess.Popen([TOOL, self.folder, "2", "sh", "-c", "echo ready; exec sleep 60"],
                              stdout=subprocess.PIPE, text=True) as process:
            self.assertEqual(process.stdout.readline(), "ready\n")
            self.assertEqual(self.links(), ["com100", "com101"])
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(LIMIT_SECONDS), 128 + signal.SIGTERM)
            # The command had the pipe open until it ended.
            self.assertEqual(process.stdout.read(), "")
        self.assertEqual(self.links(), [])


if __name__ == "__main__":
    unittest.main()
