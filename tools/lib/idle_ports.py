#!/usr/bin/env python3
"""Links a number of new pseudo-terminals into a folder as com100, com101 and so on while a command runs:
idle_ports.py FOLDER COUNT command [arguments...]. Returns the command's exit code (128 and the signal's number when a
signal ended it)."""

import os
import pathlib
import pty
import signal
import subprocess
import sys
import tty

FIRST = 100
SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)


def end(number, _frame):
    sys.exit(128 + number)


def make_line(link):
    # Their other ends stay open as long as this program runs.
    _master, slave = pty.openpty()
    tty.setraw(slave)
    link.symlink_to(os.ttyname(slave))
    os.close(slave)


def run(command):
    process = subprocess.Popen(command)
    try:
        code = process.wait()
    finally:
        if process.poll() is None:
            process.terminate()
            process.wait()
    return code if code >= 0 else 128 - code


def main():
    folder, count, command = pathlib.Path(sys.argv[1]), int(sys.argv[2]), sys.argv[3:]
    links = []
    # No signal may come between a link and the note of it, nor while they are taken away.
    signal.pthread_sigmask(signal.SIG_BLOCK, SIGNALS)
    for number in SIGNALS:
        signal.signal(number, end)
    try:
        for number in range(FIRST, FIRST + count):
            link = folder / f"com{number}"
            make_line(link)
            links.append(link)
        signal.pthread_sigmask(signal.SIG_UNBLOCK, SIGNALS)
        return run(command)
    except OSError as error:
        print(f"idle_ports: {error}", file=sys.stderr)
        return 125
    finally:
        signal.pthread_sigmask(signal.SIG_BLOCK, SIGNALS)
        for link in links:
            link.unlink(missing_ok=True)


if __name__ == "__main__":
    sys.exit(main())
