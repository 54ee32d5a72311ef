#!/usr/bin/env python3
"""Lets tools/install-packages install from an archive that lacks one of the packages."""

import os
import shutil
import sys
import unittest
import unittest.mock

sys.dont_write_bytecode = True  # the tree stays as it is
from trial_tree import TOOLS, TrialTreeTest  # noqa: E402

# Installs all that it is told to, or nothing.
APT_GET = """#!/bin/sh
for word; do last=$word; [ "$word" != broken ] || { echo "E: Unable to locate package broken"; exit 100; }; done
case " $* " in *" install "*) echo "$*" >>"$KESP_ROOT/calls" ;; esac
"""
# Whatever an installation has named is there.
DPKG_QUERY = """#!/bin/sh
for package; do :; done
! grep -q "\\b$package\\b" "$KESP_ROOT/calls" 2>/dev/null || echo installed
"""


class PackagesTest(TrialTreeTest):
    def setUp(self):
        super().setUp()
        shutil.copy(TOOLS / "install-packages", self.tree / "tools")
        (self.tree / "bin").mkdir()
        for name, text in (("apt-get", APT_GET), ("dpkg-query", DPKG_QUERY), ("id", "#!/bin/sh\necho 0\n")):
            self.write_tool(f"bin/{name}", text)
        patch = unittest.mock.patch.dict(os.environ, {"PATH": f"{self.tree / 'bin'}:{os.environ['PATH']}"})
        patch.start()
        self.addCleanup(patch.stop)

    def install(self, *packages):
        lines = [f"languages {package} why" for package in packages]
        (self.tree / "tools" / "packages.txt").write_text("\n".join(lines) + "\n", encoding="utf-8")
        return self.run_in_tree("tools/install-packages", "languages")

    def test_all_that_are_missing_come_at_once(self):
        self.assertEqual(self.install("one", "two").returncode, 0)
        self.assertEqual(len(self.calls()), 1)
        self.assertIn("all there", self.install("one", "two").stdout)

    def test_one_that_cannot_be_had_keeps_no_other_away(self):
        result = self.install("one", "broken", "two")
        self.assertEqual(result.returncode, 1)
        self.assertEqual([call.split()[-1] for call in self.calls()], ["one", "two"])
        self.assertIn("broken could not be installed: E: Unable to locate package broken", result.stdout)
        self.assertIn("these packages could not be installed: broken)", result.stderr)
        self.assertEqual(self.install("one", "two").returncode, 0)
        self.assertEqual(len(self.calls()), 2, "nothing is installed twice")


if __name__ == "__main__":
    unittest.main()
