#!/usr/bin/env python3
"""Detection, conversations and long transfers of kesp.exe, as its users meet them: talk_test.py 64|32

Ends with 77 where the machine has no Wine of that width.
"""

import json
import pathlib
import re
import subprocess
import sys
import time
import unittest

from kesp_program import (DONE, FAILED, INTERRUPTED, ROOT, USAGE, Kesp, KespCase, of_wine, wait_until)
from program_tester import SKIPPED, start_wine

COM = 75
MISSING = 250
ALL_BYTES = bytes(range(256))
SAID = r"\d\d:\d\d:\d\d\.\d{3} +\d+\.\d ms  "


class DetectTest(KespCase):
    def test_over_tcp(self):
        address = self.tcp_instrument()
        self.assertEqual(self.kesp("detect", address), (DONE, f"{address}  KESP,7100,SIM00001,1.0\n", ""))
        code, output, error = self.kesp("detect", "--json", "--level", "scpi", address)
        self.assertEqual((code, error), (DONE, ""))
        self.assertEqual(json.loads(output), {"address": address, "answer": "KESP,7100,SIM00001,1.0"})

    def test_nobody_listens(self):
        self.assertEqual(self.kesp("detect", "tcp:127.0.0.1:1"),
                         (FAILED, "", "kesp: no connection to tcp:127.0.0.1:1\n"))

    def test_the_bit_rate_is_found(self):
        device = self.write('{"line": {"baud": 9600}, "commands": {"*VER": "1.0"}, "reply_terminator": "\\r\\n"}')
        self.serial_instrument(COM, "--quiet", device)
        code, output, error = self.kesp("detect", f"com{COM}@19200")
        self.assertEqual((code, output, error), (DONE, f"com{COM}@9600  1.0\n", ""))

    def test_a_bit_rate_above_the_usual_ones(self):
        self.serial_instrument(COM, "--quiet", self.write('{"line": {"baud": 115200}, "commands": {"*IDN?": "FAST"}}'))
        self.assertEqual(self.kesp("detect", f"com{COM}@38400"), (DONE, f"com{COM}@115200  FAST\n", ""))

    def test_no_such_port(self):
        code, output, error = self.kesp("detect", f"com{MISSING}")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertIn("Invalid port number (error 8002, CKespCOMPort3 - OpenPort() [commCOMControl])\n  There is no such port",
                      error)

    def test_ctrl_c_ends_the_search(self):
        log = self.folder / "log"
        self.serial_instrument(COM, "--quiet", "--log", log, self.write("{}"))
        program = Kesp(self.bits, "detect", f"com{COM}")
        wait_until(lambda: '"*IDN?"' in log.read_text(), log.read_text)
        program.press_ctrl_c()
        code, output, error = program.end()
        self.assertEqual((code, output), (INTERRUPTED, ""))
        self.assertRegex(error, rf"^kesp: ended by Ctrl-C; nobody had answered at com{COM} \(\d commands? tried\)\n$")

    def test_the_time_for_the_search_is_up(self):
        self.serial_instrument(COM, "--quiet", self.write("{}"))
        begin = time.monotonic()
        code, output, error = self.kesp("detect", f"com{COM}", "--timeout", "1s")
        self.assertEqual((code, output), (FAILED, ""))
        # On a busy machine the time is up before the first one.
        self.assertRegex(error, rf"^kesp: nobody answers at com{COM} \([01] commands? tried\)\n$")
        self.assertLess(time.monotonic() - begin, 10)


class GpibDetectTest(KespCase):
    """With the driver beside the program, which uses the registered library."""

    def setUp(self):
        super().setUp()
        bus = self.write(json.dumps({"devices": [
            {"gpib": {"primary": 3}, "commands": {}},
            {"gpib": {"primary": 5}, "commands": {"*IDN?": "KESP,GP488"}}]}), "bus.json")
        place = f"beside_driver {self.bits} {self.folder} {ROOT}/dist/win{self.bits}/kesp.exe {bus}"
        said = subprocess.run(of_wine(place), capture_output=True, text=True, check=True)
        self.program = pathlib.Path(said.stdout.strip())

    def kesp_with_driver(self, *arguments):
        return Kesp(self.bits, "--registered", *arguments, program=self.program).end()

    def test_the_first_device_that_answers(self):
        self.assertEqual(self.kesp_with_driver("detect", "gpib:"), (DONE, "gpib:5  KESP,GP488\n", ""))

    def test_an_address_alone(self):
        self.assertEqual(self.kesp_with_driver("detect", "gpib:5"), (DONE, "gpib:5  KESP,GP488\n", ""))
        self.assertEqual(self.kesp_with_driver("detect", "gpib:3"),
                         (FAILED, "", "kesp: nobody answers at gpib:3 (3 commands tried)\n"))


class TerminalTest(KespCase):
    def setUp(self):
        super().setUp()
        self.device = self.write("""{"reply_terminator": "\\r\\n", "commands": {
            "*IDN?": "KESP,7100", ":MEAS?": "1.5", "RAW?": [{"send_hex": "00 81 0D 0A"}], "SET": null}}""")

    def test_a_script_of_commands(self):
        self.serial_instrument(COM, "--quiet", self.device)
        log = self.folder / "talk.txt"
        script = f":log {self.windows(log)}\n*IDN?\n:send SET\n::MEAS?\n:hex\nRAW?\n"
        code, output, error = self.kesp("terminal", f"com{COM}@9600", input=script)
        self.assertEqual((code, error), (DONE, "replies are shown as bytes\n"))
        self.assertRegex(output, f"^{SAID}KESP,7100\n{SAID}sent\n{SAID}1.5\n{SAID}00 81 0D 0A\n$")
        self.assertRegex(log.read_text(), r"^\S+ > \*IDN\?\n\S+ < KESP,7100\n\S+ > SET\n\S+ < sent\n")

    def test_it_goes_on_after_failures_and_says_so_at_its_end(self):
        address = self.tcp_instrument(self.device)
        code, output, error = self.kesp("terminal", address,
                                        input=":timeout 500\nNO?\n:nonsense\n:timeout 9000\n*IDN?\n:quit\nNO?\n")
        self.assertEqual(code, FAILED)
        self.assertRegex(output, f"^{SAID}KESP,7100\n$", error)
        self.assertRegex(error, rf"^{SAID}Timeout \(cfrTimeout, \[CKespTCP - ReadLine\(\)\]\)")
        self.assertIn('":nonsense" is not a word of the terminal', error)

    def test_a_port_that_is_pulled_and_comes_back(self):
        instrument = self.serial_instrument(COM, "--quiet", self.device)
        program = Kesp(self.bits, "terminal", f"com{COM}@9600")
        program.say("*IDN?\n")
        program.wait_for("KESP,7100\n")
        self.pull(instrument)
        program.say("*IDN?\n")
        program.wait_for("commCOMControl")
        program.say("*IDN?\n")
        program.wait_for("Invalid port number")
        self.serial_instrument(COM, "--quiet", self.device)
        program.say("*IDN?\n")
        code, output, error = program.end()
        self.assertEqual(code, FAILED)
        self.assertRegex(output, f"^({SAID}KESP,7100\n){{2}}$")
        self.assertRegex(error, r"(?s)plug the adapter in again.*There is no such port now")

    def test_a_port_that_is_pulled_while_a_reply_is_awaited(self):
        self.serial_instrument(COM, "--quiet", self.write(
            '{"commands": {"PULL?": [{"send": "1."}, {"wait_ms": 300}, {"close": true}]}}', "pulled.json"))
        begin = time.monotonic()
        code, output, error = self.kesp("terminal", f"com{COM}@9600", "--timeout", "60s", input="PULL?\n")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertRegex(error, r"Error reading comm device.*\n  .*plug the adapter in again")
        self.assertLess(time.monotonic() - begin, 20)

    def test_bytes_from_a_port_that_is_pulled(self):
        self.serial_instrument(COM, "--quiet", self.write(
            '{"commands": {"PULL?": [{"wait_ms": 300}, {"close": true}]}}', "pulled.json"))
        code, output, error = self.kesp("terminal", f"com{COM}@9600", "--timeout", "60s", input=":hex\nPULL?\n")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertRegex(error, r"Error reading comm device \(error 8020, commCOMControl\)\n  .*plug the adapter in again")

    def test_ctrl_c_ends_a_wait_at_once(self):
        log = self.folder / "log"
        self.serial_instrument(COM, "--quiet", "--log", log, self.write("{}", "silent.json"))
        program = Kesp(self.bits, "terminal", f"com{COM}@9600", "--timeout", "60s")
        program.say("A?\n")
        wait_until(lambda: '"A?' in log.read_text(), log.read_text)
        begin = time.monotonic()
        program.press_ctrl_c()
        code, output, _ = program.end()
        self.assertEqual((code, output), (INTERRUPTED, ""))
        self.assertLess(time.monotonic() - begin, 10)


    def test_ctrl_c_while_another_program_is_to_write_the_next_line(self):
        self.serial_instrument(COM, "--quiet", self.device)
        program = Kesp(self.bits, "terminal", f"com{COM}@9600")
        program.say("*IDN?\n")
        program.wait_for("KESP,7100\n")
        program.press_ctrl_c()
        self.assertEqual(program.process.wait(20), INTERRUPTED)
        program.end()

    def test_a_timeout_that_is_refused(self):
        address = self.tcp_instrument(self.device)
        self.assertEqual(self.kesp("terminal", address, "--timeout", "40s", input="*IDN?\n"),
                         (USAGE, "", "kesp: over TCP/IP the longest timeout is 32767 ms, not 40000 ms\n"))


class DownloadTest(KespCase):
    def setUp(self):
        super().setUp()
        self.file = self.folder / "data.bin"
        self.part = self.folder / "data.bin.part"

    def device(self, steps):
        self.log = self.folder / "log"
        self.serial_instrument(COM, "--quiet", "--log", self.log, self.write('{"commands": {"DUMP?": [%s]}}' % steps))

    def download(self, *options):
        return Kesp(self.bits, "download", f"com{COM}@57600", self.windows(self.file), "--command", "DUMP?", *options)

    def test_every_byte_as_it_came(self):
        piece = f'{{"send_hex": "{ALL_BYTES.hex(" ")}"}}'
        self.device(f'{piece}, {{"wait_ms": 700}}, {piece}')
        code, output, error = self.download("--timeout", "1500").end()
        self.assertEqual((code, error), (DONE, ""))
        self.assertRegex(output, r"data\.bin: 512 bytes, \d+ bytes/s, \d\.\d s\n$")
        self.assertEqual(self.file.read_bytes(), ALL_BYTES * 2)
        self.assertFalse(self.part.exists())

    def test_nothing_comes(self):
        self.device("")
        code, output, error = self.download("--timeout", "300ms").end()
        self.assertEqual((code, output), (FAILED, ""))
        self.assertIn(f"Timeout while downloading from COM{COM}. (ERR_DOWNLOAD_TIMEOUT, CKespCOMPort3 - Download())",
                      error)
        self.assertFalse(self.file.exists() or self.part.exists())

    def test_ctrl_c_keeps_what_came(self):
        piece = '{"send": "0123456789"}, {"wait_ms": 100}'
        self.device(", ".join([piece] * 400))
        self.file.write_text("an older one")
        program = self.download()
        wait_until(lambda: '"DUMP?"' in self.log.read_text(), self.log.read_text)
        program.press_ctrl_c()
        code, output, error = program.end()
        self.assertEqual((code, output), (INTERRUPTED, ""))
        kept = self.part.read_bytes()
        self.assertTrue(kept and (b"0123456789\r" * 400).startswith(kept), kept)
        self.assertIn(f"kesp: ended by Ctrl-C; the {len(kept)} bytes that had come are in ", error)
        self.assertEqual(self.file.read_text(), "an older one")

    def test_ctrl_c_while_the_line_is_silent(self):
        self.device('{"send": "data", "end": ""}')
        program = self.download("--timeout", "10min")
        wait_until(lambda: '"DUMP?"' in self.log.read_text(), self.log.read_text)
        begin = time.monotonic()
        program.press_ctrl_c()
        code, output, error = program.end()
        self.assertEqual((code, output), (INTERRUPTED, ""))
        self.assertIn("kesp: ended by Ctrl-C; ", error)
        self.assertLess(time.monotonic() - begin, 10)

    def test_the_port_is_pulled(self):
        self.device('{"send": "data"}, {"wait_ms": 1500}, {"close": true}')
        code, output, error = self.download("--timeout", "30s").end()
        self.assertEqual((code, output), (FAILED, ""))
        self.assertIn("kesp: Error reading comm device (error 8020, commCOMControl)\n", error)
        self.assertIn("  the 5 bytes that had come are in ", error)
        self.assertEqual(self.part.read_bytes(), b"data\r")

    def test_the_file_cannot_be_written(self):
        self.file = self.folder / "none" / "data.bin"
        code, output, error = self.download().end()
        self.assertEqual((code, output), (FAILED, ""))
        self.assertIn("data.bin cannot be written: No such file or directory", error)

    def test_elsewhere_than_at_a_com_port(self):
        self.assertEqual(self.kesp("download", "gpib:5", "x")[0], USAGE)


if __name__ == "__main__":
    KespCase.bits = sys.argv.pop(1)
    if start_wine(KespCase.bits) == SKIPPED:
        sys.exit(SKIPPED)
    unittest.main()
