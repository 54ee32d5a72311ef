"""The native stage: which unit test program catches a mutation."""

import concurrent.futures
import re
import resource
import time

from .entries import labelled_tests, run_command
from .progress import Progress

# A mutation hangs when a program takes its usual time so often, and at least so many seconds.
PATIENCE, LEAST_SECONDS = 5, 20
# A mutation may ask for memory without end.
MOST_MEMORY = 4 << 30
FAILED_CASE = re.compile(r"^\[  FAILED  \] ([\w./]+)", re.M)
LAST_CASE = re.compile(r"^\[ RUN      \] ([\w./]+)", re.M)


def bound_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))


class Program:
    """A unit test program, the time that it takes and the mutations that it comes by."""

    def __init__(self, name, command):
        self.name, self.command = name, command
        self.seconds, self.reached = 0.0, frozenset()

    def run(self, limit, **environment):
        """None where it passes, else the first case that failed, or how it ended."""
        command = [argument for argument in self.command if argument != "--gtest_brief=1"] + ["--gtest_fail_fast"]
        start = time.monotonic()
        code, output = run_command(command, limit, environment, bound_memory)
        if code is None:
            return f"hangs in {last(LAST_CASE, output)}"
        self.latest = time.monotonic() - start
        if code == 0:
            return None
        failed = FAILED_CASE.search(output)
        return failed.group(1) if failed else f"ends with {code} in {last(LAST_CASE, output)}"

    def learn(self, folder):
        """Runs without a mutation; remembers what it comes by."""
        record = folder / f"{self.name}.txt"
        record.unlink(missing_ok=True)
        failure = self.run(600, KESP_MUTANTS_REACHED=str(record), KESP_MUTANT="0")
        self.seconds = self.latest
        if record.exists():
            self.reached = frozenset(int(line) for line in record.read_text().split())
        return failure

    def judge(self, number):
        """How the mutation shows; twice where the program ended, because once may be chance."""
        limit = max(LEAST_SECONDS, PATIENCE * self.seconds)
        failure = self.run(limit, KESP_MUTANT=str(number))
        if failure and not failure.startswith("hangs"):
            failure = self.run(limit, KESP_MUTANT=str(number))
        return failure


def last(pattern, text):
    found = pattern.findall(text)
    return found[-1] if found else "no case"


def unit_programs(build):
    tests = labelled_tests(build, "unit")
    commands = {test["name"]: test.get("command", [""]) for test in tests}
    return [Program(name, command) for name, command in commands.items() if command[0].startswith(str(build))]


def learn(programs, folder):
    """Runs all of them without a mutation; returns the names of those that fail even so."""
    folder.mkdir(parents=True, exist_ok=True)
    return [program.name for program in programs if program.learn(folder)]


def order(programs, entry):
    """The program of the mutation's own room first, then the quick ones; none that does not come by."""
    own = f"unit.{entry['room']}_test"
    reaching = [program for program in programs if entry["number"] in program.reached]
    return sorted(reaching, key=lambda program: (program.name != own, program.seconds))


def judge(programs, entry):
    verdict = {"number": entry["number"], "reached": False, "caught": False}
    for program in order(programs, entry):
        verdict["reached"] = True
        failure = program.judge(entry["number"])
        if failure:
            return dict(verdict, caught=True, program=program.name, case=failure)
    return verdict


def run(programs, entries, results, jobs):
    """Judges the entries that have no verdict yet."""
    waiting = [entry for entry in entries if entry["number"] not in results.verdicts]
    progress = Progress("unit tests", len(waiting))

    def one(entry):
        verdict = judge(programs, entry)
        results.add(verdict)
        how = f"{verdict['program']} {verdict['case']}" if verdict["caught"] else "not caught"
        progress.step(verdict["caught"], f"{entry['file']}:{entry['line']} {how}")

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for future in [pool.submit(one, entry) for entry in waiting]:
            future.result()
