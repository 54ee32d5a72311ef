"""The pages of the help: which there are, and how they become HTML."""

import collections
import hashlib
import html
import os
import pathlib
import re
import subprocess

import page_links

Book = collections.namedtuple("Book", "title pages")

SOURCES = pathlib.PurePosixPath("docs/help")
PICTURES = {".png"}


def books(tree):
    """The contents: titles, each with the paths of its pages in the tree."""
    found = []
    for block in re.split(r"\n\s*\n", (tree / SOURCES / "pages.txt").read_text(encoding="utf-8")):
        title, *lines = [line for line in block.splitlines() if not line.startswith("#")] or [""]
        pages = [line.rstrip(" ?") for line in lines if not line.endswith("?") or (tree / line.rstrip(" ?")).is_file()]
        if pages:
            found.append(Book(title, pages))
    return found


def listed(tree):
    return [page for book in books(tree) for page in book.pages]


def title(tree, page):
    heading = re.search(r"^# +(.*)$", (tree / page).read_text(encoding="utf-8"), re.M)
    return re.sub(r"[`*]", "", heading[1]) if heading else page


def as_html(page):
    return str(pathlib.PurePosixPath(page).with_suffix(".html"))


def pictures(tree):
    """Those that the pages show."""
    return sorted({str(page_links.place(page, path)) for page in listed(tree)
                   for path, _ in page_links.links((tree / page).read_text(encoding="utf-8"))
                   if pathlib.PurePosixPath(path).suffix in PICTURES})


def fingerprint(*parts):
    total = hashlib.sha256()
    for part in parts:
        data = part.read_bytes() if isinstance(part, pathlib.Path) else str(part).encode()
        total.update(b"%d:" % len(data) + data)
    return total.hexdigest()


def write_if_new(path, data):
    """Leaves a file alone that has these bytes already; whether it was written."""
    if path.is_file() and path.read_bytes() == data:
        return False
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)
    return True


def convert(tree, page, page_list):
    """One page as HTML, in bytes. page_list is a file with the names of all pages and their titles."""
    top = "../" * page.count("/")
    name = title(tree, page)
    command = ["pandoc", "--from=gfm", "--to=html4", "--ascii", "--no-highlight", "--wrap=preserve",
               f"--template={tree / SOURCES / 'page.html'}", f"--lua-filter={tree / SOURCES / 'links.lua'}",
               f"--metadata=pagetitle:{name}", f"--metadata=page:{page}", f"--metadata=pages:{page_list}",
               f"--variable=top:{top}", str(tree / page)]
    environment = {**os.environ, "LC_ALL": "C.UTF-8"}
    return subprocess.run(command, check=True, capture_output=True, env=environment).stdout


def contents_page(tree):
    """The page with links to all others."""
    rows = ["<h1>Contents</h1>"]
    for book in books(tree):
        links = [f'<li><a href="{as_html(page)}">{html.escape(title(tree, page))}</a></li>' for page in book.pages]
        rows += [f"<h2>{html.escape(book.title)}</h2>", "<ul>", *links, "</ul>"]
    template = (tree / SOURCES / "page.html").read_text(encoding="utf-8")
    filled = template.replace("$pagetitle$", "Contents").replace("$top$", "").replace("$body$", "\n".join(rows))
    return filled.encode("ascii", "xmlcharrefreplace")
