#!/usr/bin/env python3
"""Lets a script begin and end as ./test does, without Wine, beside another run and with a second Wine that is not there."""

import fcntl
import signal
import sys
import time
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
from trial_tree import CALLED, TrialTreeTest  # noqa: E402

STOPPED = ["wine-prefix 64 stop", "wine-prefix 32 stop", "screen stop"]


class SessionTest(TrialTreeTest):
    def test_its_end_stops_what_runs_in_the_tree(self):
        self.write_session("")
        self.assertEqual(self.run_in_tree("trial").stdout, "trial: success\n")
        self.assertEqual(self.calls(), STOPPED)

    def test_interrupted_while_it_waits_for_another_run_it_stops_nothing(self):
        self.write_session("")
        (self.tree / "build").mkdir()
        with open(self.tree / "build" / "session.lock", "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            trial = self.begin("trial")
            self.assertIn("waiting for it", trial.stdout.readline())
            trial.send_signal(signal.SIGTERM)
            time.sleep(0.2)
        said, errors = trial.communicate(timeout=30)
        self.assertEqual(said, "trial: FAILED (interrupted)\n", errors)
        self.assertEqual(self.calls(), [])

    def test_failed_it_does_not_wait_for_the_second_wine(self):
        self.write_tool("tools/second-wine", CALLED + 'sleep 25\necho made >>"$KESP_ROOT/calls"\n')
        self.write_session('session_make_second_wine\nsleep 0.3\nsession_step "the build" false\n')
        began = time.monotonic()
        said = self.run_in_tree("trial").stdout
        self.assertLess(time.monotonic() - began, 20)
        self.assertIn("the second Wine is not finished", said)
        self.assertTrue(said.endswith("trial: FAILED (the build)\n"), said)
        self.assertEqual(self.calls(), ["second-wine ", *STOPPED])

    def test_second_wine_that_cannot_be_made_is_not_tried_again_and_named_at_the_end(self):
        self.write_tool("tools/second-wine", CALLED + "echo no network >&2\nexit 77\n")
        self.write_session("session_make_second_wine\nsession_start_second_wine\nsession_leave_out 'one test'\n")
        said = self.run_in_tree("trial").stdout
        self.assertTrue(said.endswith("trial: success (without the 32-bit library: no network; one test)\n"), said)
        self.assertEqual(self.calls(), ["second-wine ", *STOPPED])


if __name__ == "__main__":
    unittest.main()
