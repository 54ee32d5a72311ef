#!/usr/bin/env python3
"""Uses the archive that needs no installation in a Windows in which the library is not registered.

Runs under tools/with-network-hosts --bits 64|32 with an instrument at 10.88.0.11, so that nothing of it remains:
portable_test.py 64|32 [unittest's options]
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
CLASS_NOT_REGISTERED = "80040154"
INSTRUMENT = ("10.88.0.11", "10001")
REPLY = "KESP,7100,NET00011,1.0"
MANIFEST = "{urn:schemas-microsoft-com:asm.v1}"
bits = 0


def tool(name, *arguments):
    environment = dict(os.environ, KESP_INSTRUMENT_HOST=INSTRUMENT[0], KESP_INSTRUMENT_PORT=INSTRUMENT[1])
    return subprocess.run([str(ROOT / "tools" / name), *map(str, arguments)], text=True, capture_output=True,
                          stdin=subprocess.DEVNULL, timeout=120, check=False, env=environment)


def run(program, *arguments):
    return tool("wine-run", "--bits", bits, program, *arguments)


def built(*place):
    return ROOT.joinpath("build", f"win{bits}", "tests", *place)


def windows_path(path):
    return f"Z:{path}".replace("/", "\\")


def classes():
    """The registered values by their key; a key of both views counts once."""
    result = run(built("both_widths", "machine_classes.exe"))
    result.check_returncode()
    lines = (line.replace("\\Wow6432Node\\", "\\") for line in result.stdout.splitlines())
    return dict(line.split(" = ", 1) for line in lines if " = " in line)


def setUpModule():
    # Both widths are in the second Wine's Windows.
    for width in (64, 32) if bits == 32 else (64,):
        tool("wine-register", width, *(("--wine", 10) if bits == 32 else ()), "--remove").check_returncode()


class PortableTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # In the tree, where the second Wine sees it.
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        cls.addClassCleanup(folder.cleanup)
        archive, = (ROOT / "dist").glob("KespCommObj-*-portable.zip")
        with zipfile.ZipFile(archive) as file:
            file.extractall(folder.name)
        top, = pathlib.Path(folder.name).iterdir()
        cls.folder = top / f"win{bits}"
        for program in ("portable_client", "portable_sample"):
            shutil.copy(built("packaging", program + ".exe"), cls.folder)
        named = [key for key, value in classes().items() if "kesp" in (key + value).lower()]
        if named:
            raise AssertionError(f"registered: {named}")

    def tearDown(self):
        """Wine enters a type library that is asked for by its identifier, and with it the interfaces; Windows does not.
        No class was entered."""
        ours = re.compile(r"\\CLSID\\.*Kesp|\\KespCommObj\.C")
        self.assertEqual([key for key, value in classes().items() if ours.match(key + " " + value)], [])

    def test_WithoutTheManifest_TheClassIsNotRegistered(self):
        shutil.copy(built("both_widths", "edition_client.exe"), self.folder)
        self.assertIn(f"created: {CLASS_NOT_REGISTERED}\n", run(self.folder / "edition_client.exe").stdout)

    def assert_client_passes(self, cases, count):
        result = run(self.folder / "portable_client.exe", f"--gtest_filter={cases}")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertIn(f"[  PASSED  ] {count} test", result.stdout)

    def test_1_ClientInTwoApartments_IsMarshalledByTheManifest(self):
        """The first of all, because Wine has entered no interface yet."""
        self.assert_client_passes("*FromAnotherApartment*", 1)

    def test_Client_CreatesQueriesAndHearsEvents(self):
        self.assert_client_passes("-*FromAnotherApartment*", 3)

    def test_Client_WithoutTheAssembly_GetsNoObject(self):
        with tempfile.TemporaryDirectory(dir=ROOT / "build") as alone:
            shutil.copy(self.folder / "portable_sample.exe", alone)
            result = run(pathlib.Path(alone) / "portable_sample.exe", *INSTRUMENT)
            self.assertEqual(result.stdout, f"the library was not found ({CLASS_NOT_REGISTERED})\n")
            self.assertEqual(result.returncode, 1)

    def test_Sample_GetsAReply(self):
        self.assertEqual(run(self.folder / "portable_sample.exe", *INSTRUMENT).stdout, f"reply: {REPLY}\n")

    def test_Console_GetsAReply(self):
        result = run(self.folder / "kesp.exe", "query", "tcp:" + ":".join(INSTRUMENT), "*IDN?")
        self.assertIn(REPLY, result.stdout)

    def test_ManifestInEffectWhileTheObjectIsCreated_IsEnough(self):
        """For a program that lies elsewhere, late bound."""
        program = built("packaging", "context_client.exe")
        result = run(program, windows_path(self.folder / "client.manifest"), *INSTRUMENT)
        self.assertEqual(result.stdout, f"created: 00000000\nreply: {REPLY}\n", result.stderr)

    def run_script(self, processor=None):
        """As far as the object that Wine does not have: there the folder is told. With a processor, the script host is
        one for that."""
        script = self.folder.parent / "portable" / "script" / "query.vbs"
        text, context, _ = script.read_text().partition("Set context")
        self.assertTrue(context)
        if processor:
            asked = 'CreateObject("WScript.Shell").Environment("Process")("PROCESSOR_ARCHITECTURE")'
            self.assertIn(asked, text)
            text = text.replace(asked, f'"{processor}"')
        begin = script.with_name("begin.vbs")
        begin.write_text(text + 'WScript.Echo folder & "\\" & bits\n')
        return run(begin, *INSTRUMENT)

    def test_Script_TakesTheLibraryOfItsHostsProcessor(self):
        for processor, width in ((None, f"win{bits}"), ("AMD64", "win64"), ("x86", "win32")):
            told = self.run_script(processor).stdout.strip()
            self.assertEqual(told.lower(), windows_path(self.folder.parent / width).lower())

    def test_Script_OnAnotherProcessor_SaysWhichHostToUse(self):
        result = self.run_script("ARM64")
        self.assertIn("SysWOW64\\cscript.exe", result.stdout)
        self.assertEqual(result.returncode, 2)

    def test_Simulator_Starts(self):
        self.assertEqual(run(self.folder / "kesp-sim.exe", "--version").returncode, 0)


class RegisteredTest(unittest.TestCase):
    def test_Manifest_SaysWhatTheLibraryRegisters(self):
        archive, = (ROOT / "dist").glob("KespCommObj-*-portable.zip")
        with zipfile.ZipFile(archive) as file:
            name, = (name for name in file.namelist() if name.endswith(f"win{bits}/Kesp.CommObj.manifest"))
            manifest = ElementTree.fromstring(file.read(name))
        tool("wine-register", bits).check_returncode()
        try:
            registered = {key.lower(): value.lower() for key, value in classes().items()}
        finally:
            tool("wine-register", bits, "--remove").check_returncode()

        def value(pattern):
            """Of the one key with that end."""
            found = {text for key, text in registered.items() if re.search(pattern.lower() + "$", key)}
            self.assertEqual(len(found), 1, (pattern, found))
            return found.pop()

        by_class = {}
        for entry in manifest.iter(MANIFEST + "comClass"):
            clsid = re.escape(entry.get("clsid"))
            by_class[entry.get("clsid")] = entry.get("progid")
            self.assertEqual(value(rf"clsid\\{clsid}\\progid\\?"), entry.get("progid").lower())
            self.assertEqual(value(rf"clsid\\{clsid}\\versionindependentprogid\\?"),
                             entry.find(MANIFEST + "progid").text.lower())
            self.assertEqual(value(rf"clsid\\{clsid}\\inprocserver32\\threadingmodel"),
                             entry.get("threadingModel").lower())
            self.assertEqual(value(rf"clsid\\{clsid}\\typelib\\?"), entry.get("tlbid"))
        ours = next(iter(manifest.iter(MANIFEST + "typelib"))).get("tlbid")
        of_library = {key for key, text in registered.items()
                      if re.search(r"clsid\\[^\\]*\\typelib\\?$", key) and text == ours}
        self.assertEqual(len(of_library), len(by_class))
        interfaces = list(manifest.iter(MANIFEST + "comInterfaceExternalProxyStub"))
        for entry in interfaces:
            iid = re.escape(entry.get("iid"))
            self.assertEqual(value(rf"interface\\{iid}\\proxystubclsid32\\?"), entry.get("proxyStubClsid32").lower())
            self.assertEqual(value(rf"interface\\{iid}\\?"), entry.get("name").lower())
        of_library = {key for key, text in registered.items()
                      if re.search(r"interface\\[^\\]*\\typelib\\?$", key) and text == ours}
        self.assertEqual(len(of_library), len(interfaces))


if __name__ == "__main__":
    bits = int(sys.argv.pop(1))
    unittest.main(verbosity=2)
