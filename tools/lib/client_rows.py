#!/usr/bin/env python3
"""Rows of the client matrix: reads what a client printed, strictly, and keeps each row in a file.

    client_rows.py ENTRY CODE <what the client printed

ENTRY is a row's name, such as wine64.pascal.late; CODE the client's exit code. The row is written to
build/languages/ENTRY.json. The program ends with 0, 1 for a failure, or 77 for a skipped row.
"""

import dataclasses
import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LANGUAGES = ROOT / "tests" / "languages"
ROWS = ROOT / "build" / "languages"
SKIPPED = 77
WINDOWS = {"wine64": "64 bit, Wine 8", "wine10": "64 bit, Wine 10", "wine32": "32 bit, Wine 10"}

RESULT = re.compile(r"PASS (?P<passed>[a-z]+)|(?P<word>FAIL|SKIP) (?P<case>[a-z]+): (?P<why>\S.*)")
LIKE_A_RESULT = re.compile(r"\s*(PASS|FAIL|SKIP|DONE)\b", re.IGNORECASE)


@dataclasses.dataclass(frozen=True)
class Client:
    """A line of clients.txt."""

    folder: str
    way: str
    name: str
    windows: tuple
    may_skip: tuple

    def entry(self, windows):
        return ".".join([windows, self.folder] + ([] if self.way == "-" else [self.way]))

    def entries(self):
        return [self.entry(windows) for windows in self.windows]


def lines_of(text):
    return [line for line in text.splitlines() if line.strip() and not line.startswith("#")]


def read_cases(text):
    """The names of the cases, in their order."""
    return [line.split()[0] for line in lines_of(text)]


def read_clients(text, cases):
    """The clients of clients.txt. Raises ValueError for a line that is none."""
    clients = []
    for line in lines_of(text):
        parts = [part.strip() for part in line.split("|")]
        if len(parts) != 5 or not all(parts[:4]):
            raise ValueError(f"clients.txt: {line}: five parts, of which the last may be empty")
        client = Client(parts[0], parts[1], parts[2], tuple(parts[3].split()), tuple(parts[4].split()))
        unknown = [word for word in client.windows if word not in WINDOWS]
        unknown += [word for word in client.may_skip if word not in cases]
        if unknown:
            raise ValueError(f"clients.txt: {line}: unknown {' '.join(unknown)}")
        clients.append(client)
    entries = [entry for client in clients for entry in client.entries()]
    if len(set(entries)) != len(entries):
        raise ValueError("clients.txt: a row stands there twice")
    return clients


def cases():
    return read_cases((LANGUAGES / "cases.txt").read_text(encoding="utf-8"))


def clients():
    return read_clients((LANGUAGES / "clients.txt").read_text(encoding="utf-8"), cases())


def judge(output, code, names, may_skip):
    """What a client's lines come to: a dictionary from a case to its word and reason, and a list of what is wrong."""
    results, problems, done = {}, [], False
    for line in output.splitlines():
        line = line.rstrip()
        if done and line:
            problems.append(f"a line behind DONE: {line}")
        elif line == "DONE":
            done = True
        elif match := RESULT.fullmatch(line):
            name = match["passed"] or match["case"]
            if name not in names:
                problems.append(f"there is no case {name}")
            elif name in results:
                problems.append(f"{name} was reported twice")
            else:
                results[name] = (match["word"] or "PASS", match["why"] or "")
        elif LIKE_A_RESULT.match(line):
            problems.append(f"not a result: {line}")
    problems += [f"{name} is missing" for name in names if name not in results]
    for name, (word, why) in results.items():
        if word == "FAIL":
            problems.append(f"{name}: {why}")
        elif word == "SKIP" and name not in may_skip:
            problems.append(f"{name} may not be skipped: {why}")
        elif word == "PASS" and name in may_skip:
            problems.append(f"{name} is skipped no more: take it out of clients.txt")
    if not done:
        problems.append("DONE is missing")
    if code != 0:
        problems.append(f"it ended with {code}")
    return results, problems


def row_of(output, code, names, may_skip):
    """A row as it is kept: why it was skipped, or its results and problems."""
    if code == SKIPPED:
        said = [line.strip() for line in output.splitlines() if line.strip()]
        return {"skipped": said[-1]} if said else {"results": {}, "problems": ["it was skipped without a reason"]}
    results, problems = judge(output, code, names, may_skip)
    return {"results": results, "problems": problems}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    entry, code = sys.argv[1], int(sys.argv[2])
    owners = [client for client in clients() if entry in client.entries()]
    if not owners:
        sys.exit(f"tests/languages/clients.txt has no row {entry}")
    row = row_of(sys.stdin.read(), code, cases(), owners[0].may_skip)
    ROWS.mkdir(parents=True, exist_ok=True)
    (ROWS / f"{entry}.json").write_text(json.dumps(row, indent=1) + "\n", encoding="utf-8")
    if "skipped" in row:
        print(f"skipped: {row['skipped']}")
        sys.exit(SKIPPED)
    for problem in row["problems"]:
        print(f"FAILED: {problem}")
    sys.exit(1 if row["problems"] else 0)


if __name__ == "__main__":
    main()
