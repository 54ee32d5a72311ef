"""What a figure was measured on: processor, memory, Debian, kernel, Wine; and the commit."""

import os
import pathlib
import platform
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[3]
# The page of the figures is written between two runs.
PAGE = "docs/promises.md"


def said_by(*command):
    """The first line that a command prints; empty where it cannot be run."""
    try:
        said = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False).stdout
    except OSError:
        return ""
    return said.strip().split("\n")[0].strip()


def field(path, pattern):
    try:
        match = re.search(pattern, pathlib.Path(path).read_text(encoding="utf-8", errors="replace"), re.MULTILINE)
    except OSError:
        return ""
    return match.group(1).strip() if match else ""


def wine(bits):
    """Debian's own for 64 bit, the second one for 32."""
    if bits == "64":
        return said_by("wine", "--version").removeprefix("wine-").split(" ")[0]
    second = os.environ.get("KESP_SECOND_WINE", "/var/cache/kespcommobj/second-wine")
    version = field(f"{second}/var/lib/dpkg/status", r"^Package: wine\n(?:[^\n]+\n)*?Version: (\S+)")
    return version.split("~")[0].split("-")[0]


def machine(bits):
    memory = field("/proc/meminfo", r"^MemTotal:\s*(\d+) kB")
    found = {
        "processor": field("/proc/cpuinfo", r"^model name\s*:\s*(.+)$") or platform.machine(),
        "cores": os.cpu_count(),
        "memory": f"{round(int(memory or 0) / 1024 / 1024)} GiB",
        "debian": field("/etc/debian_version", r"^(\S+)"),
        "kernel": platform.release(),
    }
    if bits:
        found["wine"] = wine(bits)
    return found


def commit():
    """The commit, and whether the files are exactly its own."""
    lines = subprocess.run(["git", "status", "--porcelain"], cwd=ROOT, capture_output=True, text=True, check=False)
    changed = [line for line in lines.stdout.splitlines() if line[3:] != PAGE]
    return said_by("git", "rev-parse", "--short=10", "HEAD"), not changed and lines.returncode == 0
