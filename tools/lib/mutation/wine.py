"""The stage under Wine: whether a mutation that no unit test catches shows in a test of the built 64-bit library."""

import concurrent.futures
import json
import random
import time

from .entries import Gate, run_command
from .progress import Progress

LEAST_SECONDS, MOST_SECONDS, PATIENCE = 20, 60, 3
# An entry that failed so often without a mutation is not trusted any more.
MOST_TROUBLES = 2
# Which of them are run after the mutated library has registered itself, for a mutation that comes by then.
QUICK_ENTRIES = 6


class Windows:
    """The Windows of the mutated tree with its library registered, and the tests that run in it."""

    def __init__(self, tree, entries, record_folder):
        self.tree, self.entries, self.records, self.gate = tree, entries, record_folder, Gate()
        self.registering, self.registry = frozenset(), {}

    def tool(self, *command, **environment):
        code, output = run_command([self.tree.folder / "tools" / command[0], *command[1:]], 180, environment)
        return code == 0, output

    def register(self, number=0):
        return self.tool("wine-register", "64", KESP_MUTANT=str(number))[0]

    def start(self):
        done, output = self.tool("wine-prefix", "64", "start")
        if not done or not self.register():
            raise RuntimeError(f"Wine could not be started: {output}")

    def keep_registry(self):
        """For restore(): the registry with the library in it, before a mutation has left anything there."""
        self.stop()
        self.registry = {path: path.read_bytes() for path in self.tree.folder.glob("build/wine-*/win64/*.reg")}
        self.start()

    def stop(self):
        self.tool("wine-prefix", "64", "stop")
        self.tool("lib/screen", "stop")

    def record(self, name):
        path = self.records / f"{name}.txt"
        return path, "Z:" + str(path).replace("/", "\\")

    # What each entry comes by

    def learn(self, memory, jobs):
        """Runs all entries without a mutation, or takes from that file what was learned before."""
        if not memory.exists():
            self.records.mkdir(parents=True, exist_ok=True)
            self.learn_registering()
            progress = Progress("under Wine without a mutation", len(self.entries), "failing")
            with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
                learned = dict(pool.map(lambda entry: self.learn_one(entry, progress), self.entries))
            learned["registering"] = {"reached": sorted(self.registering)}
            memory.write_text(json.dumps(learned, indent=1) + "\n", encoding="utf-8")
        learned = json.loads(memory.read_text(encoding="utf-8"))
        self.registering = frozenset(learned["registering"]["reached"])
        for entry in self.entries:
            known = learned[entry.name]
            entry.seconds, entry.reached = known["seconds"], frozenset(known["reached"])
            entry.troubles = MOST_TROUBLES if known["failure"] else 0
        return learned

    def learn_registering(self):
        path, windows_path = self.record("registering")
        self.tool("wine-register", "64", KESP_MUTANTS_REACHED=windows_path)
        self.registering = numbers_in(path)

    def learn_one(self, entry, progress):
        path, windows_path = self.record(entry.name)
        path.unlink(missing_ok=True)
        failure = self.run(entry, 0, 120, KESP_MUTANTS_REACHED=windows_path)
        if failure:
            failure = self.run(entry, 0, 120, KESP_MUTANTS_REACHED=windows_path)
        reached = sorted(numbers_in(path))
        progress.step(failure, f"{entry.name} {entry.latest:.1f} s, comes by {len(reached)} {failure or ''}")
        return entry.name, {"seconds": entry.latest, "reached": reached, "failure": failure}

    # Judging

    def run(self, entry, number, limit, registering=False, case=None, **environment):
        with self.gate.pass_with(entry.things, entry.alone or registering):
            if registering and not self.register(number):
                return "cannot be registered"
            return entry.run(limit, case, KESP_MUTANT=str(number), **environment)

    def restore(self):
        """A mutation may have left the registry without the library, or with keys that nobody removes."""
        with self.gate.pass_with(set(), True):
            self.stop()
            for path, data in self.registry.items():
                path.write_bytes(data)
            self.start()

    def fails(self, entry, number, registering):
        """The failure, when it comes twice with the mutation and not without."""
        limit = min(max(LEAST_SECONDS, PATIENCE * entry.seconds + 10), max(MOST_SECONDS, 2 * entry.seconds))
        failure = self.run(entry, number, limit, registering)
        if registering or failure and entry.alone:
            self.restore()
        if not failure or not registering and self.case_alone_fails(entry, number, limit, failure):
            return failure
        failure = self.run(entry, number, limit, registering)
        if registering or failure and entry.alone:
            self.restore()
        if failure and not self.passes(entry, max(limit, MOST_SECONDS)):
            entry.troubles += 1
            return None
        return failure

    def case_alone_fails(self, entry, number, limit, case):
        """The short way: the case that failed fails again when it runs alone, and passes without the mutation."""
        if not entry.has_cases or "." not in case or self.run(entry, number, limit, case=case) != case:
            return False
        if entry.alone:
            self.restore()
        return not self.run(entry, 0, limit, case=case)

    def passes(self, entry, limit):
        """Without a mutation; once more where the last test may have left something behind."""
        if not self.run(entry, 0, limit):
            return True
        self.restore()
        return not self.run(entry, 0, limit)

    def order(self, number, numbers_of_file, first):
        """Entries, with whether the mutation registers, too.

        The one of that name comes first, then what comes by much of the mutation's file in a short time.
        """
        sound = [entry for entry in self.entries if entry.troubles < MOST_TROUBLES]
        reaching = [entry for entry in sound if number in entry.reached]
        reaching.sort(key=lambda entry: (entry.seconds + 1) / (1 + len(entry.reached & numbers_of_file)))
        reaching.sort(key=lambda entry: entry.name != first)
        tries = [(entry, False) for entry in reaching]
        if number in self.registering:
            quick = sorted((entry for entry in sound if entry.reached), key=lambda entry: entry.seconds)
            tries += [(entry, True) for entry in quick[:QUICK_ENTRIES]]
        return tries

    def judge(self, mutation, numbers_of_file, first, end, last_round):
        """The verdict, None where no time is left. Entries for which all others would wait come in the last round."""
        number = mutation["number"]
        tries = self.order(number, numbers_of_file, first)
        verdict = {"number": number, "reached": bool(tries), "caught": False}
        now = [(entry, registering) for entry, registering in tries if entry.stops_the_others == last_round]
        for entry, registering in now:
            if time.monotonic() > end:
                return None
            failure = self.fails(entry, number, registering)
            if failure:
                return dict(verdict, caught=True, program=entry.name, case=failure)
        return verdict if last_round or len(now) == len(tries) else dict(verdict, goes_on=True)


def numbers_in(path):
    return frozenset(int(line) for line in path.read_text().split()) if path.exists() else frozenset()


def run(windows, mutations, waiting, results, catchers, given):
    """Judges the waiting ones in a random order until the time is up; first those that a test of catchers caught."""
    of_file = {}
    for mutation in mutations:
        of_file.setdefault(mutation["file"], set()).add(mutation["number"])
    waiting = list(waiting)
    random.Random("under Wine").shuffle(waiting)
    waiting.sort(key=lambda mutation: mutation["number"] not in catchers)
    end = time.monotonic() + 60 * given.wine_minutes
    for last_round in (False, True):
        open_ones = [mutation for mutation in waiting if results.is_open(mutation["number"], last_round)]
        progress = Progress("under Wine, alone" if last_round else "under Wine", len(open_ones))

        def one(mutation, last_round=last_round, progress=progress):
            first = catchers.get(mutation["number"])
            verdict = windows.judge(mutation, of_file[mutation["file"]], first, end, last_round)
            if verdict is None:
                return
            results.add(verdict)
            how = f"{verdict['program']} {verdict['case']}" if verdict["caught"] else "not caught"
            progress.step(verdict["caught"], f"{mutation['file']}:{mutation['line']} {how}")

        with concurrent.futures.ThreadPoolExecutor(given.wine_jobs) as pool:
            for future in [pool.submit(one, mutation) for mutation in open_ones]:
                future.result()
