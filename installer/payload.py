#!/usr/bin/env python3
"""Writes what the setup program installs, its removal file by file, and the registry entries that name the library, as
macros for setup.nsi.

usage: payload.py TREE DIST OUTPUT

TREE is the folder of the sources, whose README and CHANGELOG go along with the pages that they lead to; DIST holds win64
and win32. A file that is the same for both widths is installed once; one that differs goes into the folder of its
width, and so does the help file, which has to lie beside each library. The simulator is a component of its own: of its
programs only one width is installed, and its driver's DLL stands away from all programs and from the library, which
looks for a driver in its own folder.
"""

import filecmp
import pathlib
import sys

sys.dont_write_bytecode = True  # the tree stays as it is
TREE = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TREE / "tools" / "lib"), str(TREE / "packaging")]
import page_links  # noqa: E402
import side_by_side  # noqa: E402

DOCUMENTS = {".md", ".png"}
# At the top of the tree, with whatever ending.
LEGAL = ("LICENSE", "THIRD-PARTY-NOTICES")
WIDTHS = ("win64", "win32")
PRACTICE = {"win64": "practice64", "win32": "practice32"}
GROUPS = ("common", *WIDTHS, "practice", *PRACTICE.values())


def files_below(folder):
    """What lies in it, as paths within it."""
    return {path.relative_to(folder) for path in folder.rglob("*") if path.is_file()}


def documents(tree):
    """The pages for users, as pairs of source and place: those of the top, and all pages and pictures to which links lead
    from there. Samples are among the products."""
    found, open_ends = [], [pathlib.PurePosixPath(name) for name in ("README.md", "CHANGELOG.md")]
    while open_ends:
        place = open_ends.pop()
        if place in found or place.suffix not in DOCUMENTS or not (tree / place).is_file():
            continue
        found.append(place)
        if place.suffix == ".md":
            text = (tree / place).read_text(encoding="utf-8")
            open_ends += [page_links.place(place, path) for path, _ in page_links.links(text) if path]
    found += [pathlib.PurePosixPath(path.name) for name in LEGAL for path in legal_files(tree, name)]
    return [(tree / place, pathlib.Path(place)) for place in sorted(set(found))]


def legal_files(tree, name):
    return [path for path in sorted(tree.glob(name + "*")) if path.is_file() and path.stem == name]


def products(dist):
    """Pairs of source and place under the names of the groups: "common", "win64" and "win32"; the simulator's
    "practice", and "practice64" or "practice32", which is the one for the width of the system."""
    groups = {name: [] for name in GROUPS}
    present = {width: files_below(dist / width) for width in WIDTHS}
    for place in sorted(present["win64"] | present["win32"]):
        sources = {width: dist / width / place for width in WIDTHS if place in present[width]}
        practice = place.parts[0] == "simulator"
        beside_library = place.suffix == ".chm"  # where the library looks for its help
        if not beside_library and len(sources) == 2 and filecmp.cmp(*sources.values(), shallow=False):
            groups["practice" if practice else "common"].append((sources["win64"], place))
            continue
        for width, source in sources.items():
            if not practice:
                groups[width].append((source, width / place))
            elif place.suffix == ".exe":
                groups[PRACTICE[width]].append((source, place))
            else:
                # A 64-bit system runs programs of both widths, so it has both drivers.
                group = "practice" if width == "win32" else "practice64"
                groups[group].append((source, place.parent / width / place.name))
    return groups


def groups_of(tree, dist):
    for width in WIDTHS:
        if not (dist / width / "KespCommObj.dll").is_file():
            sys.exit(f"{dist / width / 'KespCommObj.dll'} is not there; tools/build makes it")
    groups = products(dist)
    pages = documents(tree)
    places = {place for _, place in pages}
    for name in ("common", "practice"):
        groups[name] = [pair for pair in groups[name] if pair[1] not in places]
    groups["common"] = pages + groups["common"]
    return groups


def quoted(text):
    return '"' + str(text).replace("$", "$$") + '"'


def installed(place):
    """The Windows path of a place within the installation."""
    return '"' + "\\".join(["$INSTDIR", *(part.replace("$", "$$") for part in place.parts)]) + '"'


def install_macro(name, group):
    yield f"!macro PAYLOAD_{name.upper()}"
    folder = None
    for source, place in group:
        if place.parent != folder:
            folder = place.parent
            yield f"  SetOutPath {installed(folder)}"
        yield f"  File {quoted('/oname=' + place.name)} {quoted(source)}"
    yield "!macroend"


def remove_macro(places):
    yield "!macro PAYLOAD_REMOVE un"
    for place in places:
        yield from (f"  Push {installed(place)}", "  Call ${un}DeleteFile")
    folders = {folder for place in places for folder in place.parents if folder.parts}
    # Those within before those around them.
    for folder in sorted(folders, key=lambda path: (-len(path.parts), path)):
        yield from (f"  Push {installed(folder)}", "  Call ${un}DeleteFolder")
    yield "!macroend"


def entries_macro(library):
    """Keys below Software\\Classes whose value is the path of the DLL, each with the key that is its alone then; {bits}
    stands for its width."""
    owners = [f"CLSID\\{identifier}" for _, identifier in library.classes]
    keys = [(f"{owner}\\InprocServer32", owner) for owner in owners]
    keys.append((f"TypeLib\\{library.identifier}\\{library.version}\\0\\win${{bits}}",) * 2)
    yield f"!define ENTRIES_OF_A_LIBRARY {len(keys)}"
    yield f'!define KEY_OF_A_CLASS "CLSID\\{library.classes[0][1]}"'
    yield "!macro FOR_EACH_ENTRY action bits"
    yield from (f'  !insertmacro ${{action}} "{key}" "{owner}"' for key, owner in keys)
    yield "!macroend"


def definitions(tree, groups):
    """What of it the rest of the script asks for."""
    if any(place.as_posix() == "help/index.html" for _, place in groups["common"]):
        yield "!define HAS_HELP"
    for path in legal_files(tree, "LICENSE")[:1]:
        yield f"!define LICENSE_FILE {quoted(path)}"


def script(groups):
    yield "; What the setup program installs; written by payload.py."
    yield from entries_macro(side_by_side.read_library(side_by_side.LIST.read_text(encoding="utf-8")))
    for name, group in groups.items():
        yield from install_macro(name, group)
    yield from remove_macro(dict.fromkeys(place for group in groups.values() for _, place in group))


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    tree, dist, output = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    groups = groups_of(tree, dist)
    output.write_text("\n".join([*script(groups), *definitions(tree, groups)]) + "\n", encoding="utf-8-sig")


if __name__ == "__main__":
    main()
