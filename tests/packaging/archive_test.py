#!/usr/bin/env python3
"""Looks at the archive that needs no installation as a file: archive_test.py"""

import calendar
import pathlib
import posixpath
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
from project_file import ProjectFile  # noqa: E402


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
            made = [pathlib.Path(folder) / name for name in ("one.zip", "another.zip")]
            for path in made:
                subprocess.run([ROOT / "tools" / "make-portable", ROOT / "dist", path], check=True)
            self.assertEqual(made[0].read_bytes(), made[1].read_bytes())
            with zipfile.ZipFile(made[0]) as again:  # its times are others if somebody committed since the build
                self.assertEqual([(entry.filename, entry.CRC) for entry in again.infolist()],
                                 [(entry.filename, entry.CRC) for entry in self.archive.infolist()])

    def test_Entries_AreSortedAndHaveTheTimeOfOneCommit(self):
        names = self.archive.namelist()
        self.assertEqual(names, sorted(names))
        (told,) = {entry.date_time for entry in self.archive.infolist()}
        seconds = calendar.timegm(told)
        times = subprocess.run(["git", "-C", str(ROOT), "log", "--format=%ct"], capture_output=True, text=True,
                               check=False)
        self.assertIn(seconds, [int(time) & ~1 for time in times.stdout.split()] or [portable.EARLIEST.timestamp()])

    def test_TimeOfALaterCommit_IsLater(self):
        """Otherwise a new library would not be copied over an old one."""
        with tempfile.TemporaryDirectory() as folder:
            told = []
            for seconds in (0, 1_700_000_001, 1_700_000_002):
                path = pathlib.Path(folder) / "some.zip"
                portable.write_archive(path, {"file": b""}, seconds)
                with zipfile.ZipFile(path) as archive:
                    told += [entry.date_time for entry in archive.infolist()]
            self.assertEqual(told, [(1980, 1, 1, 0, 0, 0), (2023, 11, 14, 22, 13, 20), (2023, 11, 14, 22, 13, 22)])

    def test_Programs_AreThoseOfTheBuildInBothWidths(self):
        for width in ("win64", "win32"):
            for source in ("KespCommObj.dll", "kesp.exe", "simulator/kesp-sim.exe"):
                place = f"{width}/{source.removeprefix('simulator/')}"
                self.assertEqual(self.read(place), (ROOT / "dist" / width / source).read_bytes(), place)
            driver = f"simulator/gpib/{width}/Gpib-32.dll"
            self.assertEqual(self.read(driver), (ROOT / "dist" / width / "simulator/gpib/Gpib-32.dll").read_bytes())

    def test_Pages_AreThere(self):
        for place in ("README.md", "portable/README.md", "portable/cpp/client.manifest", "include/KespCommObj.h"):
            self.assertTrue(self.read(place), place)

    def test_ProjectInCSharp_TakesTheLibraryOfItsWidth(self):
        text = self.read("portable/csharp/Client.csproj").decode()
        for platform, folder in (("", "win64"), ("x64", "win64"), ("x86", "win32")):
            files = ProjectFile(text, PlatformTarget=platform).files
            places = [posixpath.normpath("portable/csharp/" + file["Include"].replace("\\", "/")) for file in files]
            self.assertEqual(places, [f"{folder}/KespCommObj.dll", f"{folder}/Kesp.CommObj.manifest"])
            self.assertTrue(all(self.read(place) for place in places))
            self.assertEqual({file["CopyToOutputDirectory"] for file in files}, {"Always"})

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
