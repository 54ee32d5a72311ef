"""What is kept of a proof that was run: build/proof/NAME-WIDTH.json, or NAME.json for one without a width."""

import json
import re

from proof import machine

FOLDER = machine.ROOT / "build" / "proof"
FIGURE = re.compile(r"figure (?P<key>\S.*?) = (?P<value>\S.*?)\s*")
MEMBERS = {"proof", "bits", "passed", "figures", "date", "seconds", "commit", "clean", "machine"}


def figures(lines):
    """The figures among a proof's lines; a key that comes twice has its last value."""
    found = {}
    for line in lines:
        if match := FIGURE.fullmatch(line.strip()):
            found[match["key"]] = match["value"]
    return found


def file_of(name, bits, folder=FOLDER):
    return folder / (f"{name}-{bits}.json" if bits else f"{name}.json")


def save(record, folder=FOLDER):
    folder.mkdir(parents=True, exist_ok=True)
    path = file_of(record["proof"], record["bits"], folder)
    path.write_text(json.dumps(record, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")


def load(name, bits, folder=FOLDER):
    """None where that proof was not run. Raises ValueError for a file that is no record."""
    path = file_of(name, bits, folder)
    if not path.exists():
        return None
    record = json.loads(path.read_text(encoding="utf-8"))
    if not isinstance(record, dict) or set(record) != MEMBERS or not all((record["date"], record["commit"])):
        raise ValueError(f"{path} is no record of a proof")
    return record
