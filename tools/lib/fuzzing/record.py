"""How many inputs were run, ever: a file with one line for each run of a target."""

import datetime
import subprocess


class Record:
    """Lines of date, commit, target and number of inputs. A commit with + had changes that were in no commit yet."""

    def __init__(self, file, root):
        self.file, self.root = file, root

    def add(self, target, inputs):
        self.file.parent.mkdir(parents=True, exist_ok=True)
        date = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
        with self.file.open("a") as lines:
            lines.write(f"{date} {self._commit()} {target} {inputs}\n")

    def total(self):
        if not self.file.exists():
            return 0
        return sum(int(line.split()[3]) for line in self.file.read_text().splitlines() if line.strip())

    def _commit(self):
        def git(*arguments):
            return subprocess.run(["git", "-C", self.root, *arguments], capture_output=True, text=True,
                                  check=False).stdout.strip()

        return (git("rev-parse", "--short", "HEAD") or "unknown") + ("+" if git("status", "--porcelain") else "")
