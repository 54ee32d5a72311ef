#!/usr/bin/env python3
"""Looks for what would make two builds of one commit differ: times and paths in what is delivered, and a setup program
that follows the files' times. reproducible_test.py"""

import calendar
import datetime
import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DIST = ROOT / "dist"
WIDTHS = ("win64", "win32")
# strip writes this one (tools/build).
FIXED_TIMES = (0, 1)


def delivered(*patterns):
    return [path for width in WIDTHS for pattern in patterns for path in sorted((DIST / width).rglob(pattern))]


class Image:
    """The header of a program or DLL, as [MS-PECOFF] describes it."""

    def __init__(self, path):
        self.data = path.read_bytes()
        self.head, = struct.unpack_from("<I", self.data, 0x3C)
        self.sections, self.time, optional_size = struct.unpack_from("<HI8xH", self.data, self.head + 6)
        self.optional = self.head + 24
        self.table = self.optional + optional_size

    def export_time(self):
        """That of the export table; none where nothing is exported."""
        is_64, = struct.unpack_from("<H", self.data, self.optional)
        address, = struct.unpack_from("<I", self.data, self.optional + (112 if is_64 == 0x20B else 96))
        if not address:
            return None
        for index in range(self.sections):
            size, start, _, place = struct.unpack_from("<IIII", self.data, self.table + 40 * index + 8)
            if start <= address < start + size:
                return struct.unpack_from("<I", self.data, place + address - start + 4)[0]
        raise ValueError("the export table is in no section")


class ReproducibleTest(unittest.TestCase):
    def test_Images_HoldNoTimeOfTheBuild(self):
        images = delivered("*.exe", "*.dll")
        self.assertGreaterEqual(len(images), 10)
        for path in images:
            image = Image(path)
            self.assertIn(image.time, FIXED_TIMES, path)
            self.assertIn(image.export_time(), (None, *FIXED_TIMES), path)

    def test_ExportTable_IsRead(self):
        self.assertIsNotNone(Image(DIST / "win64" / "KespCommObj.dll").export_time())

    def test_TypeLibraries_HoldNoTimeOfTheBuild(self):
        # A year of this century would be it.
        year = str(datetime.date.today().year).encode()
        for path in delivered("*.tlb", "KespCommObj.dll"):
            noted = re.search(rb"Created by WIDL version [^\0]{0,60}", path.read_bytes())
            self.assertIsNotNone(noted, path)
            self.assertNotIn(year, noted.group())

    def test_TimeOfATypeLibrary_IsTakenOutInAnyZone(self):
        # The hour that comes twice in this zone; the number is that of UTC.
        noted = b"Created by WIDL version 8.0 at Sun Oct 25 02:30:00 2026"
        number = struct.pack("<I", calendar.timegm((2026, 10, 25, 2, 30, 0)))
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "some.tlb"
            path.write_bytes(b"before " + number + noted + b"\0after")
            subprocess.run([ROOT / "tools" / "lib" / "type_library_time.py", path], check=True,
                           env=dict(os.environ, TZ="Europe/Berlin"))
            without = b"before " + bytes(4) + noted[:-24] + b"Thu Jan  1 00:00:00 1970\0after"
            self.assertEqual(path.read_bytes(), without)

    def test_TypeLibraries_AreMadeInUtc(self):
        for bits in (64, 32):
            rules = (ROOT / "build" / f"win{bits}" / "build.ninja").read_text()
            made = re.findall(r"COMMAND = (.*widl.* -t .*)", rules)
            self.assertTrue(made)
            for command in made:
                self.assertRegex(command, r"-E env TZ=UTC \S*widl ")

    def test_NothingDelivered_NamesTheFolderOfTheTree(self):
        for path in delivered("*"):
            if path.is_file():
                data = path.read_bytes()
                for encoding in ("utf-8", "utf-16-le"):
                    # With what follows it, as a short name may be part of any other word.
                    self.assertNotIn(f"{ROOT}/".encode(encoding), data, path)

    def test_SetupProgram_DoesNotFollowTheTimesOfFiles(self):
        with tempfile.TemporaryDirectory(dir=ROOT / "build" / "installer") as folder:
            folder = pathlib.Path(folder)
            for width in WIDTHS:
                shutil.copytree(DIST / width, folder / width)
            made = []
            for name in ("one.exe", "another.exe"):
                subprocess.run([ROOT / "tools" / "make-installer", folder, folder / name], check=True,
                               stdout=subprocess.DEVNULL)
                made.append((folder / name).read_bytes())
                for path in folder.rglob("*"):
                    os.utime(path, (10**9, 10**9))
            self.assertEqual(*made)


if __name__ == "__main__":
    unittest.main(verbosity=2)
