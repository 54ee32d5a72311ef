#!/usr/bin/env python3
"""Lets tools/wine-test run programs of which some say nothing, without Wine, and looks at what is noted."""

import re
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
from trial_tree import TrialTreeTest  # noqa: E402

# In Wine's place: for each start a line of the file, the code and what is said.
RUN = """#!/bin/sh
read -r code said <"$0.starts"
sed -i 1d "$0.starts"
[ -z "$said" ] || echo "$said"
exit "$code"
"""
NOTE = r"20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ: said nothing and ended with 5: a_test\.exe --brief\n"


class SecondStartTest(TrialTreeTest):
    def setUp(self):
        super().setUp()
        self.write_tool("tools/wine-run", RUN)
        self.write_session('session_step "a test failed" "$KESP_TOOLS/wine-test" a_test.exe --brief\n')
        self.log = self.tree / "build" / "logs" / "second-starts.log"

    def run_tool(self, starts, *command):
        lines = "".join(start + "\n" for start in starts)
        (self.tree / "tools" / "wine-run.starts").write_text(lines, encoding="utf-8")
        return self.run_in_tree(*command)

    def noted(self):
        return self.log.read_text(encoding="utf-8") if self.log.exists() else ""

    def test_silence_and_a_code_is_started_once_more_and_noted(self):
        for second, code in (("0 [  PASSED  ] 3 tests.", 0), ("1 a case failed", 1), ("5", 5)):
            with self.subTest(second=second):
                self.log.unlink(missing_ok=True)
                result = self.run_tool(["5", second, "0 a third start"], "tools/wine-test", "a_test.exe", "--brief")
                self.assertEqual(result.returncode, code, result.stderr)
                self.assertIn("said nothing and ended with 5; once more", result.stdout)
                self.assertNotIn("a third start", result.stdout)
                self.assertRegex(self.noted(), f"^{NOTE}$")

    def test_a_script_that_wine_could_not_start_is_started_once_more_and_noted(self):
        words = "Application could not be started, or no application associated with the specified file."
        result = self.run_tool(["1 " + words, "0 PASS"], "tools/wine-test", "a.vbs")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertRegex(self.noted(), r"ended with 1: a\.vbs\n$")

    def test_another_end_is_the_verdict_and_not_noted(self):
        rows = (("a_test.exe", "5 a case failed", 5), ("a_test.exe", "124", 124), ("a_test.exe", "137", 137),
                ("a_test.exe", "0", 1), ("a.exe", "0", 0), ("a.vbs", "5", 5))
        for program, start, code in rows:
            with self.subTest(program=program, start=start):
                result = self.run_tool([start, "0 a second start"], "tools/wine-test", program)
                self.assertEqual(result.returncode, code, result.stderr)
                self.assertNotIn("a second start", result.stdout)
                self.assertEqual(self.noted(), "")

    def test_program_of_tests_passes_only_when_it_says_so(self):
        for said, code in (("[  PASSED  ] 3 tests.", 0), ("[==========] Running 3 tests", 1),
                           ("[==========] 0 tests from 0 test suites ran.", 1), ("[  PASSED  ] 0 tests.", 77)):
            with self.subTest(said=said):
                result = self.run_tool(["0 " + said], "tools/wine-test", "a_test.exe")
                self.assertEqual(result.returncode, code, result.stderr)

    def test_session_tells_its_own_at_its_end_whatever_that_is(self):
        for second, end in (("0 [  PASSED  ] 1 test.", "trial: success"), ("1 a case failed", "trial: FAILED (a test failed)")):
            with self.subTest(second=second):
                result = self.run_tool(["5", second], "trial")
                told = r"-- programs that Wine had to start a second time: 1\n--   " + NOTE + re.escape(end) + r"\n$"
                self.assertRegex(result.stdout, told)
        result = self.run_tool(["0 [  PASSED  ] 1 test."], "trial")
        self.assertEqual(result.stdout, "[  PASSED  ] 1 test.\ntrial: success\n")


if __name__ == "__main__":
    unittest.main()
