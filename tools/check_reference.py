#!/usr/bin/env python3
"""Holds the pages of docs/reference/ against the list of the public interface, server/public_interface.txt.

usage: check_reference.py [TREE]

Each member and event has a heading of its own on the page of its class, its signature as VBA shows it, and an example.
Each enumeration has a heading, and a row with the number for each of its names. Nothing else is documented as if it
were there.
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the tree stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "lib"))
import page_links  # noqa: E402
import public_interface  # noqa: E402

CLASS_PAGES = {
    "CKespCommObj": "comm-obj.md",
    "CKespCOMPort3": "com-port.md",
    "CKespSmartSwitch3": "smart-switch.md",
    "CKespTCP": "tcp.md",
    "CInstruments": "instruments.md",
    "CInstrument": "instruments.md",
    "CKespIEEE": "ieee.md",
}
EVENT_PAGES = {
    "CKespCOMPort3": "com-port-events.md",
    "CKespTCP": "tcp-events.md",
    "CKespIEEE": "ieee-events.md",
}
ENUMERATION_PAGES = ("enumerations.md", "errors.md")

HEADING = re.compile(r"^(#{2,3}) +(.*)$", re.M)
SIGNATURE = re.compile(r"^```vb\n((?:Function|Sub|Property|Event) .*?)\n```$", re.M | re.S)
EXAMPLE = re.compile(r"^Example: `([^`]+)`$", re.M)
ROW = re.compile(r"^\| `(\w+)` \| (-?\d+) \|(?: (0x[0-9A-F]{8}) \|)?", re.M)


def sections(text):
    """The parts of a page as pairs of heading and text."""
    parts = HEADING.split(text)
    return list(zip(parts[2::3], parts[3::3]))


def on_one_line(signature):
    """A signature without its continuation lines."""
    return re.sub(r"\s*_\n\s*", " ", signature).replace("( ", "(")


def member_complaints(page, text, members):
    found = sections(text)
    for member in members:
        parts = [part for heading, part in found if heading == member.name]
        if len(parts) != 1:
            yield f"{page}: {len(parts)} headings for {member.name}"
            continue
        written = [on_one_line(signature) for signature in SIGNATURE.findall(parts[0])]
        if written != [member.signature]:
            yield f"{page}: {member.name} is not\n    {member.signature}"
        example = EXAMPLE.search(parts[0])
        # Nobody writes the name of a hidden member.
        if not example or (member.name not in example[1] and "hidden" not in member.signature):
            yield f"{page}: {member.name} has no example that uses it"
    for signature in map(on_one_line, SIGNATURE.findall(text)):
        if signature not in {member.signature for member in members}:
            yield f"{page}: there is no\n    {signature}"


def enumeration_complaints(pages, enumerations):
    found = [(page, heading, part) for page in ENUMERATION_PAGES for heading, part in sections(pages.get(page, ""))]
    for name, values in enumerations:
        rows = [row for _, heading, part in found if heading == name for row in ROW.findall(part)]
        numbers = [(constant, int(number)) for constant, number, _ in rows]
        yield from (f"{name}: no row for {constant} = {number}" for constant, number in values
                    if numbers.count((constant, number)) != 1)
        yield from (f"{name}: there is no {constant} = {number}" for constant, number in numbers
                    if (constant, number) not in values)
        yield from (f"{name}: {constant} is not {hexadecimal}" for constant, number, hexadecimal in rows
                    if hexadecimal and int(hexadecimal, 16) != int(number) & 0xFFFFFFFF)


def complaints(interface, pages):
    """What is wrong with the pages, given as a dictionary of names and texts."""
    for listed, places in ((interface.classes, CLASS_PAGES), (interface.events, EVENT_PAGES)):
        yield from (f"{each.name}: no page is known for it" for each in listed if each.name not in places)
        for page in dict.fromkeys(places.values()):
            members = [member for each in listed if places.get(each.name) == page for member in each.members]
            yield from member_complaints(page, pages.get(page, ""), members)
    yield from enumeration_complaints(pages, interface.enumerations)
    index = page_links.links(pages.get("README.md", ""))
    yield from (f"README.md: no link to {page}" for page in pages
                if page != "README.md" and page not in {path for path, _ in index})


def read(tree):
    listed = (tree / "server" / "public_interface.txt").read_text(encoding="utf-8")
    pages = {path.name: path.read_text(encoding="utf-8") for path in (tree / "docs" / "reference").glob("*.md")}
    return public_interface.PublicInterface(listed), pages


def main():
    if len(sys.argv) > 2:
        sys.exit(__doc__)
    tree = pathlib.Path(sys.argv[1] if len(sys.argv) == 2 else pathlib.Path(__file__).parent.parent).resolve()
    interface, pages = read(tree)
    found = list(complaints(interface, pages))
    print(*found, sep="\n", end="\n" if found else "")
    members = sum(len(each.members) for each in interface.classes + interface.events)
    values = sum(len(each.values) for each in interface.enumerations)
    print(f"reference: {len(found)} faults" if found else
          f"reference: {members} members and events and {values} values stand as in the type library")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
