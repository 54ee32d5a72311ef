#!/usr/bin/env python3
"""Traces of the library read by kesp.exe, and made instruments that answer alike: log_test.py 64|32

Ends with 77 where the machine has no Wine of that width.
"""

import csv
import io
import json
import pathlib
import shutil
import subprocess
import sys
import time
import unittest

from kesp_program import DONE, FAILED, ROOT, USAGE, Kesp, KespCase
from program_tester import NATIVE, SKIPPED, start_wine

COM = 77
OVEN = ROOT / "tests" / "console" / "oven.json"
TRACES = ROOT / "console" / "traces"
HEAD = ["WHEN", "MS", "PLACE", "COMMAND", "REPLY"]
# What is said to the oven, in one run of kesp each.
STEPS = (
    ("query", "*IDN?", "T?", "SETTLE?", "T?"),
    ("query", "UNIT?"),
    ("send", "SP 30"),
    ("query", "T?"),
    ("query", "GONE?", "--timeout", "600ms"),
    ("query", "T?", "T?"),
)
BINARY = ("query", "CURVE?", "--hex")


def without_delays(answer):
    if isinstance(answer, dict) and "cycle" in answer:
        return [without_delays(turn) for turn in answer["cycle"]]
    if not isinstance(answer, list):
        return [{"send": answer}]
    return [action for action in answer if "wait_ms" not in action]


class LogCase(KespCase):
    program = None  # another than that of dist/

    def kesp(self, *arguments, input=""):
        program = Kesp(self.bits, *arguments, program=self.program)
        program.say(input)
        return program.end()

    def trace(self, name="trace"):
        return self.folder / f"{name}.log"

    def converse(self, address, name, steps):
        """What each step came to, with the address left out; the trace has that name."""
        said = []
        for command, *rest in steps:
            result = self.kesp(command, address, *rest, "--trace", self.windows(self.trace(name)))
            said.append((result[0], *(text.replace(address, "ADDRESS") for text in result[1:])))
        return said

    def device(self, name):
        """The description that kesp makes of the trace, once kesp-sim has found no mistake in it."""
        made = self.folder / f"{name}.json"
        code, output, error = self.kesp("log", self.windows(self.trace(name)), "--as-device", self.windows(made))
        self.assertEqual(code, DONE, error)
        self.assertRegex(output, r"\.json: \d commands of .*, from \d+ exchanges\n$")
        checked = subprocess.run([NATIVE, "check", made], capture_output=True, text=True, check=False)
        self.assertEqual((checked.returncode, checked.stderr), (0, ""))
        return made

    def expect_round_trip(self, first, second):
        """first and second: of the conversations, what was said; the traces have these names, too."""
        self.assertEqual(first, second)
        self.assertIn("KESP,OVEN,SIM00007,2.0\n", first[0][1])
        made = [json.loads((self.folder / name).read_text()) for name in ("first.json", "second.json")]
        for device in made:
            # 150 ms, by counters that go in steps: of the trace, and of the instrument that was made of it.
            self.assertGreaterEqual(device["commands"]["SETTLE?"][0]["wait_ms"], 110)
            self.assertLessEqual(device["commands"]["SETTLE?"][0]["wait_ms"], 400)
            device.pop("description")
            device["commands"] = {name: without_delays(answer) for name, answer in device["commands"].items()}
        self.assertEqual(*made)


class RoundTripTest(LogCase):
    def test_over_tcp(self):
        steps = (*STEPS, BINARY)
        first = self.converse(self.tcp_instrument(OVEN), "first", steps)
        made = self.device("first")
        second = self.converse(self.tcp_instrument(made), "second", steps)
        self.device("second")
        self.expect_round_trip(first, second)
        self.assertIn("23 33 00 FF 81 0D 0A", first[-1][1])

    def test_at_a_com_port(self):
        first = self.converse_at_com_port(OVEN, "first")
        made = self.device("first")
        second = self.converse_at_com_port(made, "second")
        self.device("second")
        self.expect_round_trip(first, second)
        self.assertEqual(json.loads(made.read_text())["line"],
                         {"baud": 9600, "parity": "N", "data_bits": 8, "stop_bits": 1})

    def converse_at_com_port(self, device, name):
        instrument = self.serial_instrument(COM, "--quiet", device)
        said = self.converse(f"com{COM}@9600,8N1", name, (*STEPS, BINARY))
        self.pull(instrument)
        return said

    def test_on_the_gpib(self):
        oven = json.loads(OVEN.read_text())
        first = self.converse_on_bus(self.write(json.dumps({**oven, "gpib": {"primary": 5}}), "bus.json"), "first")
        second = self.converse_on_bus(self.device("first"), "second")
        self.device("second")
        self.expect_round_trip(first, second)

    def converse_on_bus(self, bus, name):
        """The driver, with that bus, stands beside the program, and so does the library."""
        place = self.folder / name
        place.mkdir()
        dist = ROOT / "dist" / f"win{self.bits}"
        for file in (dist / "kesp.exe", dist / "KespCommObj.dll", dist / "simulator" / "gpib" / "Gpib-32.dll"):
            shutil.copy(file, place)
        shutil.copy(bus, place / "Gpib-32.json")
        self.program = place / "kesp.exe"
        said = self.converse("gpib:5", name, STEPS)
        self.program = None
        return said


class ReadingTest(LogCase):
    def read_trace(self, name, *options):
        code, output, error = self.kesp("log", self.windows(TRACES / name), *options)
        self.assertEqual((code, error), (DONE, ""))
        return output

    def test_traces_of_each_transport(self):
        for transport, place in (("tcp", "tcp:127.0.0.1:"), ("com", "com71@9600,N,8,1"), ("gpib", "gpib")):
            with self.subTest(transport=transport):
                lines = self.read_trace(f"{transport}.trace").splitlines()
                self.assertEqual(lines[0].split(), HEAD)
                self.assertEqual(len(lines), 10 if transport == "gpib" else 11)
                self.assertRegex(lines[1], rf"^11/22/2026 \d+:\d\d:\d\d AM +\d+  {place}\d* +"
                                 r"\*IDN\? +KESP,OVEN,SIM00007,2\.0$")
                self.assertRegex(lines[8], r"GONE\? +FAILED: ")

    def test_errors_only(self):
        output = self.read_trace("com.trace", "--errors")
        self.assertEqual(["UNIT?", "GONE?"], [line.split()[5] for line in output.splitlines()[1:]])

    def test_csv_can_be_read_again(self):
        output = self.read_trace("tcp.trace", "--csv")
        rows = list(csv.DictReader(io.StringIO(output)))
        self.assertEqual(len(rows), 10)
        self.assertEqual((rows[0]["kind"], rows[0]["command"], rows[0]["reply"]),
                         ("query", "*IDN?", "KESP,OVEN,SIM00007,2.0"))
        self.assertEqual((rows[-1]["kind"], rows[-1]["reply"]), ("binary query", "#3\\x00\u00ff\\x81"))
        self.assertEqual((rows[7]["failure"], rows[7]["source"]), ("Timeout", "[CKespTCP - ReadLine()]"))

    def test_a_time_that_is_none(self):
        code, output, error = self.kesp("log", self.windows(TRACES / "tcp.trace"), "--since", "noon")
        self.assertEqual((code, output), (USAGE, ""))
        self.assertIn('"noon" is no time', error)

    def test_no_such_file_and_one_that_is_there(self):
        self.assertEqual(self.kesp("log", "no-such-file")[::2], (FAILED, "kesp: no-such-file is not there\n"))
        folder = self.windows(self.folder)
        self.assertEqual(self.kesp("log", folder), (FAILED, "", f"kesp: {folder} is a folder\n"))
        there = self.write("mine")
        code, output, error = self.kesp("log", self.windows(TRACES / "tcp.trace"), "--as-device", self.windows(there))
        self.assertEqual((code, output), (FAILED, ""))
        self.assertTrue(error.endswith("device.json is there already\n"), error)
        self.assertEqual(there.read_text(), "mine")

    def test_a_trace_that_is_followed_while_the_library_writes_it(self):
        address = self.tcp_instrument(OVEN)
        program = Kesp(self.bits, "log", self.windows(self.trace()), "--follow")
        program.wait_for("is not there yet; waiting for it\n")
        self.converse(address, "trace", [("query", "*IDN?")])
        program.wait_for("KESP,OVEN,SIM00007,2.0\n")
        self.converse(address, "trace", [("query", "T?")])
        program.wait_for("21.4\n")
        self.trace().rename(self.folder / "yesterday.log")
        self.converse(address, "trace", [("query", "T?")])
        program.wait_for("21.9\n")
        program.press_ctrl_c()
        code, output, error = program.end()
        self.assertEqual(code, DONE)
        self.assertEqual(len(output.splitlines()), 4)
        self.assertIn("was cut or is another file now", error)

    def test_a_long_trace_takes_no_memory(self):
        most = {}
        exchanges = (TRACES / "tcp.trace").read_bytes() + (TRACES / "com.trace").read_bytes()
        for megabytes in (20, 100):
            times = -(-(megabytes << 20) // len(exchanges))
            with self.trace().open("wb") as file:
                for _ in range(times):
                    file.write(exchanges)
            program = Kesp(self.bits, "log", self.windows(self.trace()), "--csv")
            most[megabytes] = self.most_memory(program)
            code, output, error = program.end()
            self.assertEqual((code, error, output.count("\n")), (DONE, "", 20 * times + 1))
        print(f"kesp log, {self.bits} bits: KiB at most {most}", file=sys.stderr)
        self.assertLess(most[100], 1.5 * most[20])

    def most_memory(self, program):
        """While it runs, in KiB."""
        most = 0
        while program.process.poll() is None:
            for number in program.numbers():
                try:
                    status = pathlib.Path(f"/proc/{number}/status").read_text()
                except OSError:
                    continue
                if "VmHWM:" in status:
                    most = max(most, int(status.split("VmHWM:")[1].split()[0]))
            time.sleep(0.02)
        self.assertGreater(most, 0)
        return most


if __name__ == "__main__":
    LogCase.bits = KespCase.bits = sys.argv.pop(1)
    if start_wine(KespCase.bits) != 0:
        sys.exit(SKIPPED)
    unittest.main()
