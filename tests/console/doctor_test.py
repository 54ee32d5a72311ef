#!/usr/bin/env python3
"""kesp doctor in a Windows of both widths. Runs under tools/with-network-hosts --bits 64 --wine 10, so that nothing of
what it writes remains: doctor_test.py [unittest's options]
"""

import json
import os
import re
import shutil
import subprocess
import unittest

import device_list
from kesp_program import ROOT, Kesp, KespCase

WIDTHS = ("64", "32")
FIREWALL = (r"HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services\SharedAccess\Parameters\FirewallPolicy"
            r"\{profile}")
POLICY = r"HKEY_LOCAL_MACHINE\Software\Policies\Microsoft\WindowsFirewall\{profile}"
POLICY_PROFILES = {"private": "PrivateProfile"}
PROFILES = {"public": "PublicProfile", "private": "StandardProfile", "domain": "DomainProfile"}


def other(bits):
    return "32" if bits == "64" else "64"


class DoctorCase(KespCase):
    """With a folder as it is delivered, in which nothing is registered at first."""

    @classmethod
    def setUpClass(cls):
        for bits in WIDTHS:
            cls.remove(bits)

    def setUp(self):
        super().setUp()
        for bits in WIDTHS:
            (self.folder / f"win{bits}").mkdir()
            for name in ("kesp.exe", "KespCommObj.dll"):
                os.link(ROOT / "dist" / f"win{bits}" / name, self.folder / f"win{bits}" / name)

    def file(self, bits, name="KespCommObj.dll"):
        return self.folder / f"win{bits}" / name

    @staticmethod
    def in_windows(bits, *words):
        result = subprocess.run([ROOT / "tools" / "wine-run", "--bits", bits, *words], capture_output=True, text=True,
                                check=False, stdin=subprocess.DEVNULL)
        return result.returncode, result.stdout + result.stderr

    def register(self, bits, library=None, *switches):
        self.addCleanup(self.remove, bits, *switches)
        said = self.in_windows(bits, "regsvr32", "/s", *switches, self.windows(library or self.file(bits)))
        self.assertEqual(said[0], 0, said)

    @classmethod
    def remove(cls, bits, *switches):
        library = cls.windows(ROOT / "dist" / f"win{bits}" / "KespCommObj.dll")
        cls.in_windows(bits, "regsvr32", "/s", "/u", *switches, library)

    def doctor(self, bits="64", *options):
        """The findings; of each level as many as the program counts, and each with its remedy."""
        program = Kesp(bits, "doctor", "--json", *options, program=self.file(bits, "kesp.exe"))
        code, output, error = program.end()
        self.assertEqual(error, "")
        said = json.loads(output)
        levels = [finding["level"] for finding in said["findings"]]
        self.assertEqual((code, said["fails"], said["warnings"]),
                         (levels.count("FAIL"), levels.count("FAIL"), levels.count("WARN")))
        for finding in said["findings"]:
            self.assertEqual("remedy" in finding, finding["level"] != "OK", finding)
        return said["findings"]

    def about(self, subject, findings):
        return [finding for finding in findings if finding["subject"] == subject]

    def assert_finding(self, findings, level, subject, text, remedy=None):
        found = self.about(subject, findings)
        match = [each for each in found if each["level"] == level and text in each["text"]]
        self.assertTrue(match, f"{level} {subject}: {text} among {found}")
        if remedy:
            self.assertIn(remedy, match[0]["remedy"])


class RegistrationTest(DoctorCase):
    def test_nothing_registered(self):
        for bits in WIDTHS:
            findings = self.doctor(bits)
            for width in WIDTHS:
                system = {"64": "System32", "32": "SysWOW64"}[width]
                self.assert_finding(findings, "FAIL", f"{width}-bit clients", 'get "class not registered" (80040154',
                                    "as administrator: C:\\windows\\"
                                    f'{system}\\regsvr32.exe "{self.windows(self.file(width))}"')
                for text in ("each of its 6 classes was created", "its type library was loaded, and is its own",
                             "events were connected"):
                    self.assert_finding(findings, "OK", f"{width}-bit library beside kesp", text)
                self.assertEqual(self.about(f"{width}-bit registered library", findings), [])
            self.assertEqual([each["subject"] for each in findings if each["level"] == "FAIL"],
                             [f"{bits}-bit clients", f"{other(bits)}-bit clients"])

    def test_the_remedy_mends_it(self):
        for finding in self.doctor():
            if finding["level"] == "FAIL":
                self.addCleanup(self.remove, finding["subject"][:2])
                command = finding["remedy"].removeprefix("as administrator: ").replace('"', "")
                self.in_windows("64", "cmd", "/c", command.replace("regsvr32.exe ", "regsvr32.exe /s "))
        for bits in WIDTHS:
            findings = self.doctor(bits)
            self.assertEqual([each for each in findings if each["level"] == "FAIL"], [])
            for width in WIDTHS:
                self.assert_finding(findings, "OK", f"{width}-bit clients",
                                    f"load {self.windows(self.file(width))} 1.0.0, registered for all users; "
                                    "it was delivered with this kesp")
                self.assert_finding(findings, "OK", f"{width}-bit clients as administrator", "load the same")
                self.assert_finding(findings, "OK", f"{width}-bit type library", "from the same file")
                self.assert_finding(findings, "OK", f"{width}-bit registered library", "events were connected")

    def test_another_copy(self):
        copy = self.folder / "copy" / "KespCommObj.dll"
        copy.parent.mkdir()
        shutil.copy(self.file("64"), copy)
        self.register("64", copy)
        self.assert_finding(self.doctor(), "OK", "64-bit clients", "; the same as delivered with this kesp")
        copy.write_bytes(copy.read_bytes() + b"\0")
        self.assert_finding(self.doctor(), "WARN", "64-bit clients", "; not the one delivered with this kesp, 1.0.0",
                            "--registered")
        copy.unlink()
        findings = self.doctor()
        self.assert_finding(findings, "FAIL", "64-bit clients", "is registered, but there is no such file")
        self.assert_finding(findings, "FAIL", "64-bit registered library", "CKespTCP cannot be created: ")

    def test_a_file_that_cannot_be_loaded(self):
        self.file("64").unlink()
        self.file("64").write_text("no library")
        text = self.about("64-bit library beside kesp", self.doctor())[0]["text"]
        self.assertRegex(text, r"^cannot be loaded: [A-Za-z].*[a-z] \(error \d+\)$")

    def test_only_the_other_width(self):
        for bits in WIDTHS:
            self.register(bits)
            findings = self.doctor(other(bits))
            self.assert_finding(findings, "WARN", f"{other(bits)}-bit clients",
                                f"; the {bits}-bit one serves {bits}-bit programs only", "regsvr32.exe")
            self.assert_finding(findings, "OK", f"{bits}-bit clients", "it was delivered with this kesp")
            self.remove(bits)

    def test_one_width_alone_is_asked(self):
        self.file("32", "kesp.exe").unlink()
        findings = self.doctor()
        self.assert_finding(findings, "WARN", "32-bit kesp", "is not there: the 32-bit library was not tried out")
        self.assert_finding(findings, "FAIL", "32-bit clients", "get \"class not registered\"")
        self.assertFalse([each for each in self.doctor("64", "--this-width-only") if "32-bit" in each["subject"]])

    def test_registered_for_one_user(self):
        self.register("64", None, "/n", "/i:user")
        findings = self.doctor()
        self.assert_finding(findings, "OK", "64-bit clients", "registered for this user; it was delivered")
        self.assert_finding(findings, "WARN", "64-bit clients as administrator",
                            "what is registered for one user does not exist for them", "as administrator: ")


class GpibTest(DoctorCase):
    def put(self, driver_bits, bits):
        driver = ROOT / "dist" / f"win{driver_bits}" / "simulator" / "gpib" / "Gpib-32.dll"
        shutil.copy(driver, self.file(bits, "Gpib-32.dll"))

    def test_no_driver(self):
        findings = self.doctor()
        self.assert_finding(findings, "WARN", "64-bit GPIB driver", "no driver found: Gpib-32.dll or ni4882.dll")
        self.assert_finding(findings, "WARN", "32-bit GPIB driver", "no driver found: Gpib-32.dll", "32-bit programs")

    def test_a_driver_for_each_width(self):
        for bits in WIDTHS:
            self.put(bits, bits)
        for bits in WIDTHS:
            findings = self.doctor(bits)
            for width in WIDTHS:
                driver = self.windows(self.file(width, "Gpib-32.dll"))
                self.assert_finding(findings, "OK", f"{width}-bit GPIB driver", driver)
                self.assert_finding(findings, "OK", f"{width}-bit GPIB driver", "has each of the 8 entry points")

    def test_a_driver_beside_the_registered_library(self):
        served = self.folder / "served" / "KespCommObj.dll"
        served.parent.mkdir()
        shutil.copy(self.file("64"), served)
        shutil.copy(ROOT / "dist" / "win64" / "simulator" / "gpib" / "Gpib-32.dll", served.parent)
        self.register("64", served)
        driver = self.windows(served.parent / "Gpib-32.dll")
        for bits in WIDTHS:
            self.assert_finding(self.doctor(bits), "OK", "64-bit GPIB driver", driver)
        self.put("64", "64")
        self.assert_finding(self.doctor(), "OK", "64-bit GPIB driver", f"; not taken: {driver}")

    def test_a_driver_of_the_other_width(self):
        self.put("32", "64")
        self.assert_finding(self.doctor(), "FAIL", "64-bit GPIB driver", "is no 64-bit library", "64-bit programs")

    def test_a_file_without_the_entry_points(self):
        shutil.copy(self.file("64"), self.file("64", "ni4882.dll"))
        self.assert_finding(self.doctor(), "FAIL", "64-bit GPIB driver", "lacks ibdev, ibclr, ibeos, ibwrt, ibrd, ibonl, "
                            "RegisterGpibGlobalsForThread, UnregisterGpibGlobalsForThread")

    def test_the_library_needs_no_other_entry_points(self):
        pages = [(ROOT / room / file).read_text() for room, file in
                 (("gpib", "gpib_binding.cpp"), ("console", "gpib_file.cpp"))]
        needed = re.findall(r'Find\(library, table\.\w+, "(\w+)"\)', pages[0])
        self.assertGreater(len(needed), 0)
        names = pages[1].partition("NeededGpibEntryPoints()")[2].partition("};")[0]
        self.assertEqual(re.findall(r'"(\w+)"', names), needed)


class SurroundingsTest(DoctorCase):
    def test_ports(self):
        self.addCleanup(device_list.take_away, "64", self.folder)
        device_list.plug_in("64", self.folder)
        findings = self.doctor()
        self.assert_finding(findings, "WARN", "COM210", "holds back the end of each reply for up to 16 ms",
                            r'reg add "HKLM\SYSTEM\CurrentControlSet\Enum\FTDIBUS\VID_0403+PID_6001+A50285BIA\0000'
                            r'\Device Parameters" /v LatencyTimer /t REG_DWORD /d 1 /f')
        self.assert_finding(findings, "OK", "COM207", "not there, USB Serial Port (COM207), FTDI, FT232R, FTGHOST")
        self.assert_finding(findings, "OK", "COM202", "here, Prolific USB-to-Serial Comm Port (COM202)")

    def adapter(self):
        adapters = self.about("Network adapter", self.doctor())
        self.assertEqual(len(adapters), 1)
        self.assertRegex(adapters[0]["text"], r", index \d+, metric \d+, 10\.88\.0\.1, firewall ")
        self.assertIn("; takes the broadcast that looks for instruments", adapters[0]["text"])
        return adapters[0]

    def test_network_and_firewall(self):
        profile = re.search(r"\((\w+) network\)", self.adapter()["text"]).group(1)
        path = FIREWALL.replace("{profile}", PROFILES[profile])
        for on in (0, 1):
            device_list.write("64", self.folder, device_list.key(path, EnableFirewall=on))
            self.assertIn(f"firewall {('off', 'on')[on]} ({profile} network)", self.adapter()["text"])
        device_list.write("64", self.folder,
                          device_list.key(path, EnableFirewall=1, DisableUnicastResponsesToMulticastBroadcast=1))
        adapter = self.adapter()
        self.assertEqual(adapter["level"], "WARN")
        self.assertIn("; the firewall keeps out the replies", adapter["text"])
        self.assertIn(f" set {profile}profile settings ", adapter["remedy"])
        policy = POLICY.replace("{profile}", POLICY_PROFILES.get(profile, PROFILES[profile]))
        device_list.write("64", self.folder, device_list.key(policy, DisableUnicastResponsesToMulticastBroadcast=1))
        self.assertIn("replies, as a policy says", self.adapter()["text"])

    def test_office(self):
        self.register("64")
        self.assert_finding(self.doctor(), "OK", "Office", "is not installed")
        path = r"HKEY_LOCAL_MACHINE\Software\Microsoft\Office\ClickToRun\Configuration"
        for platform, bits, level in (("x64", "64", "OK"), ("x86", "32", "WARN")):
            device_list.write("64", self.folder,
                              device_list.key(path, Platform=platform, VersionToReport="16.0.1"))
            for width in WIDTHS:
                self.assert_finding(self.doctor(width), level, "Office", f"16.0.1, {bits}-bit; its VBA ")

    def test_a_trace_that_is_there_and_cannot_be_written(self):
        self.file("64", "commobjout.log").mkdir()
        self.assert_finding(self.doctor(), "WARN", "64-bit default trace", "cannot be written by this user",
                            "DebugFilename")
        self.file("64", "commobjout.log").rmdir()
        self.file("64", "commobjout.log").write_text("kept")
        self.assert_finding(self.doctor(), "OK", "64-bit default trace", "can be written by this user")
        self.assertEqual(self.file("64", "commobjout.log").read_text(), "kept")

    def test_the_program_runs_with_the_rights_of_who_starts_it(self):
        for bits in WIDTHS:
            self.assertIn(b'<requestedExecutionLevel level="asInvoker"', self.file(bits, "kesp.exe").read_bytes())

    def test_the_page_can_be_pasted(self):
        program = Kesp("64", "doctor", program=self.file("64", "kesp.exe"))
        code, page, error = program.end()
        self.assertEqual((code, error), (2, ""))
        self.assertRegex(page, r"^kesp \d+\.\d+\.\d+ doctor\n\nOK    Windows ")
        self.assertRegex(page, r"\n\d+ OK, \d+ WARN, 2 FAIL\n$")
        self.assertRegex(page, r"\nOK +64-bit VBScript +is installed\n")
        self.assertRegex(page, r"\nOK +32-bit default trace +\S+\\win32\\commobjout\.log can be written by this user\n")
        for line in page.splitlines():
            self.assertRegex(line, "^(kesp .*|OK .*|WARN .*|FAIL .*| +-> .*|.* FAIL|)$")


if __name__ == "__main__":
    unittest.main()
