"""C++ source as tokens that know where they stand and in what: a function, a class or neither."""

import dataclasses
import re

TOKEN = re.compile(
    r"""
    (?P<space>[ \t\r\n]+ | //[^\n]* | /\*.*?\*/)
  | (?P<preprocessor>(?<![^\n])[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
  | (?P<raw>(?:L|u8|u|U)?R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)")
  | (?P<text>(?:L|u8|u|U)?"(?:\\.|[^"\\\n])*")
  | (?P<character>(?:L|u8|u|U)?'(?:\\.|[^'\\\n])+')
  | (?P<number>\d(?:[\w.]|'\w)*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><=>|<<=|>>=|::|->\*?|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\.\.\.|.)
    """,
    re.X | re.S,
)
OPENING, CLOSING = "([{", ")]}"
CLASS_WORDS = {"class", "struct", "union"}
# A brace after one of these opens a block, where statements stand; after anything else it opens a list of values.
BEFORE_BLOCK = {")", "{", "}", ";", ":", "else", "do", "try", "const", "noexcept", "override", "final", "mutable"}


@dataclasses.dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int
    scope: str = ""  # function, values (a list in a function), constant (a constexpr function), class, list, outside
    partner: int = -1  # index of the bracket that closes or opens this one


def tokenize(source):
    """The tokens of a file, without spaces, comments and preprocessor lines."""
    tokens, position = [], 0
    while position < len(source):
        match = TOKEN.match(source, position)
        if match.lastgroup not in ("space", "preprocessor"):
            kind = "raw" if match.lastgroup == "mark" else match.lastgroup
            tokens.append(Token(kind, match.group(), match.start(), match.end()))
        position = match.end()
    pair_brackets(tokens)
    set_scopes(tokens)
    return tokens


def pair_brackets(tokens):
    stack = []
    for index, token in enumerate(tokens):
        if token.kind != "sign":
            continue
        if token.text in OPENING:
            stack.append(index)
        elif token.text in CLOSING and stack:
            token.partner = stack.pop()
            tokens[token.partner].partner = index


def scope_of_brace(tokens, index, outer, head):
    """What the brace at that index opens, inside of outer; head are the tokens since the last statement."""
    before = tokens[index - 1].text if index else ";"
    if outer in ("constant", "list"):
        return outer
    if outer in ("function", "values"):
        # In a list of values, a block is the body of a lambda.
        return "function" if before in BEFORE_BLOCK - ({"{", "}"} if outer == "values" else set()) else "values"
    words = [token.text for token in head]
    if "namespace" in words or "extern" in words:
        return "outside"
    if "enum" in words or before == "=":
        return "list"
    if "(" not in words and CLASS_WORDS & set(words):
        return "class"
    if before in BEFORE_BLOCK or before == "&":
        return "constant" if {"constexpr", "consteval"} & set(words) else "function"
    return "function" if "->" in words else "list"


def set_scopes(tokens):
    stack, head = ["outside"], []
    for index, token in enumerate(tokens):
        token.scope = stack[-1]
        head.append(token)
        if token.kind != "sign":
            continue
        if token.text == "{":
            scope = scope_of_brace(tokens, index, stack[-1], head[:-1])
            stack.append(scope)
            token.scope = scope
            if scope not in ("list", "values"):
                head = []
        elif token.text == "}":
            if len(stack) > 1 and stack.pop() not in ("list", "values"):
                head = []
        elif token.text == ";":
            head = []
