#!/usr/bin/env python3
"""The script with-instrument: the command's exit code comes back, and no process stays."""

import os
import pathlib
import signal
import socket
import tempfile
import time
import unittest

from program_tester import EXAMPLES, LIMIT_SECONDS, NATIVE, ROOT, TOOLS, Program, tcp_line

TELL = "echo $KESP_INSTRUMENT_PORT $KESP_INSTRUMENT_PID $$"
TELL_ALL = 'echo "${KESP_INSTRUMENT_HOST-none}|${KESP_INSTRUMENT_SERIAL-none}|${KESP_INSTRUMENT_LOG-none}"'
CONNECT = "exec 3<>/dev/tcp/$KESP_INSTRUMENT_HOST/$KESP_INSTRUMENT_PORT; "


class WithInstrumentTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        self.addCleanup(folder.cleanup)
        self.place = pathlib.Path(folder.name) / "line"

    def start(self, *arguments, shell=None, program=NATIVE):
        command = [*arguments, "--", "/bin/bash", "-c", shell] if shell else arguments
        script = Program(command=[str(TOOLS / "with-instrument"), *map(str, command)],
                         environment={"KESP_INSTRUMENT": program})
        self.addCleanup(script.__exit__)
        return script

    def assert_gone(self, *processes):
        deadline = time.monotonic() + LIMIT_SECONDS
        while any(os.path.exists(f"/proc/{process}") for process in processes):
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)

    def test_command_finds_the_instrument(self):
        network = self.place.with_name("network.json")
        with socket.create_server(("127.0.3.1", 0)) as free:
            tcp = f'"port": {free.getsockname()[1]}'
        network.write_text(f'{{"devices": [{{"tcp": {{"host": "127.0.3.1", {tcp}}}, "default": "first"}}, '
                           f'{{"tcp": {{"host": "127.0.3.2", {tcp}}}}}]}}')
        for options, expected in (([network, "--quiet"], "127.0.3.1 first\n"),
                                  (["--quiet"], "127.0.0.1 1.0\n"),
                                  (["--quiet", "--discovery", "--discovery-port", "0", "--bind", "127.0.2.1"],
                                   "127.0.2.1 1.0\n")):
            script = self.start(*options, shell=CONNECT + r"printf '*VER\r' >&3; read -r -d $'\r' -t 10 -u 3 reply; "
                                "echo $KESP_INSTRUMENT_HOST $reply")
            self.assertEqual(script.end(), (0, expected, ""))

    def test_exit_code_is_the_commands_and_no_process_stays(self):
        for ending, expected in (("exit 0", 0), ("exit 7", 7), ("exit 124", 124), ("kill -9 $$", 137)):
            code, output, _ = self.start(shell=f"{TELL}; {ending}").end()
            self.assertEqual(code, expected)
            port, instrument, _ = map(int, output.split())
            self.assert_gone(instrument)
            with self.assertRaises(OSError):
                tcp_line(port)

    def test_interrupted_it_ends_command_and_instrument(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            script = self.start(shell=f"{TELL}; exec sleep 300")
            _, instrument, command = map(int, script.line().split())
            script.interrupt(number)
            self.assertEqual(script.end()[0], 128 + number)
            self.assert_gone(instrument, command)

    def test_arguments_reach_instrument_and_command_unchanged(self):
        script = self.start(EXAMPLES / "torture.json", "--bind", "127.0.0.1", "--", "/bin/sh", "-c",
                            'echo "$1|$2|$KESP_INSTRUMENT_HOST"', "sh", "two words", "--")
        self.assertEqual(script.end()[:2], (0, "two words|--|127.0.0.1\n"))

    def test_serial_line_and_log_are_told_to_the_command(self):
        log = f"{self.place}.log"
        for options in (["--serial", self.place, "--quiet", "--log", log], [f"--serial={self.place}", f"--log={log}"]):
            code, output, _ = self.start(*options, shell='test -e "$KESP_INSTRUMENT_SERIAL" && ' + TELL_ALL).end()
            self.assertEqual((code, output), (0, f"none|{self.place}|{log}\n"))
        self.assertFalse(self.place.is_symlink())

    def test_wire_lets_the_command_play_the_instrument(self):
        script = self.start("--wire", "--serial", self.place,
                            shell=CONNECT + 'read -r -t 10 -u 3 word; test -e "$KESP_INSTRUMENT_SERIAL" && echo $word && '
                            + TELL_ALL)
        self.assertEqual(script.end()[:2], (0, f"ready\n127.0.0.1|{self.place}|none\n"))

    def test_without_instrument_or_command_nothing_is_run(self):
        for arguments, said in ((["--bogus", "--", "/bin/echo", "ran"], "the instrument did not become ready"),
                                ([], "usage: with-instrument"), (["--quiet"], "usage: with-instrument"),
                                (["--quiet", "--"], "usage: with-instrument")):
            code, output, error = self.start(*arguments).end()
            self.assertEqual((code, output), (125, ""))
            self.assertIn(said, error)
        code, _, error = self.start("--", "/bin/echo", "ran", program="/nowhere/kesp-sim").end()
        self.assertEqual(code, 125)
        self.assertIn("no kesp-sim found", error)


if __name__ == "__main__":
    unittest.main()
