#!/usr/bin/env python3
"""Holds samples/ to its rules: short files, the same four programs in each language, a plain word on what was run, line
ends that VBA takes, and Python that can be read."""

import pathlib
import re
import sys

PROGRAMS = ("query_tcp", "query_com", "discover", "detect")
# A language whose programs are no text has a page that tells how to make them.
PAGES = {"labview"}
NOT_RUN = "not yet run"
MOST_LINES = 59
MOST_README_LINES = 19
# What the editor of VBA wants before the first line that a reader sees.
CLASS_HEADER = re.compile(r"VERSION|BEGIN|END$|Attribute |  MultiUse")
# With other line ends VBA's editor imports a class module as a plain one.
TWO_CHARACTER_ENDS = {".bas", ".cls"}
ROW = re.compile(r"\| `(\w+)` \|.*")


def lines_of(path):
    return path.read_text(encoding="utf-8-sig").splitlines()


def first_line(path):
    return next((line for line in lines_of(path) if not CLASS_HEADER.match(line)), "")


def files_of(folder):
    return sorted(path for path in folder.rglob("*") if path.is_file())


def check_lengths(folder):
    for path in files_of(folder):
        most = MOST_README_LINES if path.name == "README.md" and folder.name not in PAGES else MOST_LINES
        count = len(lines_of(path))
        if count > most:
            yield f"{path}: {count} lines, more than {most}"


def check_programs(folder):
    if folder.name in PAGES:
        page = "\n".join(lines_of(folder / "README.md"))
        missing = [name for name in PROGRAMS if f"**{name}**" not in page]
    else:
        present = {path.stem for path in folder.iterdir()}
        missing = [name for name in PROGRAMS if name not in present]
    for name in missing:
        yield f"{folder}: no {name}"


def check_word(folder, not_run):
    """The first line of each file says whether the language was run, as the table does."""
    for path in files_of(folder):
        if (NOT_RUN in first_line(path).lower()) != not_run:
            yield f'{path}: its first line must {"say" if not_run else "not say"} "{NOT_RUN}", as the table has it'


def check_line_ends(folder):
    for path in files_of(folder):
        text = path.read_bytes()
        if path.suffix in TWO_CHARACTER_ENDS and not text.count(b"\r\n") == text.count(b"\n") == text.count(b"\r"):
            yield f"{path}: its lines must end with CR LF"


def check_python(folder):
    """Its syntax only: what the samples import is not there."""
    for path in sorted(folder.rglob("*.py")):
        try:
            compile(path.read_bytes(), str(path), "exec")
        except SyntaxError as error:
            yield f"{path}:{error.lineno}: {error.msg}"


def check(samples):
    rows = {row[1]: NOT_RUN in row[0] for row in map(ROW.match, lines_of(samples / "README.md")) if row}
    folders = sorted(path for path in samples.iterdir() if path.is_dir())
    if not folders:
        yield f"{samples}: no folders"
    for name in sorted(rows.keys() - {folder.name for folder in folders}):
        yield f"{samples / 'README.md'}: the table has `{name}`, and there is no such folder"
    for folder in folders:
        if not (folder / "README.md").is_file():
            yield f"{folder}: no README.md"
            continue
        yield from check_lengths(folder)
        yield from check_programs(folder)
        yield from check_line_ends(folder)
        yield from check_python(folder)
        if folder.name in rows:
            yield from check_word(folder, rows[folder.name])
        else:
            yield f"{samples / 'README.md'}: the table has no `{folder.name}`"


def main():
    found = list(check(pathlib.Path(__file__).resolve().parent.parent / "samples"))
    print("\n".join(found) if found else "samples: as they should be")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
