#!/usr/bin/env python3
"""kesp-sim.exe as its users meet it, under Wine: windows_program_test.py 64|32

Ends with 77 where the machine has no Wine of that width.
"""

import os
import pathlib
import shlex
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOOLS = ROOT / "tools"
NATIVE = os.environ.get("KESP_INSTRUMENT", str(ROOT / "build" / "native" / "simulator" / "kesp-sim"))
BITS = "64"
LIMIT_SECONDS = 30
SKIPPED = 77


def in_wine(*words):
    """The command line that runs these words with the settings of our Wine."""
    script = f'. "{TOOLS}/lib/tree.sh"; . "{TOOLS}/lib/wine.sh"; in_wine {BITS} {shlex.join(map(str, words))}'
    return ["bash", "-c", script]


class Program:
    """A running kesp-sim.exe, or with another command the native kesp-sim."""

    def __init__(self, *arguments, command=None):
        self.arguments = arguments
        command = command or in_wine("wine", ROOT / "dist" / f"win{BITS}" / "simulator" / "kesp-sim.exe", *arguments)
        self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True)

    def line(self):
        return self.process.stdout.readline().rstrip("\r\n")

    def port(self):
        line = self.line()
        assert line.startswith("listening on 127.0.0.1:"), line + self.process.stderr.read()
        return int(line.rpartition(":")[2])

    def interrupt(self):
        """What Ctrl-C does: Wine hands the signal on as that."""
        for entry in pathlib.Path("/proc").iterdir():
            try:
                words = (entry / "cmdline").read_bytes().split(b"\0")
            except OSError:
                continue
            if words[0].endswith(b"kesp-sim.exe") and str(self.arguments[-1]).encode() in words:
                os.kill(int(entry.name), signal.SIGINT)

    def end(self):
        """Exit code, and what it wrote after the lines that were read."""
        try:
            output, error = self.process.communicate(timeout=LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            self.interrupt()
            self.process.kill()
            raise
        return self.process.returncode, output.replace("\r", ""), error.replace("\r", "")


class WindowsProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def wait_for(self, log, text):
        deadline = time.monotonic() + LIMIT_SECONDS
        while text not in log.read_text():
            self.assertLess(time.monotonic(), deadline, log.read_text())
            time.sleep(0.02)

    def test_library_queries_it_and_ctrl_c_ends_it(self):
        log = self.folder / "talk.log"
        program = Program("--quiet", "--log", log)
        port = program.port()
        asked = subprocess.run([TOOLS / "wine-run", "--bits", BITS, ROOT / "samples" / "vbscript" / "query.vbs",
                                "127.0.0.1", str(port), "*IDN?"], capture_output=True, text=True, check=False)
        self.assertIn("KESP,7100,SIM00001,1.0", asked.stdout + asked.stderr)
        program.interrupt()
        self.assertEqual(program.end(), (0, "", ""))
        self.assertIn('command "*IDN?"', log.read_text())

    def test_once_ends_with_its_client_and_logs_to_standard_error(self):
        program = Program("--once")
        with socket.create_connection(("127.0.0.1", program.port())) as client:
            client.sendall(b"t\r")
            self.assertEqual(client.recv(100), b"21.5\r")
        code, output, error = program.end()
        self.assertEqual((code, output), (0, ""))
        self.assertIn(' #1 reply "21.5\\r" (5 bytes, 1 piece)\n', error)

    def test_discovery_is_answered(self):
        program = Program("--once", "--quiet", "--discovery", "--discovery-port", "0")
        port = program.port()
        line = program.line()
        self.assertTrue(line.startswith("discovery on 0.0.0.0:"), line)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as seeker:
            seeker.settimeout(LIMIT_SECONDS)
            seeker.sendto(b"\x00\x01\x00\xf6", ("127.0.0.1", int(line.rpartition(":")[2])))
            self.assertIn(b"\xf7", seeker.recv(100))
        socket.create_connection(("127.0.0.1", port)).close()
        self.assertEqual(program.end()[0], 0)

    def test_com_port_is_served_until_ctrl_c(self):
        com = 61
        prefix = subprocess.run(["bash", "-c", f'. "{TOOLS}/lib/tree.sh"; . "{TOOLS}/lib/wine.sh"; wine_prefix {BITS}'],
                                capture_output=True, text=True, check=True).stdout.strip()
        link = f"{prefix}/dosdevices/com{com}"
        wire = Program(command=[NATIVE, "wire", "--serial", link])
        self.addCleanup(wire.end)
        self.addCleanup(wire.process.terminate)
        with socket.create_connection(("127.0.0.1", wire.port())) as client:
            client.settimeout(LIMIT_SECONDS)
            self.assertEqual(client.recv(100), b"ready\n")
            log = self.folder / "line.log"
            program = Program("--serial", f"COM{com}", "--quiet", "--log", log)
            self.assertEqual(program.line(), f"serving COM{com}")
            for command, reply in ((b"*IDN?\r", b"KESP,7100,SIM00001,1.0\r"), (b"t\r", b"21.5\r")):
                client.sendall(command)
                answer = b""
                while not answer.endswith(b"\r"):
                    answer += client.recv(100)
                self.assertEqual(answer, reply)
            # Without an end, and then with it, when the line has been silent for a while.
            client.sendall(b"*VE")
            self.wait_for(log, ' #1 received "*VE"\n')
            client.sendall(b"R\r")
            self.assertEqual(client.recv(100), b"1.0\r")
            program.interrupt()
            self.assertEqual(program.end(), (0, "", ""))
            lines = log.read_text()
            for line in (f"opened COM{com}", "line 9600,N,8,1", 'received "t\\r"', 'command "*VER"'):
                self.assertIn(f" #1 {line}\n", lines)

    def test_what_cannot_be_had_is_one_line_and_exit_code_1(self):
        with socket.create_server(("127.0.0.1", 0)) as taken:
            port = str(taken.getsockname()[1])
            cases = (("cannot listen on 127.0.0.1 port " + port + ": the port is in use", "--port", port),
                     ("cannot serve COM62: there is no such port or path", "--serial", "COM62"))
            for message, *arguments in cases:
                with self.subTest(arguments=arguments):
                    self.assertEqual(Program(*arguments).end(), (1, "", f"kesp-sim: {message}\n"))

    def test_mistakes_are_told_with_exit_code_2(self):
        bad = self.folder / "bad.json"
        bad.write_text('{"commands": 1}')
        for arguments in (["--bogus"], ["--port", "70000"], [str(self.folder / "none.json")], [str(bad)],
                          ["wire", "--serial", "x"]):
            with self.subTest(arguments=arguments):
                code, output, error = Program(*arguments).end()
                self.assertEqual((code, output), (2, ""))
                self.assertNotEqual(error, "")


if __name__ == "__main__":
    BITS = sys.argv.pop(1)
    ready = subprocess.run([TOOLS / "wine-prefix", BITS, "start"], stdout=subprocess.DEVNULL, check=False).returncode
    if ready:
        sys.exit(SKIPPED if ready == SKIPPED else "there is no Wine")
    unittest.main()
