#!/usr/bin/env python3
"""Lets the system's surrogate process load the library. Runs under tools/with-network-hosts --bits 64 --wine 10 with an
instrument at 10.88.0.11, so that nothing of it remains: surrogate_test.py [unittest's options]
"""

import os
import pathlib
import shutil
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
from both_widths_test import ROOT, SYSTEM, WIDTHS, classes_after, drive, other, program, run  # noqa: E402

# Wine's number (REGDB_E_KEYMISSING) where Windows has that of a class that is not registered.
KEY_MISSING = 0x80040152 - (1 << 32)
APPLICATION = "\\AppID\\{b11edd6c-6e7c-4198-acee-833c0be5cd41}"


def library(bits):
    return f"C:\\kesp{bits}\\KespCommObj.dll"


def regsvr32(bits, switches):
    return f"C:\\windows\\{SYSTEM[bits]}\\regsvr32 /s {switches} {library(bits)}"


def offer(bits):
    return regsvr32(bits, "/n /i:surrogate")


def remove(bits):
    return regsvr32(bits, "/u")


def client(bits, surrogate, cases="*"):
    return run(bits, program(bits, "surrogate_client"), surrogate, f"--gtest_filter={cases}")


def applications(classes):
    """Wine has one key of applications for both widths, as Windows has, and shows it in both views."""
    return {line.split(" = ")[0] for line in classes if APPLICATION.lower() in line.lower()}


class SurrogateTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.environ.update(KESP_INSTRUMENT_HOST="10.88.0.11", KESP_INSTRUMENT_PORT="10001")
        for bits in WIDTHS:
            folder = drive() / f"kesp{bits}"
            folder.mkdir()
            shutil.copy(ROOT / "dist" / f"win{bits}" / "KespCommObj.dll", folder)
            # The library looks for a driver in its own folder, too.
            shutil.copy(ROOT / "dist" / f"win{bits}" / "simulator" / "gpib" / "Gpib-32.dll", folder)
        cls.without = classes_after(remove(64), remove(32))

    def tearDown(self):
        self.assertEqual(sorted(classes_after(remove(64), remove(32)) ^ self.without)[:6], [])

    def assert_passes(self, result, cases=7):
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertIn(f"[  PASSED  ] {cases} test", result.stdout)

    def test_64_bit_client_reaches_the_32_bit_library(self):
        classes_after(offer(32))
        self.assert_passes(client(64, 32))

    def test_64_bit_client_reaches_the_32_bit_library_beside_its_own(self):
        classes_after(offer(64), offer(32))
        self.assert_passes(client(64, 32, "*Gpib*:*Lives*"), 2)

    def test_32_bit_client_reaches_the_64_bit_library_late_bound(self):
        """Early bound it would need the type library, which is registered for the width of the library alone."""
        classes_after(offer(64))
        self.assert_passes(client(32, 64, "*Refusal*"), 1)

    def test_clients_get_the_library_in_process_as_before(self):
        classes_after(offer(64), offer(32))
        for bits in WIDTHS:
            told = dict(line.split(": ", 1) for line in run(bits, program(bits, "edition_client")).stdout.splitlines())
            self.assertEqual(told["server"], library(bits))

    def test_usual_registration_offers_no_surrogate(self):
        added = classes_after(regsvr32(32, "")) - self.without
        self.assertEqual([line for line in added if "AppID" in line], [])
        said = client(64, 32, "*Lives*")
        self.assertNotEqual(said.returncode, 0)
        self.assertIn(f"Which is: {KEY_MISSING}\n", said.stdout)

    def test_application_stays_until_the_last_library_is_removed(self):
        for first in WIDTHS:
            with self.subTest(removed_first=first):
                self.assertTrue(applications(classes_after(offer(first), offer(other(first)))))
                self.assertTrue(applications(classes_after(remove(first))))
                self.assertFalse(applications(classes_after(remove(other(first)))))


if __name__ == "__main__":
    unittest.main(verbosity=2)
