#!/usr/bin/env python3
"""Registers and removes both libraries in one Windows. Runs under tools/with-network-hosts --bits 64 --wine 10, so that
nothing of it remains: both_widths_test.py [unittest's options]
"""

import functools
import pathlib
import re
import subprocess
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
HERE = pathlib.Path(__file__).resolve().parent
WIDTHS = (64, 32)
SYSTEM = {64: "system32", 32: "syswow64"}
CLASS_NOT_REGISTERED = "80040154"


def run(bits, program, *arguments):
    """In the second Wine; with-network-hosts has told which."""
    command = [ROOT / "tools" / "wine-run", "--bits", bits, program, *arguments]
    return subprocess.run([str(word) for word in command], text=True, capture_output=True, check=False,
                          stdin=subprocess.DEVNULL, timeout=120)


def library(bits):
    return "Z:" + str(ROOT / "dist" / f"win{bits}" / "KespCommObj.dll").replace("/", "\\")


def other(bits):
    return 96 - bits


def register(bits, by=None, switch=""):
    """A line for the command processor, which has a program run as one of that width."""
    return f'C:\\windows\\{SYSTEM[by or bits]}\\regsvr32 /s {switch}"{library(bits)}"'


def remove(bits, by=None):
    return register(bits, by, "/u ")


def program(bits, name):
    return ROOT / "build" / f"win{bits}" / "tests" / "both_widths" / f"{name}.exe"


def classes_after(*steps):
    """The lines "key = value" below HKLM\\Software\\Classes then, in both views."""
    listed = "Z:" + str(program(64, "machine_classes")).replace("/", "\\")
    batch = drive() / "steps.cmd"
    batch.write_text("@echo off\n" + "".join(f"{step} || exit /b 1\n" for step in steps) + f'"{listed}"\n')
    result = run(64, "cmd", "/c", "C:\\steps.cmd")
    assert result.returncode == 0, (steps, result.stdout + result.stderr)
    # Wine's regsvr32 talks even when it is to be silent.
    return {line for line in result.stdout.splitlines() if not line.startswith("regsvr32: ")}


@functools.cache
def drive():
    shell = f'. "{ROOT}/tools/lib/tree.sh"; . "{ROOT}/tools/lib/wine.sh"; wine_prefix 64'
    return pathlib.Path(subprocess.run(["bash", "-c", shell], check=True, text=True, capture_output=True,
                                       stdin=subprocess.DEVNULL).stdout.strip()) / "drive_c"


def client(bits):
    """What a client of that width tells, as a dictionary."""
    result = run(bits, program(bits, "edition_client"))
    assert result.returncode == 0, result.stdout + result.stderr
    return dict(line.split(": ", 1) for line in result.stdout.splitlines())


def of_its_own(bits):
    return {"type library": library(bits), "created": "00000000", "server": library(bits), "port set elsewhere": "4711"}


class BothWidthsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # The script host enters its own type library when it starts for the first time.
        for bits in WIDTHS:
            run(bits, HERE / "create_object.vbs")
        cls.without = classes_after(remove(64), remove(32))
        cls.added_by = {}
        for bits in WIDTHS:
            cls.added_by[bits] = classes_after(register(bits)) - cls.without
            cls.assert_nothing_left(cls(), remove(bits))

    def added_after(self, *steps):
        """What the libraries have added then; of what was there before nothing is missing."""
        present = classes_after(*steps)
        self.assertEqual(sorted(self.without - present), [])
        return present - self.without

    def assert_same(self, one, another):
        self.assertEqual(sorted(one ^ another)[:6], [])

    def assert_nothing_left(self, *steps):
        self.assert_same(self.added_after(*steps), set())

    def test_each_client_gets_the_library_of_its_width(self):
        added = self.added_after(register(64), register(32))
        for bits in WIDTHS:
            self.assertEqual(client(bits), of_its_own(bits))
        # Of the two folders with help the last one counts.
        first = {line for line in self.added_by[64] if "\\HELPDIR = " not in line}
        self.assert_same(added, first | self.added_by[32])
        self.assert_nothing_left(remove(64), remove(32))

    def test_both_share_names_and_one_type_library_that_leads_to_each(self):
        shared = self.added_by[64] & self.added_by[32]
        self.assertTrue(any("\\KespCommObj.CKespTCP\\CLSID = " in line for line in shared))
        self.assertFalse(any("\\InprocServer32 = " in line for line in shared))
        libraries = {line.lower() for line in self.added_by[64] | self.added_by[32] if re.search(r"\\0\\win\d\d = ", line)}
        self.assertEqual(len({line.split("\\typelib\\")[1].split("\\")[0] for line in libraries}), 1)
        for bits in WIDTHS:
            self.assertTrue(any(f"\\win{bits} = {library(bits)}".lower() in line for line in libraries))

    def test_each_is_removed_without_harm_to_the_other(self):
        for first in WIDTHS:
            for stays in WIDTHS:
                with self.subTest(registered_first=first, stays=stays):
                    added = self.added_after(register(first), register(other(first)), remove(other(stays)))
                    self.assert_same(added, self.added_by[stays])
                    self.assertEqual(client(stays), of_its_own(stays))
                    self.assert_nothing_left(remove(stays))

    def test_client_of_the_other_width_is_told_that_the_class_is_not_registered(self):
        for bits in WIDTHS:
            with self.subTest(registered=bits):
                classes_after(register(bits))
                self.assertEqual(client(other(bits))["created"], CLASS_NOT_REGISTERED)
                said = run(other(bits), HERE / "create_object.vbs").stdout.splitlines()
                self.assertEqual(said[-1], "PASS")
                self.assertRegex(said[0], "^error: 429 ")
                self.assert_nothing_left(remove(bits))

    def test_regsvr32_of_the_other_width_passes_the_library_on(self):
        for bits in WIDTHS:
            with self.subTest(bits):
                self.becomes(self.added_by[bits], register(bits, by=other(bits)))
                self.becomes(set(), remove(bits, by=other(bits)))

    def becomes(self, expected, step):
        """Wine does not wait for the regsvr32 that it is passed on to."""
        added, deadline = self.added_after(step), time.monotonic() + 30
        while added != expected and time.monotonic() < deadline:
            added = self.added_after()
        self.assert_same(added, expected)


if __name__ == "__main__":
    unittest.main(verbosity=2)
