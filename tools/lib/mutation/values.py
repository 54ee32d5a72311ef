"""Finds single values that can be changed: numbers, texts, names."""

import re

from .tokens import CLOSING
from .writing import braced, choice


class Values:
    """The part of Finder that looks at single tokens."""

    def may_change(self, index):
        """Not in what the compiler must know: attributes, labels, template arguments, sizes, macros."""
        before, after = self.text(index - 1), self.text(index + 1)
        if before in ("case", "[", "operator", "<", "#") or after in ("]", "::", ">", "("):
            return False
        first = index
        while first > 0 and (self.text(first - 1) not in (";", "{", "}") or self.tokens[first - 1].scope == "values"):
            first -= 1
        words = {self.text(at) for at in range(first, index)}
        if words & {"constexpr", "static_assert", "extern", "case", "using", "consteval", "__declspec"}:
            return False
        return not self.in_macro(index)

    def in_macro(self, index):
        depth = index
        while depth > 0:
            depth -= 1
            text = self.text(depth)
            if text in CLOSING and self.tokens[depth].kind == "sign" and self.tokens[depth].partner >= 0:
                depth = self.tokens[depth].partner
            elif text == "(" and re.fullmatch(r"[A-Z][A-Z0-9_]+|__\w+", self.text(depth - 1)):
                return True
            elif text in (";", "}"):
                return False
        return False

    def is_initial_value(self, index):
        """Of a member of a class: bool open_ = false;"""
        if self.tokens[index].scope != "class" or self.text(index - 1) != "=" or self.text(index + 1) != ";":
            return False
        first = index
        while first > 0 and self.text(first - 1) not in (";", "{", "}", ":"):
            first -= 1
        return not {self.text(at) for at in range(first, index)} & {"constexpr", "static", "(", "using", "[", "enum"}

    def value(self, index):
        token = self.tokens[index]
        getattr(self, f"change_{token.kind}", lambda index: None)(index)

    def change_number(self, index):
        text = self.text(index)
        self.add("number", index, index, choice(f"{text} + 1", text), f"{text} became {text} + 1")

    def change_word(self, index):
        text = self.text(index)
        other = {"true": "false", "false": "true"}.get(text)
        if other:
            self.add("truth value", index, index, choice(other, text), f"{text} became {other}")
        elif text in self.names and self.text(index - 1) not in (".", "->"):
            first = index
            while self.text(first - 1) == "::" and self.tokens[first - 2].kind == "word":
                first -= 2
            cut = self.cut(first, index)
            self.add("named constant", first, index, choice(f"{cut} + 1", cut), f"{cut} became {cut} + 1")
        elif self.text(index - 1) == "::" and (self.text(index - 2), text) in self.enumerators:
            first = index - 2
            while self.text(first - 1) == "::" and self.tokens[first - 2].kind == "word":
                first -= 2
            cut = self.cut(first, index)
            next_one = self.enumerators[(self.text(index - 2), text)]
            other = self.source[self.tokens[first].start : self.tokens[index].start] + next_one
            if not self.between_label(first, index):
                self.add("enumerator", first, index, choice(other, cut), f"{cut} became {next_one}")

    def between_label(self, first, index):
        return self.text(first - 1) == "case" or self.text(index + 1) == ":" and self.is_label(index + 1)

    def change_character(self, index):
        text = self.text(index)
        if len(text.split("'", 1)[1]) == 2 and text[-2].isprintable():
            other = text[:-2] + ("#" if text[-2] != "#" else "_") + "'"
            self.add("text", index, index, choice(other, text), f"{text} became {other}")

    def change_text(self, index):
        """Another letter in the middle, or one where there is none; texts that the compiler joins stay."""
        text = self.text(index)
        joined = ("text", "raw", "word")
        if self.tokens[index - 1].kind in joined and self.text(index - 1) != "return":
            return
        if self.tokens[index + 1].kind in joined:
            return
        if self.text(index - 1) == "=" and self.text(index - 2) == "]":
            return
        other = changed_text(text)
        if other:
            self.add("text", index, index, choice(braced(other), braced(text)), f"{text} became {other}")


def changed_text(literal):
    opening = literal.index('"') + 1
    inside = literal[opening:-1]
    if not inside:
        return f'{literal[:opening]}X"'
    plain = [at for at, sign in enumerate(inside) if sign.isalpha() and not re.search(r"\\\w*$", inside[:at])]
    if not plain:
        plain = [at for at, sign in enumerate(inside) if sign in " .:,;=-/" and inside[at - 1 : at] != "\\"]
    if not plain:
        return None
    at = plain[len(plain) // 2]
    return literal[:opening] + inside[:at] + ("X" if inside[at] != "X" else "Y") + inside[at + 1 :] + '"'
