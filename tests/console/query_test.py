#!/usr/bin/env python3
"""Commands and replies through kesp.exe, as its users meet them: query_test.py 64|32

Ends with 77 where the machine has no Wine of that width.
"""

import json
import pathlib
import shutil
import subprocess
import sys
import time
import unittest

from kesp_program import (DONE, FAILED, INTERRUPTED, NO_LIBRARY, ROOT, USAGE, Kesp, KespCase, of_wine, wait_until)
from program_tester import EXAMPLES, SKIPPED, Program, start_wine

COM = 76
IDENTITY = "KESP,TORTURE,SIM00666,1.0"
SILENCE = "Timeout (cfrTimeout, [CKespTCP - ReadLine()])\n"
TIME = r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}"
ALL_BYTES = bytes(byte for byte in range(256) if byte != 13) + b"\r"


class NetworkCase(KespCase):
    """With one instrument for all tests, which has all faults."""

    @classmethod
    def setUpClass(cls):
        cls.instrument = Program("--quiet", EXAMPLES / "torture.json").__enter__()
        cls.addClassCleanup(cls.instrument.__exit__)
        cls.address = f"tcp:127.0.0.1:{cls.instrument.port()}"

    def fails(self, code, error, *arguments):
        self.assertEqual(self.kesp(*arguments), (code, "", f"kesp: {error}\n"))


class ReplyTest(NetworkCase):
    def test_the_reply_alone(self):
        self.assertEqual(self.kesp("query", self.address, "*IDN?"), (DONE, IDENTITY + "\n", ""))
        self.assertEqual(self.kesp("query", self.address, "*IDN?", "CRLF?"), (DONE, f"{IDENTITY}\n1.0  2.0\n", ""))

    def test_line_ends_as_they_are(self):
        program = Kesp(self.bits, "query", self.address, "CRLF?", "--crlf-as-is")
        program.process.wait(20)
        program.files[0].seek(0)
        self.assertEqual(program.files[0].read(), b"1.0\r\n2.0\r\n")
        self.assertEqual(program.end()[0], DONE)

    def test_hexadecimal_and_table_and_json(self):
        self.assertEqual(self.kesp("query", self.address, "ALLBYTES?", "--hex"),
                         (DONE, ALL_BYTES.hex(" ").upper() + "\n", ""))
        self.assertEqual(self.kesp("query", self.address, "*IDN?", "ECHO \"", "--csv"),
                         (DONE, f'*IDN?,"ECHO """\n"{IDENTITY}","ECHO """\n', ""))
        code, output, error = self.kesp("query", self.address, "ECHO \\ \"", "--json")
        self.assertEqual((code, error), (DONE, ""))
        said = json.loads(output)
        self.assertRegex(said.pop("time"), f"^{TIME}$")
        self.assertLess(said.pop("seconds"), 5)
        self.assertEqual(said, {"address": self.address, "command": "ECHO \\ \"", "reply": "ECHO \\ \""})

    def test_bytes_with_the_end_character_among_them(self):
        device = self.write("""{"commands": {"RAW?": [{"send_hex": "01 0D 02"}],
            "SLOW?": [{"send_hex": "01 0D"}, {"wait_ms": 400}, {"send_hex": "02 0D"}]}}""")
        address = self.tcp_instrument(device)
        self.assertEqual(self.kesp("query", address, "RAW?", "--hex"), (DONE, "01 0D 02\n", ""))
        self.assertEqual(self.kesp("query", address, "SLOW?", "--hex", "--gap", "1s"), (DONE, "01 0D 02 0D\n", ""))
        self.assertEqual(self.kesp("query", address + ",eos=2", "RAW?", "--hex"), (DONE, "01 0D 02\n", ""))
        code, output, error = self.kesp("terminal", address, "--gap", "1s", input=":hex\nSLOW?\n")
        self.assertRegex(output, "^[^\n]*  01 0D 02 0D\n$")

    def test_large_reply(self):
        code, output, error = self.kesp("query", self.address, "BIG?")
        self.assertEqual((code, error, output), (DONE, "", "0123456789ABCDEF" * 65536 + "\n"))

    def test_other_end_of_a_reply(self):
        address = self.tcp_instrument(self.write('{"reply_terminator": ";", "commands": {"t": "21.5"}}'))
        self.fails(FAILED, f'{SILENCE}  5 bytes came without the end character 13: ",eos=CODE" behind the address '
                   'names another one, ",any" takes what comes (docs\\no-answer.md#a-part-comes-then-a-timeout).',
                   "query", address, "t", "--timeout", "500ms")
        self.assertEqual(self.kesp("query", address + ",eos=59", "t"), (DONE, "21.5;\n", ""))
        self.assertEqual(self.kesp("query", address + ",any", "t", "--hex"), (DONE, "32 31 2E 35 3B\n", ""))

    def test_send(self):
        self.assertEqual(self.kesp("send", self.address, "A", "B"), (DONE, "", ""))

    def test_trace(self):
        trace = self.folder / "trace.log"
        self.assertEqual(self.kesp("query", self.address, "*IDN?", "--trace", trace)[0], DONE)
        self.assertIn("Beginning Query()... (command: *IDN?)", trace.read_text())
        self.fails(FAILED, f"{self.folder}/none/t.log cannot be written",
                   "query", self.address, "*IDN?", "--trace", self.folder / "none" / "t.log")


class FailureTest(NetworkCase):
    def test_nothing_comes(self):
        begin = time.monotonic()
        self.fails(FAILED, f"{SILENCE}  Nothing was received: the instrument may not know the command, or take longer "
                   "(--timeout) (docs\\no-answer.md#nothing-comes).",
                   "query", self.address, "SILENT?", "*IDN?", "--timeout", "1s")
        self.assertLess(time.monotonic() - begin, 6)

    def test_connection_is_refused(self):
        self.fails(FAILED, "Timeout - unable to establish connection (cfrInitializeFailed, [CKespTCP - Initialize()])\n"
                   "  Nobody listens at that address and port, or a firewall is between: \"kesp discover\" lists who "
                   "answers (docs\\no-answer.md#refused-after-four-seconds).",
                   "query", "tcp:127.0.0.1:9", "*IDN?", "--timeout", "1s")

    def test_reply_with_other_characters(self):
        self.fails(FAILED, "Invalid characters received on IP address 127.0.0.1. "
                   "(cfrReadFailed, CKespTCP - ReadLine())\n"
                   "  The reply has bytes that are no text: --hex, or :hex in the terminal, shows them "
                   "(docs\\no-answer.md#strange-characters-the-wrong-bit-rate).",
                   "query", self.address, "NONASCII?")

    def test_mistakes(self):
        self.fails(USAGE, "a mistake in the address\n  com3,8X1\n        ^\n"
                   "  expected here: a parity: N (none), E (even), O (odd), M (mark) or S (space)",
                   "query", "com3,8X1", "*IDN?")
        self.fails(USAGE, "over TCP/IP the longest timeout is 32767 ms, not 40000 ms",
                   "query", self.address, "*IDN?", "--timeout", "40s")
        for words in (("query", self.address), ("query", self.address, "X", "--every", "1s"), ("ask",), ()):
            code, output, error = self.kesp(*words)
            self.assertEqual((code, output), (USAGE, ""))
            self.assertNotEqual(error, "")

    def test_no_such_port(self):
        self.fails(FAILED, "Invalid port number (cfrOtherError, CKespCOMPort3 - OpenPort() [commCOMControl])\n"
                   "  There is no such port now: plug the adapter in again; \"kesp ports\" lists those that there are "
                   "(docs\\no-answer.md#the-port-is-not-there-or-gone).",
                   "query", "com250", "*IDN?")

    def test_no_driver(self):
        code, output, error = self.kesp("query", "gpib:5", "*IDN?")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertIn("(the GPIB driver is not installed) (cfrInitializeFailed, ", error)

    def test_library_that_cannot_be_had(self):
        lonely = pathlib.Path(shutil.copy(ROOT / "dist" / f"win{self.bits}" / "kesp.exe", self.folder))
        library = self.windows(self.folder / "KespCommObj.dll")
        self.assertEqual(Kesp(self.bits, "query", self.address, "*IDN?", program=lonely).end(),
                         (NO_LIBRARY, "", f"kesp: {library} is not there: put it beside kesp.exe, or use the "
                          "registered library with --registered\n"))
        self.assertEqual(Kesp(self.bits, "query", self.address, "*IDN?", "--registered", program=lonely).end(),
                         (DONE, IDENTITY + "\n", ""))
        other = {"64": "32", "32": "64"}[self.bits]
        shutil.copy(ROOT / "dist" / f"win{other}" / "KespCommObj.dll", self.folder)
        code, output, error = Kesp(self.bits, "query", self.address, "*IDN?", program=lonely).end()
        self.assertEqual((code, output), (NO_LIBRARY, ""))
        self.assertIn(f"{library} is not for {self.bits}-bit programs", error)


class OutputTest(NetworkCase):
    def test_bytes_into_a_file(self):
        file = self.folder / "m\u00fcller.bin"
        self.assertEqual(self.kesp("query", self.address, "ALLBYTES?", "--binary", file), (DONE, "", ""))
        self.assertEqual(file.read_bytes(), ALL_BYTES)
        code, output, error = self.kesp("query", self.address, "SILENT?", "--binary", file, "--timeout", "500ms")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertNotEqual(error, "")
        self.assertEqual(file.read_bytes(), ALL_BYTES)
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [file.name])

    def test_full_disk(self):
        file = self.folder / "reply.bin"
        (self.folder / "reply.bin.part").symlink_to("/dev/full")
        self.fails(FAILED, f"{file} cannot be written: No space left on device",
                   "query", self.address, "BIG?", "--binary", file)
        self.assertFalse(file.exists())

    def started_with_output(self, output, *arguments):
        words = " ".join(f"'{word}'" for word in ("query", self.address, *arguments))
        program = ROOT / "dist" / f"win{self.bits}" / "kesp.exe"
        with open(self.folder / "error", "w") as error:
            return subprocess.Popen(of_wine(f"in_wine {self.bits} wine '{program}' {words}"), stdin=subprocess.DEVNULL,
                                    stdout=output, stderr=error)

    def error_of(self, process):
        self.assertEqual(process.wait(30), FAILED)
        return (self.folder / "error").read_text().replace("\r", "")

    def test_standard_output_that_is_full(self):
        with open("/dev/full", "w") as full:
            process = self.started_with_output(full, "*IDN?")
        self.assertEqual(self.error_of(process), "kesp: standard output: No space left on device\n")

    def test_standard_output_that_nobody_reads_any_more(self):
        process = self.started_with_output(subprocess.PIPE, "*IDN?", "--repeat", "0", "--every", "10ms")
        self.assertRegex(process.stdout.readline().decode(), f"^{TIME}\t{IDENTITY}\n$")
        process.stdout.close()
        self.assertEqual(self.error_of(process), "kesp: standard output: Broken pipe\n")


class RepeatTest(NetworkCase):
    def test_rounds_are_on_time(self):
        begin = time.monotonic()
        code, output, error = self.kesp("query", self.address, "SPLIT?", "*IDN?", "--repeat", "6", "--every", "300ms",
                                        "--csv")
        self.assertEqual((code, error), (DONE, ""))
        self.assertGreaterEqual(time.monotonic() - begin, 1.5)
        head, *rows = output.splitlines()
        self.assertEqual((head, len(rows)), ("time,SPLIT?,*IDN?", 6))
        for row in rows:
            self.assertRegex(row, f'^{TIME},"SPLIT 1.0,2.0,3.0","{IDENTITY}"$')

    def test_failing_round(self):
        code, output, error = self.kesp("query", self.address, "NONASCII?", "*IDN?", "--repeat", "2")
        self.assertEqual(code, FAILED)
        self.assertRegex(output, f"^({TIME}\t{IDENTITY}\n){{2}}$")
        self.assertRegex(error, rf"^(kesp: {TIME} NONASCII\?: Invalid characters received [^\n]*\n(  The reply has [^\n]*\n)?){{2}}$")

    def test_ctrl_c(self):
        for repeat, code in (("0", DONE), ("1000", INTERRUPTED)):
            program = Kesp(self.bits, "query", self.address, "*IDN?", "--repeat", repeat, "--every", "1h")
            program.wait_for(IDENTITY)
            program.press_ctrl_c()
            ended, output, error = program.end()
            self.assertEqual((ended, error), (code, ""))
            self.assertRegex(output, f"^{TIME}\t{IDENTITY}\n$")

    def test_ctrl_c_while_a_reply_is_awaited(self):
        program = Kesp(self.bits, "query", self.address, "*IDN?", "SILENT?", "--timeout", "30s")
        program.wait_for(IDENTITY)
        begin = time.monotonic()
        program.press_ctrl_c()
        self.assertEqual(program.end(), (INTERRUPTED, IDENTITY + "\n", ""))
        self.assertLess(time.monotonic() - begin, 10)

    def test_second_ctrl_c(self):
        program = Kesp(self.bits, "query", self.address, "*IDN?", "SILENT?", "--repeat", "0", "--timeout", "30s")
        program.wait_for(IDENTITY)
        begin = time.monotonic()
        program.press_ctrl_c()
        self.assertIsNone(program.process.poll())  # the first one lets the round end
        # One that comes before the first was seen is none.
        wait_until(lambda: program.press_ctrl_c() or program.process.poll() is not None, program.said)
        self.assertEqual(program.end()[0], INTERRUPTED)
        self.assertLess(time.monotonic() - begin, 10)


class SerialTest(KespCase):
    def test_replies_and_bytes_on_a_port_that_stays_open(self):
        self.serial_instrument(COM, "--quiet", EXAMPLES / "serial-controller.json")
        trace = self.folder / "trace.log"
        code, output, error = self.kesp("query", f"com{COM}@9600,8N1", "*IDN?", "t", "--trace", trace)
        self.assertEqual((code, output, error), (DONE, "KESP,SC300,SIM30118,1.4\n+021.5\n", ""))
        lines = trace.read_text()
        self.assertEqual((lines.count("RS-232: OpenPort()"), lines.count("RS-232: WriteLine(")), (1, 2))
        self.assertEqual(self.kesp("query", f"COM{COM}@9600", "t", "--hex"),
                         (DONE, "2B 30 32 31 2E 35 0D 0A\n", ""))
        self.assertEqual(self.kesp("send", f"com{COM}@9600", "*VER"), (DONE, "", ""))
        code, output, error = self.kesp("query", f"com{COM}@9600", "SET 1", "--timeout", "300ms")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertEqual(error, f"kesp: Timeout waiting for instrument to respond to command on COM{COM}. "
                         "(cfrTimeout, CKespCOMPort3 - ReadLine())\n"
                         f'  Nothing was received: "kesp detect com{COM}" looks for the bit rate '
                         "(docs\\no-answer.md#nothing-comes).\n")

    def test_replies_without_a_line_feed(self):
        device = self.write(json.dumps({"reply_terminator": "", "commands": {
            "t": "21.5", "CR": [{"send": "21.6", "end": "\r"}]}}))
        self.serial_instrument(COM, "--quiet", device)
        code, output, error = self.kesp("query", f"com{COM}", "t", "--timeout", "300ms")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertIn("\n  4 bytes came without a line feed, the last were 32 31 2E 35: ", error)
        self.assertEqual(self.kesp("query", f"com{COM}", "CR", "--timeout", "300ms"),
                         (DONE, "21.6\n", "kesp: no line feed came, a lone carriage return ended the data when the "
                          'time was up: add ",cr" to the address '
                          "(docs\\no-answer.md#each-reply-takes-exactly-the-timeout)\n"))

    def test_a_port_that_is_pulled_and_plugged_in_again(self):
        # Rounds go on when it is back.
        instrument = self.serial_instrument(COM, "--quiet", EXAMPLES / "serial-controller.json")
        program = Kesp(self.bits, "query", f"com{COM}@9600", "t", "--repeat", "0", "--every", "100ms",
                       "--timeout", "300ms")
        program.wait_for("+021.5")
        self.pull(instrument)
        program.wait_for("kesp: ")
        seen = len(program.said()[0])
        self.serial_instrument(COM, "--quiet", EXAMPLES / "serial-controller.json")
        wait_until(lambda: len(program.said()[0]) > seen, program.said)
        program.press_ctrl_c()
        self.assertEqual(program.end()[0], FAILED)

    def test_a_controller_of_another_kind(self):
        self.serial_instrument(COM, "--quiet", EXAMPLES / "omega-controller.json")
        self.assertEqual(self.kesp("query", f"com{COM}@9600,omega=01", "PV"), (DONE, "\x02PV0021.5\x03\x1d\n", ""))

    def test_the_port_of_a_switch(self):
        self.serial_instrument(COM, "--quiet", EXAMPLES / "port-switch.json")
        self.assertEqual(self.kesp("query", f"com{COM}@9600,switch=A/4", "MEAS?"), (DONE, "+021.48\n", ""))

    def test_a_redirector(self):
        self.serial_instrument(COM, "--quiet", EXAMPLES / "redirector.json")
        self.assertEqual(self.kesp("query", f"com{COM}@9600,cr", "t"), (DONE, "21.5\n", ""))


    def test_the_end_of_a_reply_in_another_language(self):
        # In a Windows whose code page has characters of several bytes.
        address = self.tcp_instrument(self.write('{"commands": {"t": [{"send_hex": "31 F5"}]}}'))
        self.assertEqual(self.kesp("query", address + ",eos=245", "t", "--hex", locale="ja_JP.UTF-8"),
                         (DONE, "31 F5\n", ""))


class GpibTest(KespCase):
    """With the driver and the library beside the program."""

    def setUp(self):
        super().setUp()
        delivered = ROOT / "dist" / f"win{self.bits}"
        said = subprocess.run(of_wine(f"beside_driver {self.bits} '{self.folder}' '{delivered}/kesp.exe' "
                                      f"'{EXAMPLES}/bus.json'"), capture_output=True, text=True, check=True)
        self.program = pathlib.Path(said.stdout.strip())
        shutil.copy(delivered / "KespCommObj.dll", self.folder)

    def kesp(self, *arguments):
        return Kesp(self.bits, *arguments, program=self.program).end()

    def test_replies(self):
        self.assertEqual(self.kesp("query", "gpib:5", "*IDN?", "SETP?"),
                         (DONE, "KESP,GP488,SIM48805,1.0\n+022.00\n", ""))
        self.assertEqual(self.kesp("send", "gpib:5", "SETP 25"), (DONE, "", ""))

    def test_failures(self):
        code, output, error = self.kesp("query", "gpib:9", "*IDN?")
        self.assertEqual((code, output), (FAILED, ""))
        self.assertRegex(error, r"^kesp: Error calling ibwrt\(\) with command '\*IDN\?'[^\n]*\(cfrWriteFailed, ")
        self.assertEqual(self.kesp("query", "gpib:5", "*IDN?", "--hex"),
                         (USAGE, "", "kesp: on the GPIB the library reads text only: leave out --hex and --binary\n"))
        begin = time.monotonic()
        self.assertEqual(self.kesp("query", "gpib:7/2", "SILENT", "--timeout", "200ms")[:2], (FAILED, ""))
        self.assertLess(time.monotonic() - begin, 3)


if __name__ == "__main__":
    KespCase.bits = sys.argv[1]
    ready = start_wine(KespCase.bits)
    if ready:
        sys.exit(SKIPPED if ready == SKIPPED else "there is no Wine")
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
