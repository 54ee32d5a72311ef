"""Runs one proof in one width: its output into a log, its figures and some of its progress to the screen."""

import datetime
import os
import subprocess
import time

from proof import machine, record

LOGS = machine.ROOT / "build" / "logs"
SKIPPED = 77
SECONDS_BETWEEN_LINES = 5
LINES_OF_A_FAILURE = 20


def label(proof, bits):
    return f"{proof.name}, {bits} bit" if bits else proof.name


def say(text):
    print(f"-- {text}", flush=True)


class Screen:
    """Shows every figure, and of the other lines one every few seconds."""

    def __init__(self):
        self.shown_at = 0.0

    def show(self, line):
        is_figure = record.FIGURE.fullmatch(line.strip()) is not None
        if is_figure or time.monotonic() - self.shown_at >= SECONDS_BETWEEN_LINES:
            print(f"   {line.rstrip()}", flush=True)
            self.shown_at = self.shown_at if is_figure else time.monotonic()


def output_of(command, log):
    """Runs it; returns its exit code and its lines."""
    LOGS.mkdir(parents=True, exist_ok=True)
    screen, lines = Screen(), []
    with log.open("w", encoding="utf-8") as kept, subprocess.Popen(
            [machine.ROOT / command[0], *command[1:]], cwd=machine.ROOT, env=dict(os.environ, PYTHONUNBUFFERED="1"),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            errors="replace") as process:
        try:
            for line in process.stdout:
                kept.write(line)
                kept.flush()
                lines.append(line)
                screen.show(line)
        except KeyboardInterrupt:
            process.terminate()
            raise
    return process.returncode, lines


def last_words(lines):
    said = [line.strip() for line in lines if line.strip()]
    return said[-1] if said else "it said nothing"


def run(proof, bits, quick):
    """Runs and records it; returns "" when it passed, or else why not. What is quick is kept apart."""
    if not (machine.ROOT / proof.tool()).exists():
        return f"{proof.tool()} is missing"
    command = proof.commands(bits, quick)
    log = LOGS / f"proof-{proof.name}{'-' + bits if bits else ''}.log"
    commit, clean = machine.commit()
    date, start = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"), time.monotonic()
    code, lines = output_of(command, log)
    seconds = round(time.monotonic() - start)
    if code == SKIPPED:
        return f"skipped: {last_words(lines)}"
    found = record.figures(lines)
    kept = {"proof": proof.name, "bits": bits, "passed": code == 0 and bool(found), "figures": found, "date": date,
            "seconds": seconds, "commit": commit, "clean": clean, "machine": machine.machine(bits)}
    record.save(kept, record.FOLDER / "quick" if quick else record.FOLDER)
    if kept["passed"]:
        return ""
    for line in lines[-LINES_OF_A_FAILURE:]:
        print(f"   | {line.rstrip()}")
    return f"it ended with {code}, see {os.path.relpath(log, machine.ROOT)}" if code else "it printed no figure"
