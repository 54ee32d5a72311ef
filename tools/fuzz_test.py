#!/usr/bin/env python3
"""Tries what tools/fuzz takes for a success, with scripts in place of libFuzzer's programs."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "lib"))
from fuzzing import run  # noqa: E402

COUNTED = "echo 'stat::number_of_executed_units: 12'; "


class RunTest(unittest.TestCase):
    def fuzzer(self, script):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        program = pathlib.Path(folder.name) / "program"
        program.write_text(f"#!/bin/sh\n{script}\n")
        program.chmod(0o755)
        return run.Fuzzer("tried", program, program.parent, program.parent / "corpus")

    def outcome(self, script):
        said = []
        return run.run_all([self.fuzzer(script)], 1, 1, said.append)

    def test_TimeIsOverAfterInputs_IsASuccess(self):
        self.assertEqual(self.outcome(COUNTED), (None, None))

    def test_NoInput_IsAFailure(self):
        self.assertIn("ended with 0 after 0 inputs", str(self.outcome("true")[1]))

    def test_Killed_IsAFailure(self):
        self.assertIn("ended with -9 after 12 inputs", str(self.outcome(COUNTED + "sleep 1; kill -9 $$")[1]))

    def test_Interrupted_IsAFailure(self):
        self.assertEqual(str(self.outcome("kill -INT $PPID; exec sleep 60")[1]), "interrupted")

    def test_StoppedBecauseAnotherFoundSomething_IsNone(self):
        fuzzer = self.fuzzer("exec sleep 60")
        fuzzer.stop()
        self.assertIsNone(fuzzer.run(60))

    def test_BrokenInput_IsTheFinding(self):
        self.assertEqual(self.outcome("echo 'does not hold: it'; echo Test unit written to $0; exit 77")[0].kind,
                         "does not hold: it")


if __name__ == "__main__":
    unittest.main()
