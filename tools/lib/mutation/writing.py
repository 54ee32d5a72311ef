"""How a mutation is written into the source: {n} is its number, other braces are doubled."""

SWITCH = "kesp_mutant"


def choice(mutated, original):
    return f"({SWITCH}({{n}}) ? {mutated} : {original})"


def braced(text):
    return text.replace("{", "{{").replace("}", "}}")


def on_one_line(text):
    return " ".join(text.split())
