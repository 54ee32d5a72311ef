#!/usr/bin/env python3
"""Looks at the archive that needs no installation as a file: archive_test.py"""

import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

sys.dont_write_bytecode = True  # the tree stays as it is
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools" / "lib"), str(ROOT / "packaging")]
import portable  # noqa: E402
import side_by_side  # noqa: E402


class ArchiveTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path, = (ROOT / "dist").glob("KespCommObj-*-portable.zip")
        cls.archive = zipfile.ZipFile(cls.path)
        cls.addClassCleanup(cls.archive.close)
        cls.top = cls.path.stem + "/"

    def read(self, place):
        return self.archive.read(self.top + place)

    def test_MadeAgain_IsTheSame(self):
        with tempfile.TemporaryDirectory() as folder:
            again = pathlib.Path(folder) / "again.zip"
            subprocess.run([ROOT / "tools" / "make-portable", ROOT / "dist", again], check=True)
            self.assertEqual(again.read_bytes(), self.path.read_bytes())

    def test_Entries_AreSortedAndWithoutATimeOfTheBuild(self):
        names = self.archive.namelist()
        self.assertEqual(names, sorted(names))
        self.assertEqual({entry.date_time for entry in self.archive.infolist()}, {(1980, 1, 1, 0, 0, 0)})

    def test_Programs_AreThoseOfTheBuildInBothWidths(self):
        for width in ("win64", "win32"):
            for place, source in (("KespCommObj.dll",) * 2, ("kesp.exe",) * 2, ("kesp-sim.exe", "simulator/kesp-sim.exe")):
                self.assertEqual(self.read(f"{width}/{place}"), (ROOT / "dist" / width / source).read_bytes(), place)
            driver = f"simulator/gpib/{width}/Gpib-32.dll"
            self.assertEqual(self.read(driver), (ROOT / "dist" / width / "simulator/gpib/Gpib-32.dll").read_bytes())

    def test_Pages_AreThere(self):
        for place in ("README.md", "portable/README.md", "portable/cpp/client.manifest", "include/KespCommObj.h"):
            self.assertTrue(self.read(place), place)

    def test_ManifestOfAProgram_AsksForTheAssemblyThatIsThere(self):
        client = ElementTree.fromstring(self.read("portable/cpp/client.manifest"))
        asked = client.find(".//{*}dependentAssembly/{*}assemblyIdentity")
        for width, architecture in (("win64", "amd64"), ("win32", "x86")):
            manifest = ElementTree.fromstring(self.read(f"{width}/{asked.get('name')}.manifest"))
            identity = manifest.find("{*}assemblyIdentity")
            self.assertEqual((identity.get("version"), identity.get("processorArchitecture")),
                             (asked.get("version"), architecture))

    def test_AssemblyVersion_FollowsTheTypeLibraryAndNotTheProduct(self):
        """A program that was built with one version of the product must start with the next, too."""
        library = side_by_side.read_library("library KespCommObj {0} version 3.7\n")
        manifest = ElementTree.fromstring(side_by_side.assembly_manifest(library, 64))
        self.assertEqual(manifest.find("{*}assemblyIdentity").get("version"), "3.0.0.0")
        of_the_list = side_by_side.read_library(side_by_side.LIST.read_text(encoding="utf-8")).version
        first = of_the_list.split(".")[0]
        client = ElementTree.fromstring(self.read("portable/cpp/client.manifest"))
        asked = client.find(".//{*}dependentAssembly/{*}assemblyIdentity")
        self.assertEqual(asked.get("version"), f"{first}.0.0.0")

    def test_Manifests_BeginWithTheirOwnIdentity(self):
        """Windows requires it as the first element of an assembly."""
        manifests = [name for name in self.archive.namelist() if name.endswith(".manifest")]
        self.assertEqual(len(manifests), 6)
        for name in manifests:
            own = ElementTree.fromstring(self.archive.read(name))[0]
            self.assertEqual(own.tag.rpartition("}")[2], "assemblyIdentity", name)
            self.assertLessEqual({"type", "name", "version"}, set(own.keys()), name)
            self.assertRegex(own.get("version"), r"^(\d+\.){3}\d+$", name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
