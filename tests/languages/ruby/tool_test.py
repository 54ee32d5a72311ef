#!/usr/bin/env python3
"""Lets tools/ruby make its Ruby of sources that are none, with an archive and a compiler of its own."""

import io
import os
import pathlib
import shutil
import sys
import tarfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests" / "verdicts"))
from trial_tree import CALLED, TrialTreeTest  # noqa: E402

ARCHIVE = """case $* in
  indextargets*) echo Debian main file:/archive stable; echo Debian main file:/debian-security stable-security ;;
  *source*) cp "$KESP_ROOT/sources.tar.xz" ./ruby.orig.tar.xz ;;
esac
"""
PROGRAMS = {"apt-get": ARCHIVE, "ruby": "", "x86_64-w64-mingw32-gcc": "",
            "x86_64-w64-mingw32-strip": 'cp "$3" "$2"\n', "make": 'case $* in *main) echo program >ruby.exe ;; esac\n'}
REASON = "Ruby for Windows could not be made (build/logs/ruby64.log; tried again in an hour)"


class RubyTest(TrialTreeTest):
    def setUp(self):
        super().setUp()
        for name in ("ruby", "lib/archive.sh"):
            shutil.copy(ROOT / "tools" / name, self.tree / "tools" / name)
        (self.tree / "bin").mkdir()
        for name, text in PROGRAMS.items():
            self.write_tool(f"bin/{name}", CALLED + text)
        self.write_sources("#!/bin/sh\n[ -e enc/trans/single_byte.c ] && [ ! -e enc/trans/big5.c ]\n")
        for name, value in (("PATH", f"{self.tree}/bin:{os.environ['PATH']}"), ("KESP_RUBY", f"{self.tree}/kept")):
            before = os.environ.get(name)
            os.environ[name] = value
            self.addCleanup(lambda n=name, b=before: os.environ.pop(n) if b is None else os.environ.update({n: b}))

    def write_sources(self, configure):
        with tarfile.open(self.tree / "sources.tar.xz", "w:xz") as archive:
            for name, text in (("configure", configure), ("enc/trans/single_byte.c", ""), ("enc/trans/big5.c", "")):
                entry = tarfile.TarInfo(f"ruby/{name}")
                entry.size, entry.mode = len(text), 0o755
                archive.addfile(entry, io.BytesIO(text.encode()))

    def make(self, code):
        result = self.run_in_tree("tools/ruby", "64")
        self.assertEqual(result.returncode, code, result.stderr)
        return result

    def test_made_once_for_this_tree_and_others(self):
        program = self.tree / "build" / "languages" / "ruby3.1-64" / "ruby.exe"
        self.assertEqual(self.make(0).stdout, f"{program}\n")
        self.assertEqual(program.read_text(encoding="utf-8"), "program\n")
        called = self.calls()
        shutil.rmtree(program.parent)
        self.assertEqual(self.make(0).stdout, f"{program}\n")
        self.assertEqual(program.read_text(encoding="utf-8"), "program\n")
        self.assertEqual(self.calls(), called)
        for folder in (program.parent, self.tree / "kept" / "ruby3.1-64"):
            (folder / "recipe").write_text("0\n", encoding="utf-8")
        self.make(0)
        self.assertGreater(len(self.calls()), len(called))

    def test_sources_come_from_the_machines_archive_without_security_updates(self):
        self.write_tool("bin/make", CALLED + 'cat apt/sources.list >"$KESP_ROOT/list"; exit 1\n')
        self.make(77)
        self.assertEqual((self.tree / "list").read_text(encoding="utf-8").splitlines(), [
            "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] file:/archive stable main"])

    def test_what_cannot_be_made_is_a_reason_and_not_tried_again(self):
        for name, break_it in (("no archive", lambda: self.write_tool("bin/apt-get", CALLED)),
                               ("sources that do not compile", lambda: self.write_sources("#!/bin/sh\nexit 1\n"))):
            with self.subTest(name):
                shutil.rmtree(self.tree / "build", ignore_errors=True)
                break_it()
                self.assertEqual(self.make(77).stderr.splitlines()[-1], REASON)
                called = self.calls()
                self.assertEqual(self.make(77).stderr.splitlines()[-1], REASON)
                self.assertEqual(self.calls(), called)
                self.write_tool("bin/apt-get", CALLED + ARCHIVE)


if __name__ == "__main__":
    unittest.main()
