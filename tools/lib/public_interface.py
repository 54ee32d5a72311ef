"""Reads the list of the public interface, server/public_interface.txt, and writes signatures as VBA shows them."""

import collections
import re

Enumeration = collections.namedtuple("Enumeration", "name values")  # pairs of name and number
Member = collections.namedtuple("Member", "name signature")
Interface = collections.namedtuple("Interface", "name members")  # a class's members, or a class's events

TYPES = {"boolean": "Boolean", "integer16": "Integer", "integer32": "Long", "string": "String", "any": "Variant",
         "object": "Object", "double": "Double", "unknown": "IUnknown"}
LINE = re.compile(r"(?:vtable \d+  )?id (?P<id>-?\d+)  (?P<way>get |put |)(?P<name>\w+)\((?P<arguments>[^)]*)\)"
                  r"(?: (?P<type>\w+))?(?P<restricted> restricted)?$")
ARGUMENT = re.compile(r"(?P<name>\w+) (?:in )?(?P<out>out &)?(?P<type>\w+)(?:=(?P<default>.*))?$")


class PublicInterface:
    """What clients see: enumerations, and interfaces and events under the names of their classes."""

    def __init__(self, text):
        self.enumerations, self.classes, self.events = [], [], []
        for block in re.split(r"\n\s*\n", text):
            kind, _, rest = block.strip().partition(" ")
            lines = [line.strip() for line in rest.splitlines()]
            name = lines[0].split(" ")[0] if lines else ""
            if kind == "enumeration":
                pairs = [line.split(" = ") for line in lines[1:]]
                self.enumerations.append(Enumeration(name, [(constant, int(number)) for constant, number in pairs]))
            elif kind == "interface":
                self.classes.append(Interface(name.lstrip("_"), list(self._members(lines[1:]))))
            elif kind == "events":
                self.events.append(Interface(name.lstrip("_"), list(self._events(lines[1:]))))

    def _members(self, lines):
        parsed = [LINE.match(line) for line in lines]
        by_reference = {line["name"]: "out &" in line["arguments"] for line in parsed if line["way"] == "put "}
        for line in parsed:
            if line["way"] != "put ":
                yield Member(line["name"], self._signature(line, by_reference))

    def _signature(self, line, by_reference):
        if line["way"] == "get ":
            return with_remarks(f"Property {line['name']} As {type_name(line['type'])}", {
                "read-only": line["name"] not in by_reference, "hidden": line["restricted"],
                "assigned by reference": by_reference.get(line["name"])})
        call = f"{line['name']}({self._arguments(line['arguments'])})"
        full = f"Function {call} As {type_name(line['type'])}" if line["type"] else f"Sub {call}"
        return with_remarks(full, {"default member": line["id"] == "0"})

    def _events(self, lines):
        for line in map(LINE.match, lines):
            yield Member(line["name"], f"Event {line['name']}({self._arguments(line['arguments'])})")

    def _arguments(self, text):
        return ", ".join(self._argument(ARGUMENT.match(part)) for part in text.split(", ") if part)

    def _argument(self, part):
        reference = "ByRef " if part["out"] else ""
        written = f"{reference}{part['name']} As {type_name(part['type'])}"
        if part["default"] is None:
            return written
        return f"[{written} = {self._default(part['type'], part['default'])}]"

    def _default(self, type_word, default):
        if type_word == "boolean":
            return "False" if default == "0" else "True"
        names = {str(number): name for each in self.enumerations if each.name == type_word for name, number in each.values}
        return names.get(default, default)


def type_name(word):
    return TYPES.get(word, word.lstrip("_"))


def with_remarks(signature, remarks):
    present = ", ".join(name for name, there in remarks.items() if there)
    return f"{signature} ' {present}" if present else signature
