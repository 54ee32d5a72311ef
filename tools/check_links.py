#!/usr/bin/env python3
"""Follows the links of all pages in Markdown: to files of the tree, and to places in pages. The places in docs/ to which
the tool's hints send its users have to be there, too.

usage: check_links.py [TREE]
"""

import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True  # the tree stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "lib"))
import page_links  # noqa: E402

HINT = re.compile(r"([\w-]+\.md)#([\w-]+)")


def pages(tree):
    listed = subprocess.run(["git", "-C", tree, "ls-files", "*.md"], capture_output=True, text=True, check=True).stdout
    return [pathlib.PurePosixPath(line) for line in listed.splitlines() if (tree / line).is_file()]


def links(tree):
    """All links, as page, path and anchor."""
    return [(page, path, anchor) for page in pages(tree)
            for path, anchor in page_links.links((tree / page).read_text(encoding="utf-8"))]


def hints(tree):
    """The places that the tool's program text names, as page, path and anchor."""
    return [(source.relative_to(tree), f"../docs/{page}", anchor) for source in sorted((tree / "console").glob("*.cpp"))
            for page, anchor in HINT.findall(source.read_text(encoding="utf-8"))]


def complaint(tree, page, path, anchor):
    """What is wrong with a link; None when it leads somewhere."""
    target = page_links.place(page, path) if path else page
    if not (tree / target).exists():
        return f"{page}: {path} is not there"
    if anchor and anchor not in page_links.anchors((tree / target).read_text(encoding="utf-8")):
        return f"{page}: {target} has no place #{anchor}"
    return None


def main():
    if len(sys.argv) > 2:
        sys.exit(__doc__)
    tree = pathlib.Path(sys.argv[1] if len(sys.argv) == 2 else pathlib.Path(__file__).parent.parent).resolve()
    all_links = links(tree) + hints(tree)
    found = [text for link in all_links if (text := complaint(tree, *link))]
    print(*found, sep="\n", end="\n" if found else "")
    print(f"links: {len(found)} of {len(all_links)} lead nowhere" if found else f"links: all {len(all_links)} lead somewhere")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
