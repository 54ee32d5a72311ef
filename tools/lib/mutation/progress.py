"""The verdicts so far, kept in a file so that a run that was stopped goes on, and the progress."""

import json
import threading
import time


class Results:
    """Verdicts by mutation number; each is written down at once."""

    def __init__(self, path):
        self.path, self.lock, self.verdicts = path, threading.Lock(), {}
        if path.exists():
            for line in path.read_text(encoding="utf-8").splitlines():
                verdict = json.loads(line)
                self.verdicts[verdict["number"]] = verdict

    def is_open(self, number, last_round=False):
        """Whether there is no verdict yet; in the last round, or one that another test may change."""
        verdict = self.verdicts.get(number)
        return verdict is None if not last_round else bool(verdict and verdict.get("goes_on"))

    def add(self, verdict):
        with self.lock:
            self.verdicts[verdict["number"]] = verdict
            with self.path.open("a", encoding="utf-8") as file:
                file.write(json.dumps(verdict) + "\n")


class Progress:
    """A line for each mutation that is judged: how many there are, how many count, and the time that is left."""

    def __init__(self, stage, total, counted="caught"):
        self.stage, self.total, self.counted, self.done, self.count = stage, total, counted, 0, 0
        self.start, self.lock = time.monotonic(), threading.Lock()

    def step(self, counts, what):
        with self.lock:
            self.done += 1
            self.count += bool(counts)
            spent = time.monotonic() - self.start
            left = spent / self.done * (self.total - self.done)
            done = f"{self.done} of {self.total}, {self.counted} {self.count}, {left / 60:.0f} min left"
            print(f"{self.stage} {done}: {what}", flush=True)
