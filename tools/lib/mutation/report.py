"""The report: who caught what, by room and by operator, what nobody caught, and what two runs judge differently."""

import json
import pathlib

STAGES = ("unit tests", "Wine", "nobody", "not judged")
# More than that share of mutations without a verdict, or of tests left out, and the share that was caught says little.
MOST_LEFT_OUT = 0.02


def combine(entries, native, wine):
    """Each mutation with its verdict."""
    combined = []
    for entry in entries:
        number = entry["number"]
        by_units, by_wine = native.get(number), wine.get(number)
        if by_units and by_units["caught"]:
            caught_by, verdict = "unit tests", by_units
        elif by_wine and not by_wine.get("goes_on"):
            caught_by, verdict = ("Wine" if by_wine["caught"] else "nobody"), by_wine
        else:
            caught_by, verdict = "not judged", by_units or {}
        reached = bool((by_units or {}).get("reached") or (by_wine or {}).get("reached"))
        kept = {name: entry[name] for name in ("number", "room", "file", "line", "operator", "change")}
        test = {name: verdict[name] for name in ("program", "case") if name in verdict}
        combined.append(dict(kept, caught_by=caught_by, reached=reached, **test))
    return combined


def save(mutations, notes, path):
    path.write_text(json.dumps(dict(notes, mutations=mutations), indent=1) + "\n", encoding="utf-8")


def load(path):
    return json.loads(pathlib.Path(path).read_text(encoding="utf-8"))["mutations"]


def catchers(path):
    """The test that caught a mutation, by its number."""
    return {mutation["number"]: mutation["program"] for mutation in load(path) if "program" in mutation}


def counts(mutations):
    return [sum(mutation["caught_by"] == stage for mutation in mutations) for stage in STAGES]


def percent(mutations):
    """The share that was caught; from the least to the most that it can be, where some were not judged."""
    by_units, by_wine, _, open_ones = counts(mutations)
    least = 100 * (by_units + by_wine) / max(1, len(mutations))
    most = least + 100 * open_ones / max(1, len(mutations))
    return f"{least:.1f} %" if not open_ones else f"{least:.0f}-{most:.0f} %"


def table(mutations, column):
    yield f"{column:20}{'mutations':>10}{'unit tests':>12}{'Wine':>7}{'nobody':>8}{'not judged':>12}{'caught':>10}"
    for name in dict.fromkeys(mutation[column] for mutation in mutations):
        yield row(name, [mutation for mutation in mutations if mutation[column] == name])
    yield row("all", mutations)


def row(name, mutations):
    by_units, by_wine, by_nobody, open_ones = counts(mutations)
    return f"{name:20}{len(mutations):10}{by_units:12}{by_wine:7}{by_nobody:8}{open_ones:12}{percent(mutations):>10}"


def described(mutation):
    return f"{mutation['file']}:{mutation['line']} [{mutation['number']}, {mutation['operator']}] {mutation['change']}"


def missed(mutation):
    return mutation["caught_by"] == "nobody"


def doubts(mutations, left_out, all_stages=True):
    """Why the share that was caught says little, if it does. `left_out`: by kind the names, and of how many."""
    open_ones = counts(mutations)[-1]
    if all_stages and open_ones > MOST_LEFT_OUT * len(mutations):
        yield f"{open_ones} of {len(mutations)} mutations were not judged"
    for kind, (names, total) in left_out.items():
        if len(names) > MOST_LEFT_OUT * total:
            yield f"{len(names)} of {total} {kind}: {', '.join(names)}"


def lines(mutations, notes, left_out):
    yield from table(mutations, "room")
    yield ""
    yield from table(sorted(mutations, key=lambda mutation: mutation["operator"]), "operator")
    yield ""
    yield "Not caught:"
    for mutation in mutations:
        if missed(mutation):
            yield f"  {described(mutation)}{'' if mutation['reached'] else ' (no test comes by)'}"
    yield ""
    for name, value in notes.items():
        yield f"{name}: {value}"
    for kind, (names, total) in left_out.items():
        yield f"figure {kind} = {len(names)} of {total}" + (f" ({', '.join(names)})" if names else "")
    by_units, by_wine, _, open_ones = counts(mutations)
    yield f"figure mutations = {len(mutations)}"
    yield f"figure mutations that the unit tests caught = {by_units}"
    yield f"figure mutations that only the tests under Wine caught = {by_wine}"
    yield f"figure mutations that no test caught = {sum(map(missed, mutations))}"
    yield f"figure mutations that were not judged = {open_ones}"
    yield f"caught: {by_units + by_wine} of {len(mutations)}, {percent(mutations)}; not judged: {open_ones}"


def differences(before, after):
    """What one run caught and the other did not; only of mutations that both judged."""
    old = {mutation["number"]: mutation for mutation in before}
    both = [(old[m["number"]], m) for m in after if m["number"] in old and described(old[m["number"]]) == described(m)]
    both = [pair for pair in both if all(one["caught_by"] != "not judged" for one in pair)]
    for title, first, second in (("caught before, not now", 0, 1), ("caught now, not before", 1, 0)):
        found = [pair for pair in both if missed(pair[second]) and not missed(pair[first])]
        yield f"{title}: {len(found)}"
        for pair in found:
            yield f"  {described(pair[first])}; by {pair[first].get('program')} {pair[first].get('case')}"
    moved = [pair for pair in both if (pair[0]["caught_by"], pair[1]["caught_by"]) == ("unit tests", "Wine")]
    yield f"caught by unit tests before, under Wine now: {len(moved)}"
    for pair in moved:
        yield f"  {described(pair[0])}"
    before_share, share = (percent([pair[at] for pair in both]) for at in (0, 1))
    yield f"before {before_share}, now {share}, of {len(both)} judged in both runs"
