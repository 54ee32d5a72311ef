"""Runs kesp-sim on Linux or under Wine for its tests, and speaks to it: over TCP, at a serial line, by datagrams."""

import os
import pathlib
import select
import shlex
import signal
import socket
import subprocess
import termios
import time
import tty

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOOLS = ROOT / "tools"
EXAMPLES = ROOT / "simulator" / "examples"
NATIVE = os.environ.get("KESP_INSTRUMENT", str(ROOT / "build" / "native" / "simulator" / "kesp-sim"))
LIMIT_SECONDS = 30
SKIPPED = 77


def of_wine(words):
    """The command line that runs a function of the scripts for our Wine."""
    return ["bash", "-c", f'. "{TOOLS}/lib/tree.sh"; . "{TOOLS}/lib/wine.sh"; {words}']


def start_wine(bits):
    """0, or the exit code for a machine without a Wine of that width."""
    return subprocess.run([TOOLS / "wine-prefix", bits, "start"], stdout=subprocess.DEVNULL, check=False).returncode


def com_port_link(bits, number):
    said = subprocess.run(of_wine(f"wine_prefix {bits}"), capture_output=True, text=True, check=True)
    return f"{said.stdout.strip()}/dosdevices/com{number}"


def default_signals():
    """A test in the background of a shell ignores the keyboard's signals, and so would its programs."""
    for number in (signal.SIGINT, signal.SIGHUP, signal.SIGTERM):
        signal.signal(number, signal.SIG_DFL)


def processes_of(program, words):
    """The processes of a Windows program that was started with these words. The path counts, because tests of the other
    width may start the same command at the same moment."""
    command = [str(word).encode() for word in (program, *words)]
    for entry in pathlib.Path("/proc").iterdir():
        try:
            # Wine fills up what its own words took with empty ones.
            given = [word for word in (entry / "cmdline").read_bytes().split(b"\0") if word]
        except OSError:
            continue
        if given == command:
            yield int(entry.name)


class Program:
    """A running kesp-sim: of Linux, or that of Windows with these bits; or another command."""

    def __init__(self, *arguments, bits=None, command=None, environment=()):
        self.words = list(map(str, arguments))
        self.bits = bits
        if bits:
            self.program = ROOT / "dist" / f"win{bits}" / "simulator" / "kesp-sim.exe"
            command = of_wine(f"in_wine {bits} wine {shlex.join([str(self.program), *self.words])}")
        self.process = subprocess.Popen(
            command or [NATIVE, *self.words], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            text=True, preexec_fn=default_signals, env={**os.environ, **dict(environment)})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.interrupt()
            self.end()
        for pipe in (self.process.stdout, self.process.stderr):
            pipe.close()

    def line(self):
        return self.process.stdout.readline().rstrip("\r\n")

    def port(self, address="127.0.0.1"):
        line = self.line()
        assert line.startswith(f"listening on {address}:"), line + self.process.stderr.read()
        return int(line.rpartition(":")[2])

    def interrupt(self, number=signal.SIGINT):
        """What Ctrl-C does: Wine hands the signal on as that."""
        if not self.bits:
            return self.process.send_signal(number)
        for process in processes_of(self.program, self.words):
            os.kill(process, number)
        return None

    def end(self):
        """Exit code, and what it wrote after the lines that were read."""
        try:
            output, error = self.process.communicate(timeout=LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            self.interrupt()
            self.process.kill()
            raise
        return self.process.returncode, output.replace("\r", ""), error.replace("\r", "")


class Line:
    """The client's end of a line, with a deadline on every wait."""

    OPEN, CLOSED, RESET = "open", "closed", "reset"

    def __init__(self, descriptor, owner=None):
        self.descriptor = descriptor
        self.owner = owner
        self.state = Line.OPEN
        self.kept = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.owner.close() if self.owner else os.close(self.descriptor)

    def send(self, data):
        while data:
            data = data[os.write(self.descriptor, data):]

    def read(self, end=None, seconds=LIMIT_SECONDS):
        """What comes up to and with `end`, or until the line ends or the time is up."""
        deadline = time.monotonic() + seconds
        while self.state == Line.OPEN and not (end and end in self.kept):
            if not select.select([self.descriptor], [], [], max(0, deadline - time.monotonic()))[0]:
                break
            try:
                piece = os.read(self.descriptor, 1 << 20)
                self.state = Line.OPEN if piece else Line.CLOSED
            except OSError:
                piece, self.state = b"", Line.RESET
            self.kept += piece
        length = self.kept.find(end) + len(end) if end and end in self.kept else len(self.kept)
        taken, self.kept = self.kept[:length], self.kept[length:]
        return taken

    def ask(self, command):
        self.send(command.encode() + b"\r")
        return self.read(b"\r").decode("latin-1").rstrip("\r")


def tcp_line(port, address="127.0.0.1"):
    client = socket.create_connection((address, port))
    return Line(client.fileno(), client)


def serial_line(path, rate=termios.B9600, stop_bits=1):
    line = Line(os.open(path, os.O_RDWR | os.O_NOCTTY))
    tty.setraw(line.descriptor)
    set_line(line, rate, stop_bits)
    return line


def set_line(line, rate, stop_bits=1):
    settings = termios.tcgetattr(line.descriptor)
    settings[2] = settings[2] | termios.CSTOPB if stop_bits == 2 else settings[2] & ~termios.CSTOPB
    settings[4] = settings[5] = rate
    termios.tcsetattr(line.descriptor, termios.TCSANOW, settings)


class Seeker:
    """A client that looks for instruments by datagrams."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind(("127.0.0.1", 0))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def port(self):
        return self.socket.getsockname()[1]

    def discover(self, port):
        self.socket.sendto(b"\x00\x01\x00\xf6", ("127.0.0.1", port))

    def heard(self, seconds=LIMIT_SECONDS):
        """The next datagram and its sender; nothing when none comes."""
        self.socket.settimeout(seconds)
        try:
            return self.socket.recvfrom(65536)
        except TimeoutError:
            return None
