#!/usr/bin/env python3
"""Writes a script that holds the examples of docs/reference as procedures that nobody calls, and then prints PASS:

    reference_examples.py OUTPUT.vbs PAGE.md...

A script host reads a whole script before it runs it, so PASS tells that it can read each of them.
"""

import pathlib
import re
import sys

EXAMPLE = re.compile(r"^Example: `([^`]+)`$", re.M)


def procedures(page):
    name = re.sub(r"\W", "_", page.stem)
    for number, example in enumerate(EXAMPLE.findall(page.read_text(encoding="utf-8")), 1):
        # A handler of an event is a procedure already.
        yield example if example.startswith("Sub ") else f"Sub {name}_{number}()\n    {example}\nEnd Sub"


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    found = [procedure for page in map(pathlib.Path, sys.argv[2:]) for procedure in procedures(page)]
    end = [f'WScript.Echo "{len(found)} examples"', 'WScript.Echo "PASS"']
    pathlib.Path(sys.argv[1]).write_text("\n".join(found + end) + "\n", encoding="ascii", newline="\r\n")


if __name__ == "__main__":
    main()
