#!/usr/bin/env python3
"""kesp-sim as its users meet it, the same on both systems: program_test.py native|64|32

With 64 or 32 it is kesp-sim.exe under Wine; ends with 77 where the machine has no Wine of that width.
"""

import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import termios
import time
import unittest

from program_tester import (EXAMPLES, LIMIT_SECONDS, NATIVE, ROOT, SKIPPED, TOOLS, Line, Program, Seeker, com_port_link,
                            serial_line, set_line, start_wine, tcp_line)

BITS = None  # of Wine
SENDS_FROM = None  # Wine sends datagrams from the address that the system takes, whatever it is asked for
COM = 61
TORTURE = EXAMPLES / "torture.json"
PATTERN = b"0123456789ABCDEF"
# Each fault: command, reply, least seconds, and how the line is after it. A serial line has one end only: pulled out,
# it looks reset.
FAULTS = (
    ("*IDN?", b"KESP,TORTURE,SIM00666,1.0\r", 0, Line.OPEN),
    ("SLOW?", b"SLOW 1.0\r", 1.5, Line.OPEN),
    ("SPLIT?", b"SPLIT 1.0,2.0,3.0\r", 0.09, Line.OPEN),
    ("TRICKLE?", b"TRICKLE 1.0\r", 0.11, Line.OPEN),
    ("SILENT?\r*VER", b"", 0, Line.OPEN),
    ("MERGED?\rPAIR?", b"MERGED 1.0\rPAIR 1.0\rPAIR 2.0\r", 0, Line.OPEN),
    ("CRLF?", b"1.0\r\n2.0\r\n", 0, Line.OPEN),
    ("NONASCII?", b"1.0\x812.0\r", 0, Line.OPEN),
    ("HIGH80?", b"1.0\x802.0\r", 0, Line.OPEN),
    ("ECHO \x7f\n?", b"ECHO \x7f\n?\r", 0, Line.OPEN),
    ("ALLBYTES?", bytes(byte for byte in range(256) if byte != 13) + b"\r", 0, Line.OPEN),
    ("BIG?", PATTERN * 65536 + b"\r", 0, Line.OPEN),
    ("WHAT?", b"ERROR 113,Undefined query\r", 0, Line.OPEN),
    ("CLOSE?", b"", 0, Line.CLOSED),
    ("PARTCLOSE?", b"PART 1.", 0, Line.CLOSED),
    ("FULLCLOSE?", b"FULL 1.0\r", 0, Line.CLOSED),
    ("RESET?", b"", 0, Line.RESET),
)


class ProgramTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def start(self, *arguments):
        program = Program(*arguments, bits=BITS)
        self.addCleanup(program.__exit__)
        return program

    def write(self, text, name="given.json"):
        (self.folder / name).write_text(text)
        return self.folder / name

    def wait_for(self, log, text):
        deadline = time.monotonic() + LIMIT_SECONDS
        while text not in log.read_text():
            self.assertLess(time.monotonic(), deadline, log.read_text())
            time.sleep(0.02)

    def serial(self, *arguments):
        """The program at a serial line, and its client's end."""
        if BITS:
            wire = Program("wire", "--serial", com_port_link(BITS, COM))
            self.addCleanup(wire.__exit__)
            line = tcp_line(wire.port())
            self.addCleanup(line.__exit__)
            self.assertEqual(line.read(b"\n"), b"ready\n")
            program = self.start(*arguments, "--serial", f"COM{COM}")
            self.assertEqual(program.line(), f"serving COM{COM}")
            return program, line
        link = self.folder / "line"
        program = self.start(*arguments, "--serial", link)
        self.assertEqual(program.line(), f"serving {link}")
        line = serial_line(link)
        self.addCleanup(line.__exit__)
        return program, line

    def fault(self, line, command, reply, least_seconds):
        with self.subTest(command=command):
            begin = time.monotonic()
            line.send(command.encode("latin-1") + b"\r")
            if reply:
                self.assertEqual(line.read(reply[-1:] if reply.count(reply[-1:]) == 1 else reply), reply)
            else:
                self.assertEqual(line.read(seconds=0.1), b"")
            self.assertGreaterEqual(time.monotonic() - begin, least_seconds)

    def flood(self, line):
        line.send(b"FLOOD?\r")
        heard = line.read(b"\r", 0.5)
        self.assertGreater(len(heard), 10_000)
        self.assertTrue(heard.startswith(b"01234567890123"))

    def garbage(self, line):
        heard = []
        for _ in range(2):
            line.send(b"GARBAGE?\rECHO1\r")
            heard.append(line.read(b"ECHO1\r"))
        self.assertEqual(len(heard[0]), 64 + 1 + 6)
        self.assertTrue(any(byte > 127 for byte in heard[0]))
        self.assertEqual(*heard)

    def test_each_fault_over_tcp(self):
        program = self.start(TORTURE, "--quiet")
        port = program.port()
        for command, reply, least_seconds, state in FAULTS:
            with tcp_line(port) as line:
                self.fault(line, command, reply, least_seconds)
                rest = line.read(seconds=LIMIT_SECONDS if state != Line.OPEN else 0)
                self.assertEqual((rest, line.state), (b"", state), command)
        with tcp_line(port) as line:
            self.garbage(line)
            self.flood(line)

    def test_each_fault_at_a_serial_line(self):
        program, line = self.serial(TORTURE, "--quiet")
        for command, reply, least_seconds, state in FAULTS:
            if state == Line.OPEN:
                self.fault(line, command, reply, least_seconds)
        self.garbage(line)
        self.flood(line)
        program.interrupt()
        self.assertEqual(program.end(), (0, "", ""))

    def test_a_device_that_ends_a_serial_line_pulls_it_out_and_the_program_stays(self):
        for command, reply in (("CLOSE?", b""), ("RESET?", b"")):
            program, line = self.serial(TORTURE)
            self.fault(line, command, reply, 0)
            if not BITS:
                self.assertEqual(line.read(), b"")
                self.assertNotEqual(line.state, Line.OPEN)
                self.assertFalse((self.folder / "line").is_symlink())
            self.assertIsNone(program.process.poll())
            program.interrupt()
            code, _, log = program.end()
            self.assertEqual(code, 0)
            self.assertRegex(log, r" #1 (closed|reset) by the instrument\n")
            self.doCleanups()
            self.setUp()

    def test_devices_at_a_serial_line(self):
        program, line = self.serial("--quiet", EXAMPLES / "radio-modem.json")
        line.send(b"+++")  # nothing has come before: silence enough
        self.assertEqual(line.read(b"\r"), b"OK\r")
        self.assertEqual([line.ask(word) for word in ("ATDL1A", "ATCN", "MEAS?")], ["OK", "OK", "12.003"])
        program.interrupt()
        self.assertEqual(program.end()[0], 0)

    def test_wrong_block_check(self):
        wrong = self.write('{"device": "omega", "address": "01", "values": {"PV": "0021.5"}, "check": "wrong"}')
        _, line = self.serial("--quiet", wrong)
        line.send(b"\x040011PV\x05")
        self.assertEqual(line.read(b"\n"), b"\x02PV0021.5\x03\x1c\r\n")  # the check is 1D

    def test_wrong_settings_of_a_serial_line_are_answered_with_garbage(self):
        if BITS:
            self.skipTest("of the other end of a COM port nothing can be known")
        program, line = self.serial(self.write('{"line": {"baud": 19200, "stop_bits": 2}, "commands": {"A?": "1"}}'))
        for rate, stop_bits in ((termios.B9600, 2), (termios.B19200, 1)):
            set_line(line, rate, stop_bits)
            line.send(b"A?\r")
            self.assertEqual(line.read(b"\xe3"), b"\xfe\x87\x00\x1c\xf8\x83\x9f\xe3")
        set_line(line, termios.B19200, 2)
        self.assertEqual(line.ask("A?"), "1")
        program.interrupt()
        log = program.end()[2]
        for text in ("line 9600,N,8,2", "garbled: the device's line is 19200,-,-,2", "line 19200,N,8,1", "line 19200,N,8,2"):
            self.assertIn(f" #1 {text}\n", log)

    def test_serial_line_is_served_until_ctrl_c_and_logged(self):
        log = self.folder / "line.log"
        program, line = self.serial("--quiet", "--log", log)
        self.assertEqual([line.ask("*IDN?"), line.ask("t")], ["KESP,7100,SIM00001,1.0", "21.5"])
        # Without an end, and then with it, when the line has been silent for a while.
        line.send(b"*VE")
        self.wait_for(log, ' #1 received "*VE"\n')
        self.assertEqual(line.ask("R"), "1.0")
        line.send(b"no end")
        self.wait_for(log, "no end")
        program.interrupt()
        self.assertEqual(program.end(), (0, "", ""))
        opening = f"opened COM{COM}" if BITS else f"plugged in as {self.folder}/line"
        lines = log.read_text()
        for expected in (f" #1 {opening}", " #1 line 9600,N,8,1\n", ' #1 received "t\\r"\n', ' #1 command "*VER"\n',
                         ' #1 reply "1.0\\r" (4 bytes, 1 piece)\n', ' #1 received "no end"\n'):
            self.assertIn(expected, lines)

    def test_clients_are_served_at_once_and_greeted(self):
        program = self.start("--quiet", self.write("""{"on_connect": "hello", "commands": {
            "SLOW?": [{"wait_ms": 400}, {"send": "slow"}], "FLOOD?": [{"flood_ms": 60000}], "NOW?": "now",
            "W": [{"wait_ms": 3600000}], "R": [{"repeat": "x", "bytes": 1073741824}]}}"""))
        port = program.port()
        self.assertTrue(20000 <= port <= 32000)
        lines = [tcp_line(port) for _ in range(23)]
        for line in lines:
            self.addCleanup(line.__exit__)
            self.assertEqual(line.read(b"\r"), b"hello\r")
        begin = time.monotonic()
        lines[0].send(b"FLOOD?\r")  # and never reads
        lines[1].send(b"R\r")
        lines[2].send(b"W\r")
        for line in lines[3:]:
            line.send(b"SLOW?\r")
        with tcp_line(port) as quick:
            quick.read(b"\r")
            self.assertEqual(quick.ask("NOW?"), "now")
        for line in lines[3:]:
            self.assertEqual(line.read(b"\r"), b"slow\r")
        self.assertLess(time.monotonic() - begin, 6)  # one after the other: eight seconds
        program.interrupt()  # with clients in every state
        self.assertEqual(program.end()[0], 0)

    @unittest.skipUnless(len(sys.argv) > 1 and sys.argv[1] == "native", "Linux alone can be told which ports to deny")
    def test_free_port_is_looked_for_past_those_that_are_denied(self):
        own_network = ["unshare", "--map-root-user", "--net", "sh", "-c",
                       "ip link set lo up && sysctl -qw net.ipv4.ip_unprivileged_port_start=32000 && "
                       'exec setpriv --bounding-set=-net_bind_service --inh-caps=-net_bind_service "$0" --quiet']
        if subprocess.run([*own_network[:3], "true"], capture_output=True, check=False).returncode:
            self.skipTest("this machine makes no networks of a test's own")
        with Program(command=[*own_network, NATIVE]) as program:
            self.assertEqual(program.port(), 32000)

    def test_close_delivers_the_reply_also_when_more_input_waits(self):
        program = self.start("--quiet", self.write("""{"commands": {
            "WAIT": [{"send": "w"}, {"wait_ms": 1000}], "BYE": [{"repeat": "x", "bytes": 100000}, {"close": true}]}}"""))
        with tcp_line(program.port()) as line:
            line.send(b"WAIT\rBYE\r")
            self.assertEqual(line.read(b"\r"), b"w\r")
            line.send(b"y" * 50_000)
            self.assertEqual((len(line.read()), line.state), (100_001, Line.CLOSED))

    def test_flood_ends_in_its_time_also_when_nobody_reads(self):
        flooding = self.write('{"commands": {"F?": [{"flood_ms": 200}, {"send": "end"}, {"close": true}]}}')
        program = self.start("--once", "--quiet", flooding)
        with tcp_line(program.port()) as line:
            line.send(b"F?\r")
            time.sleep(0.5)
            heard = line.read()
        self.assertTrue(heard.endswith(b"end\r") and heard.count(b"\r") == 1)
        self.assertEqual(program.end()[0], 0)

    def test_once_ends_with_its_client_and_logs_to_standard_error(self):
        program = self.start("--once")
        port = program.port()
        with tcp_line(port) as line:
            line.send(b"*ID")
            self.assertEqual(line.read(seconds=0.05), b"")
            self.assertEqual((line.ask("N?"), line.ask("t")), ("KESP,7100,SIM00001,1.0", "21.5"))
            with self.assertRaises(OSError):
                socket.create_connection(("127.0.0.1", port), 5)
        code, output, error = program.end()
        self.assertEqual((code, output), (0, ""))
        self.assertRegex(error, r'#1 connected from 127[^#]*#1 command "\*IDN\?"\n[^#]*#1 reply "KESP[^#]*#1 command "t"\n'
                                r'[^#]*#1 reply "21.5\\r" \(5 bytes, 1 piece\)\n[^#]*#1 closed by the client\n')

    def test_signals_end_it(self):
        for number in (signal.SIGINT,) if BITS else (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            program = self.start("--quiet", "--bind", "127.0.0.1")
            with tcp_line(program.port()) as line:
                self.assertEqual(line.ask("*VER"), "1.0")
                program.interrupt(number)
                self.assertEqual(program.end(), (0, "", ""))

    def test_what_came_while_the_device_was_busy_is_logged(self):
        program, line = self.serial(self.write('{"commands": {"W": [{"send": "w"}, {"wait_ms": 3600000}]}}'))
        line.send(b"W\r")
        self.assertEqual(line.read(b"\r"), b"w\r")
        line.send(b"in vain")
        time.sleep(0.3)
        program.interrupt()
        self.assertIn(' #1 received "in vain"\n', program.end()[2])

    def network(self):
        """The description of three devices, and the port that is free at the address of each."""
        with socket.create_server(("127.0.0.1", 0)) as free:
            port = free.getsockname()[1]
        return port, self.write(f"""{{"devices": [
            {{"tcp": {{"port": {port}}}, "default": "first", "discovery": [{{"wait_ms": 100}}, {{"send": "1"}}]}},
            {{"tcp": {{"host": "127.0.0.2", "port": {port}}}, "default": "second", "discovery": "2"}},
            {{"tcp": {{"host": "127.0.0.3", "port": {port}}}, "default": "third"}}]}}""")

    def test_network_listens_at_all_its_addresses_and_is_found(self):
        port, file = self.network()
        program = self.start(file, "--discovery", "--discovery-port", "0")
        hosts = [f"127.0.0.{i}" for i in (1, 2, 3)]
        self.assertEqual(program.line(), "listening on " + ", ".join(f"{host}:{port}" for host in hosts))
        seekers = int(program.line().rpartition(":")[2])
        with Seeker() as seeker:
            seeker.discover(seekers)
            self.assertEqual([seeker.heard() for _ in range(2)],
                             [(b"2", (SENDS_FROM or "127.0.0.2", seekers)), (b"1", ("127.0.0.1", seekers))])
            self.assertIsNone(seeker.heard(0.05))
        for host, name in zip(hosts, ("first", "second", "third")):
            with tcp_line(port, host) as line:
                self.assertEqual(line.ask("WHO?"), name)
        program.interrupt()
        code, output, log = program.end()
        self.assertEqual((code, output), (0, ""))
        for number, host in enumerate(hosts, 1):
            self.assertRegex(log, rf" #{number} connected from 127.0.0.1:\d+ to {host}:{port}\n")

    def test_network_ends_with_the_only_client_that_it_is_to_have(self):
        port, file = self.network()
        program = self.start(file, "--once", "--quiet")
        program.line()
        with tcp_line(port, "127.0.0.2") as line:
            self.assertEqual(line.ask("WHO?"), "second")
            for host in ("127.0.0.1", "127.0.0.2", "127.0.0.3"):
                with self.assertRaises(OSError):
                    socket.create_connection((host, port), 5)
        self.assertEqual(program.end(), (0, "", ""))

    def test_check_and_example_and_help(self):
        for kind, said in (("device", "an instrument with 10 commands"), ("bus", "a bus with 2 devices"),
                           ("network", "a network with 3 devices"), ("radio-modem", "a device at a serial line")):
            with self.subTest(kind=kind):
                file = self.folder / f"{kind}.json"
                self.assertEqual(self.start("example", kind, file).end(), (0, "", ""))
                text = file.read_text()
                self.assertEqual(self.start("check", file).end(), (0, f"{file}: {said}\n", ""))
                self.assertEqual(self.start("example", kind).end(), (0, text, ""))
        marked = self.write("\N{ZERO WIDTH NO-BREAK SPACE}{\r\n}\r\n", "marked.json")
        self.assertEqual(self.start("check", marked).end(), (0, f"{marked}: an instrument with 0 commands\n", ""))
        code, output, error = self.start("--help").end()
        self.assertEqual((code, error), (0, ""))
        self.assertIn("Examples:", output)

    def test_what_cannot_be_is_told_and_nothing_is_left_behind(self):
        taken = socket.create_server(("127.0.0.1", 0))
        taken_for_discovery = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        taken_for_discovery.bind(("0.0.0.0", 0))
        self.addCleanup(taken.close)
        self.addCleanup(taken_for_discovery.close)
        port, seekers = taken.getsockname()[1], taken_for_discovery.getsockname()[1]
        bad = self.write('{\n"a": 1,\n"terminator": 2}', "bad.json")
        precious = self.write("precious", "precious.json")
        endless = self.write('{"gpib": {"primary": 5}, "terminator": ""}', "endless.json")
        network = self.write(f"""{{"devices": [{{"tcp": {{"host": "127.0.0.4", "port": {port}}}}},
            {{"tcp": {{"port": {port}}}}}]}}""", "network.json")
        own = "is a network with addresses of its own, which goes without --port, --bind, --serial and --discovery-from"
        bus, modem = EXAMPLES / "bus.json", EXAMPLES / "radio-modem.json"
        both = f"{bad}:2: /a: is not a known member\n{bad}:3: /terminator: must be a text\n"
        log = self.folder / "talk.log"
        cases = [
            (1, f"kesp-sim: cannot listen on 127.0.0.1 port {port}: the port is in use\n", "--port", port),
            (1, "kesp-sim: cannot listen on 192.0.2.1 port 20001: this machine has no such address\n",
             "--port", 20001, "--bind", "192.0.2.1"),
            (1, f"kesp-sim: cannot listen for discovery on port {seekers}: "
             f"{'access is denied, or another program has it' if BITS else 'the port is in use'}\n",
             "--discovery", "--discovery-port", seekers),
            (2, both, bad, "--log", log), (2, both, "check", bad),
            (2, f"{self.folder}: cannot be read\n", self.folder),
            (2, f"{self.folder}/none.json: cannot be read\n", self.folder / "none.json"),
            (1, f"kesp-sim: cannot listen on 127.0.0.1 port {port}: the port is in use\n", network),
            *((2, f"{network}: {own}\n", network, *options) for options in
              (("--port", 5), ("--bind", "::1"), ("--serial", "x"), ("--discovery", "--discovery-from", "127.0.0.9"))),
            (2, f"{endless}: has an empty terminator, which goes on a bus only\n", endless),
            (2, f"{bus}: is a bus, which the simulated GPIB driver plays (Gpib-32.json)\n", bus, "--log", log),
            (2, f"{modem}: is a device at a serial line, which goes with --serial\n", modem),
            (2, f"{self.folder}/none/at.log: cannot be written\n", "--log", self.folder / "none" / "at.log"),
            (2, f"{precious}: is there already\n", "example", "bus", precious),
            (2, f"{self.folder}/none/bus.json: cannot be written\n", "example", "bus", self.folder / "none" / "bus.json"),
            (2, None, "example", "toaster"), (2, None, "--bogus"), (2, None, "--port", 70000),
        ]
        cases += self.cases_of_windows(precious) if BITS else self.cases_of_linux(precious)
        before = sorted(self.folder.iterdir())
        for code, message, *arguments in cases:
            with self.subTest(arguments=arguments):
                ended, output, error = self.start(*arguments).end()
                self.assertEqual((ended, output, error), (code, "", error if message is None else message))
                self.assertNotEqual(error, "")
        self.assertEqual(sorted(self.folder.iterdir()), before)
        self.assertEqual(precious.read_text(), "precious")

    def cases_of_windows(self, precious):
        self.serial("--quiet")
        here = "--serial"
        # The 32-bit Wine was seen to open a port a second time.
        taken = [(1, f"kesp-sim: cannot serve COM{COM}: access is denied, or another program has it\n", here, f"COM{COM}")]
        return (taken if BITS == "64" else []) + [
                (1, "kesp-sim: cannot serve COM62: there is no such port or path\n", here, "COM62"),
                (1, None, here, precious), (1, None, here, "nothing"),
                (2, "wire works on Linux only; on Windows use a pair of COM ports that are joined\n", "wire", here, "x")]

    def cases_of_linux(self, precious):
        link = self.folder / "link"
        link.symlink_to("/dev/null")
        occupied = "something else has that name"
        nowhere = self.folder / "none" / "com1"
        return [(1, f"kesp-sim: cannot serve {place}: {reason}\n", *command, "--serial", place)
                for command in ((), ("wire",))
                for place, reason in ((precious, occupied), (self.folder, occupied), (link, occupied),
                                      (nowhere, "there is no such port or path"))]


class DiscoveryTest(unittest.TestCase):
    def start(self, *arguments, address="127.0.0.1"):
        program = Program("--discovery", "--discovery-port", "0", *arguments, bits=BITS)
        self.addCleanup(program.__exit__)
        port = program.port(address)
        line = program.line()
        self.assertTrue(line.startswith("discovery on 0.0.0.0:"), line)
        return program, port, int(line.rpartition(":")[2])

    def seek(self, port):
        seeker = Seeker()
        self.addCleanup(seeker.__exit__)
        seeker.discover(port)
        return seeker

    def log_of(self, program):
        program.interrupt()
        code, _, log = program.end()
        self.assertEqual(code, 0)
        return log

    def test_answers_come_from_the_address_of_tcp(self):
        for bind, address in (("127.0.3.4", "127.0.3.4"), ("0.0.0.0", "127.0.0.1")):
            program, _, port = self.start("--bind", bind, address=bind)
            seeker = self.seek(port)
            data, sender = seeker.heard()
            self.assertEqual((sender, len(data)), ((SENDS_FROM or address, port), 30))
            self.assertIn(b"\xf7", data)
            log = self.log_of(program)
            self.assertIn(f" discovery from 127.0.0.1:{seeker.port()}\n", log)
            self.assertRegex(log, rf" discovery reply to 127.0.0.1:{seeker.port()}[^\n]* \(30 bytes\)\n")

    def test_a_range_of_addresses_answers_once_from_each(self):
        program, _, port = self.start("--discovery-from", "127.0.1.1-127.0.1.50")
        seeker = self.seek(port)
        self.assertEqual([seeker.heard()[1] for _ in range(50)],
                         [(SENDS_FROM or f"127.0.1.{i}", port) for i in range(1, 51)])
        self.assertIsNone(seeker.heard(0.05))
        self.assertIn(" from 127.0.1.1-127.0.1.50: 50 sent (1500 bytes), 0 failed\n", self.log_of(program))

    def test_addresses_of_somebody_else_are_logged_and_the_service_goes_on(self):
        if SENDS_FROM:
            self.skipTest("this Windows does not look at the address")
        program, tcp, port = self.start("--discovery-from", "198.51.100.1-198.51.100.20")
        self.assertIsNone(self.seek(port).heard(0.2))
        with tcp_line(tcp) as line:
            self.assertEqual(line.ask("*VER"), "1.0")
        self.assertIn(" from 198.51.100.1-198.51.100.20: 0 sent (0 bytes), 20 failed\n", self.log_of(program))

    def test_late_answers_and_storms_hold_up_nobody(self):
        with tempfile.TemporaryDirectory(dir=ROOT / "build") as folder:
            late = pathlib.Path(folder) / "late.json"
            late.write_text("""{"discovery": {"cycle": [[{"wait_ms": 1500}, {"send": "late"}], [{"send": "now"}],
                [{"storm": [{"send": "x"}], "datagrams": 1000000}]]}, "default": "1"}""")
            program, tcp, port = self.start("--once", "--quiet", late)
            begin = time.monotonic()
            seeker = self.seek(port)
            seeker.discover(port)
            with tcp_line(tcp) as line:
                self.assertEqual(line.ask("A?"), "1")
                self.assertEqual([seeker.heard()[0] for _ in range(2)], [b"now", b"late"])
                self.assertGreaterEqual(time.monotonic() - begin, 1.5)
                seeker.discover(port)
                self.assertEqual(seeker.heard()[0], b"x")
                for _ in range(20):
                    self.assertEqual(line.ask("A?"), "1")
            self.assertEqual(program.end(), (0, "", ""))  # with its only client, also while answers wait


class LibraryTest(unittest.TestCase):
    @unittest.skipUnless(len(sys.argv) > 1 and sys.argv[1] != "native", "the library needs a Windows")
    def test_library_queries_it(self):
        with Program("--quiet", bits=BITS) as program:
            asked = subprocess.run([TOOLS / "wine-run", "--bits", BITS, ROOT / "samples" / "vbscript" / "query_tcp.vbs",
                                    "127.0.0.1", str(program.port()), "*IDN?"], capture_output=True, text=True, check=False)
            self.assertIn("KESP,7100,SIM00001,1.0", asked.stdout + asked.stderr)


if __name__ == "__main__":
    BITS = None if sys.argv[1] == "native" else sys.argv[1]
    SENDS_FROM = "127.0.0.1" if BITS else None
    ready = start_wine(BITS) if BITS else 0
    if ready:
        sys.exit(SKIPPED if ready == SKIPPED else "there is no Wine")
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
