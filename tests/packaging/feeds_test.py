#!/usr/bin/env python3
"""Checks the form of what package feeds take: feeds_test.py"""

import hashlib
import importlib.util
import pathlib
import posixpath
import re
import runpy
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

sys.dont_write_bytecode = True  # the tree stays as it is
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools" / "lib"))
import portable  # noqa: E402
from project_file import ProjectFile  # noqa: E402

VERSION = portable.version_of(ROOT)
# As the first line of the file says it: "MIT License".
LICENSE = (ROOT / "LICENSE").read_text().split()[0]
NUSPEC = "{http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd}"
# Members that the schemas of version 1.6.0 require.
REQUIRED = {
    "version": {"PackageIdentifier", "PackageVersion", "DefaultLocale", "ManifestType", "ManifestVersion"},
    "installer": {"PackageIdentifier", "PackageVersion", "Installers", "ManifestType", "ManifestVersion"},
    "defaultLocale": {"PackageIdentifier", "PackageVersion", "PackageLocale", "Publisher", "PackageName", "License",
                      "ShortDescription", "ManifestType", "ManifestVersion"},
}


def top_members(text):
    return dict(re.findall(r"^(\w+):[ \t]*(.*)$", text, re.M))


class FeedsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        subprocess.run([ROOT / "tools" / "prepare-packages", cls.folder, "https://example.com/there/"], check=True,
                       stdout=subprocess.DEVNULL)
        cls.winget = {path.name: path.read_text() for path in (cls.folder / "winget").iterdir()}

    def test_Winget_HasTheMembersThatItsSchemasRequire(self):
        kinds = {}
        for name, text in self.winget.items():
            self.assertNotIn("@", text, name)
            self.assertNotIn("\t", text, name)
            members = top_members(text)
            kinds[members["ManifestType"]] = members
            self.assertEqual(members["PackageVersion"], VERSION)
            self.assertEqual(name.split(".yaml")[0].removesuffix(".installer").removesuffix(".locale.en-US"),
                             members["PackageIdentifier"])
        self.assertEqual(kinds.keys(), REQUIRED.keys())
        for kind, members in kinds.items():
            self.assertLessEqual(REQUIRED[kind], members.keys(), kind)
        self.assertEqual(kinds["defaultLocale"]["License"], LICENSE)

    @unittest.skipUnless(importlib.util.find_spec("yaml"), "there is no python3-yaml")
    def test_Winget_CanBeRead(self):
        import yaml
        for name, text in self.winget.items():
            self.assertIsInstance(yaml.safe_load(text), dict, name)

    def test_Winget_NamesTheSetupProgramOfTheBuild(self):
        text = self.winget["Kesp.KespCommObj.installer.yaml"]
        setup = ROOT / "dist" / f"KespCommObj-{VERSION}-setup.exe"
        sums = set(re.findall(r"InstallerSha256: (\S+)", text))
        self.assertEqual(sums, {hashlib.sha256(setup.read_bytes()).hexdigest().upper()})
        self.assertEqual(set(re.findall(r"InstallerUrl: (\S+)", text)), {f"https://example.com/there/{setup.name}"})

    def test_Winget_SwitchesAndCodes_AreThoseOfSetup(self):
        page = (ROOT / "installer" / "README.md").read_text()
        text = self.winget["Kesp.KespCommObj.installer.yaml"]
        for switch in set(re.findall(r" (/[A-Z]+)\b", text)):
            self.assertIn(switch, page)
        for code in re.findall(r"InstallerReturnCode: (\d+)", text):
            self.assertIn(f"| {code} |", page)

    def test_Nuspec_HasWhatNuGetRequires(self):
        text = (ROOT / "packaging" / "nuget" / "KespCommObj.nuspec.in").read_text().replace("@VERSION@", VERSION)
        metadata = ElementTree.fromstring(text).find(NUSPEC + "metadata")
        for name in ("id", "version", "authors", "description"):
            self.assertTrue(metadata.findtext(NUSPEC + name), name)
        self.assertEqual(metadata.findtext(NUSPEC + "version"), VERSION)
        license_ = metadata.find(NUSPEC + "license")
        self.assertEqual((license_.get("type"), license_.text), ("expression", LICENSE))

    def test_Targets_TakeFilesOfThePackageForEachWidth(self):
        tool = runpy.run_path(str(ROOT / "tools" / "prepare-packages"))
        names = tool["nuget_contents"](tool["values"]("https://example.com"), {}).keys()
        text = (ROOT / "packaging" / "nuget" / "build" / "KespCommObj.targets").read_text()

        def inside(place):
            return posixpath.normpath(place.replace("\\", "/"))

        def part_for(platform, **given):
            return ProjectFile(text, MSBuildThisFileDirectory="build\\", PlatformTarget=platform, **given)

        for platform in ("x64", "x86"):
            part = part_for(platform)
            folder = f"native/win-{platform}"
            self.assertEqual([(inside(file["Include"]), file["Link"]) for file in part.files],
                             [(f"{folder}/{name}", name) for name in ("KespCommObj.dll", "Kesp.CommObj.manifest")])
            self.assertLessEqual({inside(file["Include"]) for file in part.files}, names)
            self.assertEqual({file["CopyToOutputDirectory"] for file in part.files}, {"Always"})
            self.assertIn(inside(part.properties["ApplicationManifest"]), names)
        # Of no known width: nothing goes along, and the project keeps what it has.
        part = part_for("AnyCPU")
        self.assertEqual((part.files, part.properties.get("ApplicationManifest")), ([], None))
        own = part_for("x64", ApplicationManifest="own.manifest")
        self.assertEqual(own.properties["ApplicationManifest"], "own.manifest")

    @unittest.skipUnless(shutil.which("mcs") and (ROOT / "tools" / "make-interop").exists(), "no interop assembly here")
    def test_Package_HoldsTheAssemblyAndBothLibraries(self):
        with zipfile.ZipFile(self.folder / f"KespCommObj.{VERSION}.nupkg") as package:
            names = set(package.namelist())
            self.assertLessEqual({
                "[Content_Types].xml", "_rels/.rels", "KespCommObj.nuspec", "build/KespCommObj.targets",
                "build/client.manifest", "lib/net45/KespCommObj.Interop.dll",
                "lib/netcoreapp3.1/KespCommObj.Interop.dll", "native/win-x64/KespCommObj.dll",
                "native/win-x64/Kesp.CommObj.manifest", "native/win-x86/KespCommObj.dll"}, names)
            types = ElementTree.fromstring(package.read("[Content_Types].xml"))
            known = {entry.get("Extension") for entry in types}
            self.assertLessEqual({name.rpartition(".")[2] for name in names} - {"xml"}, known)


if __name__ == "__main__":
    unittest.main(verbosity=2)
