#!/usr/bin/env python3
"""Lets tools/dotnet fetch archives that were not published by anybody: none of them may be run."""

import os
import pathlib
import shutil
import sys
import unittest
import unittest.mock

sys.dont_write_bytecode = True  # the tree stays as it is
ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests" / "verdicts"))
from trial_tree import TrialTreeTest  # noqa: E402

# What the tool and the archive need; hardly anything else is in its PATH.
PROGRAMS = "bash cat chmod cp dirname find flock grep gzip id install ls mkdir mktemp mv rm sha512sum tail tar timeout".split()
OTHER_ARCHIVE = """#!/bin/bash
while [ "$1" != --pack-destination ]; do shift; done
mkdir -p "$2/package" && echo evil >"$2/package/dotnet.exe" && tar -czf "$2/a.tgz" -C "$2" package
"""


class DotnetTest(TrialTreeTest):
    def setUp(self):
        super().setUp()
        shutil.copy(ROOT / "tools" / "dotnet", self.tree / "tools")
        shutil.copytree(ROOT / "tools" / "lib" / "dotnet", self.tree / "tools" / "lib" / "dotnet")
        self.write_tool("tools/wine-run", "#!/bin/bash\necho was run\n")
        (self.tree / "bin").mkdir()
        for name in PROGRAMS:
            (self.tree / "bin" / name).symlink_to(shutil.which(name))
        self.write_tool("bin/mcs", "#!/bin/bash\n")
        self.store = self.tree / "store"
        settings = {"PATH": str(self.tree / "bin"), "KESP_DOTNET": str(self.store)}
        patch = unittest.mock.patch.dict(os.environ, settings)
        patch.start()
        self.addCleanup(patch.stop)

    def judge(self, code, said):
        result = self.run_in_tree("bin/bash", self.tree / "tools" / "dotnet", "program.exe")
        self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        self.assertIn(said, result.stderr)
        self.assertNotIn("was run", result.stdout)
        self.assertEqual(list(self.store.glob("*")), [], "something was left behind")

    def test_other_archive_than_the_known_one_fails(self):
        self.write_tool("bin/npm", OTHER_ARCHIVE)
        self.judge(1, "is not what it was")

    def test_archive_that_does_not_come_skips_and_is_tried_again_in_an_hour(self):
        calls = self.tree / "calls"
        self.write_tool("bin/npm", f"#!/bin/bash\necho \"$*\" >>'{calls}'\necho no network >&2\nexit 1\n")
        for _ in range(2):
            self.judge(77, "could not be fetched")
        self.assertEqual(len(self.calls()), 1)
        self.assertIn(" --fetch-retries=0 --fetch-timeout=60000 ", self.calls()[0])
        failed, = (self.tree / "build" / "languages").glob("*.failed")
        os.utime(failed, (0, 0))
        self.judge(77, "could not be fetched")
        self.assertEqual(len(self.calls()), 2)

    def test_no_npm_skips(self):
        self.judge(77, "npm, which is not installed")

    def test_no_compiler_skips(self):
        (self.tree / "bin" / "mcs").unlink()
        self.judge(77, "mcs is not installed")


if __name__ == "__main__":
    unittest.main()
