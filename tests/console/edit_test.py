#!/usr/bin/env python3
"""kesp edit with somebody at the screen: edit_test.py 64|32

Ends with 77 where the machine has no Wine of that width.
"""

import subprocess
import sys
import unittest

from kesp_program import DONE, FAILED, ROOT, USAGE, Kesp, KespCase
from program_tester import SKIPPED, TOOLS, start_wine

TITLE = "TCP/IP Communication Settings"


class EditTest(KespCase):
    def edit(self, address, *steps):
        """What kesp says while these steps are done in its dialog."""
        program = Kesp(self.bits, "edit", address)
        hand = ROOT / "build" / f"win{self.bits}" / "tests" / "dialogs_win" / "kesp-dialog-hand.exe"
        done = subprocess.run([TOOLS / "wine-run", "--bits", self.bits, hand, TITLE, *steps], capture_output=True,
                              text=True, check=False)
        said = program.end()
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return said

    def test_confirmed_prints_the_settings(self):
        said = self.edit("tcp:192.168.0.10", "at", "IP address", "type", "127.0.0.1", "at", "Port", "type", "5025",
                         "press", "OK")
        self.assertEqual(said, (DONE, "tcp:127.0.0.1:5025\n", ""))

    def test_cancelled(self):
        self.assertEqual(self.edit("tcp:192.168.0.10", "press", "Cancel"),
                         (FAILED, "", "kesp: the dialog was cancelled\n"))

    def test_the_gpib_has_none(self):
        code, output, error = self.kesp("edit", "gpib:5")
        self.assertEqual((code, output), (USAGE, ""))
        self.assertIn("the GPIB has no settings dialog", error)


if __name__ == "__main__":
    KespCase.bits = sys.argv.pop(1)
    if start_wine(KespCase.bits) == SKIPPED:
        sys.exit(SKIPPED)
    unittest.main()
