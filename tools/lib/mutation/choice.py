"""Chooses mutations by chance, the same ones for the same product sources, and keeps the list in a file."""

import json
import pathlib
import random
import re

from .definitions import definitions
from .places import Finder

ROOMS = ("support", "serial", "network", "gpib", "commobj", "dialogs", "server")
PRODUCT = re.compile(rf"(?:{'|'.join(ROOMS)})/\w+\.(?:cpp|h)")
OF_TESTS = re.compile(r"_(?:test|fake|fixture)\.")
# The switch that turns a mutation on needs memory itself, so what hands out memory cannot have one.
WITHOUT_SWITCH = "support/runtime_memory_win.cpp"
# How often each operator has its turn; there are many more places for some than for others.
TURNS = {
    "condition": 5,
    "call removed": 4,
    "text": 4,
    "comparison": 3,
    "assignment removed": 3,
    "number": 3,
    "empty result": 3,
    "named constant": 2,
    "logic": 2,
    "enumerator": 2,
    "truth value": 2,
    "arithmetic": 1,
    "jump removed": 1,
}


def product_sources(tracked, root):
    """Path to text of the files of the library, without fakes and tests."""
    paths = [path for path in tracked
             if PRODUCT.fullmatch(path) and not OF_TESTS.search(path) and path != WITHOUT_SWITCH]
    return {path: (pathlib.Path(root) / path).read_text(encoding="utf-8") for path in sorted(paths)}


def code_lines(source):
    return sum(1 for line in source.splitlines() if line.strip() and not line.strip().startswith("//"))


def room_of(path):
    return path.split("/", 1)[0]


def shares(sources, count):
    """How many mutations each room gets: in proportion to its lines of code."""
    lines = {room: 0 for room in ROOMS}
    for path, source in sources.items():
        lines[room_of(path)] += code_lines(source)
    return {room: round(count * lines[room] / max(1, sum(lines.values()))) for room in ROOMS}


def entry_of(path, source, place):
    return {
        "room": room_of(path),
        "file": path,
        "line": source.count("\n", 0, place.start) + 1,
        "operator": place.operator,
        "start": place.start,
        "end": place.end,
        "original": source[place.start : place.end],
        "replacement": place.replacement,
        "change": place.change,
    }


def key_of(entry):
    return f"{entry['file']}:{entry['start']}:{entry['end']}:{entry['operator']}:{entry['replacement']}"


class Chooser:
    """Deals out the places of each room, an operator after the other, in an order that the seed alone decides."""

    def __init__(self, sources, seed):
        names, enumerators = definitions(sources.values())
        self.decks = {room: {operator: [] for operator in TURNS} for room in ROOMS}
        for path, source in sources.items():
            for place in Finder(source, names, enumerators).find():
                self.decks[room_of(path)][place.operator].append(entry_of(path, source, place))
        self.turns = {}
        for room in ROOMS:
            chance = random.Random(f"{seed} {room}")
            for operator in TURNS:
                chance.shuffle(self.decks[room][operator])
            self.turns[room] = [operator for operator, times in TURNS.items() for _ in range(times)]
            chance.shuffle(self.turns[room])

    def choose(self, quotas, dropped):
        """Entries without the dropped ones (by key); none overlaps another."""
        chosen = []
        for room, quota in quotas.items():
            chosen += self.choose_of(room, quota, dropped)
        return chosen

    def choose_of(self, room, quota, dropped):
        decks = {operator: iter(deck) for operator, deck in self.decks[room].items()}
        chosen, taken, turn = [], {}, 0
        while len(chosen) < quota and decks:
            operator = self.turns[room][turn % len(self.turns[room])]
            turn += 1
            for entry in decks.get(operator, ()):
                spans = taken.setdefault(entry["file"], [])
                free = all(entry["end"] <= start or end <= entry["start"] for start, end in spans)
                if free and key_of(entry) not in dropped:
                    spans.append((entry["start"], entry["end"]))
                    chosen.append(entry)
                    break
            else:
                decks.pop(operator, None)
        return chosen


def number(entries, before=()):
    """Gives each entry a number and keeps those of before, so that few files have to be compiled again."""
    numbers = {key_of(entry): entry["number"] for entry in before}
    kept = {numbers[key_of(entry)] for entry in entries if key_of(entry) in numbers}
    free = (candidate for candidate in range(1, 2 * len(entries) + 1) if candidate not in kept)
    return [dict(entry, number=numbers.get(key_of(entry)) or next(free)) for entry in entries]


def save(entries, path):
    path.write_text(json.dumps(sorted(entries, key=lambda entry: entry["number"]), indent=1) + "\n", encoding="utf-8")


def load(path, sources):
    """The list of a file, and of it those whose place is not as it was."""
    entries = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
    gone = [e for e in entries if sources.get(e["file"], "")[e["start"] : e["end"]] != e["original"]]
    return [entry for entry in entries if entry not in gone], gone
