"""Finds the places of a C++ file where the product can be made wrong in one small way, and says how."""

import dataclasses

from .statements import Statements
from .tokens import tokenize
from .values import Values
from .writing import on_one_line

# Whole expressions are written twice, so very long ones are left alone.
LONGEST = 400


@dataclasses.dataclass(frozen=True)
class Place:
    """One mutation: what stands from start to end of the file, and what is put there; {n} is the mutation's number."""

    operator: str
    start: int
    end: int
    replacement: str
    change: str


class Finder(Statements, Values):
    """The places of one file.

    names are numbers and texts that may be changed by one; enumerators tells each enumerator's next.
    """

    def __init__(self, source, names=frozenset(), enumerators=None):
        self.source = source
        self.names = names
        self.enumerators = enumerators or {}
        self.tokens = tokenize(source)
        self.places = []

    def find(self):
        for index, token in enumerate(self.tokens):
            if token.scope == "function" and self.starts_statement(index):
                self.statement(index)
        for index, token in enumerate(self.tokens):
            if token.scope in ("function", "values") and self.may_change(index) or self.is_initial_value(index):
                self.value(index)
        return sorted(set(self.places), key=lambda place: (place.start, place.end, place.operator, place.replacement))

    def text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def cut(self, first, last):
        """The source from the first to the last token, both included."""
        return self.source[self.tokens[first].start : self.tokens[last].end]

    def add(self, operator, first, last, replacement, change):
        start, end = self.tokens[first].start, self.tokens[last].end
        if end - start <= LONGEST and "//" not in self.source[start:end]:
            self.places.append(Place(operator, start, end, replacement, on_one_line(change)))
