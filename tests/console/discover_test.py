#!/usr/bin/env python3
"""kesp discover on a network of simulated hosts: discover_test.py 64|32

Runs under tools/with-network-hosts, where three instruments are.
"""

import json
import sys
import unittest

from kesp_program import DONE, INTERRUPTED, Kesp, KespCase

LEAVES = r"^the broadcast leaves by [^\n]+ \([^)]*10\.88\.0\.1[^)]*\)\n$"


class DiscoverTest(KespCase):
    def test_a_table(self):
        code, output, error = self.kesp("discover")
        self.assertEqual(output, "ADDRESS         MODEL  SERIAL NUMBER\n"
                                 "tcp:10.88.0.11  7100   NET00011\n"
                                 "tcp:10.88.0.12  7200   NET00022\n"
                                 "tcp:10.88.0.13  7300   NET00033\n")
        self.assertEqual(code, DONE)
        self.assertRegex(error, LEAVES)
        self.assertEqual(self.kesp("query", "tcp:10.88.0.12", "*IDN?")[:2], (DONE, "KESP,7200,NET00022,1.2\n"))

    def test_the_time_is_up_before_anybody_is_asked(self):
        code, output, _ = self.kesp("discover", "--json", "--timeout", "1ms")
        found = json.loads(output)
        self.assertEqual(code, DONE)
        self.assertEqual([(each["address"], each["model"]) for each in found["instruments"]],
                         [(f"tcp:10.88.0.{host}", "") for host in (11, 12, 13)])
        self.assertIn("10.88.0.1", found["adapter"]["address"])

    def test_ctrl_c(self):
        program = Kesp(self.bits, "discover")
        program.wait_for("the broadcast leaves by")
        program.press_ctrl_c()
        code, output, _ = program.end()
        self.assertEqual(code, INTERRUPTED)
        self.assertIn("tcp:10.88.0.11", output)


if __name__ == "__main__":
    KespCase.bits = sys.argv.pop(1)
    unittest.main()
