#!/usr/bin/env python3
"""Runs the setup program and its uninstaller in a Windows of their own: installer_test.py 64|32|both [unittest's options]

The Windows runs programs of these widths. In one with 32-bit programs it is the setup program that is delivered. That
for 64 bits alone runs one made from the same script and the same files for x64; the 32-bit library can then be copied
but not registered.
Ends with 77 and a reason where there is no such Windows.
"""

import contextlib
import filecmp
import functools
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
from sandbox import ROOT, SKIPPED, TOOLS, ExitCode, Sandbox, becomes_true, windows_path  # noqa: E402
from shortcut import read_shortcut  # noqa: E402

HERE = pathlib.Path(__file__).parent
DIST = ROOT / "dist"
FOLDER = "C:\\Program Files\\Kesp\\KespCommObj"
ELSEWHERE = "C:\\Program Files\\Elsewhere"
UNPROTECTED = "C:\\Unprotected"
MENU = "Microsoft\\Windows\\Start Menu\\Programs\\Kesp Communication Object Library"
ALL_USERS_MENU = "C:\\ProgramData\\" + MENU
LINK = "Practice instrument.lnk"
LINKS = ["Documents.lnk", "Samples.lnk", "kesp console.lnk"]
FAILED_LOG = "C:\\windows\\Logs\\KespCommObj-setup.log"
ENTRY = "[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\KespCommObj] "
APPLICATION = "{b11edd6c-6e7c-4198-acee-833c0be5cd41}"
SESSION_MANAGER = "HKLM\\System\\CurrentControlSet\\Control\\Session Manager"
TITLE = "Kesp Communication Object Library Setup"
# Exit codes; Linux keeps eight bits.
CANCELLED = 1
FAILED, FILES_REMAIN, NEEDS_ADMINISTRATOR, NEEDS_RESTART, NEWER_VERSION = 2, 32, 740 & 0xFF, 3010 & 0xFF, 1638 & 0xFF
sandbox = None
setup = None
version = None
work = None


@functools.cache
def registry_without_library():
    # The script host enters its own type library whenever it starts.
    for bits in sandbox.widths:
        sandbox.run(HERE / "file_version.vbs", "C:\\windows\\regedit.exe", bits=bits)
    # Windows' own keys, there for every user of a Windows that has been used.
    for key in ("Software\\Classes", "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall"):
        sandbox.reg("add", "HKCU\\" + key, "/f").check_returncode()
    return sandbox.registry()


@functools.cache
def files_without_library():
    # Where programs of one user lie, and logs. They are Windows' own folders and there on a Windows that has been used.
    for folder in (sandbox.path(user_folder()).parents[1], sandbox.path(FAILED_LOG).parent):
        folder.mkdir(parents=True, exist_ok=True)
    return sandbox.files()


def make_setup(dist, name):
    made = work / name
    stub = "amd64-unicode" if sandbox.bits == 64 else "x86-unicode"
    subprocess.run([str(TOOLS / "make-installer"), str(dist), str(made), stub], check=True, stdin=subprocess.DEVNULL)
    return made


def of_user(folder):
    return f"C:\\users\\{sandbox.home.name}\\AppData\\{folder}"


def user_folder():
    return of_user("Local\\Programs\\Kesp\\KespCommObj")


def user_menu():
    return of_user("Roaming\\" + MENU)


def is_open(port):
    """Whether somebody listens there."""
    with socket.socket() as client:
        return client.connect_ex(("127.0.0.1", port)) == 0


def idle_port():
    # The library's ports end at 32767. The widths begin apart, as both are tested at the same time.
    return next(port for port in range(10001 + 2 * sandbox.bits, 20000) if not is_open(port))


def names_in(folder):
    return sorted(path.name for path in folder.iterdir())


def root_of(folder):
    """The registry where an installation there is listed."""
    return "HKCU" if folder == user_folder() else "HKLM"


def install(*switches, program=None):
    """For all users unless the switches say otherwise."""
    result = sandbox.run_line(f'"{windows_path(program or setup)}" /S {" ".join(switches)}')
    log = sandbox.path(FAILED_LOG)
    return ExitCode(result, log.read_text("utf-16") if result.returncode and log.exists() else "")


def install_for_user(*switches):
    return ExitCode(sandbox.run_limited(setup, "/S", "/USER", *switches))


def uninstall(folder):
    """As Windows does it: the uninstaller moves to the folder for temporary files and is not waited for."""
    program = sandbox.path(folder) / "uninstall.exe"
    run = sandbox.run_limited if folder == user_folder() else sandbox.run_as_administrator
    run(program, "/S")
    # Its entry is the last that it removes.
    return becomes_true(lambda: not program.exists() and not sandbox.is_listed(root_of(folder)))


def uninstall_in_place(folder, run=None):
    """Where it lies, so that its exit code is seen."""
    return ExitCode(sandbox.run_line(f'"{folder}\\uninstall.exe" /S _?={folder}', run))


def registered_servers(root):
    """For each width in whose view of the registry the library has classes, the DLLs that they name."""
    servers = {}
    for line in sandbox.registry(roots=[root])[root]:
        key, _, file = line.partition("\\InprocServer32] @=")
        if "\\KespCommObj.dll" in file:
            bits = 32 if "\\Wow6432Node\\" in key else sandbox.widths[0]
            servers.setdefault(bits, set()).add(file.strip('"').replace("\\\\", "\\"))
    return servers


def set_installation_folder(folder):
    """In the entry of the installation for all users."""
    key = ENTRY.strip(" []").replace("HKEY_LOCAL_MACHINE", "HKLM")
    sandbox.reg("add", key, "/v", "InstallLocation", "/d", folder, "/f").check_returncode()


@contextlib.contextmanager
def open_document(folder):
    """A program has an installed document open; yields the document's path."""
    held, release = sandbox.drive / "held", sandbox.drive / "release"
    # The command processor lets nobody delete what it redirects.
    holder = sandbox.begin("cmd", "/c", "cscript", "//nologo", windows_path(HERE / "hold_file.vbs"),
                           "C:\\held", "C:\\release", "<", folder + "\\README.md")
    try:
        if not becomes_true(held.exists):
            raise AssertionError("the document was not opened")
        yield sandbox.path(folder) / "README.md"
    finally:
        release.touch()
        output = holder.communicate(timeout=60)[0]
        for place in (held, release):
            place.unlink(missing_ok=True)
    if output.split() != ["PASS"]:
        raise AssertionError(output)


def forget_next_start():
    """What Windows was told to delete then."""
    sandbox.reg("delete", SESSION_MANAGER, "/v", "PendingFileRenameOperations", "/f")


def failed_log():
    """Of a failed installation for all users; it is the one thing that is left."""
    path = sandbox.path(FAILED_LOG)
    text = path.read_text("utf-16")
    path.unlink()
    return text


def clean_up():
    for folder in (FOLDER, ELSEWHERE, user_folder()):
        # One that is not listed would refuse.
        if (sandbox.path(folder) / "uninstall.exe").exists() and sandbox.is_listed(root_of(folder)):
            uninstall_in_place(folder, sandbox.run_limited if folder == user_folder() else None)
        shutil.rmtree(sandbox.path(folder), ignore_errors=True)
    for folder in (FOLDER, user_folder()):
        if sandbox.path(folder).parent.exists():
            sandbox.path(folder).parent.rmdir()
    sandbox.path(FAILED_LOG).unlink(missing_ok=True)


class InstallerTest(unittest.TestCase):
    """What all have in common: each class begins and ends without the library."""

    @classmethod
    def setUpClass(cls):
        files_without_library()
        registry = registry_without_library()
        named = [line for root in registry.values() for line in root if "kesp" in line.lower()]
        if named:
            raise AssertionError(f"an earlier run left {named[0]}; remove build/wine-installer-*")
        cls.addClassCleanup(clean_up)

    def assert_nothing_left(self):
        self.assertEqual(sorted(sandbox.files() ^ files_without_library()), [])
        self.assert_registry_unchanged("HKLM", "HKCU")

    def assert_registry_unchanged(self, *roots):
        present = sandbox.registry(roots=roots)
        for root in roots:
            self.assertEqual(sorted(present[root] ^ registry_without_library()[root])[:10], [])

    def assert_no_practice_instruments(self):
        self.assertEqual(names_in(sandbox.path(FOLDER) / "simulator"), ["README.md"])
        self.assertEqual(names_in(sandbox.path(ALL_USERS_MENU)), LINKS)

    def assert_usable(self):
        for bits in sandbox.widths:
            self.assertEqual(sandbox.run(HERE / "create_object.vbs", bits=bits).stdout.split(), ["PASS"], bits)


class InstalledForAllUsersTest(InstallerTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.others_file = sandbox.drive / "others.txt"
        cls.others_file.write_text("of another program\n")
        link = sandbox.temporary() / "KespCommObj-setup.log"
        link.unlink(missing_ok=True)
        link.symlink_to(cls.others_file)
        cls.addClassCleanup(link.unlink, missing_ok=True)
        cls.addClassCleanup(cls.others_file.unlink, missing_ok=True)
        cls.exit_code = install()
        cls.folder = sandbox.path(FOLDER)

    def test_Installing_EndsWithSuccess(self):
        self.assertEqual(self.exit_code, 0)

    def test_Dlls_AreThoseOfTheBuild(self):
        for width in ("win64", "win32"):
            installed = self.folder / width / "KespCommObj.dll"
            if (sandbox.widths, width) == ((32,), "win64"):
                self.assertFalse(installed.exists())
                continue
            self.assertTrue(filecmp.cmp(installed, DIST / width / "KespCommObj.dll", shallow=False))

    def test_DocumentsSamplesAndHeaders_AreThere(self):
        for place in ("README.md", "docs/building.md", "samples/vbscript/query_tcp.vbs", "include/KespCommObj.idl"):
            self.assertTrue((self.folder / place).is_file(), place)

    def test_PracticeInstruments_AreLeftOut(self):
        self.assert_no_practice_instruments()

    def test_Classes_OfEachViewNameTheDllOfThatWidth(self):
        self.assertEqual(registered_servers("HKLM"), {
            bits: {f"{FOLDER}\\win{bits}\\KespCommObj.dll"} for bits in sandbox.widths})

    def test_Objects_CanBeCreated(self):
        self.assert_usable()

    def test_Log_TellsWhatWasRegisteredAndWhatCouldNotBe(self):
        log = (self.folder / "setup.log").read_text("utf-16")
        for bits in sandbox.widths:
            self.assertIn(f"Registered: {FOLDER}\\win{bits}\\KespCommObj.dll\n", log)
        skipped = f"Copied but not registered, as this Windows does not run programs of that width: {FOLDER}\\win32"
        self.assertEqual(skipped in log, sandbox.bits == 64)

    def test_Log_IsNotWrittenThroughALinkInTheTemporaryFolder(self):
        self.assertEqual(self.others_file.read_text(), "of another program\n")

    def test_ProgramsAndFeatures_ListIt(self):
        listed = sandbox.registry(ENTRY.strip(" []").partition("\\")[2], ["HKLM"])["HKLM"]
        entry = {line.removeprefix(ENTRY) for line in listed}
        escaped = FOLDER.replace("\\", "\\\\")
        self.assertLessEqual({
            '"DisplayName"="Kesp Communication Object Library"', f'"DisplayVersion"="{version}"', '"Publisher"="Kesp"',
            f'"InstallLocation"="{escaped}"', f'"UninstallString"="\\"{escaped}\\\\uninstall.exe\\""'}, entry)
        kilobytes = next(int(line[-8:], 16) for line in entry if line.startswith('"EstimatedSize"=dword:'))
        present = sum(path.stat().st_size for path in self.folder.rglob("*") if path.is_file()) / 1024
        self.assertAlmostEqual(kilobytes / present, 1, delta=0.1)

    def test_SetupProgram_TellsItsVersion(self):
        self.assertIn(f"version={version}.0\n", sandbox.run(HERE / "file_version.vbs", windows_path(setup)).stdout)

    def test_VersionResources_TellTheCommit(self):
        for path in (setup, self.folder / "win32" / "KespCommObj.dll"):
            text = path.read_bytes().decode("utf-16-le", errors="replace")
            self.assertRegex(text, r"Comments\0+(commit [0-9a-f]{8}(-dirty)?|no commit)\0", path)

    def test_ConsoleOfTheStartMenu_BeginsWhereTheUserMayWrite_AndFindsKesp(self):
        console = read_shortcut(sandbox.path(ALL_USERS_MENU) / "kesp console.lnk")
        batch = f'cd /d "{console.folder}"\n{console.arguments.removeprefix("/k ")}\ncd\nkesp --version'
        said = [line.strip().lower() for line in sandbox.run_line(batch).stdout.splitlines()]
        self.assertIn(f"c:\\users\\{sandbox.home.name}", said)
        self.assertIn(f"kesp {version}", said)

    def test_EntriesInTheStartMenu_LeadToWhatIsInstalled(self):
        menu = sandbox.path(ALL_USERS_MENU)
        self.assertEqual(names_in(menu), LINKS)
        samples, console = (read_shortcut(menu / name) for name in LINKS[1:])
        self.assertEqual(samples.target, FOLDER + "\\samples")
        self.assertTrue((sandbox.path(console.folder) / "kesp.exe").exists(), console.folder)
        documents = read_shortcut(menu / LINKS[0])
        page = documents.arguments.strip('"') or documents.target
        self.assertTrue(sandbox.path(page).is_file(), page)


class PracticeInstrumentsTest(InstallerTest):
    """The component that is installed when asked for; kesp-sim is the one of the system's own width."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        install("/PRACTICE")
        cls.folder = sandbox.path(FOLDER) / "simulator"
        cls.link = read_shortcut(sandbox.path(ALL_USERS_MENU) / LINK)

    def open_console(self):
        """What the Start menu's entry opens, at a free port. Returns the port, and a function that ends it and tells
        what was to be read."""
        port = idle_port()
        batch = sandbox.drive / "console.cmd"
        line = self.link.arguments.removeprefix("/k ").replace("10001", str(port))
        batch.write_text(f'cd /d "{self.link.folder}"\n{line}\n')
        self.addCleanup(batch.unlink)
        console = sandbox.begin("cmd", "/c", "C:\\console.cmd")

        @functools.cache
        def end():
            sandbox.run("taskkill", "/f", "/im", "kesp-sim.exe")
            return console.communicate(timeout=60)[0]

        self.addCleanup(end)
        return port, end

    def test_Files_AreThoseOfTheBuild(self):
        own = DIST / f"win{sandbox.widths[0]}" / "simulator"
        for place in ("kesp-sim.exe", "description.schema.json", "examples/device.json", "gpib/README.txt"):
            self.assertTrue(filecmp.cmp(self.folder / place, own / place, shallow=False), place)

    def test_Drivers_AreAwayFromAllProgramsAndTheLibrary(self):
        """In the folder of a program, or of the library, they would be taken for the driver."""
        widths = ("win32", "win64") if sandbox.widths[0] == 64 else ("win32",)
        drivers = sorted(sandbox.path(FOLDER).rglob("*.[dD][lL][lL]"))
        self.assertEqual(drivers, [
            *(self.folder / "gpib" / width / "Gpib-32.dll" for width in widths),
            *(sandbox.path(FOLDER) / width / "KespCommObj.dll" for width in widths)])
        for width in widths:
            driver = self.folder / "gpib" / width / "Gpib-32.dll"
            self.assertEqual(names_in(driver.parent), [driver.name])
            self.assertTrue(filecmp.cmp(driver, DIST / width / "simulator" / "gpib" / driver.name, shallow=False))

    def test_Driver_IsFoundWhereItsReadmePutsIt_AndNowhereElse(self):
        lines = (self.folder / "gpib" / "README.txt").read_text().splitlines()
        commands = [line.strip().replace("win64", f"win{sandbox.bits}") for line in lines if line.startswith("    ")]
        used = next(number for number, line in enumerate(commands) if line.startswith(".\\query"))
        elsewhere = commands[3].split('"')[1]
        said = sandbox.run_line(f'"{elsewhere}" 5').stdout
        self.assertIn("File not found: Gpib-32.dll", said)
        said = sandbox.run_line("\n".join(commands[:used + 1])).stdout
        self.assertIn("reply:       KESP,GP488,SIM48805,1.0\n", said)
        sandbox.run_line("\n".join(commands[used + 1:]))
        self.assertFalse((sandbox.temporary() / "practice-gpib").exists())

    def test_EntryInTheStartMenu_IsAConsoleThatStays(self):
        self.assertEqual(self.link.target.lower(), "c:\\windows\\system32\\cmd.exe")
        self.assertEqual(self.link.folder, FOLDER + "\\simulator")
        self.assertRegex(self.link.arguments, r"^/k title [^&]*127\.0\.0\.1 port 10001&.* --port 10001$")
        # Longer ones Windows does not show whole.
        self.assertLessEqual(len(self.link.arguments), 260)

    def test_EntryInTheStartMenu_OpensAnInstrument_AndIsInUseMeanwhile(self):
        port, end = self.open_console()
        self.assertTrue(becomes_true(lambda: is_open(port)))
        asked = sandbox.run(ROOT / "samples" / "vbscript" / "query_tcp.vbs", "127.0.0.1", port, "*IDN?")
        self.assertIn("reply:       KESP,7100,SIM00001,1.0\n", asked.stdout)
        self.assertEqual(install(), FAILED)
        self.assertIn("simulator\\kesp-sim.exe is in use. Nothing was changed.", failed_log())
        said = end()
        self.assertIn(f"IPAddress 127.0.0.1, Port {port}, command *IDN?\n", said)
        self.assertIn("Ctrl-C ends it.", said)
        self.assertIn(f"listening on 127.0.0.1:{port}\n", said)


class UninstallTest(InstallerTest):
    def tearDown(self):
        clean_up()

    def test_AllUsers_NothingIsLeft(self):
        self.assertEqual(install("/PRACTICE"), 0)
        self.assertTrue((sandbox.path(ALL_USERS_MENU) / LINK).exists())
        self.assertTrue(uninstall(FOLDER))
        self.assert_nothing_left()

    def test_FolderInAnotherSpelling_IsTheSame(self):
        self.assertEqual(install(), 0)
        set_installation_folder("C:\\program files\\Elsewhere\\..\\Kesp\\KESPCOMMOBJ\\")
        exit_code = uninstall_in_place(FOLDER)
        if exit_code != 0:
            set_installation_folder(FOLDER)  # for the cleaning up
        self.assertEqual(exit_code, 0)

    def test_User_NothingIsLeftAndNothingWasChangedForOthers(self):
        self.assertEqual(install_for_user("/PRACTICE"), 0)
        self.assertTrue((sandbox.path(user_menu()) / LINK).exists())
        self.assertFalse(sandbox.path(ALL_USERS_MENU).exists())
        self.assert_registry_unchanged("HKLM")
        self.assertFalse(sandbox.path(FOLDER).exists())
        # Wine makes objects from the machine's entries only, so the user's are looked at instead.
        dlls = {bits: {f"{user_folder()}\\win{bits}\\KespCommObj.dll"} for bits in sandbox.widths}
        if len(dlls) > 1:
            # Windows has two views of a user's classes. Wine has one, in which what was registered last is found.
            dlls = {64: dlls[32]}
        self.assertEqual(registered_servers("HKCU"), dlls)
        self.assertTrue(uninstall(user_folder()))
        self.assert_nothing_left()

    def test_FileOfTheUsersOwn_Stays(self):
        self.assertEqual(install("/D=" + ELSEWHERE), 0)
        own = sandbox.path(ELSEWHERE) / "samples" / "vbscript" / "mine.vbs"
        own.write_text("' mine\n")
        self.assertTrue(uninstall(ELSEWHERE))
        left = [path for path in sandbox.path(ELSEWHERE).rglob("*") if path.is_file()]
        self.assertEqual(left, [own])


class RefusedInstallationTest(InstallerTest):
    def test_DllThatCannotBeRegistered_AllIsTakenBack(self):
        with tempfile.TemporaryDirectory(dir=work) as broken:
            for width in ("win64", "win32"):
                shutil.copytree(DIST / width, pathlib.Path(broken) / width)
            (pathlib.Path(broken) / f"win{sandbox.bits}" / "KespCommObj.dll").write_text("not a DLL")
            program = make_setup(broken, "broken-setup.exe")
        self.assertEqual(install(program=program), FAILED)
        self.assertRegex(failed_log(), r"could not be registered \(regsvr32 ended with \d\)")
        self.assert_nothing_left()

    def test_AllUsers_OutsideProgramFiles_NothingChanges(self):
        for folder in (UNPROTECTED, "C:\\Program Files\\..\\Unprotected", "C:\\Program Files",
                       "C:\\Program Files2\\Kesp"):
            with self.subTest(folder):
                self.assertEqual(install("/D=" + folder), FAILED)
                self.assertIn("within Program Files only", failed_log())
        self.assert_nothing_left()

    def test_AllUsers_WithoutAdministratorsRights_NothingChanges(self):
        self.assertEqual(sandbox.run_limited(setup, "/S").returncode, NEEDS_ADMINISTRATOR)
        self.assert_nothing_left()

    def test_User_WithAdministratorsRights_NothingChanges(self):
        self.assertEqual(install("/USER"), FAILED)
        self.assert_nothing_left()


class RefusedUninstallingTest(InstallerTest):
    def tearDown(self):
        clean_up()

    def test_User_WithAdministratorsRights_NothingChanges(self):
        self.assertEqual(install_for_user(), 0)
        self.assertEqual(uninstall_in_place(user_folder()), FAILED)
        self.assertTrue((sandbox.path(user_folder()) / "README.md").exists())
        self.assertTrue(sandbox.is_listed("HKCU"))

    def test_User_WithoutItsEntry_NothingChanges(self):
        """So it looks to another administrator, and when a program of the user has deleted the entry."""
        self.assertEqual(install(), 0)
        self.assertEqual(install_for_user(), 0)
        key = "HKCU\\" + ENTRY.strip(" []").partition("\\")[2]
        sandbox.reg("delete", key, "/f").check_returncode()
        try:
            for run in (sandbox.run_limited, sandbox.run_as_administrator):
                with self.subTest(run.__name__):
                    self.assertEqual(uninstall_in_place(user_folder(), run), FAILED)
                    self.assertTrue((sandbox.path(user_folder()) / "README.md").exists())
                    self.assertTrue(sandbox.is_listed("HKLM"))
                    self.assert_usable()
        finally:
            install_for_user()  # brings the entry back

    def test_AllUsers_OutsideProgramFiles_NothingChanges(self):
        self.assertEqual(install(), 0)
        shutil.copytree(sandbox.path(FOLDER), sandbox.path(UNPROTECTED))
        self.addCleanup(shutil.rmtree, sandbox.path(UNPROTECTED), ignore_errors=True)
        set_installation_folder(UNPROTECTED)
        try:
            for run in (sandbox.run_limited, sandbox.run_as_administrator):
                with self.subTest(run.__name__):
                    self.assertEqual(uninstall_in_place(UNPROTECTED, run), FAILED)
                    self.assertTrue((sandbox.path(UNPROTECTED) / "README.md").exists())
                    self.assert_usable()
        finally:
            set_installation_folder(FOLDER)

    def test_AllUsers_WithoutAdministratorsRights_NothingChanges(self):
        self.assertEqual(install(), 0)
        self.assertEqual(uninstall_in_place(FOLDER, sandbox.run_limited), NEEDS_ADMINISTRATOR)
        self.assert_usable()


class OtherSpellingTest(InstallerTest):
    def test_FolderWithDots_IsInstalledInto(self):
        self.assertEqual(install("/D=C:\\Program Files\\Elsewhere\\..\\Kesp\\KespCommObj."), 0)
        self.assertEqual(registered_servers("HKLM"), {
            bits: {f"{FOLDER}\\win{bits}\\KespCommObj.dll"} for bits in sandbox.widths})
        self.assert_usable()


class DllIsGoneTest(InstallerTest):
    """A program against viruses has taken the DLLs away."""

    def setUp(self):
        self.addCleanup(clean_up)
        self.assertEqual(install(), 0)
        for dll in sandbox.path(FOLDER).glob("win*/KespCommObj.dll"):
            dll.unlink()

    def test_Installing_Repairs(self):
        self.assertEqual(install(), 0)
        self.assert_usable()

    def test_Uninstalling_LeavesNoEntryThatNamesThem(self):
        self.assertEqual(uninstall_in_place(FOLDER), 0)
        lines = sandbox.registry(roots=["HKLM"])["HKLM"]
        self.assertEqual([line for line in lines if "KespCommObj.dll" in line], [])
        self.assertEqual(install(), 0)  # whose uninstaller takes the rest away


class LazyRegistrationTest(InstallerTest):
    """regsvr32 ends with 0 and has done nothing, as it was seen under load."""

    def setUp(self):
        if sandbox.bits == 64:
            self.skipTest("Wine 8 runs its own regsvr32, whatever program lies there")
        self.rest = sandbox.drive / "lazy.txt"
        regsvr32, own = (sandbox.system / name for name in ("regsvr32.exe", "regsvr32-own.exe"))
        # Wine's system folder may hold links to the files of all prefixes.
        shutil.move(regsvr32, own)
        self.addCleanup(shutil.move, own, regsvr32)
        shutil.copy(sandbox.starter.with_name("lazy_regsvr32.exe"), regsvr32)

    def tearDown(self):
        self.be_lazy(0)
        clean_up()
        self.rest.unlink()

    def be_lazy(self, times):
        self.rest.write_text("." * times)

    def test_Installing_RegistersOnceMore(self):
        self.be_lazy(1)
        self.assertEqual(install(), 0)
        log = (sandbox.path(FOLDER) / "setup.log").read_text("utf-16")
        self.assertRegex(log, r"regsvr32 made 0 of \d entries of .*; once more")
        self.assertIn(sandbox.bits, registered_servers("HKLM"))

    def test_Installing_ThatGetsNoEntries_IsTakenBack(self):
        self.be_lazy(2)
        self.assertEqual(install(), FAILED)
        self.assertRegex(failed_log(), r"could not be registered: regsvr32 made 0 of \d entries")
        self.assertFalse(sandbox.is_listed("HKLM"))

    def test_Uninstalling_UnregistersOnceMore(self):
        self.be_lazy(0)
        self.assertEqual(install_for_user(), 0)
        self.be_lazy(1)
        self.assertEqual(uninstall_in_place(user_folder(), sandbox.run_limited), 0)
        self.assertEqual(registered_servers("HKCU"), {})

    def test_Uninstalling_ThatLeavesEntries_EndsAsFailed(self):
        self.be_lazy(0)
        self.assertEqual(install_for_user(), 0)
        self.be_lazy(2)
        self.assertEqual(uninstall_in_place(user_folder(), sandbox.run_limited), FAILED)
        remaining = [line for line in sandbox.registry(roots=["HKCU"])["HKCU"] if "KespCommObj.dll" in line]
        self.assertNotEqual(remaining, [])
        self.assertEqual(install_for_user(), 0)  # whose uninstaller takes them away


class SurrogateTest(InstallerTest):
    def tearDown(self):
        clean_up()

    def offered(self):
        """For each width, the number of classes that belong to the application; nothing when there is none."""
        lines = sandbox.registry(roots=["HKLM"])["HKLM"]
        key = f"\\appid\\{APPLICATION}]"
        # There is one key, which may be seen in both views.
        if not any(key in line.lower() and '"DllSurrogate"=""' in line for line in lines):
            return {}
        # Wine exports the 32-bit view under two names.
        offered = {64: set(), 32: set()}
        for line in lines:
            if line.lower().endswith(f'"appid"="{APPLICATION}"'):
                bits = 32 if "\\wow6432node\\" in line.lower() else 64
                offered[bits].add(re.search(r"\\CLSID\\(\{[^\\]*\})\]", line, re.IGNORECASE)[1])
        return {bits: len(classes) for bits, classes in offered.items()}

    def test_AskedFor_IsOffered_AndLeavesWithTheInstallation(self):
        self.assertEqual(install("/SURROGATE"), 0)
        self.assertEqual(self.offered(), {64: 6, 32: 6})
        self.assert_usable()
        self.assertTrue(uninstall(FOLDER))
        self.assert_nothing_left()

    def test_AskedFor_64BitClientReachesThe32BitLibrary(self):
        if len(sandbox.widths) == 1:
            self.skipTest("it takes both widths")
        self.assertEqual(install("/SURROGATE"), 0)
        client = ROOT / "build" / "win64" / "tests" / "both_widths" / "surrogate_client.exe"
        said = sandbox.run(client, "32", "--gtest_filter=*Lives*:*Refusal*:*Killed*", bits=64)
        self.assertEqual(said.returncode, 0, said.stdout)
        self.assertIn("[  PASSED  ] 3 tests", said.stdout)
        self.assertTrue(uninstall(FOLDER))
        self.assert_nothing_left()

    def test_AskedForByAUser_IsRefused(self):
        """Windows reads the applications of the machine only."""
        self.assertEqual(install_for_user("/SURROGATE"), FAILED)
        log = sandbox.temporary() / "KespCommObj-setup.log"
        self.assertIn("takes an installation for all users", log.read_text("utf-16"))
        log.unlink()
        self.assert_nothing_left()

    def test_SilentUpdate_KeepsItWithItsPermissions_UntilToldOtherwise(self):
        key = "HKLM\\Software\\Classes\\AppID\\" + APPLICATION
        settings = {"LaunchPermission": ("REG_BINARY", "0102AB"), "AccessPermission": ("REG_BINARY", "0304CD"),
                    "AuthenticationLevel": ("REG_DWORD", "0x6"), "RunAs": ("REG_SZ", "Interactive User")}
        self.assertEqual(install("/SURROGATE"), 0)
        for name, (kind, value) in settings.items():
            sandbox.reg("add", key, "/v", name, "/t", kind, "/d", value, "/f").check_returncode()
        self.assertEqual(install(), 0)
        self.assertEqual(self.offered(), {64: 6, 32: 6})
        listed = [line.split(None, 2) for line in sandbox.reg("query", key).stdout.splitlines()]
        for name, (kind, value) in settings.items():
            self.assertIn([name, kind, value], listed)
        self.assertEqual(install("/SURROGATE=0"), 0)
        self.assertEqual(self.offered(), {})
        self.assertTrue(uninstall(FOLDER))
        self.assert_nothing_left()


class EarlierInstallationTest(InstallerTest):
    def test_InAnotherFolder_IsRemoved_WithItsPracticeInstrumentsWhenAskedFor(self):
        self.assertEqual(install("/PRACTICE", "/D=" + ELSEWHERE), 0)
        self.assertTrue(sandbox.path(ALL_USERS_MENU).exists())
        self.assertEqual(install(), 0)
        self.assertFalse(sandbox.path(ELSEWHERE).exists())
        self.assertTrue((sandbox.path(FOLDER) / "simulator" / "kesp-sim.exe").exists(), "a silent update keeps it")
        self.assert_usable()
        self.assertEqual(install("/PRACTICE=0"), 0)
        self.assert_no_practice_instruments()

    def test_InAFolderThatEveryUserMayWriteTo_NothingOfItIsRun(self):
        folder = sandbox.path(UNPROTECTED)
        folder.mkdir()
        self.addCleanup(shutil.rmtree, folder)
        # A program that fails.
        shutil.copy(sandbox.starter, folder / "uninstall.exe")
        set_installation_folder(UNPROTECTED)
        self.assertEqual(install(), 0)
        log = (sandbox.path(FOLDER) / "setup.log").read_text("utf-16")
        self.assertIn(f"Not removed: the earlier installation in {UNPROTECTED}", log)
        self.assertTrue((folder / "uninstall.exe").exists())


class OtherInstallationsTest(InstallerTest):
    def tearDown(self):
        clean_up()

    def test_NewerVersion_IsReplacedOnlyWhenAskedFor(self):
        self.assertEqual(install(), 0)
        key = ENTRY.strip(" []").replace("HKEY_LOCAL_MACHINE", "HKLM")
        sandbox.reg("add", key, "/v", "DisplayVersion", "/d", "99.0.0", "/f").check_returncode()
        self.assertEqual(install(), NEWER_VERSION)
        self.assertIn("Version 99.0.0 is installed, which is newer. Nothing was changed", failed_log())
        self.assert_usable()
        self.assertEqual(install("/DOWNGRADE"), 0)
        log = (sandbox.path(FOLDER) / "setup.log").read_text("utf-16")
        self.assertIn("Replacing version 99.0.0", log)

    def test_SameVersion_IsInstalledAgain(self):
        self.assertEqual(install(), 0)
        self.assertEqual(install(), 0)

    def test_OtherScope_IsToldOf(self):
        self.assertEqual(install(), 0)
        self.assertNotIn("also installed", (sandbox.path(FOLDER) / "setup.log").read_text("utf-16"))
        self.assertEqual(install_for_user(), 0)
        log = (sandbox.path(user_folder()) / "setup.log").read_text("utf-16")
        self.assertIn(f"The library is also installed in {FOLDER}.", log)


class WizardTest(InstallerTest):
    """Somebody at the screen, who goes through the pages as they come."""

    def tearDown(self):
        clean_up()

    def go_through(self, *answers, rights="all", switches=(), choice="-"):
        """The exit code, and what was to be read on the pages and in the boxes."""
        wizard = sandbox.begin(sandbox.starter, rights, windows_path(setup), *switches)
        hand = sandbox.run(sandbox.starter.with_name("wizard_hand.exe"), TITLE, choice, *answers)
        code = wizard.wait(timeout=60)
        wizard.stdout.close()
        self.assertEqual(hand.returncode, 0, hand.stdout)
        return code, hand.stdout

    def test_FromPageToPage_Installs(self):
        code, said = self.go_through()
        self.assertEqual(code, 0)
        self.assertIn("[All users of this computer (as administrator)]", said)
        self.assertIn("[Open the first steps]", said)
        self.assert_usable()

    def test_NewerVersion_IsAskedFor(self):
        self.assertEqual(install(), 0)
        key = ENTRY.strip(" []").replace("HKEY_LOCAL_MACHINE", "HKLM")
        sandbox.reg("add", key, "/v", "DisplayVersion", "/d", "99.0.0", "/f").check_returncode()
        code, said = self.go_through("No", "Yes")
        self.assertEqual(code, CANCELLED)
        self.assertIn("Version 99.0.0 is installed, which is newer than", said)
        self.assert_usable()

    def test_OtherScope_IsWarnedOf(self):
        self.assertEqual(install_for_user(), 0)
        code, said = self.go_through("Cancel", "Yes")
        self.assertEqual(code, CANCELLED)
        self.assertIn(f"The library is also installed in {user_folder()}.", said)
        self.assertFalse(sandbox.is_listed("HKLM"))


    def test_OtherScope_IsWarnedOf_BeforeAdministratorsRightsAreAskedFor(self):
        """The account that has them may be another one, without that installation."""
        self.assertEqual(install_for_user(), 0)
        code, said = self.go_through("Cancel", "Yes", rights="limited",
                                     choice="All users of this computer (as administrator)")
        self.assertEqual(code, CANCELLED)
        self.assertIn(f"The library is also installed in {user_folder()}.", said)

    def test_SurrogateProcess_IsNotToBeHadByAUser(self):
        code, _ = self.go_through(rights="limited", switches=["/SURROGATE"])
        self.assertEqual(code, 0)
        self.assertTrue(sandbox.is_listed("HKCU"))


class LogTest(InstallerTest):
    def setUp(self):
        self.folder = sandbox.drive / "log folder"
        self.folder.mkdir()
        self.addCleanup(shutil.rmtree, self.folder)
        self.switch = '/LOG="C:\\log folder\\mine.log"'

    def tearDown(self):
        clean_up()

    def read(self):
        return (self.folder / "mine.log").read_text("utf-16")

    def test_OfSuccess_IsWrittenWhereItIsAskedFor(self):
        self.assertEqual(install(self.switch), 0)
        self.assertEqual(self.read(), (sandbox.path(FOLDER) / "setup.log").read_text("utf-16"))

    def test_RelativePath_BeginsWhereSetupWasStarted(self):
        said = sandbox.run_line(f'cd /d "C:\\log folder"\n"{windows_path(setup)}" /S /LOG=mine.log')
        self.assertEqual(said.returncode, 0)
        self.assertIn("Done", self.read())

    def test_ForAllUsers_NothingIsOverwritten(self):
        """Somebody without rights may have chosen the file."""
        (self.folder / "mine.log").write_text("of another program\n")
        self.assertEqual(install(self.switch), 0)
        self.assertEqual((self.folder / "mine.log").read_text(), "of another program\n")
        self.assertIn("is not overwritten", (sandbox.path(FOLDER) / "setup.log").read_text("utf-16"))

    def test_OfFailure_IsWrittenWhereItIsAskedFor(self):
        self.assertEqual(install(self.switch, "/D=" + UNPROTECTED), FAILED)
        self.assertIn("within Program Files only", self.read())


class DocumentInUseTest(InstallerTest):
    def tearDown(self):
        clean_up()
        forget_next_start()

    def test_UninstallingForAUser_SaysThatItRemains(self):
        self.assertEqual(install_for_user(), 0)
        with open_document(user_folder()) as document:
            self.assertEqual(uninstall_in_place(user_folder(), sandbox.run_limited), FILES_REMAIN)
        self.assertTrue(document.exists(), "under its own name, where the user looks for it")
        pending = sandbox.reg("query", SESSION_MANAGER, "/v", "PendingFileRenameOperations").stdout
        self.assertNotIn("README.md", pending)
        self.assertFalse(sandbox.is_listed("HKCU"))

    def test_UninstallingThatLeavesRegistryEntries_EndsAsFailed(self):
        self.assertEqual(install_for_user(), 0)
        (sandbox.path(user_folder()) / f"win{sandbox.bits}" / "KespCommObj.dll").write_text("not a DLL")
        try:
            with open_document(user_folder()):
                self.assertEqual(uninstall_in_place(user_folder(), sandbox.run_limited), FAILED)
        finally:
            install_for_user()  # with a DLL that can remove the entries

    def test_InstallingIntoAnotherFolder_Succeeds(self):
        self.assertEqual(install("/D=" + ELSEWHERE), 0)
        with open_document(ELSEWHERE):
            self.assertEqual(install(), 0)
            self.assert_usable()

    def test_InstallingForAUserIntoAnotherFolder_Succeeds(self):
        self.assertEqual(sandbox.run_limited(setup, "/S", "/USER", "/D=" + UNPROTECTED).returncode, 0)
        self.addCleanup(shutil.rmtree, sandbox.path(UNPROTECTED))
        with open_document(UNPROTECTED):
            self.assertEqual(install_for_user(), 0)

    def test_InstallingIntoTheSameFolder_AsksForARestart(self):
        """Windows deletes the document by its name when it starts, so it would delete a new one, too."""
        self.assertEqual(install(), 0)
        with open_document(FOLDER):
            self.assertEqual(install(), FAILED)
        self.assertIn("Restart Windows", failed_log())


class ConsoleInUseTest(InstallerTest):
    """kesp talks to an instrument that does not answer, and waits for its next try."""

    def test_Kesp_IsInUse(self):
        self.addCleanup(clean_up)
        self.assertEqual(install(), 0)
        kesp = sandbox.path(FOLDER) / f"win{sandbox.bits}" / "kesp.exe"
        with socket.create_server(("127.0.0.1", idle_port())) as silent:
            silent.settimeout(60)
            program = sandbox.begin(kesp, "query", f"tcp:127.0.0.1:{silent.getsockname()[1]}", "*IDN?",
                                    "--repeat", "0", "--every", "10min")
            connection, _ = silent.accept()
            self.addCleanup(connection.close)
        try:
            self.assertEqual(install(), FAILED)
            self.assertIn(f"win{sandbox.bits}\\kesp.exe is in use. Nothing was changed.", failed_log())
        finally:
            sandbox.run("taskkill", "/f", "/im", "kesp.exe")
            program.communicate(timeout=60)


class LibraryInUseTest(InstallerTest):
    """A program has the library loaded, and an installed document open."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        install("/D=" + ELSEWHERE)
        cls.document = sandbox.path(ELSEWHERE) / "README.md"
        cls.held, cls.release = sandbox.drive / "held", sandbox.drive / "release"
        # The command processor lets nobody delete what it redirects.
        cls.holder = sandbox.begin("cmd", "/c", "cscript", "//nologo", windows_path(HERE / "hold_object.vbs"),
                                   "C:\\held", "C:\\release", "<", ELSEWHERE + "\\README.md")
        cls.addClassCleanup(cls.forget)
        becomes_true(cls.held.exists)

    @classmethod
    def forget(cls):
        cls.release.touch()
        cls.holder.wait(timeout=60)
        cls.holder.stdout.close()
        forget_next_start()
        for place in (cls.held, cls.release):
            place.unlink(missing_ok=True)

    def test_Installing_IsRefused_ThenUninstalling_IsFinishedAtTheNextStart(self):
        self.assertEqual(install(), FAILED)
        self.assert_usable()
        self.assertEqual(uninstall_in_place(ELSEWHERE), NEEDS_RESTART)
        # Wine deletes a DLL that is loaded; an open document it cannot delete either.
        self.assertFalse((sandbox.path(ELSEWHERE) / f"win{sandbox.bits}" / "KespCommObj.dll").exists())
        self.assertTrue(self.document.exists())
        pending = sandbox.reg("query", SESSION_MANAGER, "/v", "PendingFileRenameOperations").stdout
        self.assertIn(ELSEWHERE + "\\README.md", pending)
        self.assert_registry_unchanged("HKLM", "HKCU")
        self.release.touch()
        self.assertEqual(self.holder.communicate(timeout=60)[0].split(), ["PASS"])


def main():
    global sandbox, setup, version, work
    if len(sys.argv) < 2 or sys.argv[1] not in ("64", "32", "both"):
        sys.exit(__doc__)
    sandbox = Sandbox(sys.argv.pop(1))
    delivered = sorted(DIST.glob("KespCommObj-*-setup.exe"))
    if not delivered:
        sys.exit("dist holds no setup program; tools/build makes it")
    version = delivered[0].name.split("-")[1]
    try:
        reason = sandbox.start()
        if reason:
            print(f"skipped: {reason}")
            sys.exit(SKIPPED)
        with tempfile.TemporaryDirectory(dir=ROOT / "build" / "installer") as folder:
            work = pathlib.Path(folder)
            setup = delivered[0] if sandbox.bits == 32 else make_setup(DIST, "setup.exe")
            passed = unittest.main(exit=False, verbosity=2).result.wasSuccessful()
    finally:
        sandbox.stop()
    sys.exit(not passed)


if __name__ == "__main__":
    main()
