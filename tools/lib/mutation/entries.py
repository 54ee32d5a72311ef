"""The tests under Wine of the mutated tree as CTest knows them, and who may run beside whom."""

import contextlib
import json
import os
import re
import signal
import subprocess
import threading
import time

SKIPPED = 77
# Seconds for which all others may have to wait.
LONG = 8
# They look at the setup program, at the samples, at languages, at texts of the tree, or at the simulator, and not at
# the library.
LEFT_OUT = re.compile(r"installer|samples|language|public_interface|\.simulator|\.gpib_driver|\.verdict\.|register$")

CASE = re.compile(r"(?<=^\[  FAILED  \] )[\w./]+", re.M)


class Gate:
    """Lets in who holds the things that it needs; one that must be alone waits for all others to leave."""

    def __init__(self):
        self.condition, self.held = threading.Condition(), set()
        self.inside, self.alone, self.waiting_to_be_alone = 0, False, 0

    def is_open(self, things, alone):
        if self.alone or self.held & things:
            return False
        # Who must be alone has the right of way, or there would always be somebody inside.
        return not self.inside if alone else not self.waiting_to_be_alone

    @contextlib.contextmanager
    def pass_with(self, things, alone):
        with self.condition:
            self.waiting_to_be_alone += alone
            self.condition.wait_for(lambda: self.is_open(things, alone))
            self.waiting_to_be_alone -= alone
            self.held |= things
            self.inside += 1
            self.alone = alone
        try:
            yield
        finally:
            with self.condition:
                self.held -= things
                self.inside -= 1
                self.alone = False
                self.condition.notify_all()


def end_session(leader):
    """Ends a command and all that it started and that did not leave its session."""
    for name in filter(str.isdigit, os.listdir("/proc")):
        with contextlib.suppress(OSError, ValueError, IndexError):
            with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                if int(file.read().rsplit(")", 1)[1].split()[3]) == leader:
                    os.kill(int(name), signal.SIGKILL)


def run_command(command, limit, environment, prepare=None):
    """The exit code and the output so far; None for the code where the time was up. `prepare` runs in the new process."""
    process = subprocess.Popen(
        command,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        env=dict(os.environ, **environment),
        start_new_session=True,
        preexec_fn=prepare,
    )
    try:
        output = process.communicate(timeout=limit)[0]
        return process.returncode, output.decode(errors="replace")
    except subprocess.TimeoutExpired:
        end_session(process.pid)
        output = b""
        with contextlib.suppress(subprocess.TimeoutExpired):
            output = process.communicate(timeout=10)[0]
        return None, output.decode(errors="replace")


class Entry:
    """One test: its command, the time that it takes and the mutations that it comes by."""

    def __init__(self, shown):
        properties = {item["name"]: item["value"] for item in shown.get("properties", ())}
        self.name, self.command = shown["name"], shown["command"]
        self.environment = dict(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", ()))
        self.things = {self.name, *properties.get("RESOURCE_LOCK", ())}
        self.alone = bool(properties.get("RUN_SERIAL"))
        self.seconds, self.reached, self.troubles = 0.0, frozenset(), 0

    @property
    def has_cases(self):
        return any(argument.endswith("_test.exe") for argument in self.command)

    @property
    def stops_the_others(self):
        return self.alone and self.seconds > LONG

    def run(self, limit, case=None, **environment):
        """None where it passes, else the first failed case or the reason. With a case, that one only."""
        command = list(self.command) + ([f"--gtest_filter={case}"] if case else [])
        if "--timeout" in command:
            command[command.index("--timeout") + 1] = str(int(limit))
        settings = dict(self.environment, GTEST_FAIL_FAST="1", **environment)
        start = time.monotonic()
        code, output = run_command(command, limit + 30, settings)
        self.latest = time.monotonic() - start
        if code in (0, SKIPPED):
            return None
        failed = CASE.search(output) or re.search(r"^FAIL.*$", output, re.M)
        if failed:
            return failed.group()[:120]
        return "its time is up" if code in (None, 124) else f"ends with {code}"


def labelled_tests(build, label):
    """What CTest knows of the tests with that label."""
    command = ["ctest", "--test-dir", build, "--show-only=json-v1", "-L", f"^{label}$"]
    shown = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return json.loads(shown)["tests"]


def wine_entries(build):
    return [Entry(test) for test in labelled_tests(build, "wine64") if not LEFT_OUT.search(test["name"])]
