#!/usr/bin/env python3
"""Holds SHA256SUMS against what is handed out: sums_test.py"""

import hashlib
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DIST = ROOT / "dist"


def listed(folder):
    lines = (folder / "SHA256SUMS").read_text().splitlines()
    return {name: sum_ for sum_, name in (line.split("  ") for line in lines)}


def sums(folder):
    return {path.name: hashlib.sha256(path.read_bytes()).hexdigest() for path in folder.iterdir()
            if path.is_file() and path.name != "SHA256SUMS"}


class SumsTest(unittest.TestCase):
    def test_Sums_AreThoseOfAllThatIsHandedOut(self):
        self.assertEqual(listed(DIST), sums(DIST))
        self.assertEqual(len(listed(DIST)), 3)

    def test_ArchiveMadeAlone_HasItsNewSum(self):
        with tempfile.TemporaryDirectory(dir=ROOT / "build") as folder:
            folder = pathlib.Path(folder)
            for width in ("win64", "win32"):
                shutil.copytree(DIST / width, folder / width)
            (folder / "KespCommObj-0-setup.exe").write_bytes(b"some")
            (folder / "SHA256SUMS").write_text("of before\n")
            subprocess.run([ROOT / "tools" / "make-portable", folder], check=True)
            self.assertEqual(listed(folder), sums(folder))
            self.assertEqual(len(listed(folder)), 2)

    def test_Tools_ThatMakeAPart_WriteTheSums(self):
        for name in ("make-portable", "make-installer", "make-sbom"):
            self.assertIn("write-sums", (ROOT / "tools" / name).read_text(), name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
