#!/usr/bin/env python3
"""What is made of a client's lines, of the lists of cases and clients, and of the page: tables of texts and results."""

import pathlib
import runpy
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
sys.path.insert(0, str(TOOLS / "lib"))
import client_rows  # noqa: E402

NAMES = ["query", "events"]
MATRIX = runpy.run_path(str(TOOLS / "client-matrix"))
CLIENT = client_rows.Client("pascal", "late", "Pascal", ("wine64", "wine32"), ("events",))


def problems(text, code=0, may_skip=()):
    return client_rows.judge(text, code, NAMES, may_skip)[1]


class JudgementTest(unittest.TestCase):
    def test_clients_that_pass(self):
        for text, may_skip in (("PASS query\nPASS events\nDONE\n", ()), ("PASS events\r\nPASS query\r\nDONE\r\n", ()),
                               ("some words\n\nPASS query\nPASS events\nDONE\n\n", ()),
                               ("PASS query\nSKIP events: none\nDONE\n", ("events",))):
            with self.subTest(text=text):
                self.assertEqual(problems(text, may_skip=may_skip), [])

    def test_clients_that_fail(self):
        both = "PASS query\nPASS events\n"
        for text, problem in (
                ("", "query is missing"),
                ("PASS query\nDONE\n", "events is missing"),
                ("PASS query\nFAIL events: no Abort\nDONE\n", "events: no Abort"),
                ("PASS query\nSKIP events: none\nDONE\n", "events may not be skipped: none"),
                (both, "DONE is missing"),
                (both + "PASS query\nDONE\n", "query was reported twice"),
                ("FAIL query: why\n" + both + "DONE\n", "query was reported twice"),
                (both + "PASS colour\nDONE\n", "there is no case colour"),
                (both + "DONE\nDONE\n", "a line behind DONE: DONE"),
                (both + "DONE\nunhandled\n", "a line behind DONE: unhandled"),
                (both + "PASS query and more\nDONE\n", "not a result: PASS query and more"),
                (both + "FAIL query\nDONE\n", "not a result: FAIL query"),
                (both + "SKIP query:  \nDONE\n", "not a result: SKIP query:"),
                (both + "DONE.\n", "not a result: DONE."),
                (both + "  pass query\nDONE\n", "not a result:   pass query")):
            with self.subTest(text=text):
                self.assertIn(problem, problems(text))

    def test_exit_code_and_skips_that_are_none_any_more(self):
        passed = "PASS query\nPASS events\nDONE\n"
        self.assertEqual(problems(passed, code=3), ["it ended with 3"])
        self.assertEqual(problems(passed, may_skip=("events",)), [
            "events is skipped no more: take it out of clients.txt"])

    def test_row_is_skipped_with_its_reason_only(self):
        self.assertEqual(client_rows.row_of("looked\nno compiler\n\n", 77, NAMES, ()), {"skipped": "no compiler"})
        self.assertTrue(client_rows.row_of("\n", 77, NAMES, ())["problems"])


class ListsTest(unittest.TestCase):
    def test_lists_of_this_tree_can_be_read(self):
        self.assertEqual(len(set(client_rows.cases())), len(client_rows.cases()))
        for client in client_rows.clients():
            self.assertTrue((client_rows.LANGUAGES / client.folder / "client").is_file(), client.folder)

    def test_line_of_a_client(self):
        text = "# heading\npascal | late | Pascal | wine64 wine32 | events\n"
        self.assertEqual(client_rows.read_clients(text, NAMES), [CLIENT])
        self.assertEqual(CLIENT.entries(), ["wine64.pascal.late", "wine32.pascal.late"])
        self.assertEqual(client_rows.read_clients("c | - | C | wine10 |", NAMES)[0].entries(), ["wine10.c"])

    def test_lines_that_are_none(self):
        row = "c | - | C | wine64 |\n"
        for text in ("c | - | C | wine64\n", "c | - | | wine64 |\n", "c | - | C | wine95 |\n",
                     "c | - | C | wine64 | colour\n", row + row):
            with self.subTest(text=text), self.assertRaises(ValueError):
                client_rows.read_clients(text, NAMES)


class MatrixTest(unittest.TestCase):
    good = {"results": {"query": ["PASS", ""], "events": ["SKIP", "no sinks"]}, "problems": []}
    bad = {"results": {"query": ["FAIL", "empty"]}, "problems": ["query: empty", "events is missing"]}

    def test_page(self):
        found = [(CLIENT, "64 bit", self.good), (CLIENT, "32 bit", self.bad),
                 (CLIENT, "16 bit", {"skipped": "no Wine"}),
                 (CLIENT, "8 bit", None)]
        self.assertEqual(MATRIX["page_table"](found, NAMES).splitlines(), [
            "| client | Windows | query | events |", "|---|---|---|---|",
            "| Pascal | 64 bit | yes | – |", "| Pascal | 32 bit | FAILED | missing |",
            "| Pascal | 16 bit | not run | not run |", "| Pascal | 8 bit | not run | not run |", "",
            "- Pascal, events: no sinks (64 bit)", "- Pascal, query: empty (32 bit)",
            "- Pascal, not run: no Wine (16 bit)", "- Pascal, not run (8 bit)"])

    def test_screen(self):
        found = [(CLIENT, "64 bit", self.good), (CLIENT, "32 bit", self.bad),
                 (CLIENT, "16 bit", {"skipped": "no Wine"})]
        self.assertEqual(MATRIX["printed_table"](found, NAMES).splitlines(), [
            "-- clients: 1 query  2 events", "--" + " " * 15 + "    1    2",
            "-- Pascal, 64 bit  yes    –", "-- Pascal, 32 bit FAIL    ?",
            "--" + " " * 17 + "2 wrong, the first: query: empty", "-- Pascal, 16 bit  skipped: no Wine"])

    def test_markers(self):
        begin, end = MATRIX["BEGIN"], MATRIX["END"]
        self.assertEqual(MATRIX["update"](f"a\n{begin}\nold\n{end}\nb\n", "new"), f"a\n{begin}\n\nnew\n\n{end}\nb\n")
        for text in ("", begin, end + begin, begin + end + end):
            with self.subTest(text=text), self.assertRaises(ValueError):
                MATRIX["update"](text, "new")

    def test_committed_page_has_every_row_of_this_tree_and_each_ran(self):
        page = MATRIX["PAGE"].read_text(encoding="utf-8")
        lines = page[page.index(MATRIX["BEGIN"]):page.index(MATRIX["END"])].splitlines()
        table = [[cell.strip() for cell in line.strip("|").split("|")] for line in lines if line.startswith("|")]
        names = client_rows.cases()
        expected = [["client", "Windows", *names], ["---"] * (len(names) + 2)]
        for client in client_rows.clients():
            words = ["–" if name in client.may_skip else "yes" for name in names]
            expected += [[client.name, client_rows.WINDOWS[windows], *words] for windows in client.windows]
        self.assertEqual(table, expected, "after a full ./test: tools/client-matrix --update")


if __name__ == "__main__":
    unittest.main()
