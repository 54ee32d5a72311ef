#!/usr/bin/env python3
"""Holds the help that tools/make-help made against the pages, the type library's source and the type library.

usage: check_help.py [--bits 64|32]

Each number has its place in the rule at the top of server/KespCommObj.idl, belongs to one thing, and leads to an anchor
that is there. The compiled file holds the same numbers and all pages, and comes out the same when it is made again.
With --bits the built library is asked under Wine, and has to tell the same numbers; ends with 77 where it cannot run.
"""

import html.parser
import pathlib
import posixpath
import re
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the tree stays as it is
TOOLS = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(TOOLS), str(TOOLS / "lib")]
import help_project  # noqa: E402
import help_topics  # noqa: E402

TREE = TOOLS.parent
WORK = TREE / "build" / "help"
FILE = "KespCommObj.chm"
SKIPPED = 77
# Where the number of the whole is in the header of a type library, as widl writes it.
HELP_CONTEXT = 44
CLASSES = ("CKespCommObj", "CKespCOMPort3", "CKespTCP", "CKespIEEE", "CInstrument", "CInstruments", "CKespSmartSwitch3")
IDENTIFIER = re.compile(r"^\s*(?:vtable \d+  )?id (-?\d+)  (?:get |put )?(\w+)\(", re.M)


class Page(html.parser.HTMLParser):
    """The anchors and the links of an HTML page."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(path.read_text(encoding="ascii"))

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.anchors |= {values[name] for name in ("id", "name") if name in values}
        self.links += [values[name] for name in ("href", "src") if name in values]


def pages():
    return {path.relative_to(WORK / "pages").as_posix(): Page(path) for path in (WORK / "pages").rglob("*.html")}


def dead_links(found):
    for name, page in found.items():
        for link in page.links:
            path, _, anchor = link.partition("#")
            target = posixpath.normpath(posixpath.join(posixpath.dirname(name), path)) if path else name
            if re.match(r"[a-z][a-z+.-]*:", link):
                continue
            if not (WORK / "pages" / target).is_file():
                yield f"{name}: {link} is not there"
            elif anchor and anchor not in found[target].anchors:
                yield f"{name}: {link} has no such place"


def identifiers():
    """The dispatch identifiers, by interface and member."""
    listed = (TREE / "server" / "public_interface.txt").read_text(encoding="utf-8")
    return {(heading.split()[1], name): int(number) for heading in re.split(r"\n\s*\n", listed)
            if heading.startswith(("interface", "events")) for number, name in IDENTIFIER.findall(heading)}


def number_by_rule(context, places, enumerations):
    of = context.name.lstrip("_")
    if context.kind in ("library", "dialog"):
        return context.number
    if context.kind == "enum":
        return 10000 + 100 * (1 + enumerations.index(of))
    block = 1000 * (1 + CLASSES.index(of))
    if not context.member:
        return block + {"coclass": 0, "interface": 1, "dispinterface": 2}[context.kind]
    return block + {"interface": 100, "dispinterface": 500}[context.kind] + places[context.name, context.member]


def number_faults(contexts):
    enumerations = [context.name for context in contexts if context.kind == "enum"]
    places = identifiers()
    for context in contexts:
        if context.number != number_by_rule(context, places, enumerations):
            yield f"{context.name} {context.member}: {context.number} is not by the rule"
    described = {(context.name, context.member) for context in contexts}
    yield from (f"{name} {member} has no number" for name, member in places if (name, member) not in described)
    owners = {}
    for context in contexts:
        if owners.setdefault(context.number, context) != context:
            yield f"{context.number} belongs to {owners[context.number].name} and to {context.name}"


def topic_faults(found):
    for number, topic in help_topics.topics(TREE).items():
        name, _, anchor = help_project.url(topic).partition("#")
        if name not in found or (anchor and anchor not in found[name].anchors):
            yield f"{number}: {topic} is not there"


def compiled_faults():
    """What the compiled file does not hold, as its own reader sees it."""
    listed = subprocess.run([WORK / "chm_writer", "--list", WORK / FILE], capture_output=True, text=True, check=True)
    lines = set(listed.stdout.splitlines())
    wanted = [f"context {number} {help_project.url(topic)}" for number, topic in help_topics.topics(TREE).items()]
    wanted += [f"file {path.relative_to(WORK / 'pages').as_posix()}" for path in (WORK / "pages").rglob("*")
               if path.is_file()]
    yield from (f"{FILE} has no {line}" for line in wanted if line not in lines)
    with tempfile.TemporaryDirectory() as folder:
        again = pathlib.Path(folder) / FILE
        subprocess.run([WORK / "chm_writer", WORK / "compiled", WORK / "project.txt", again], check=True)
        if again.read_bytes() != (WORK / FILE).read_bytes():
            yield f"{FILE} is another one when it is made again"
    for width in ("win64", "win32"):
        delivered = TREE / "dist" / width / FILE
        if not delivered.is_file() or delivered.read_bytes() != (WORK / FILE).read_bytes():
            yield f"dist/{width} does not have it"


def own_number_faults(bits, contexts):
    """How the library's own number differs from its source's, in the header of the type library that is in the DLL."""
    folder = TREE / "dist" / f"win{bits}"
    data = (folder / "KespCommObj.dll").read_bytes()
    delivered = (folder / "include" / "KespCommObj.tlb").read_bytes()
    if delivered not in data:
        yield "the type library in the DLL is another one than that delivered"
    number, = struct.unpack_from("<I", delivered, HELP_CONTEXT)
    wanted = [context.number for context in contexts if context.kind == "library"]
    if delivered[:4] != b"MSFT" or [number] != wanted:
        yield f"the header of the type library has {number} in place of {wanted}"


def library_faults(bits, contexts):
    """How the numbers of the built library differ from those of its source."""
    program = TREE / "build" / f"win{bits}" / "tests" / "clients" / "help_contexts.exe"
    library = f"Z:{TREE / 'dist' / f'win{bits}' / 'KespCommObj.dll'}".replace("/", "\\")
    for command in ([TOOLS / "wine-prefix", str(bits), "start"],
                    [TOOLS / "wine-run", "--bits", str(bits), program, library]):
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode:
            print(done.stdout + done.stderr)
            sys.exit(done.returncode)
    yield from own_number_faults(bits, contexts)
    # Wine reads the library's own number from the wrong field.
    told = [line for line in done.stdout.replace("\r", "").splitlines() if " library " not in line]
    wanted = [" ".join(filter(None, (str(each.number), FILE, each.kind, each.name, each.member)))
              for each in contexts if each.kind not in ("dialog", "library")]
    yield from (f"the library has no {line}" for line in sorted(set(wanted) - set(told)))
    yield from (f"the library has {line}" for line in sorted(set(told) - set(wanted)))


def main():
    contexts = list(help_topics.contexts(TREE))
    if sys.argv[1:2] == ["--bits"] and len(sys.argv) == 3:
        faults = list(library_faults(int(sys.argv[2]), contexts))
    elif len(sys.argv) == 1:
        found = pages()
        faults = [*number_faults(contexts), *topic_faults(found), *dead_links(found), *compiled_faults()]
    else:
        sys.exit(__doc__)
    print(*faults, sep="\n", end="\n" if faults else "")
    numbers = {each.number for each in contexts}
    print(f"help: {len(faults)} faults" if faults else f"help: all {len(numbers)} numbers lead somewhere")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
