#!/usr/bin/env python3
"""Holds the list of foreign code (SPDX) against its format, the programs and the sources: sbom_test.py"""

import hashlib
import json
import pathlib
import re
import runpy
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DIST = ROOT / "dist"
# How names of these libraries begin in the type names that a program carries.
MARKS = {"asio": rb"4asio\d", "CLI": rb"3CLI\d", "nlohmann": rb"8nlohmann"}
ROOMS = ("support", "serial", "network", "gpib", "commobj", "dialogs", "server", "console", "simulator")


class SbomTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tool = runpy.run_path(str(ROOT / "tools" / "make-sbom"))
        path, = DIST.glob("KespCommObj-*.spdx.json")
        cls.text = path.read_text()
        cls.document = json.loads(cls.text)

    def test_MadeAgain_IsTheSame(self):
        with tempfile.TemporaryDirectory() as folder:
            again = pathlib.Path(folder) / "again.json"
            subprocess.run([ROOT / "tools" / "make-sbom", again], check=True)
            self.assertEqual(json.loads(again.read_text())["packages"], self.document["packages"])
            self.assertEqual(json.loads(again.read_text())["files"], self.document["files"])

    def test_Document_HasWhatTheFormatRequires(self):
        self.assertEqual(self.document["spdxVersion"], "SPDX-2.3")
        self.assertEqual(self.document["dataLicense"], "CC0-1.0")
        self.assertRegex(self.document["documentNamespace"], r"^https://[^#]+$")
        self.assertRegex(self.document["creationInfo"]["created"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertTrue(self.document["creationInfo"]["creators"])
        for package in self.document["packages"]:
            self.assertLessEqual({"SPDXID", "name", "downloadLocation", "versionInfo"}, package.keys())
        for file in self.document["files"]:
            self.assertIn("SHA1", {sum_["algorithm"] for sum_ in file["checksums"]})

    def test_Identifiers_AreOnceAndKnown(self):
        elements = self.document["packages"] + self.document["files"]
        identifiers = [element["SPDXID"] for element in elements]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        for identifier in identifiers:
            self.assertRegex(identifier, r"^SPDXRef-[A-Za-z0-9.-]+$")
        for relation in self.document["relationships"]:
            self.assertLessEqual({relation["spdxElementId"], relation["relatedSpdxElement"]},
                                 {"SPDXRef-DOCUMENT", *identifiers})

    def test_Files_AreThoseDelivered(self):
        for file in self.document["files"]:
            sums = {entry["algorithm"]: entry["checksumValue"] for entry in file["checksums"]}
            data = (DIST / file["fileName"]).read_bytes()
            self.assertEqual(sums["SHA256"], hashlib.sha256(data).hexdigest(), file["fileName"])
        programs = {str(path.relative_to(DIST / "win64")) for path in (DIST / "win64").rglob("*")
                    if path.suffix in (".dll", ".exe")}
        self.assertEqual(programs, set(self.tool["PROGRAMS"]), "every program is in the list")

    def test_HeaderLibraries_AreListedForTheProgramsThatHoldThem(self):
        for width in self.tool["WIDTHS"]:
            for place, names in self.tool["PROGRAMS"].items():
                data = (DIST / width / place).read_bytes()
                for name, mark in MARKS.items():
                    self.assertEqual(bool(re.search(mark, data)), name in names, f"{name} in {width}/{place}")

    def test_Sources_IncludeNoOtherLibrary(self):
        """A header in a folder that is neither the tree's nor the system's is one of these libraries."""
        known = {*MARKS, "sys", "wrl", "gtest", "gmock", "linux", "netinet", "arpa", "net", "asm"}
        found = set()
        for room in ROOMS:
            for path in (*(ROOT / room).rglob("*.h"), *(ROOT / room).rglob("*.cpp")):
                found.update(re.findall(r"^#include <([\w.+-]+)/", path.read_text(encoding="utf-8"), re.M))
        self.assertLessEqual(found, known)

    def test_Versions_AreThoseOfTheInstalledPackages(self):
        locators = [reference["referenceLocator"] for package in self.document["packages"]
                    for reference in package.get("externalRefs", [])]
        self.assertGreater(len(locators), 8)
        for locator in locators:
            name, version = re.fullmatch(r"pkg:deb/debian/([^@]+)@(.+)", locator.replace("%2B", "+")).groups()
            installed = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", name], check=True, capture_output=True,
                                       text=True).stdout
            self.assertEqual(version, installed, name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
