"""The mutated tree: a copy of the tracked files in which the chosen places are switches, and its two builds."""

import os
import pathlib
import re
import shutil
import subprocess

from .choice import key_of

HEADER = "kesp_mutant_switch.h"
POSITION = re.compile(r"^(?:In file included from |\s+from )?(\S+?\.(?:cpp|h)):(\d+)[:,]", re.M)
ERROR = re.compile(r"^(\S+?\.(?:cpp|h)):(\d+):\d+: (?:fatal )?error:", re.M)
# Warnings are of no interest here: many mutations earn one.
FLAGS = "-w -Wno-narrowing"
SETTINGS = {
    "native": ["-DCMAKE_BUILD_TYPE=Debug", "-DKESP_SANITIZE=OFF"],
    "win64": ["-DCMAKE_BUILD_TYPE=Debug"],
}
# What shows whether all mutations compile, before the tests are built.
PRODUCT_TARGETS = {
    "native": [f"kesp_{room}" for room in ("support", "serial", "network", "gpib", "commobj", "dialogs")],
    "win64": ["KespCommObj"],
}


class BuildFailed(Exception):
    """The mutated tree does not compile, and not because of a mutation."""


def tracked_files(root):
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z"], check=True, capture_output=True, text=True).stdout
    return [path for path in listed.split("\0") if path and (pathlib.Path(root) / path).is_file()]


def on_as_many_lines(mutated, original):
    """The mutated text in one line, followed by the line ends that the original has, so that line numbers stay."""
    return " ".join(line.strip() for line in mutated.split("\n")) + "\n" * original.count("\n")


def rewrite(path, source, entries):
    """The source with a switch at each of the entries."""
    if not entries:
        return source
    for entry in sorted(entries, key=lambda entry: entry["start"], reverse=True):
        mutated = on_as_many_lines(entry["replacement"].format(n=entry["number"]), entry["original"])
        source = source[: entry["start"]] + mutated + source[entry["end"] :]
    up = "../" * path.count("/")
    return f'#include "{up}{HEADER}"\n#line 1\n{source}'


def lines_of(entry):
    return [(entry["file"], entry["line"] + more) for more in range(entry["original"].count("\n") + 1)]


def write_if_changed(path, data):
    if path.exists() and path.read_bytes() == data:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)


class Tree:
    def __init__(self, root, folder, jobs):
        self.root, self.folder, self.jobs = pathlib.Path(root), pathlib.Path(folder), jobs
        self.log = self.folder.parent / "build.log"

    def write(self, entries):
        tracked = tracked_files(self.root)
        of_file = {}
        for entry in entries:
            of_file.setdefault(entry["file"], []).append(entry)
        for path in tracked:
            data = (self.root / path).read_bytes()
            if path in of_file:
                data = rewrite(path, data.decode(), of_file[path]).encode()
            write_if_changed(self.folder / path, data)
            shutil.copymode(self.root / path, self.folder / path)
        header = pathlib.Path(__file__).with_name("switch.h").read_bytes()
        write_if_changed(self.folder / HEADER, header)
        self.forget_others(set(tracked) | {HEADER})

    def forget_others(self, kept):
        """Removes what is not tracked any more; the builds stay."""
        for folder, folders, files in os.walk(self.folder):
            relative = pathlib.Path(folder).relative_to(self.folder)
            if str(relative) == ".":
                folders[:] = [name for name in folders if name not in ("build", "dist")]
            for name in files:
                if str(relative / name) not in kept:
                    (pathlib.Path(folder) / name).unlink()

    def configure(self, build):
        folder = self.folder / "build" / build
        if (folder / "build.ninja").exists():
            return
        settings = SETTINGS[build] + [f"-DCMAKE_CXX_FLAGS={FLAGS}"]
        if build != "native":
            settings.append(f"-DCMAKE_TOOLCHAIN_FILE={self.folder}/cmake/mingw-{build}.cmake")
        self.run(["cmake", "-G", "Ninja", "-S", self.folder, "-B", folder, *settings])

    def run(self, command):
        with self.log.open("a", encoding="utf-8") as log:
            done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT)
        if done.returncode:
            raise BuildFailed(f"{command[0]} failed; see {self.log}")

    def compile(self, build, entries, targets=()):
        """Compiles as much as it can; returns the entries that stand where the compiler found errors."""
        self.configure(build)
        command = ["ninja", "-C", self.folder / "build" / build, "-j", str(self.jobs), "-k", "0", *targets]
        done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
        with self.log.open("a", encoding="utf-8") as log:
            log.write(done.stdout + done.stderr)
        if done.returncode == 0:
            return []
        guilty = {key_of(entry): entry for entry in self.guilty(done.stdout, entries)}
        if not guilty:
            raise BuildFailed(f"the {build} build of the mutated tree failed; see {self.log}")
        return list(guilty.values())

    def guilty(self, output, entries):
        for block in re.split(r"^FAILED: ", output, flags=re.M)[1:]:
            errors, others = ERROR.findall(block), POSITION.findall(block)
            found = self.at_positions(errors, entries) or self.at_positions(others, entries)
            yield from found or self.before_positions(errors, entries)

    def positions_of(self, positions):
        for path, line in positions:
            path = os.path.normpath(os.path.join(self.folder, path))
            yield os.path.relpath(path, self.folder), int(line)

    def at_positions(self, positions, entries):
        places = set(self.positions_of(positions))
        return [entry for entry in entries if places & set(lines_of(entry))]

    def before_positions(self, positions, entries):
        """The last entry before the first error, in the file of that error."""
        for path, line in self.positions_of(positions):
            before = [entry for entry in entries if entry["file"] == path and entry["line"] <= line]
            if before:
                return [max(before, key=lambda entry: entry["start"])]
        return []
