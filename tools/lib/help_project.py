"""What makes a compiled help file of the pages: its contents, its index and its project."""

import html
import pathlib

import help_pages
import help_topics
import public_interface

NAME = "Kesp Communication Object Library"
CONTENTS, INDEX, HOME = "KespCommObj.hhc", "KespCommObj.hhk", "README.html"
# On the left contents, index, search and favorites (0x63520), which follow the page; above it hide, back, forward, home
# and print (0x104e). The numbers are those that the viewer's documents list.
WINDOW = (f'main="{NAME}","{CONTENTS}","{INDEX}","{HOME}","{HOME}",,,,,0x63520,260,0x104e,[80,60,1080,800],'
          ",,,,,,0")


def url(topic):
    page, mark, anchor = topic.partition("#")
    return help_pages.as_html(page) + mark + anchor


def entry(name, topic=None):
    """An object of the old form in which the viewer reads its lists."""
    local = f'<param name="Local" value="{html.escape(url(topic))}">' if topic else ""
    return f'<LI><OBJECT type="text/sitemap"><param name="Name" value="{html.escape(name)}">{local}</OBJECT>'


def site_map(lines):
    text = "\r\n".join(['<!DOCTYPE HTML PUBLIC "-//IETF//DTD HTML//EN">', "<HTML><HEAD></HEAD><BODY>", "<UL>", *lines,
                        "</UL>", "</BODY></HTML>", ""])
    return text.encode("ascii", "replace")  # the viewer knows code pages only


def contents(tree):
    lines = []
    for book in help_pages.books(tree):
        pages = [entry(help_pages.title(tree, page), page) for page in book.pages]
        lines += [entry(book.title), "<UL>", *pages, "</UL>"]
    return site_map(lines)


def keywords(tree):
    """Pairs of keyword and topic: all types, members, events and values."""
    places = {}
    for context in help_topics.contexts(tree):
        topic = help_topics.topic(tree, context)
        of = context.name.lstrip("_")
        if context.kind == "enum":
            places[of] = topic
        if context.kind in ("enum", "coclass"):
            yield of, topic
        elif context.member:
            yield f"{context.member} ({'event of ' if context.kind == 'dispinterface' else ''}{of})", topic
    listed = (tree / "server" / "public_interface.txt").read_text(encoding="utf-8")
    for enumeration in public_interface.PublicInterface(listed).enumerations:
        yield from ((f"{value} ({enumeration.name})", places[enumeration.name]) for value, _ in enumeration.values)
    yield from ((help_pages.title(tree, page), page) for page in help_pages.listed(tree))


def index(tree):
    return site_map([entry(*pair) for pair in sorted(set(keywords(tree)), key=lambda pair: (pair[0].lower(), pair))])


def project(tree, folder):
    """What chm_writer reads, about the pages in a folder."""
    files = sorted(str(pathlib.PurePosixPath(path.relative_to(folder))) for path in folder.rglob("*") if path.is_file())
    lines = [f"title {NAME}", f"default {HOME}", f"contents {CONTENTS}", f"index {INDEX}", f"window {WINDOW}"]
    lines += [f"file {file}" for file in files if file not in (CONTENTS, INDEX)]
    lines += [f"context {number} {url(topic)}" for number, topic in sorted(help_topics.topics(tree).items())]
    return "\n".join(lines + [""]).encode("ascii")
