"""The blocks of figures in docs/promises.md, one for each proof: the table between two markers, and its checksum."""

import hashlib
import re

from proof import machine, record
from proof.table import PROOFS

PAGE = machine.ROOT / machine.PAGE
BLOCK = re.compile(r"<!-- figures of (?P<name>\S+): tools/prove(?:, (?P<sum>[0-9a-f]+))? -->\n(?P<text>.*?)"
                   r"<!-- end of the figures -->", re.DOTALL)
NOT_YET = "not yet measured"
NO_FIGURES = f"\n*Figures: {NOT_YET}.*\n\n"

def duration(seconds):
    if seconds < 60:
        return f"{seconds} s"
    minutes = round(seconds / 60)
    return f"{minutes} min" if minutes < 60 else f"{minutes // 60} h {minutes % 60} min"


def machine_text(found):
    text = (f"{found['processor']}, {found['cores']} cores, {found['memory']}; Debian {found['debian']}, "
            f"kernel {found['kernel']}")
    return text + (f", Wine {found['wine']}" if "wine" in found else "")


def column(kept):
    """What a record says behind its figures, by the words of the rows."""
    if kept is None:
        return {}
    return {
        "**verdict**": "passed" if kept["passed"] else "FAILED",
        "**date**": kept["date"],
        "**duration**": duration(kept["seconds"]),
        "**commit**": kept["commit"] + ("" if kept["clean"] else ", with changes"),
        "**machine**": machine_text(kept["machine"]),
    }


def cell(text):
    return text.replace("|", "\\|")


def block(proof, records):
    """The text between the markers, of the records by width; None stands for one that is not there."""
    if all(kept is None for kept in records):
        return NO_FIGURES
    heads = [f"{bits} bit" if bits else "measured" for bits in proof.widths]
    keys = list(dict.fromkeys(key for kept in records if kept for key in kept["figures"]))
    rows = [[key] + [(kept["figures"].get(key, "–") if kept else NOT_YET) for kept in records] for key in keys]
    columns = [column(kept) for kept in records]
    words = list(dict.fromkeys(word for each in columns for word in each))
    rows += [[word] + [each.get(word, NOT_YET) for each in columns] for word in words]
    lines = ["| " + " | ".join(cell(str(text)) for text in row) + " |" for row in [["figure", *heads], *rows]]
    lines.insert(1, "|---" * (len(heads) + 1) + "|")
    return "\n" + "\n".join(lines) + "\n\n"


def names(text):
    return [match["name"] for match in BLOCK.finditer(text)]


def complaints(text):
    """What is wrong with a page: each proof has one block, as tools/prove wrote it, or without figures."""
    found = names(text)
    for proof in PROOFS:
        if found.count(proof.name) != 1:
            yield f"the proof {proof.name} has {found.count(proof.name)} blocks of figures"
    for name in sorted(set(found) - {proof.name for proof in PROOFS}):
        yield f"there is no proof {name}"
    for match in BLOCK.finditer(text):
        if match["text"] != NO_FIGURES and match["sum"] != checksum(match["name"], match["text"]):
            yield f"the block of {match['name']} is not as tools/prove wrote it"
    for number in range(1, 7):
        section = re.search(rf"^## {number}\. .*?(?=^## |\Z)", text, re.DOTALL | re.MULTILINE)
        if section is None or not names(section.group()):
            yield f"promise {number} has no section with a block of figures"


def checksum(name, text):
    """Shows a figure that was changed by hand, or is not that proof's."""
    return hashlib.sha256(f"{name}\n{text}".encode()).hexdigest()[:16]


def written(text, folder=record.FOLDER):
    """The page with the figures that are recorded."""
    proofs = {proof.name: proof for proof in PROOFS}

    def replaced(match):
        proof = proofs[match["name"]]
        records = [record.load(proof.name, bits, folder) for bits in proof.widths]
        text = block(proof, records)
        mark = "" if text == NO_FIGURES else f", {checksum(proof.name, text)}"
        return f"<!-- figures of {proof.name}: tools/prove{mark} -->\n{text}<!-- end of the figures -->"

    return BLOCK.sub(replaced, text)
