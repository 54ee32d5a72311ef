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
# What the table of third-party notices calls the licenses of SPDX.
TERMS = {"ZPL-2.1": "ZPL 2.1", "MIT": "MIT", "BSD-3-Clause": "BSD", "GPL-3.0-or-later": "GPL 3 or later",
         "Zlib": "zlib", "GCC-exception-3.1": "GCC Runtime Library Exception 3.1", "BSL-1.0": "Boost Software License 1.0",
         "CPL-1.0": "CPL 1.0", "LZMA-exception": "LZMA exception"}
# Headers of Windows and of Linux, and folders of such; what has no dot in its name is the language's own library.
SYSTEM = set("""commctrl.h fcntl.h imm.h iphlpapi.h malloc.h netlistmgr.h objbase.h ocidl.h oleauto.h olectl.h poll.h setupapi.h
    shellapi.h termios.h unistd.h unknwn.h uxtheme.h vssym32.h windows.h winsock2.h winver.h ws2tcpip.h
    asm netinet sys wrl""".split())
TESTING = {"gtest", "gmock"}
OURS = {"KespCommObj.h"}
ROOMS = ("support", "serial", "network", "gpib", "commobj", "dialogs", "server", "console", "simulator", "samples")


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
        self.assertEqual(self.document["packages"][0]["licenseDeclared"], (ROOT / "LICENSE").read_text().split()[0])
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

    def test_Packages_WithFiles_SayThatTheseWereAnalyzed(self):
        """SPDX 2.3, 7.8 and 7.9: a package contains files only if they were analyzed, and then it has their sum."""
        files = {file["SPDXID"]: file for file in self.document["files"]}
        for package in self.document["packages"]:
            own = [files[relation["relatedSpdxElement"]] for relation in self.document["relationships"]
                   if relation["relationshipType"] == "CONTAINS" and relation["spdxElementId"] == package["SPDXID"]]
            self.assertEqual(package["filesAnalyzed"], bool(own), package["name"])
            self.assertEqual("packageVerificationCode" in package, bool(own), package["name"])
            if own:
                self.assertEqual(own, self.document["files"])
                sums = sorted(hashlib.sha1((DIST / file["fileName"]).read_bytes()).hexdigest() for file in own)
                self.assertEqual(package["packageVerificationCode"]["packageVerificationCodeValue"],
                                 hashlib.sha1("".join(sums).encode()).hexdigest())

    def test_ProgramThatIsNotInTheList_IsInTheDocument(self):
        """A new one does not end the build; the next case tells that the list lacks it."""
        with tempfile.TemporaryDirectory() as folder:
            for place in ("win64/some.exe", "win32/some.dll", "KespCommObj-1-setup.exe"):
                (pathlib.Path(folder) / place).parent.mkdir(exist_ok=True)
                (pathlib.Path(folder) / place).write_bytes(place.encode())
            _, files, _ = self.tool["contents"](pathlib.Path(folder), "1")
        self.assertEqual([file["fileName"] for file in files],
                         ["./win64/some.exe", "./win32/some.dll", "./KespCommObj-1-setup.exe"])

    def test_Files_AreThoseDelivered(self):
        for file in self.document["files"]:
            sums = {entry["algorithm"]: entry["checksumValue"] for entry in file["checksums"]}
            data = (DIST / file["fileName"]).read_bytes()
            self.assertEqual(sums["SHA256"], hashlib.sha256(data).hexdigest(), file["fileName"])
        for width in self.tool["WIDTHS"]:
            programs = {path.relative_to(DIST / width).as_posix() for path in (DIST / width).rglob("*")
                        if path.suffix in (".dll", ".exe")}
            self.assertEqual(programs, set(self.tool["PROGRAMS"]), "every program is in the list")

    def test_HeaderLibraries_AreListedForTheProgramsThatHoldThem(self):
        for width in self.tool["WIDTHS"]:
            for place, names in self.tool["PROGRAMS"].items():
                data = (DIST / width / place).read_bytes()
                for name, mark in MARKS.items():
                    self.assertEqual(bool(re.search(mark, data)), name in names, f"{name} in {width}/{place}")

    def test_Sources_IncludeNoOtherLibrary(self):
        """A header between pointed brackets is of the language, of the system, or of one of these libraries."""
        found = set()
        for room in ROOMS:
            for path in (path for path in (ROOT / room).rglob("*") if path.suffix in (".h", ".cpp", ".rc", ".in")):
                found.update(re.findall(r"^\s*#\s*include\s*<([^>]+)>", path.read_text(encoding="utf-8"), re.M))
        foreign = {name.partition("/")[0] for name in found if "/" in name or "." in name}
        self.assertLessEqual({"windows.h", *MARKS}, foreign, "includes are found")
        self.assertEqual(foreign - SYSTEM - TESTING - OURS - MARKS.keys(), set())

    def test_Licenses_AreThoseOfTheNotices(self):
        rows = {re.sub(r"[\[\]]|\(.*?\)", "", cells[0]): cells for cells in
                ([cell.strip() for cell in line.strip("|").split("|")]
                 for line in (ROOT / "THIRD-PARTY-NOTICES.md").read_text().splitlines() if line.startswith("| ["))}
        described = set()
        for package in self.document["packages"][1:]:
            found = [title for title in rows if package["name"] in title]
            self.assertEqual(len(found), 1, package["name"])
            described.update(found)
            _, version, _, terms = rows[found[0]]
            declared = set(re.split(r" (?:AND|WITH) ", package["licenseDeclared"]))
            self.assertEqual({name for name, words in TERMS.items() if words in terms}, declared, found[0])
            self.assertIn(version, package["versionInfo"])
        self.assertEqual(described, rows.keys())

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
