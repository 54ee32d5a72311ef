"""Runs libFuzzer's programs, tells how far they are, and makes what they find small."""

import dataclasses
import os
import pathlib
import re
import signal
import subprocess
import threading
import time

# An input takes longer than that, or the program more memory: that is a finding.
TIMEOUT_SECONDS, MEMORY_MEGABYTES = 5, 2048
LONGEST_BYTES = 1024
PROGRESS_SECONDS = 5
SMALLER_SECONDS = 30
# libFuzzer's exit code after a signal; where the signal came too early, the program ends by it.
STOPPED = (72, -signal.SIGTERM, -signal.SIGINT)
STATUS = re.compile(r"^#(\d+)\s+\w+\s+cov: (\d+).*?exec/s: (\d+)", re.M)
EXECUTED = re.compile(r"^stat::number_of_executed_units:\s*(\d+)", re.M)
WRITTEN = re.compile(r"Test unit written to (\S+)")
REASON = re.compile(r"^(does not hold: .*|SUMMARY: .*)$", re.M)


@dataclasses.dataclass
class Finding:
    """An input that broke something."""

    name: str
    kind: str
    file: pathlib.Path
    log: pathlib.Path

    def report(self):
        return (f"{self.name}: {self.kind}\n  input  {self.file} ({self.file.stat().st_size} bytes)\n"
                f"  log    {self.log}\n  again  build/native/tests/fuzz/fuzz_replay {self.name} {self.file}\n"
                f"  keep   cp {self.file} tests/fuzz/findings/{self.name}/")


class Fuzzer:
    """One target: its program, its corpus, and how far it has come."""

    def __init__(self, name, program, sources, corpus):
        self.name, self.program = name, program
        self.inputs, self.coverage, self.speed = 0, 0, 0
        self.corpus = corpus / name
        self.given = [folder for folder in (sources / "seeds" / name, sources / "findings" / name) if folder.is_dir()]
        self.words = sources / "seeds" / f"{name}.dict"
        self.log = corpus / "logs" / f"{name}.log"
        self.found = corpus / "found"
        self.process, self.is_stopped = None, False

    def command(self, *more):
        words = [f"-dict={self.words}"] if self.words.exists() else []
        # Without -entropic the choice of the next input takes less time, and the same code is reached.
        return [self.program, f"-timeout={TIMEOUT_SECONDS}", f"-rss_limit_mb={MEMORY_MEGABYTES}",
                f"-max_len={LONGEST_BYTES}", "-entropic=0", f"-artifact_prefix={self.found}/{self.name}-",
                *words, *more]

    def run(self, seconds):
        """Returns the finding, or None. Raises RuntimeError where it ended otherwise, or ran no input at all.

        What it says goes to its log, of which the status is read.
        """
        for folder in (self.corpus, self.log.parent, self.found):
            folder.mkdir(parents=True, exist_ok=True)
        with self.log.open("w") as log:
            self.process = subprocess.Popen(
                self.command(f"-max_total_time={max(1, round(seconds))}", "-print_final_stats=1", "-reload=0",
                             self.corpus, *self.given), stdout=log, stderr=subprocess.STDOUT, env=environment())
            while self.process.poll() is None:
                if self.is_stopped:
                    self.process.terminate()
                self.look()
                time.sleep(0.3)
        self.look()
        code = self.process.returncode
        if self.is_stopped and code in STOPPED or code == 0 and self.inputs > 0:
            return None
        text = self.log.read_text(errors="replace")
        written = WRITTEN.findall(text)
        if not written:
            raise RuntimeError(f"{self.name} ended with {code} after {self.inputs} inputs; see {self.log}")
        reasons = REASON.findall(text)
        return Finding(self.name, reasons[0] if reasons else "it broke", pathlib.Path(written[-1]), self.log)

    def look(self):
        """Reads the end of the log: how many inputs, how much of the code they reach."""
        with self.log.open("rb") as log:
            log.seek(max(0, os.fstat(log.fileno()).st_size - 20000))
            text = log.read().decode(errors="replace")
        status = STATUS.findall(text)
        if status:
            self.inputs, self.coverage, self.speed = map(int, status[-1])
        executed = EXECUTED.findall(text)
        if executed:
            self.inputs = int(executed[-1])

    def smaller(self, file):
        """The smallest input that libFuzzer can make of it in a while and that still breaks something."""
        result = file.with_name(file.name + ".small")
        try:
            subprocess.run(self.command("-minimize_crash=1", f"-max_total_time={SMALLER_SECONDS}",
                                        f"-exact_artifact_path={result}", file),
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment(), check=False,
                           timeout=5 * SMALLER_SECONDS)
        except (OSError, subprocess.TimeoutExpired):
            pass  # it stays as it is
        return result if result.exists() else file

    def stop(self):
        self.is_stopped = True


def environment():
    # A failed allocation of a size that no machine has is told to the program, as without the sanitizer. What it notes
    # of each allocation, and how long it keeps freed memory, is less than usual, because that takes much of the time.
    return dict(os.environ, UBSAN_OPTIONS="print_stacktrace=1",
                ASAN_OPTIONS="allocator_may_return_null=1:malloc_context_size=4:quarantine_size_mb=16")


class Queue:
    """Fuzzers that wait for their turn, and what was found."""

    def __init__(self, fuzzers, say):
        self.say = say
        self.waiting, self.running = list(fuzzers), []
        self.finding, self.failure = None, None
        self.lock = threading.Lock()

    def interrupt(self):
        self.waiting.clear()
        self.failure = self.failure or RuntimeError("interrupted")
        for fuzzer in list(self.running):
            fuzzer.stop()

    def work(self, seconds):
        while True:
            with self.lock:
                if not self.waiting or self.finding or self.failure:
                    return
                fuzzer = self.waiting.pop(0)
                self.running.append(fuzzer)
            try:
                finding = fuzzer.run(seconds)
            except (RuntimeError, OSError) as failure:
                finding, self.failure = None, self.failure or failure
            with self.lock:
                self.running.remove(fuzzer)
                is_first = finding and not self.finding
                self.finding = self.finding or finding
                if self.finding or self.failure:
                    for other in self.running:
                        other.stop()
            if is_first:
                self.say(f"{fuzzer.name}: {finding.kind}; making the input smaller")
                finding.file = fuzzer.smaller(finding.file)


def run_all(fuzzers, seconds, jobs, say):
    """Runs them, `jobs` at a time, for `seconds` together.

    Returns the first finding, or None, and what else has kept them from running for that long, or None.
    """
    jobs = min(jobs, len(fuzzers))
    queue = Queue(fuzzers, say)
    workers = [threading.Thread(target=queue.work, args=(seconds * jobs / len(fuzzers),)) for _ in range(jobs)]
    # Ctrl-C ends what runs. What was run until then counts, but it is no success.
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda *_: queue.interrupt())
    for worker in workers:
        worker.start()
    said = time.monotonic()
    while any(worker.is_alive() for worker in workers):
        time.sleep(0.2)
        if time.monotonic() - said >= PROGRESS_SECONDS:
            said = time.monotonic()
            for fuzzer in list(queue.running):
                say(f"{fuzzer.name}: {fuzzer.inputs} inputs, {fuzzer.speed} a second, coverage {fuzzer.coverage}, "
                    f"{len(queue.waiting)} to come")
    for worker in workers:
        worker.join()
    return queue.finding, queue.failure
