"""Finds statements that can be left out, and conditions and results that can be turned."""

from .tokens import CLOSING, OPENING
from .writing import SWITCH, braced, choice

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
LOGIC = {"&&": "||", "||": "&&"}
ARITHMETIC = {"+": "-", "-": "+"}
ASSIGNMENTS = {"=", "+=", "-=", "|=", "&=", "^=", "*=", "/=", "<<=", ">>="}
NO_EXPRESSION = set(
    """if else for while do switch case default return throw try catch using typedef static_assert constexpr const
    static auto class struct union enum template goto co_return break continue delete friend namespace thread_local
    virtual explicit inline extern mutable volatile typename operator unsigned signed""".split()
)


class Statements:
    """The part of Finder that looks at whole statements and at the operators in their expressions."""

    def starts_statement(self, index):
        if self.tokens[index].text in ("{", "}", ";"):
            return False
        before = self.tokens[index - 1] if index else None
        if before is None or before.text in (";", "else", "do"):
            return True
        if before.text in ("{", "}"):
            return before.scope == "function"
        if before.text == ")":
            return self.text(before.partner - 1) in ("if", "while", "for")
        return before.text == ":" and self.is_label(index - 1)

    def is_label(self, colon):
        index = colon - 1
        while index > 0 and self.text(index) not in (";", "{", "}", "?"):
            if self.text(index) in ("case", "default"):
                return True
            index -= 1
        return False

    def end_of_statement(self, index):
        """Index of the semicolon that ends the statement, None where there is none."""
        while index < len(self.tokens):
            text = self.text(index)
            if text == ";":
                return index
            if text in CLOSING and self.tokens[index].kind == "sign":
                return None
            if text in OPENING and self.tokens[index].kind == "sign":
                index = self.tokens[index].partner
                if index < 0:
                    return None
            index += 1
        return None

    def statement(self, index):
        word = self.text(index)
        if word in ("if", "while"):
            if self.text(index + 1) == "(":
                self.condition(word, index + 2, self.tokens[index + 1].partner - 1)
        elif word == "for":
            self.loop(index)
        else:
            end = self.end_of_statement(index)
            if end is None:
                return
            if word == "return":
                if end > index + 1:
                    self.result(index + 1, end - 1)
            elif word in ("break", "continue"):
                self.removal("jump removed", index, end)
            else:
                self.plain(index, end)

    def condition(self, word, first, last):
        texts = [self.text(index) for index in range(first, last + 1)]
        if ";" in texts or "{" in texts or any(text in ASSIGNMENTS for text in texts):
            return
        self.expression(first, last)
        plain = self.cut(first, last)
        cut = braced(plain)
        self.add("condition", first, last, f"{SWITCH}({{n}}) ? !({cut}) : !!({cut})", f"{word} not ({plain})")
        if word == "if":
            self.add("condition", first, last, f"{SWITCH}({{n}}) || ({cut})", f"if always, not ({plain})")
            self.add("condition", first, last, f"!{SWITCH}({{n}}) && ({cut})", f"if never, not ({plain})")

    def loop(self, index):
        close = self.tokens[index + 1].partner
        first = self.end_of_statement(index + 2)
        last = first and self.end_of_statement(first + 1)
        if first and last and first < last < close and last > first + 1:
            self.expression(first + 1, last - 1)

    def result(self, first, last):
        if self.text(first) == "{":
            return
        self.expression(first, last)
        literals = ("true", "false", "nullptr", "this")
        if first == last and (self.tokens[first].kind != "word" or self.text(first) in literals):
            return
        cut = self.cut(first, last)
        if "[" not in cut and "*this" not in cut:
            self.add("empty result", first, last, f"kesp_emptied({{n}}, {braced(cut)})", f"return empty, not {cut}")

    def plain(self, index, end):
        """A call or an assignment, unless it declares something; then only its right side is looked at."""
        at = self.lvalue_end(index)
        if at == end and self.text(end - 1) == ")":
            self.removal("call removed", index, end)
        elif at == end and (self.text(index) in ("++", "--") or self.text(end - 1) in ("++", "--")):
            self.removal("assignment removed", index, end)
        elif at is not None and self.text(at) in ASSIGNMENTS:
            self.removal("assignment removed", index, end)
        if self.text(index) in ("constexpr", "static_assert", "using", "typedef"):
            return
        for equals in range(index, end):
            if self.text(equals) == "=" and self.text(equals + 1) != "{":
                self.expression(equals + 1, end - 1)
                break
            if self.text(equals) in OPENING:
                break

    def lvalue_end(self, index):
        """The index behind a chain such as a.b()->c[1], None where it is not one."""
        if self.text(index) in ("*", "++", "--"):
            index += 1
        while True:
            if self.text(index) == "::":
                index += 1
            if self.tokens[index].kind != "word" or self.text(index) in NO_EXPRESSION:
                return None
            index += 1
            while self.text(index) in ("(", "["):
                index = self.tokens[index].partner + 1
                if not index:
                    return None
            if self.text(index) not in (".", "->", "::"):
                return index + 1 if self.text(index) in ("++", "--") else index
            index += 1

    def removal(self, operator, first, end):
        cut = self.cut(first, end)
        if "{" not in cut:
            self.add(operator, first, end, f"{{{{ if (!{SWITCH}({{n}})) {cut} }}}}", f"removed: {cut}")

    def expression(self, first, last):
        if first > last or any(self.text(index) == "{" for index in range(first, last + 1)):
            return
        for index in range(first + 1, last):
            token = self.tokens[index]
            around = self.source[token.start - 1] + self.source[token.end]
            if token.kind != "sign" or around.strip(" \n"):
                continue
            for operator, table in (("comparison", COMPARISONS), ("logic", LOGIC), ("arithmetic", ARITHMETIC)):
                if token.text in table and not (operator == "arithmetic" and self.beside_text(first, last)):
                    self.exchange(operator, first, last, index, table[token.text])

    def beside_text(self, first, last):
        return any(self.tokens[index].kind in ("text", "raw") for index in range(first, last + 1))

    def exchange(self, operator, first, last, index, other):
        token = self.tokens[index]
        whole = self.cut(first, last)
        before = self.source[self.tokens[first].start : token.start]
        after = self.source[token.end : self.tokens[last].end]
        replacement = choice(f"({braced(before + other + after)})", f"({braced(whole)})")
        self.add(operator, first, last, replacement, f"{token.text} became {other} in: {whole}")
