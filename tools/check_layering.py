#!/usr/bin/env python3
"""Holds the source tree to its layers: which folder may include what, and how every source file opens."""

import os
import pathlib
import posixpath
import re
import sys

TRANSPORTS = {"serial", "network", "gpib"}

# Each room, and the rooms whose files it may include besides its own.
ROOMS = {
    "support": set(),
    "serial": {"support"},
    "network": {"support"},
    "gpib": {"support"},
    "commobj": {"support"} | TRANSPORTS,
    "dialogs": {"support"} | TRANSPORTS,
    "server": {"support", "commobj", "dialogs"} | TRANSPORTS,
    # Stands beside the library and knows nothing of it.
    "simulator": set(),
    # Stands beside the library, too, and uses it as a client does.
    "console": set(),
}

# Folders that stand outside the rooms and may use all of them; no room may include from them.
CLIENTS = {"tests", "bench", "samples", "packaging"}
OTHERS = {"tools", "docs", "cmake"}

SOURCES = {".h", ".hpp", ".inl", ".c", ".cc", ".cpp"}

COM_HEADERS = set(
    """
    activscp atlbase atlcom combaseapi comdef comip comutil dispex exdisp kespcommobj oaidl objbase
    objidl ocidl ole ole2 oleacc oleauto olectl oledlg oleidl propidl propvarutil roapi servprov
    shobjidl unknwn unknwnbase urlmon wtypes wtypesbase
    """.split()
)
COM_FOLDERS = ("wrl/", "winrt/")

WINDOWS_HEADERS = set(
    """
    basetsd commctrl commdlg consoleapi debugapi errhandlingapi fileapi guiddef handleapi htmlhelp imm
    iphlpapi iptypes libloaderapi memoryapi minwinbase minwindef mmsystem mstcpip mswsock ntddser
    processthreadsapi prsht psapi richedit rpc rpcdce sdkddkver setupapi shellapi shlobj shlwapi
    stringapiset strsafe synchapi sysinfoapi tchar timeapi tlhelp32 uxtheme versionhelpers vssym32
    winbase wincon wincrypt windef windows windowsx winerror winioctl winnls winnt winreg winsock
    winsock2 winspool winsvc winuser winver ws2def ws2tcpip
    """.split()
)

# One file, one header, and why.
EXCEPTIONS = {
    ("support/guid_source_win.cpp", "objbase.h"): "declares CoCreateGuid, the system's source of GUIDs",
}

INCLUDE = re.compile(r'\s*#\s*(?:include|import)\s*(?:"([^"]+)"|<([^>]+)>)')
# Line comments and texts are matched too, so that a "/*" inside them opens nothing.
COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.DOTALL)


def room_of(path):
    """The top folder of a path; empty for a file that lies in none."""
    return path.split("/")[0] if "/" in path else ""


def stem_of(path):
    return pathlib.PurePosixPath(path).name.split(".")[0]


def is_test(path):
    """Whether the name is that of a unit test, its fixture, a fuzzer or a fake."""
    return stem_of(path).endswith(("_test", "_fixture", "_fuzz", "_fake"))


def header_name(header):
    """A system header without folder of its own and extension, as the lists above give it."""
    return header.lower().removesuffix(".h")


def is_com(header):
    return header_name(posixpath.basename(header)) in COM_HEADERS or header.lower().startswith(COM_FOLDERS)


def may_use_com(path):
    room = room_of(path)
    return room == "server" or room in CLIENTS or (
        room in {"console", "dialogs"} and stem_of(path).endswith("_win"))


def may_use_windows(path):
    return stem_of(path).endswith("_win") or room_of(path) in CLIENTS | {"server"}


def resolve(path, header, files):
    """The file of the tree that the header names, be it there or yet to be generated; else None."""
    beside = posixpath.normpath(posixpath.join(posixpath.dirname(path), header))
    from_top = posixpath.normpath(header)
    if beside in files:
        return beside
    return from_top if from_top in files or room_of(from_top) in ROOMS else None


def check_arrow(path, target):
    """What is wrong with path including target, a path in the tree."""
    room, target_room = room_of(path), room_of(target)
    if is_test(target) and not is_test(path) and room_of(path) != "tests":
        yield f"{target} is for tests only"
    if room in ROOMS and target_room != room and target_room not in ROOMS[room]:
        yield f"{room}/ may not include from {target_room or 'the top'}/: {target}"


def check_system_header(path, header):
    """What is wrong with path including a header that is not a file of the tree."""
    if (path, header) in EXCEPTIONS:
        return
    if is_com(header) and not may_use_com(path):
        yield f"COM header {header} outside server/ and dialogs/*_win.*"
    if header_name(header) in WINDOWS_HEADERS and not may_use_windows(path):
        yield f"Windows header {header} in a file whose name does not end in _win"


def check_opening(lines):
    """What is wrong with the comment that should open the file."""
    if not lines or not re.match(r"// \S", lines[0]):
        return "does not open with a // comment that says what is in it"
    paragraph = []
    for line in lines:
        if not re.match(r"// \S", line):
            break
        paragraph.append(line[3:].rstrip())
    if not re.search(r"\.(\s|$)", " ".join(paragraph)):
        return "the opening comment is no whole sentence"
    return None


def without_block_comments(text):
    """The text with every block comment blanked, its line ends kept."""

    def blank(match):
        found = match.group()
        return "\n" * found.count("\n") if found.startswith("/*") else found

    return COMMENT_OR_TEXT.sub(blank, text)


def check_file(path, text, files):
    """All violations of one file as pairs of line number and message."""
    opening = check_opening(text.splitlines())
    if opening:
        yield 1, opening
    if room_of(path) not in ROOMS.keys() | CLIENTS | OTHERS:
        yield 1, f"folder {room_of(path) or 'of the top'} is not known to this check"
    for number, line in enumerate(without_block_comments(text).splitlines(), 1):
        include = INCLUDE.match(line)
        if not include:
            continue
        header = (include.group(1) or include.group(2)).replace("\\", "/")
        target = resolve(path, header, files)
        found = check_arrow(path, target) if target else check_system_header(path, header)
        yield from ((number, message) for message in found)


def source_files(tree):
    """Every source file of the tree as a path with slashes; hidden folders and builds are left out."""
    for folder, inner, names in os.walk(tree):
        at_top = pathlib.Path(folder) == tree
        left_out = ("build", "dist") if at_top else ()
        inner[:] = sorted(name for name in inner if not name.startswith(".") and name not in left_out)
        for name in sorted(names):
            if pathlib.PurePath(name).suffix in SOURCES:
                yield (pathlib.Path(folder) / name).relative_to(tree).as_posix()


def check_tree(tree):
    """All violations of a tree as lines of text."""
    files = list(source_files(tree))
    if not files:
        return [f"{tree}:1: no source file found"]
    known = set(files)
    return [
        f"{path}:{number}: {message}"
        for path in files
        for number, message in check_file(path, (tree / path).read_text(encoding="utf-8"), known)
    ]


def main(arguments):
    """Checks the tree given as argument, or the one this file lies in; 0 for no violation, else 1."""
    tree = pathlib.Path(arguments[0]) if arguments else pathlib.Path(__file__).resolve().parent.parent
    violations = check_tree(tree)
    for violation in violations:
        print(violation)
    print(f"layering: {len(violations)} violations" if violations else "layering: no violation")
    return 1 if violations else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
