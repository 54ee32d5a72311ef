#!/usr/bin/env python3
"""kesp ports, and addresses by an adapter's serial number, on a device list of our own: ports_test.py 64|32

Ends with 77 where the machine has no Wine of that width.
"""

import fcntl
import json
import sys
import unittest

import device_list
from kesp_program import DONE, FAILED, KespCase
from program_tester import SKIPPED, com_port_link, start_wine

COM = 202


class PortsTest(KespCase):
    def setUp(self):
        super().setUp()
        self.addCleanup(device_list.take_away, self.bits, self.folder)
        device_list.plug_in(self.bits, self.folder)

    def ours(self, *options):
        """The ports by their names, without the machine's own."""
        code, output, error = self.kesp("ports", "--json", *options)
        self.assertEqual((code, error), (DONE, ""))
        return {port["port"]: port for port in json.loads(output) if port["port"].startswith("COM2")}

    def test_each_adapter_is_known(self):
        ports = self.ours()
        self.assertEqual(list(ports), ["COM202", "COM207", "COM209", "COM210", "COM211", "COM212", "COM213"])
        facts = ("present", "bus", "vendor", "product", "usb_id", "serial")
        self.assertEqual(
            {name: tuple(port[fact] for fact in facts) for name, port in ports.items()},
            {"COM202": (True, "USB", "Prolific", "PL2303", "067B:2303", ""),
             "COM207": (False, "USB", "FTDI", "FT232R", "0403:6001", "FTGHOST"),
             "COM209": (True, "USB", "WCH", "CH340", "1A86:7523", ""),
             "COM210": (True, "USB", "FTDI", "FT232R", "0403:6001", "A50285BI"),
             "COM211": (True, "USB", "Silicon Labs", "CP2105", "10C4:EA70", "0123AB"),
             "COM212": (True, "Bluetooth", "", "Standard Serial over Bluetooth link", "", "00:11:22:33:44:55"),
             "COM213": (True, "ACPI", "", "Communications Port", "", "")})
        self.assertEqual(ports["COM210"]["latency_ms"], 16)

    def test_the_table_is_in_natural_order(self):
        code, output, error = self.kesp("ports")
        self.assertEqual((code, error), (DONE, ""))
        lines = output.splitlines()
        self.assertRegex(lines[0], "^PORT +STATE +NAME +VENDOR +PRODUCT +SERIAL NUMBER$")
        numbers = [int(line.split()[0].removeprefix("COM")) for line in lines[1:]]
        self.assertEqual(numbers, sorted(numbers))
        self.assertRegex(output, r"COM210 +here +USB Serial Port \(COM210\) +FTDI +FT232R +A50285BI\n")
        self.assertRegex(output, r"COM207 +not there +USB Serial Port")

    def test_probe_tells_which_is_in_use(self):
        device = self.write('{"commands": {"*IDN?": "x"}}')
        self.serial_instrument(COM, "--quiet", device)
        self.assertEqual(self.ours()["COM202"]["state"], "here")
        ports = self.ours("--probe")
        self.assertEqual(ports["COM202"]["state"], "free")
        self.assertEqual(ports["COM209"]["state"], "cannot be opened")
        self.assertEqual(ports["COM207"]["state"], "not there")
        # Of a terminal that somebody has locked, Windows' error is that of a port in use.
        with open(com_port_link(self.bits, COM), "rb", buffering=0) as line:
            fcntl.flock(line, fcntl.LOCK_EX)
            self.assertEqual(self.ours("--probe")["COM202"]["state"], "in use")
            self.assertEqual(self.ours()["COM202"]["state"], "here")

    def test_address_by_serial_number(self):
        self.serial_instrument(211, "--quiet", self.write('{"commands": {"*IDN?": "behind the adapter"}}'))
        code, output, error = self.kesp("query", "usb:0123ab@9600,cr", "*IDN?")
        self.assertEqual((code, output, error), (DONE, "behind the adapter\n", ""))

    def test_address_of_an_adapter_that_is_not_there(self):
        for serial, message in (
                ("XX", "no USB adapter has the serial number XX"),
                ("FTGHOST", "the USB adapter with the serial number FTGHOST is not plugged in (it was COM207)")):
            code, output, error = self.kesp("query", f"usb:{serial}", "*IDN?")
            self.assertEqual((code, output), (FAILED, ""))
            self.assertEqual(error, f"kesp: {message}; plugged in are COM210 (A50285BIA), COM211 (0123AB)\n")


if __name__ == "__main__":
    KespCase.bits = sys.argv.pop(1)
    if start_wine(KespCase.bits) == SKIPPED:
        sys.exit(SKIPPED)
    unittest.main()
