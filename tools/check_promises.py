#!/usr/bin/env python3
"""Looks whether docs/promises.md has a block of figures for each proof, and in it what tools/prove wrote."""

import pathlib
import sys

sys.dont_write_bytecode = True  # the tree stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "lib"))
from proof import page  # noqa: E402


def main():
    complaints = list(page.complaints(page.PAGE.read_text(encoding="utf-8")))
    for complaint in complaints:
        print(f"docs/promises.md: {complaint}")
    print(f"promises: {len(complaints) or 'no'} complaint{'s' if len(complaints) != 1 else ''}")
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
