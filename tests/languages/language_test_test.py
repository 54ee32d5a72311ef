#!/usr/bin/env python3
"""Lets tools/language-test and tools/language-samples start shell scripts in place of clients, and judges what they say."""

import json
import os
import pathlib
import shutil
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "verdicts"))
from trial_tree import TrialTreeTest  # noqa: E402

INSTRUMENT = '#!/bin/sh\nwhile [ "$1" != -- ]; do shift; done\nshift\n' \
             'KESP_INSTRUMENT_HOST=host KESP_INSTRUMENT_PORT=7 exec "$@"\n'
LISTS = {"cases.txt": "query   asks\nevents  hears\n",
         "clients.txt": "trial | - | Trial | wine64 wine10 wine32 |\ntrial | late | Trial, late | wine64 | events\n"}


class LanguageTest(TrialTreeTest):
    def setUp(self):
        super().setUp()
        for name in ("language-test", "client-matrix", "lib/client_rows.py"):
            shutil.copy(ROOT / "tools" / name, self.tree / "tools" / name)
        self.write_tool("tools/with-instrument", INSTRUMENT)
        (self.tree / "tests" / "languages" / "trial").mkdir(parents=True)
        for name, text in LISTS.items():
            (self.tree / "tests" / "languages" / name).write_text(text, encoding="utf-8")

    def run_client(self, script, *options):
        self.write_tool("tests/languages/trial/client", f"#!/bin/sh\n{script}\n")
        return self.run_in_tree("tools/language-test", "trial", *options)

    def row(self, entry):
        return json.loads((self.tree / "build" / "languages" / f"{entry}.json").read_text(encoding="utf-8"))

    def test_client_is_told_where_and_how(self):
        for options, words, entry in (
                ((), "64 - host 7 on", "wine64.trial"), (("--bits", "32"), "32 - host 7 on", "wine32.trial"),
                (("--wine", "10"), "64 - host 7 on 10", "wine10.trial"),
                (("--way", "late"), "64 late host 7 on", "wine64.trial.late")):
            with self.subTest(options=options):
                skip = "SKIP events: no" if "late" in options else "PASS events"
                result = self.run_client(f"echo $* on $KESP_WINE\necho PASS query\necho {skip}\necho DONE", *options)
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
                self.assertIn(words + "\n", result.stdout)
                self.assertEqual(self.row(entry)["problems"], [])

    def test_failure(self):
        result = self.run_client("echo PASS query\necho FAIL events: silence\necho DONE")
        self.assertEqual(result.returncode, 1)
        self.assertIn("FAILED: events: silence\n", result.stdout)
        self.assertIn("FAIL", self.run_in_tree("tools/client-matrix").stdout)

    def test_language_that_is_not_there(self):
        result = self.run_client("echo no compiler\nexit 77")
        self.assertEqual(result.returncode, 77)
        self.assertEqual(self.row("wine64.trial"), {"skipped": "no compiler"})
        self.assertIn("Trial, 64 bit, Wine 8  skipped: no compiler", self.run_in_tree("tools/client-matrix").stdout)

    def test_wine_that_is_not_there(self):
        self.write_tool("tools/wine-prefix", "#!/bin/sh\necho no second Wine >&2\nexit 77\n")
        result = self.run_client("echo PASS query", "--bits", "32")
        self.assertEqual(result.returncode, 77)
        self.assertEqual(self.row("wine32.trial"), {"skipped": "no second Wine"})

    def test_silent_end_is_started_once_more(self):
        script = '[ -e "$KESP_ROOT/once" ] || { touch "$KESP_ROOT/once"; exit 5; }\n' \
                 "echo PASS query\necho PASS events\necho DONE"
        self.assertEqual(self.run_client(script).returncode, 0)
        self.assertIn("wine64.trial", (self.tree / "build" / "logs" / "second-starts.log").read_text(encoding="utf-8"))
        self.assertEqual(self.run_client("exit 5").returncode, 1)

    def test_row_of_nobody(self):
        self.assertNotEqual(self.run_client("echo DONE", "--way", "early").returncode, 0)

    def test_matrix_says_nothing_without_rows(self):
        self.assertEqual(self.run_in_tree("tools/client-matrix").stdout, "")

    def test_matrix_of_this_run_has_its_rows_alone(self):
        self.run_client("echo PASS query\necho PASS events\necho DONE")
        self.run_client("echo no compiler\nexit 77", "--wine", "10")
        begun = self.tree / "begun"
        begun.touch()
        os.utime(self.tree / "build" / "languages" / "wine64.trial.json", (0, 0))
        os.utime(self.tree / "build" / "languages" / "wine10.trial.json", None)
        said = self.run_in_tree("tools/client-matrix", "--since", begun).stdout
        self.assertIn("skipped: no compiler", said)
        self.assertNotIn("Wine 8", said)

    def test_figures_are_those_of_a_success_only_when_every_row_was_run(self):
        self.run_client("echo PASS query\necho SKIP events: no\necho DONE", "--way", "late")
        for row, code in (((), 1), (("--bits", "32"), 1), (("--wine", "10"), 0)):
            self.run_client("echo PASS query\necho PASS events\necho DONE", *row)
            said = self.run_in_tree("tools/client-matrix", "--figures")
            self.assertEqual(said.returncode, code, row)
        self.assertIn("figure clients that passed = 4 of 4 ", said.stdout)
        self.assertIn("figure cases that passed = 7\n", said.stdout)
        for client, code, last in (("echo no compiler\nexit 77", 77, "Trial, 64 bit, Wine 10, not run: no compiler"),
                                   ("echo PASS query\necho FAIL events: silence\necho DONE", 1, "cannot have = 1")):
            self.run_client(client, "--wine", "10")
            said = self.run_in_tree("tools/client-matrix", "--figures", "trial")
            self.assertEqual(said.returncode, code)
            self.assertTrue(said.stdout.strip().endswith(last), said.stdout)
            self.assertIn("figure clients that passed = 3 of 4 ", said.stdout)

    def test_page_is_not_written_while_a_row_is_missing(self):
        page = self.tree / "docs" / "clients.md"
        page.parent.mkdir()
        empty = "<!-- the matrix: tools/client-matrix --update --><!-- the matrix ends -->"
        page.write_text(empty, encoding="utf-8")
        for options in ([], ["--wine", "10"], ["--bits", "32"]):
            self.run_client("echo PASS query\necho PASS events\necho DONE", *options)
        refused = self.run_in_tree("tools/client-matrix", "--update")
        self.assertEqual((refused.returncode, page.read_text(encoding="utf-8")), (1, empty))
        self.assertIn("not run: Trial, late, 64 bit, Wine 8. Run ./test first", refused.stderr)
        self.run_client("echo no compiler\nexit 77", "--way", "late")
        self.assertEqual(self.run_in_tree("tools/client-matrix", "--update").returncode, 0)
        self.assertIn("| Trial | 64 bit, Wine 8 | yes | yes |", page.read_text(encoding="utf-8"))

    def test_samples_must_show_what_the_instrument_said(self):
        shutil.copy(ROOT / "tools" / "language-samples", self.tree / "tools")
        reply = "reply:  KESP,TORTURE,SIM00666,1.0"
        good = 'case "$2 $4 $5" in *ten*) echo "error:  no number"; exit 2;; ' \
               '"detect 7 0") echo "stopped:  before *IDN?\nended:  after 0 commands\nnothing found"; exit 1;; ' \
               f'detect*) echo "trying:  *IDN? at host:7\nended: after 1 commands";; esac; echo "{reply}"'
        for sample, code in ((good, 0), (good.replace("1.0", "1.0x"), 1), (good.replace("exit 1", "exit 0"), 1),
                             (good.replace("stopped", "topped"), 1), (good.replace("host:7", "host"), 1),
                             (good.replace("exit 2", "exit 1"), 1), (good.replace("error:", "alas:"), 1),
                             (good + "; exit 1", 1), ("echo no compiler; exit 77", 77)):
            with self.subTest(sample=sample):
                self.write_tool("tests/languages/trial/sample", f"#!/bin/sh\n{sample}\n")
                result = self.run_in_tree("tools/language-samples", "trial", "tcp")
                self.assertEqual(result.returncode, code, result.stdout + result.stderr)


if __name__ == "__main__":
    unittest.main()
