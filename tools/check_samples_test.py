#!/usr/bin/env python3
"""Shows on made-up samples what check_samples.py finds."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
import check_samples  # noqa: E402

TABLE = "| `basic` | Basic | yes |\n| `forth` | Forth | **not yet run** |\n"


class CheckSamplesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.samples = pathlib.Path(folder.name)
        self.write("README.md", TABLE)
        for language, first in (("basic", "' Asks."), ("forth", "\\ Not yet run. Asks.")):
            self.write(f"{language}/README.md", f"# {first}\n")
            for name in check_samples.PROGRAMS:
                self.write(f"{language}/{name}.txt", f"{first}\n")

    def write(self, place, text):
        path = self.samples / place
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, newline="")

    def assert_found(self, *parts):
        found = list(check_samples.check(self.samples))
        self.assertEqual(len(found), len(parts), found)
        for text, part in zip(found, parts):
            self.assertIn(part, text)

    def test_samples_that_keep_the_rules_pass(self):
        self.assert_found()

    def test_long_files_are_found(self):
        self.write("basic/detect.txt", "' Asks.\n" * 60)
        self.write("basic/README.md", "# Basic\n" * 20)
        self.assert_found("README.md: 20 lines", "detect.txt: 60 lines")

    def test_missing_programs_are_found(self):
        (self.samples / "basic" / "discover.txt").unlink()
        self.assert_found("no discover")

    def test_a_page_names_the_programs(self):
        self.write("README.md", TABLE + "| `labview` | LabVIEW | **not yet run** |\n")
        self.write("labview/README.md", "# Not yet run\n**query_tcp** **query_com** **discover**\n")
        self.assert_found("no detect")

    def test_first_lines_and_table_must_agree(self):
        self.write("basic/detect.txt", "' Not yet run.\n")
        self.write("forth/detect.txt", "\\ Asks.\n")
        self.assert_found('must not say "not yet run"', 'must say "not yet run"')

    def test_a_class_of_vba_has_its_header_first(self):
        self.write("forth/detect.txt", 'VERSION 1.0 CLASS\nBEGIN\n  MultiUse = -1\nEND\nAttribute VB_Name = "A"\n\' Not yet run.')
        self.assert_found()

    def test_folders_outside_of_the_table_and_without_a_page_are_found(self):
        self.write("README.md", TABLE.splitlines()[0])
        self.write("lisp/detect.txt", "")
        self.assert_found("the table has no `forth`", "lisp: no README.md")

    def test_rows_without_a_folder_are_found(self):
        self.write("README.md", TABLE + "| `lisp` | Lisp | **not yet run** |\n")
        self.assert_found("the table has `lisp`, and there is no such folder")

    def test_vba_with_other_line_ends_is_found(self):
        self.write("basic/module.bas", "' Asks.\r\nOption Explicit\r\n")
        self.assert_found()
        for text in ("' Asks.\nOption Explicit\n", "' Asks.\r\nOption Explicit\n", "' Asks.\rOption Explicit\r\n"):
            with self.subTest(text=text):
                self.write("basic/module.cls", text)
                self.assert_found("module.cls: its lines must end with CR LF")

    def test_python_that_cannot_be_read_is_found(self):
        self.write("basic/deep/ask.py", "' Asks.'\nimport nothing_that_is_here\n")
        self.assert_found()
        self.write("basic/deep/ask.py", "' Asks.'\nprint 1\n")
        self.assert_found("ask.py:2: ")


if __name__ == "__main__":
    unittest.main()
