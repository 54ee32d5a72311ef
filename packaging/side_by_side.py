#!/usr/bin/env python3
"""Writes the manifest that lets a program use the library where it is not registered, from the list of the public
interface: side_by_side.py 64|32 [server/public_interface.txt]

The assembly is this manifest with KespCommObj.dll beside it. What it says of classes and interfaces is what the library
registers (server/registration.cpp); a test compares the two.
"""

import dataclasses
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

LIST = pathlib.Path(__file__).resolve().parent.parent / "server" / "public_interface.txt"
# Windows would look for an assembly of the DLL's own name inside the DLL, so it has another.
ASSEMBLY = "Kesp.CommObj"
DLL = "KespCommObj.dll"
NAMESPACE = "urn:schemas-microsoft-com:asm.v1"
ARCHITECTURES = {64: "amd64", 32: "x86"}
# The marshalers of the automation library, which read the type library.
TYPE_LIBRARY_MARSHALER = "{00020424-0000-0000-C000-000000000046}"
DISPATCH_MARSHALER = "{00020420-0000-0000-C000-000000000046}"
DISPATCH = "{00020400-0000-0000-C000-000000000046}"


@dataclasses.dataclass
class Library:
    """Pairs of name and identifier; the version has two numbers."""
    name: str
    identifier: str
    version: str
    classes: list
    interfaces: list
    events: list


def read_library(text):
    """Of the list's lines those that open a section; classes are the creatable ones."""
    name, identifier, version = re.search(r"^library (\S+) (\{.*\}) version (\S+)$", text, re.M).groups()
    found = {kind: re.findall(rf"^{kind} (\S+) (\{{[0-9a-f-]+\}}){rest}", text, re.M)
             for kind, rest in (("class", " creatable"), ("interface", ""), ("events", ""))}
    return Library(name, identifier, version, found["class"], found["interface"], found["events"])


def assembly_version(library):
    """Windows takes an assembly beside the program only if its version is exactly the one that the program asks for. So
    it stays the same as long as clients can stay as they are: it follows the type library, which keeps its first number
    then, and not the product."""
    return library.version.split(".")[0] + ".0.0.0"


def add(parent, tag, **attributes):
    return ElementTree.SubElement(parent, tag, attributes)


def assembly_manifest(library, bits):
    root = ElementTree.Element("assembly", xmlns=NAMESPACE, manifestVersion="1.0")
    add(root, "assemblyIdentity", type="win32", name=ASSEMBLY, version=assembly_version(library),
        processorArchitecture=ARCHITECTURES[bits])
    file = add(root, "file", name=DLL)
    add(file, "typelib", tlbid=library.identifier, version=library.version, helpdir="")
    for name, identifier in library.classes:
        program = f"{library.name}.{name}"
        of_class = add(file, "comClass", clsid=identifier, threadingModel="Apartment", tlbid=library.identifier,
                       progid=program + ".1", description=name)
        add(of_class, "progid").text = program
    for name, identifier in library.interfaces:
        add(root, "comInterfaceExternalProxyStub", name=name, iid=identifier, tlbid=library.identifier,
            proxyStubClsid32=TYPE_LIBRARY_MARSHALER, baseInterface=DISPATCH)
    for name, identifier in library.events:
        add(root, "comInterfaceExternalProxyStub", name=name, iid=identifier, tlbid=library.identifier,
            proxyStubClsid32=DISPATCH_MARSHALER, baseInterface=DISPATCH)
    ElementTree.indent(root)
    return '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n' + ElementTree.tostring(root, "unicode") + "\n"


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[1] not in ("64", "32"):
        sys.exit(__doc__)
    path = pathlib.Path(sys.argv[2]) if len(sys.argv) == 3 else LIST
    library = read_library(path.read_text(encoding="utf-8"))
    sys.stdout.write(assembly_manifest(library, int(sys.argv[1])))


if __name__ == "__main__":
    main()
