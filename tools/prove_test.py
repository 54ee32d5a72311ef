#!/usr/bin/env python3
"""Tries what tools/prove is made of: figures, records, the blocks of the page, and what it complains of."""

import dataclasses
import pathlib
import sys
import tempfile
import unittest
from unittest import mock

sys.dont_write_bytecode = True  # the tree stays as it is
ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools" / "lib"))
from proof import machine, page, record, run, table  # noqa: E402

MACHINE = {"processor": "Fast | one", "cores": 2, "memory": "24 GiB", "debian": "12.11", "kernel": "6.1", "wine": "8.0"}


def kept(name="soak", bits="64", **changes):
    return {"proof": name, "bits": bits, "passed": True, "figures": {"objects = made": "no"}, "date": "2026-11-22 13:00 UTC",
            "seconds": 3700, "commit": "0123456789", "clean": True, "machine": MACHINE} | changes


def block_of(name, text):
    return next(match["text"] for match in page.BLOCK.finditer(text) if match["name"] == name)


class FiguresTest(unittest.TestCase):
    def test_Lines_OnlyFiguresCountAndTheLastOfAKey(self):
        lines = ["-- 5 of 10\n", "figure worst excess, TCP = 90 ms\n", "  figure handles = 57, 57 = flat\r\n", "figure x =\n",
                 "no figure y = 1\n", "figure worst excess, TCP = 34 ms (a cell)\n"]
        self.assertEqual(record.figures(lines),
                         {"worst excess, TCP": "34 ms (a cell)", "handles": "57, 57 = flat"})


class RecordTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_Saved_IsLoadedByNameAndWidth(self):
        record.save(kept(), self.folder)
        record.save(kept("seams", ""), self.folder)
        self.assertEqual(record.load("soak", "64", self.folder), kept())
        self.assertIsNone(record.load("soak", "32", self.folder))
        self.assertEqual(record.load("seams", "", self.folder)["proof"], "seams")

    def test_AnythingElse_IsNoRecord(self):
        for wrong in ("[]", '{"figures": {}}', "12"):
            (self.folder / "soak-64.json").write_text(wrong)
            with self.assertRaises(ValueError):
                record.load("soak", "64", self.folder)
        record.save(kept(date=""), self.folder)
        with self.assertRaises(ValueError):
            record.load("soak", "64", self.folder)

    def test_Page_HasWhatIsRecordedAndStaysRight(self):
        text = page.PAGE.read_text(encoding="utf-8")
        record.save(kept(figures={"objects": "100000", "a|b": "1", "duration": "of the tool"}), self.folder)
        written = page.written(text, self.folder)
        block = block_of("soak", written)
        for row in ("| figure | 64 bit | 32 bit |", "| objects | 100000 | not yet measured |", "| a\\|b | 1 | not yet measured |",
                    "| **verdict** | passed | not yet measured |", "| **duration** | 1 h 2 min | not yet measured |",
                    "| **commit** | 0123456789 | not yet measured |"):
            self.assertIn(row, block.splitlines())
        self.assertEqual(block_of("faults", written).strip(), "*Figures: not yet measured.*")
        self.assertEqual(list(page.complaints(written)), [])
        self.assertEqual(page.written(written, self.folder), written)

    def test_Failure_IsInThePage(self):
        record.save(kept("seams", "", passed=False, clean=False, machine={**MACHINE}), self.folder)
        block = block_of("seams", page.written(page.PAGE.read_text(encoding="utf-8"), self.folder))
        self.assertIn("| **verdict** | FAILED |", block)
        self.assertIn("| **commit** | 0123456789, with changes |", block)


class ComplaintsTest(unittest.TestCase):
    def setUp(self):
        self.text = page.PAGE.read_text(encoding="utf-8")

    def complaints(self, text):
        return list(page.complaints(text))

    def test_AProofWithoutABlock_IsAFault(self):
        for proof in table.PROOFS:
            self.assertTrue(self.complaints(self.text.replace(f"figures of {proof.name}:", "figures of nothing:")))

    def test_APromiseWithoutFigures_IsAFault(self):
        self.assertIn("promise 5 has no section with a block of figures",
                      self.complaints(self.text.replace("\n## 5. ", "\n### 5. ")))

    def test_AFigureByHand_IsAFault(self):
        with tempfile.TemporaryDirectory() as folder:
            record.save(kept(), pathlib.Path(folder))
            text = page.written(self.text, pathlib.Path(folder))
        self.assertEqual(self.complaints(text), [])
        for old, new in (("*Figures: not yet measured.*", "Nothing was found."),
                         ("| objects = made | no |", "| objects = made | yes |"),
                         ("figures of soak: tools/prove, ", "figures of soak: tools/prove, 0"),
                         ("| **verdict** | passed |", "| **verdict** | FAILED |")):
            self.assertIn(old, text)
            self.assertEqual(len(self.complaints(text.replace(old, new, 1))), 1, new)


class RunTest(unittest.TestCase):
    def run_it(self, script, width="", quick=False):
        """What becomes of a proof that is that script."""
        with tempfile.TemporaryDirectory() as folder:
            tool = pathlib.Path(folder) / "tool"
            tool.write_text(f"#!/bin/sh\n{script}\n")
            tool.chmod(0o755)
            proof = dataclasses.replace(table.PROOFS[0], name="tried", command=(str(tool),), quick=(str(tool), "q"))
            with mock.patch.object(run, "LOGS", pathlib.Path(folder)), mock.patch("builtins.print"), \
                    mock.patch.object(machine, "commit", return_value=("0123456789", True)), \
                    mock.patch.object(record, "FOLDER", pathlib.Path(folder) / "proof"):
                why = run.run(proof, width, quick)
                kept_in = pathlib.Path(folder) / "proof" / ("quick" if quick else ".")
                return why, record.load("tried", width, kept_in)

    def test_Success_IsRecorded(self):
        why, found = self.run_it("echo figure a = 1", "64")
        self.assertEqual((why, found["figures"], found["passed"], found["bits"]), ("", {"a": "1"}, True, "64"))

    def test_Quick_IsKeptApart(self):
        why, found = self.run_it('echo "figure form = $1"', quick=True)
        self.assertEqual((why, found["figures"]), ("", {"form": "q"}))

    def test_Failure_IsRecordedAsOne(self):
        why, found = self.run_it("echo figure a = 1; exit 3")
        self.assertIn("it ended with 3", why)
        self.assertFalse(found["passed"])

    def test_SuccessWithoutAFigure_IsNone(self):
        why, found = self.run_it("echo all is well")
        self.assertEqual((why, found["passed"]), ("it printed no figure", False))

    def test_Skipped_IsNotRecorded(self):
        self.assertEqual(self.run_it("echo no Wine here; exit 77"), ("skipped: no Wine here", None))

    def test_AMissingTool_IsNamed(self):
        missing = dataclasses.replace(table.PROOFS[0], command=("tools/no-such-tool",))
        self.assertEqual(run.run(missing, "64", False), "tools/no-such-tool is missing")


class TableTest(unittest.TestCase):
    def test_EachPromise_HasAProof(self):
        self.assertEqual({number for proof in table.PROOFS for number in proof.promises}, set(range(1, 7)))

    def test_Commands_NameTheWidthWhereThereIsOne(self):
        for proof in table.PROOFS:
            for quick in (False, True):
                words = [proof.commands(bits, quick) for bits in proof.widths]
                self.assertEqual(len({tuple(each) for each in words}), len(proof.widths), proof.name)

    def test_UnknownName_IsRefused(self):
        with self.assertRaises(ValueError):
            table.named(["soak", "nonsense"])


if __name__ == "__main__":
    unittest.main()
