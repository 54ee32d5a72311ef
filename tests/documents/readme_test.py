#!/usr/bin/env python3
"""The README stays short, and has a first reply of five lines in each language; that in Python has the right syntax.

first_reply runs those that can run here.
"""

import pathlib
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
LANGUAGES = ("console", "vbscript", "powershell", "python", "vba", "csharp")


def block(language):
    return subprocess.run([ROOT / "tools" / "readme-block", language], capture_output=True, text=True, check=True).stdout


class ReadmeTest(unittest.TestCase):
    def test_Readme_IsShort(self):
        self.assertLessEqual(len((ROOT / "README.md").read_text(encoding="utf-8").splitlines()), 130)

    def test_FirstReplies_HaveFiveLinesAndAskTheSameInstrument(self):
        for language in LANGUAGES:
            with self.subTest(language=language):
                text = block(language)
                self.assertLessEqual(len(text.splitlines()), 5)
                self.assertIn("*IDN?", text)
                self.assertIn("127.0.0.1", text)
                self.assertIn("10001", text)

    def test_Python_HasItsSyntax(self):
        compile(block("python"), "README.md", "exec", dont_inherit=True)


if __name__ == "__main__":
    sys.dont_write_bytecode = True
    unittest.main()
