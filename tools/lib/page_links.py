"""The links of a page in Markdown, and the places in it to which links can lead."""

import pathlib
import posixpath
import re

FENCED = re.compile(r"^(```|~~~).*?^\1", re.M | re.S)
LINK = re.compile(r"\]\(([^()\s]+)\)")
ELSEWHERE = re.compile(r"[a-z][a-z+.-]*:", re.I)


def prose(text):
    """The page without its examples."""
    return FENCED.sub("", text)


def links(text):
    """Pairs of path and anchor, as they stand in the page; either may be empty. Links to other machines are left out."""
    return [tuple(target.partition("#")[::2]) for target in LINK.findall(prose(text)) if not ELSEWHERE.match(target)]


def anchors(text):
    """The names that headings have, as the usual viewers make them, and those that the page gives itself."""
    found = set(re.findall(r'<a (?:name|id)="([^"]+)">', text))
    for heading in re.findall(r"^#+ +(.*)$", prose(text), re.M):
        words = re.sub(r"<[^>]*>|\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "").strip().lower()
        name = re.sub(r"[^\w\- ]", "", words).replace(" ", "-")
        number = next(n for n in range(1000) if (f"{name}-{n}" if n else name) not in found)
        found.add(f"{name}-{number}" if number else name)
    return found


def place(page, path):
    """Where a link of the page leads, within the tree."""
    return pathlib.PurePosixPath(posixpath.normpath(posixpath.join(pathlib.PurePosixPath(page).parent, path)))
