"""A Windows of the installer tests' own, and what is to be seen in it."""

import datetime
import getpass
import os
import pathlib
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = ROOT / "tools"
SKIPPED = 77
# What is left in a byte of 9009, with which the command processor says that a program could not be started.
NOT_STARTED = 9009 & 0xFF
SECOND_STARTS = ROOT / "build" / "logs" / "second-starts.log"


def note_second_start(command, code):
    """As tools/lib/second_starts.sh does it; ./test repeats the notes at its end."""
    SECOND_STARTS.parent.mkdir(parents=True, exist_ok=True)
    with SECOND_STARTS.open("a", encoding="utf-8") as log:
        print(f"{datetime.datetime.now(datetime.timezone.utc):%FT%TZ}: could not start a program ({code}): "
              + " ".join(map(str, command)), file=log)


class ExitCode(int):
    """Of a program, which a failed comparison shows together with what the program said."""

    def __new__(cls, result, also=""):
        code = super().__new__(cls, result.returncode)
        code.said = (result.stdout + result.stderr + also).strip()
        return code

    def __repr__(self):
        return f"{int(self)} (said: {self.said or 'nothing'})"


class Sandbox:
    """A Wine prefix; shared by all tests of a run, each of which leaves it as it was."""

    def __init__(self, kind):
        # The widths of the programs that it runs, and that of the programs of these tests: the setup program's.
        self.widths = {"64": (64,), "32": (32,), "both": (64, 32)}[kind]
        self.bits = bits = self.widths[-1]
        # With a screen of its own, which another kind's run must not stop.
        base = ROOT / "build" / f"wine-installer-{kind}-{getpass.getuser()}"
        self.environment = dict(os.environ, KESP_WINE_BASE=str(base))
        if kind == "32":
            self.environment["KESP_WINE_ARCH"] = "win32"
        self.drive = base / ("win64" if bits == 64 else "both") / "drive_c"
        self.home = self.drive / "users" / getpass.getuser()
        self.system = self.drive / "windows" / ("syswow64" if kind == "both" else "system32")
        self.starter = ROOT / "build" / f"win{bits}" / "tests" / "installer" / "start_with_rights.exe"

    def tool(self, *command, timeout=400):
        return subprocess.run([str(TOOLS / command[0]), *map(str, command[1:])], env=self.environment, text=True,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=timeout)

    def start(self):
        """Nothing where it runs now, else the reason why it cannot."""
        result = self.tool("wine-prefix", self.bits, "start")
        if result.returncode == SKIPPED:
            return result.stderr.strip() or "no Wine of that width"
        result.check_returncode()
        return None

    def stop(self):
        self.tool("wine-prefix", self.bits, "stop")
        self.tool("lib/screen", "stop")

    def run(self, program, *arguments, bits=None):
        wine = ("--wine", 10) if self.bits == 32 else ()
        command = ("wine-run", "--bits", bits or self.bits, *wine, program, *arguments)
        result = self.tool(*command)
        if result.returncode == NOT_STARTED and program == "cmd":
            # Wine could not make the process. Noted, so that nobody takes it for nothing.
            note_second_start(command, result.returncode)
            result = self.tool(*command)
        return result

    def run_limited(self, program, *arguments):
        """Without administrator's rights."""
        return self._run_with("limited", program, *arguments)

    def run_as_administrator(self, program, *arguments):
        return self._run_with("all", program, *arguments)

    def _run_with(self, rights, program, *arguments):
        # The uninstaller knows its folder by the name that it was installed under.
        if program.is_relative_to(self.drive):
            place = "C:\\" + str(program.relative_to(self.drive)).replace("/", "\\")
        else:
            place = windows_path(program)
        return self.run(self.starter, rights, place, *arguments)

    def run_line(self, line, run=None):
        """A line as the command processor reads it, for arguments that must not be put in quotation marks."""
        batch = self.drive / "line.cmd"
        batch.write_text(f"{line}\nexit /b %ERRORLEVEL%\n")
        try:
            return (run or self.run_as_administrator)(self.system / "cmd.exe", "/c", "C:\\line.cmd")
        finally:
            batch.unlink()

    def begin(self, program, *arguments):
        command = [str(TOOLS / "wine-run"), "--bits", str(self.bits), str(program), *arguments]
        return subprocess.Popen(command, env=self.environment, text=True, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def path(self, windows_path):
        """The Linux path of one on drive C."""
        return self.drive.joinpath(*windows_path.removeprefix("C:\\").split("\\"))

    def temporary(self):
        # Where Windows has it, too; Wine 8 has it elsewhere.
        folder = self.home / "AppData" / "Local" / "Temp"
        return folder if folder.exists() else self.home / "Temp"

    def files(self):
        """Files and folders that are not temporary, as paths within drive C."""
        paths = (path.relative_to(self.drive) for path in self.drive.rglob("*"))
        return {str(path) for path in paths if "temp" not in map(str.lower, path.parts)}

    def is_listed(self, root):
        """Whether Programs and Features lists the library, for all users (HKLM) or for this one (HKCU)."""
        entry = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\KespCommObj"
        return self.reg("query", f"{root}\\{entry}").returncode == 0

    def reg(self, *arguments):
        """A 64-bit program sees the 32-bit view, too, in Wow6432Node."""
        return self.run("reg", *arguments, bits=self.widths[0])

    def registry(self, below="Software", roots=("HKLM", "HKCU")):
        """The lines of that key of each root, in both views, each value with its key before it.

        All of HKLM\\Software takes seconds.
        """
        names = {root: f"exported-{root}.reg" for root in roots}
        exports = [f"reg export {root}\\{below} C:\\{name} /y" for root, name in names.items()]
        self.run("cmd", "/c", " & ".join(exports), bits=self.widths[0]).check_returncode()
        return {root: self._lines_of(self.drive / name) for root, name in names.items()}

    @staticmethod
    def _lines_of(exported):
        lines, key = set(), ""
        for line in exported.read_text("utf-16").splitlines():
            if line.startswith("["):
                key = line
            lines.add(key + " " + line)
        exported.unlink()
        return lines


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def becomes_true(condition, seconds=30):
    """Whether that happens within the time."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.05)
    return True
