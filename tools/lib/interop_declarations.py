#!/usr/bin/env python3
"""The declarations of the library's public surface in C#.

They come from server/public_interface.txt, which a test compares with the type library, and their comments from the
help texts in server/KespCommObj.idl.
"""

import re
import sys
import xml.sax.saxutils

TYPES = {"string": "string", "boolean": "bool", "integer16": "short", "integer32": "int", "double": "double",
         "any": "object", "object": "object"}
# In full: the .NET Framework finds an assembly of its own by nothing less.
ENUMERATOR = ("System.Runtime.InteropServices.CustomMarshalers.EnumeratorToEnumVariantMarshaler, CustomMarshalers, "
              "Version=4.0.0.0, Culture=neutral, PublicKeyToken=b03f5f7f11d50a3a")
FIRST_OWN_SLOT = 7  # behind those of IUnknown and IDispatch

HEAD = """// Made by tools/make-interop: the declarations of the Kesp Communication Object Library. Changes go there.
using System;
using System.Collections;
using System.Runtime.InteropServices;

namespace KespCommObj
{"""


def blocks(text):
    """The parts of public_interface.txt: the words of a heading, and the lines below it."""
    for block in re.split(r"\n\s*\n", text):
        lines = [line.strip() for line in block.splitlines() if line and not line.startswith("#")]
        if lines:
            yield lines[0].split(), lines[1:]


def guid_of(words):
    return next(word.strip("{},") for word in words if word.startswith("{"))


def help_texts(idl):
    """The help text of each type by its name, and of each member by the type's name and its own."""
    texts, owner = {}, None
    owners = ("enum", "interface", "dispinterface", "coclass")
    for text, kind, name in re.findall(r'helpstring\("([^"]*)"\)[^\]"]*\]\s*(\w+)\s+(\w+)', idl):
        owner = name if kind in owners else owner
        texts[name if kind in owners else (owner, name)] = xml.sax.saxutils.escape(text)
    return texts


class Declarations:
    def __init__(self, texts, enumerations):
        self.texts = texts
        self.enumerations = enumerations  # for each its names by their values
        self.lines = [HEAD]

    def add(self, *lines, depth=1):
        self.lines += ["    " * depth + line for line in lines]

    def comment(self, key, depth=1):
        if key in self.texts:
            self.add(f"/// <summary>{self.texts[key]}</summary>", depth=depth)

    def default(self, kind, value):
        if kind == "boolean":
            return "true" if int(value) else "false"
        names = self.enumerations.get(kind)
        if names is None:
            return value
        return f"{kind}.{names[int(value)]}" if int(value) in names else value

    def parameter(self, text):
        """In C#, a parameter such as 'result in out &string' or 'cmd string=""'."""
        text, _, value = text.partition("=")
        words = text.split()
        kind = words[-1].lstrip("&")
        reference = "ref " if words[-1].startswith("&") else ""
        default = f" = {self.default(kind, value)}" if value else ""
        return f"{reference}{TYPES.get(kind, kind)} {words[0]}{default}"

    def parameters(self, text):
        return ", ".join(map(self.parameter, filter(None, text.split(", "))))

    def enumeration(self, name, lines):
        self.comment(name)
        self.add(f"public enum {name}", "{")
        self.add(*(f"{line}," for line in lines), depth=2)
        self.add("}", "")

    def method(self, owner, id_, text):
        name, arguments, result = re.fullmatch(r"(\w+)\((.*)\) ?(\w*)", text).groups()
        self.comment((owner, name), 2)
        returned = TYPES.get(result, result) or "void"
        self.add(f"[DispId({id_})] {returned} {name}({self.parameters(arguments)});", depth=2)

    def property(self, owner, id_, getter, setter):
        """A value that is put by reference has no setter in C#, but a method of its own."""
        name, kind = re.fullmatch(r"get (\w+)\(\) (\w+).*", getter).groups()
        if name == "NewEnum":
            self.add("/// <summary>For foreach.</summary>",
                     "[return: MarshalAs(UnmanagedType.CustomMarshaler,",
                     f'    MarshalType = "{ENUMERATOR}")]',
                     f"[DispId({id_})] new IEnumerator GetEnumerator();", depth=2)
            return
        self.comment((owner, name), 2)
        mark = "[return: MarshalAs(UnmanagedType.IDispatch)] " if kind == "object" else ""
        by_value = setter is not None and "&" not in setter
        kind = TYPES.get(kind, kind)
        self.add(f"[DispId({id_})] {kind} {name} {{ {mark}get;{' set;' if by_value else ''} }}", depth=2)
        if setter is not None and not by_value:
            self.add(f"/// <summary>Sets {name}; Set{name} takes the value as it is.</summary>",
                     f"[DispId({id_})] void Put{name}(ref {kind} value);", depth=2)

    def interface(self, name, guid, lines):
        members = [re.fullmatch(r"vtable (\d+)  id (-?\d+)  (.*)", line).groups() for line in lines]
        if [int(slot) for slot, _, _ in members] != list(range(FIRST_OWN_SLOT, FIRST_OWN_SLOT + len(members))):
            sys.exit(f"{name}: its members do not stand in the order of their places")
        self.comment(name)
        enumerable = " : IEnumerable" if any("get NewEnum" in text for _, _, text in members) else ""
        self.add(f'[ComImport, Guid("{guid}"), InterfaceType(ComInterfaceType.InterfaceIsDual)]',
                 f"public interface {name}{enumerable}", "{")
        getters = None
        for position, (_, id_, text) in enumerate(members):
            following = members[position + 1][2] if position + 1 < len(members) else ""
            if text.startswith("get "):
                getters = text.split("(")[0][4:]
                self.property(name, id_, text, following if following.startswith(f"put {getters}(") else None)
            elif not text.startswith("put "):
                self.method(name, id_, text)
            elif not text.startswith(f"put {getters}("):
                sys.exit(f"{name}: {text}: it has no getter before it")
        self.add("}", "")

    def events(self, name, guid, lines):
        """The sink's interface, and the events of C# as an object of the library raises them."""
        members = [re.fullmatch(r"id (\d+)  (\w+)\((.*)\)", line).groups() for line in lines]
        self.comment(name)
        self.add(f'[ComVisible(true), Guid("{guid}"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]',
                 f"public interface {name}", "{")
        for id_, member, arguments in members:
            self.method(name, id_, f"{member}({arguments})")
        self.add("}", "")
        for _, member, arguments in members:
            self.add(f"public delegate void {name}_{member}EventHandler({self.parameters(arguments)});")
        self.add("", f"[ComEventInterface(typeof({name}), typeof({name}_EventProvider))]",
                 f"public interface {name}_Event", "{")
        for _, member, _ in members:
            self.comment((name, member), 2)
            self.add(f"event {name}_{member}EventHandler {member};", depth=2)
        self.add("}", "", f"internal sealed class {name}_EventProvider : {name}_Event", "{")
        self.add("private readonly object source;",
                 f"public {name}_EventProvider(object source) {{ this.source = source; }}", depth=2)
        for id_, member, _ in members:
            event = f"source, typeof({name}).GUID, {id_}, value"
            self.add(f"public event {name}_{member}EventHandler {member}", "{",
                     f"    add {{ ComEventsHelper.Combine({event}); }}",
                     f"    remove {{ ComEventsHelper.Remove({event}); }}", "}", depth=2)
        self.add("}", "")

    def coclass(self, name, words, interface_guid):
        """What is made with new; a class that only the library makes gets a name alone."""
        default = words[words.index("default") + 1].rstrip(",")
        source = f", {words[-1]}_Event" if "source" in words else ""
        creatable = "creatable" in "".join(words)
        if creatable:
            self.add(f'[ComImport, Guid("{guid_of(words)}"), ClassInterface(ClassInterfaceType.None)]',
                     f"public class {name}Class", "{", "}", "")
        self.comment(name)
        made = f", CoClass(typeof({name}Class))" if creatable else ""
        self.add(f'[ComImport, Guid("{interface_guid}"){made}]',
                 f"public interface {name} : {default}{source}", "{", "}", "")


def declarations(surface, idl):
    """From the texts of those two files."""
    parts = list(blocks(surface))
    enumerations = {words[1]: {int(value): name for name, value in (line.split(" = ") for line in lines)}
                    for words, lines in parts if words[0] == "enumeration"}
    guids = {words[1]: guid_of(words) for words, _ in parts if words[0] == "interface"}
    written = Declarations(help_texts(idl), enumerations)
    for words, lines in parts:
        if words[0] == "enumeration":
            written.enumeration(words[1], lines)
        elif words[0] == "interface":
            written.interface(words[1], guids[words[1]], lines)
        elif words[0] == "events":
            written.events(words[1], guid_of(words), lines)
        elif words[0] == "class":
            written.coclass(words[1], words, guids[words[words.index("default") + 1].rstrip(",")])
        elif words[0] != "library":
            sys.exit(f"public_interface.txt: {' '.join(words)}")
    return "\n".join(written.lines[:-1] + ["}", ""])
