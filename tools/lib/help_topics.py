"""The numbers of help topics: what the type library and the dialogs call by them, and where that stands in the pages."""

import collections
import pathlib
import re

import check_reference
import page_links

Context = collections.namedtuple("Context", "number kind name member")  # member is empty for a whole type

IDL = pathlib.PurePosixPath("server/KespCommObj.idl")
DIALOGS = pathlib.PurePosixPath("dialogs/help.h")
REFERENCE = pathlib.PurePosixPath("docs/reference")

# An attribute list from the number on, which may hold brackets in texts, and what it belongs to.
ATTRIBUTE = re.compile(
    r'helpcontext\((\d+)\)(?:"[^"]*"|[^\]"])*\]\s*(?:(library|enum|interface|dispinterface|coclass)\s+(\w+)|\w+\s+(\w+)\()')
DIALOG = re.compile(r"\bk(\w+)Settings = (\d+)")
DIALOG_HEADINGS = {"Com": "rs-232-communication-settings", "RFModem": "rf-modem-properties",
                   "TCP": "tcpip-communication-settings"}
# Classes that do not have a page of their own.
HEADINGS = {"CInstrument": "the-record-of-one-instrument"}


def contexts(tree):
    """Every number, in the order of the files. The same one comes twice for a property that is read and written."""
    kind = name = ""
    for number, whole, type_name, member in ATTRIBUTE.findall((tree / IDL).read_text(encoding="utf-8")):
        if whole:
            kind, name = whole, type_name
        yield Context(int(number), kind, name, member)
    for name, number in DIALOG.findall((tree / DIALOGS).read_text(encoding="utf-8")):
        yield Context(int(number), "dialog", name, "")


def with_anchor(page, anchor):
    return f"{REFERENCE / page}#{anchor}" if anchor else str(REFERENCE / page)


def topic(tree, context):
    """The page in Markdown, with an anchor, where a number leads."""
    of = context.name.lstrip("_")
    if context.kind == "library":
        return with_anchor("README.md", "")
    if context.kind == "dialog":
        return with_anchor("dialogs.md", DIALOG_HEADINGS[context.name])
    if context.kind == "enum":
        pages = [page for page in check_reference.ENUMERATION_PAGES
                 if of.lower() in page_links.anchors((tree / REFERENCE / page).read_text(encoding="utf-8"))]
        return with_anchor(pages[0] if pages else check_reference.ENUMERATION_PAGES[0], of.lower())
    pages = check_reference.EVENT_PAGES if context.kind == "dispinterface" else check_reference.CLASS_PAGES
    return with_anchor(pages[of], context.member.lower() or HEADINGS.get(of, ""))


def topics(tree):
    """A dictionary of numbers and topics."""
    return {context.number: topic(tree, context) for context in contexts(tree)}
