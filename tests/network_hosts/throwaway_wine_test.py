#!/usr/bin/env python3
"""Runs Windows programs on simulated networks: they reach the hosts, and what they write is not there afterwards.

throwaway_wine_test.py 64|32 [unittest's options]. Ends with 77 and a reason where that cannot be made.
"""

import pathlib
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
TOOLS = ROOT / "tools"
TWO_NETWORKS, NOBODY = HERE / "two-networks.json", HERE / "no-instruments.json"
SKIPPED = 77
KEY = "HKCU\\Software\\KespThrowawayWineTest"
LIMIT_SECONDS = 120
bits = None


def run(*command):
    return subprocess.run([str(word) for word in command], text=True, capture_output=True, check=False,
                          stdin=subprocess.DEVNULL, timeout=LIMIT_SECONDS)


def in_windows(*command):
    return [TOOLS / "wine-run", "--bits", bits, *command]


def on_network(hosts, *command):
    return run(TOOLS / "with-network-hosts", "--bits", bits, hosts, "--", *command)


class ThrowawayWineTest(unittest.TestCase):
    def test_library_that_is_registered_there_reaches_hosts_of_both_networks(self):
        sample = ROOT / "dist" / f"win{bits}" / "samples" / "cpp" / "query_tcp.exe"
        for address, identity in (("10.88.0.11", "KESP,BT200,SIM20417,2.3"), ("10.88.4.50", "KESP,7100,SIM00001,1.0"),
                                  ("10.89.0.11", "KESP,7100,SIM00001,1.0")):
            with self.subTest(address):
                result = on_network(TWO_NETWORKS, *in_windows(sample, address, 10001))
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
                self.assertIn(identity, result.stdout)

    def test_registry_and_files_that_are_written_there_are_gone_afterwards(self):
        write, read = ("reg", "add", KEY, "/f"), ("reg", "query", KEY)
        file = "C:\\kesp-throwaway-wine-test"
        words = " && ".join((" ".join(write), " ".join(read), f"echo written> {file}", f"type {file}"))
        result = on_network(NOBODY, *in_windows("cmd", "/c", words))
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertIn("written", result.stdout)
        self.assertNotEqual(run(*in_windows(*read)).returncode, 0)
        self.assertNotIn("written", run(*in_windows("cmd", "/c", f"type {file}")).stdout)

    def test_program_outside_goes_on(self):
        with subprocess.Popen(in_windows(HERE / "stays_a_while.vbs"), text=True, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE) as outside:
            self.assertEqual(on_network(NOBODY, *in_windows("cmd", "/c", "exit 7")).returncode, 7)
            self.assertEqual(outside.communicate(timeout=LIMIT_SECONDS)[0], "PASS\n")


def main():
    global bits
    if len(sys.argv) < 2 or sys.argv[1] not in ("64", "32"):
        sys.exit(__doc__)
    bits = sys.argv.pop(1)
    able = on_network(NOBODY, "true")
    if able.returncode == SKIPPED:
        print(able.stderr.strip())
        sys.exit(SKIPPED)
    unittest.main(verbosity=2)


if __name__ == "__main__":
    main()
