#!/usr/bin/env python3
"""Shows on made-up products what payload.py installs where, and that it removes the same."""

import pathlib
import re
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
import payload  # noqa: E402
import page_links  # noqa: E402  (found by payload)


class PayloadTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        self.dist = self.tree / "dist"
        self.write("dist/win64/KespCommObj.dll", "for 64")
        self.write("dist/win32/KespCommObj.dll", "for 32")

    def write(self, place, text):
        path = self.tree / place
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def places(self):
        groups = payload.groups_of(self.tree, self.dist)
        return {name: [place.as_posix() for _, place in group] for name, group in groups.items() if group}

    def script(self):
        return "\n".join(payload.script(payload.groups_of(self.tree, self.dist)))

    def test_Places_OfDlls_AreTheFoldersOfTheirWidths(self):
        self.assertEqual(self.places(), {
            "win64": ["win64/KespCommObj.dll"], "win32": ["win32/KespCommObj.dll"]})

    def definitions(self):
        return list(payload.definitions(self.tree, payload.groups_of(self.tree, self.dist)))

    def test_LicenseAndHelp_AreToldOf_WhereTheyAre(self):
        self.assertEqual(self.definitions(), [])
        for width in ("win64", "win32"):
            self.write(f"dist/{width}/help/index.html", "the same")
        self.write("LICENSE", "text")
        self.write("THIRD-PARTY-NOTICES.md", "text")
        self.write("LICENSES-elsewhere", "text")
        self.assertEqual(self.definitions(), ["!define HAS_HELP", f'!define LICENSE_FILE "{self.tree}/LICENSE"'])
        self.assertEqual(self.places()["common"], ["LICENSE", "THIRD-PARTY-NOTICES.md", "help/index.html"])

    def test_RegisteredEntries_AreThoseOfEveryClassAndOfTheTypeLibrary(self):
        script = self.script()
        self.assertIn("!define ENTRIES_OF_A_LIBRARY 7", script)
        self.assertEqual(len(re.findall(r"CLSID\\\{[0-9a-f-]+\}\\InprocServer32", script)), 6)

    def test_Places_OfEqualFiles_AreOnceAtTheTop(self):
        for width in ("win64", "win32"):
            self.write(f"dist/{width}/samples/a.vbs", "the same")
        self.assertEqual(self.places()["common"], ["samples/a.vbs"])

    def test_Places_OfTheHelpFile_AreBesideEachLibrary(self):
        for width in ("win64", "win32"):
            self.write(f"dist/{width}/KespCommObj.chm", "the same")
            self.write(f"dist/{width}/help/index.html", "the same")
        self.assertEqual(self.places(), {
            "common": ["help/index.html"],
            "win64": ["win64/KespCommObj.chm", "win64/KespCommObj.dll"],
            "win32": ["win32/KespCommObj.chm", "win32/KespCommObj.dll"]})

    def test_Places_OfDifferentFiles_AreTheFoldersOfTheirWidths(self):
        for width in ("win64", "win32"):
            self.write(f"dist/{width}/samples/cpp/query.exe", width)
        self.assertIn("win64/samples/cpp/query.exe", self.places()["win64"])
        self.assertIn("win32/samples/cpp/query.exe", self.places()["win32"])

    def test_Places_OfAFileOfOneWidth_IsThatFolder(self):
        self.write("dist/win32/only.txt", "")
        self.assertEqual(self.places()["win32"], ["win32/KespCommObj.dll", "win32/only.txt"])
        self.assertNotIn("common", self.places())

    def test_Simulator_IsAComponentWithOneProgramAndADriverOfEachWidth(self):
        self.write("README.md", "[simulator](simulator/README.md)")
        self.write("simulator/README.md", "a document, with or without the component")
        for width in ("win64", "win32"):
            for place, text in (("kesp-sim.exe", width), ("gpib/Gpib-32.dll", width), ("gpib/README.txt", "the same"),
                                ("examples/a.json", "the same"), ("README.md", "the same")):
                self.write(f"dist/{width}/simulator/{place}", text)
        self.assertEqual(self.places(), {
            "common": ["README.md", "simulator/README.md"],
            "win64": ["win64/KespCommObj.dll"], "win32": ["win32/KespCommObj.dll"],
            "practice": ["simulator/examples/a.json", "simulator/gpib/win32/Gpib-32.dll", "simulator/gpib/README.txt"],
            "practice64": ["simulator/gpib/win64/Gpib-32.dll", "simulator/kesp-sim.exe"],
            "practice32": ["simulator/kesp-sim.exe"]})
        self.assertEqual(self.script().count(r'Push "$INSTDIR\simulator\kesp-sim.exe"'), 1)

    def test_Documents_AreThePagesAndPicturesThatTheFirstOneLeadsTo(self):
        self.write("README.md", "[b](docs/b.md#top) [script](samples/a.vbs) [elsewhere](http://c/d.md) [none](e.md)")
        self.write("docs/b.md", "![picture](shown.png) [back](../README.md) [deeper](../server/c.md)\n```\n[x](d.md)\n```")
        for place in ("docs/shown.png", "docs/not_shown.png", "server/c.md", "docs/d.md", "samples/a.vbs"):
            self.write(place, "")
        self.assertEqual(self.places()["common"], ["README.md", "docs/b.md", "docs/shown.png", "server/c.md"])

    def test_InstalledPages_LeadToNothingThatIsNotInstalled(self):
        tree = pathlib.Path(__file__).resolve().parent.parent
        documents = {place for _, place in payload.documents(tree)}
        for page in [place for place in documents if place.suffix == ".md"]:
            for path, _ in page_links.links((tree / page).read_text(encoding="utf-8")):
                target = page_links.place(page, path) if path else page
                is_sample = target.parts[0] == "samples" and (tree / target).is_file()
                self.assertTrue(is_sample or pathlib.Path(target) in documents, f"{page} leads to {target}")

    def test_Products_WithoutADll_AreRefused(self):
        (self.dist / "win32" / "KespCommObj.dll").unlink()
        with self.assertRaisesRegex(SystemExit, "win32/KespCommObj.dll is not there"):
            payload.groups_of(self.tree, self.dist)

    def test_Script_RemovesEveryFileThatItInstalls(self):
        self.write("README.md", "[a](docs/a.md)")
        for place in ("docs/a.md", "dist/win64/samples/deep/er/x.txt", "dist/win32/y.txt"):
            self.write(place, "")
        folder, installed = "", set()
        for line in self.script().splitlines():
            if found := re.match(r'  SetOutPath "(.*)"', line):
                folder = found[1]
            elif found := re.match(r'  File "/oname=(.*?)" ', line):
                installed.add(f"{folder}\\{found[1]}")
        removed = set(re.findall(r'Push "(.*)"\n  Call \$\{un\}DeleteFile', self.script()))
        self.assertEqual(len(installed), 6)
        self.assertEqual(removed, installed)

    def test_Script_RemovesInnerFoldersFirst(self):
        self.write("dist/win64/samples/deep/x.txt", "")
        folders = re.findall(r'Push "\$INSTDIR\\(.*)"\n  Call \$\{un\}DeleteFolder', self.script())
        self.assertEqual(folders, [r"win64\samples\deep", r"win64\samples", "win32", "win64"])

    def test_Names_WithADollar_AreNotTakenForVariables(self):
        self.write("dist/win64/$x.txt", "")
        self.assertIn(r'File "/oname=$$x.txt"', self.script())
        self.assertIn(r'Push "$INSTDIR\win64\$$x.txt"', self.script())


if __name__ == "__main__":
    unittest.main()
