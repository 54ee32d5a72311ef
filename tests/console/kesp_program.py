"""Runs kesp.exe under Wine for its tests, with simulated instruments at the other end."""

import contextlib
import os
import pathlib
import signal
import shlex
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True  # the tree stays as it is
sys.path.insert(0, str(ROOT / "simulator"))
from program_tester import LIMIT_SECONDS, Program, com_port_link, default_signals, of_wine, processes_of  # noqa: E402

DONE, FAILED, USAGE, NO_LIBRARY, INTERRUPTED = range(5)


class Kesp:
    """A running kesp.exe of dist/, which has the library beside it. What it is to read is written to `input`."""

    def __init__(self, bits, *arguments, program=None, locale=None):
        self.words = list(map(str, arguments))
        self.program = program or ROOT / "dist" / f"win{bits}" / "kesp.exe"
        language = f"env LC_ALL={locale} " if locale else ""
        command = of_wine(f"in_wine {bits} {language}wine {shlex.join([str(self.program), *self.words])}")
        # Files, because helpers that Wine starts along with it would hold pipes open for longer.
        self.files = [tempfile.TemporaryFile() for _ in range(2)]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=self.files[0], stderr=self.files[1],
                                        preexec_fn=default_signals)
        self.input = self.process.stdin

    def say(self, text):
        self.input.write(text.encode())
        self.input.flush()

    def said(self):
        """Standard output and standard error, as far as they go."""
        texts = []
        for file in self.files:
            file.seek(0, os.SEEK_SET)
            texts.append(file.read().decode().replace("\r\n", "\n"))
        return tuple(texts)

    def wait_for(self, text):
        wait_until(lambda: text in "".join(self.said()), lambda: f"{text!r} in {self.said()}")

    def press_ctrl_c(self):
        """Wine hands the signal on as Ctrl-C."""
        for number in self.numbers():
            with contextlib.suppress(ProcessLookupError):
                os.kill(number, signal.SIGINT)

    def numbers(self):
        """Those of its processes; the other width's tests may run the same command at the same moment."""
        return processes_of(self.program, self.words)

    def end(self):
        """Exit code, standard output, standard error."""
        self.input.close()
        try:
            code = self.process.wait(LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            for number in self.numbers():
                os.kill(number, signal.SIGKILL)
            self.process.kill()
            raise AssertionError(f"kesp {shlex.join(self.words)} did not end; it said {self.said()}") from None
        output, error = self.said()
        for file in self.files:
            file.close()
        return code, output, error


def wait_until(is_so, what):
    deadline = time.monotonic() + LIMIT_SECONDS
    while not is_so():
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain for {what()}")
        time.sleep(0.02)


class KespCase(unittest.TestCase):
    """Tests of one width, with a folder of their own and instruments that end with them."""

    maxDiff = None
    bits = "64"

    def setUp(self):
        # In the tree, where the second Wine sees it.
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build", prefix="kesp-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def kesp(self, *arguments, input="", locale=None):
        """Exit code, standard output, standard error."""
        program = Kesp(self.bits, *arguments, locale=locale)
        program.say(input)
        return program.end()

    def write(self, text, name="device.json"):
        (self.folder / name).write_text(text)
        return self.folder / name

    @staticmethod
    def windows(path):
        return "Z:" + str(path).replace("/", "\\")

    def tcp_instrument(self, *options):
        """The address of an instrument on this machine."""
        program = Program("--quiet", *options)
        self.addCleanup(program.__exit__)
        return f"tcp:127.0.0.1:{program.port()}"

    def serial_instrument(self, com, *options):
        """An instrument at that COM port, which is pulled out when it ends."""
        link = com_port_link(self.bits, com)
        program = Program(*options, "--serial", link)
        self.addCleanup(program.__exit__)
        self.assertEqual(program.line(), f"serving {link}")
        return program

    def pull(self, program):
        program.interrupt()
        program.end()
