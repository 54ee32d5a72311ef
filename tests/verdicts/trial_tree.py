"""A tree with the scripts alone, in which others stand in Wine's place: for tests of what the scripts make of its answers."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
COPIED = ("wine-test", "lib/tree.sh", "lib/say.sh", "lib/wine.sh", "lib/session.sh", "lib/second_starts.sh")
# Notes how it was called.
CALLED = """#!/bin/sh
echo "${0##*/} $*" >>"$KESP_ROOT/calls"
"""


class TrialTreeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        (self.tree / "tools" / "lib").mkdir(parents=True)
        for file in COPIED:
            shutil.copy(TOOLS / file, self.tree / "tools" / file)
        for file in ("tools/wine-prefix", "tools/lib/screen"):
            self.write_tool(file, CALLED)

    def write_tool(self, name, text):
        (self.tree / name).write_text(text, encoding="utf-8")
        (self.tree / name).chmod(0o755)

    def write_session(self, steps):
        """The script "trial", which is to ./test what these steps are to its own."""
        self.write_tool("trial", '#!/bin/bash\nset -euo pipefail\n. "$(dirname "$0")/tools/lib/session.sh"\n'
                                 f"session_begin trial\n{steps}session_succeed\n")

    def begin(self, *command):
        return subprocess.Popen([self.tree / command[0], *command[1:]], text=True, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def run_in_tree(self, *command):
        return subprocess.run([self.tree / command[0], *command[1:]], text=True, stdin=subprocess.DEVNULL,
                              capture_output=True, check=False, timeout=30)

    def calls(self):
        file = self.tree / "calls"
        return file.read_text(encoding="utf-8").splitlines() if file.exists() else []
