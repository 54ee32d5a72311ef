#!/usr/bin/python3
"""Holds description.schema.json and kesp-sim check to the same verdicts: schema_test.py KESP-SIM

The Python is Debian's, whose package has the validator. Every description of this tree must pass both, and each of the mistakes below neither.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import jsonschema

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent
SHIPPED = sorted([*HERE.glob("examples/**/*.json"), *ROOT.glob("bench/*personality.json"),
                  *(path for path in ROOT.glob("tests/clients/*.json"))])
# Comments, and texts, which may hold what looks like one.
COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\])*"', re.DOTALL)
MISTAKES = (
    {"comands": {}}, {"terminator": 13}, {"default": ["1"]}, {"default": {"cycle": []}}, {"default": 1},
    {"default": [{"send": "1", "wait_ms": 1}]}, {"default": [{"split": "1", "gap_ms": 1}]}, {"default": "\u0100"},
    {"default": [{"wait_ms": 3600001}]}, {"default": [{"send_hex": "0"}]}, {"default": [{"close": False}]},
    {"line": {}}, {"line": {"baud": 9600, "parity": "X"}}, {"discovery": [{"close": True}]},
    {"discovery": [{"storm": [], "datagrams": 1}]}, {"description": [1]}, {"device": "toaster"},
    {"device": "omega", "values": {}}, {"device": "radio_modem", "behind": {"X": {}}},
    {"device": "radio_modem", "behind": {}, "registers": {"XX": "1"}}, {"device": "port_switch", "model": 5, "ports": {}},
    {"devices": {}}, {"devices": [{}]}, {"devices": [{"gpib": {"primary": 31}}]},
    {"tcp": {"port": 1}}, {"devices": [{"tcp": {}}]}, {"devices": [{"tcp": {"port": 1}}, {}]},
    {"devices": [{"tcp": {"port": 65536}}]}, {"devices": [{"tcp": {"port": 1, "host": "127.0.0.256"}}]},
    {"devices": [{"tcp": {"port": 1}, "gpib": {"primary": 5}}]}, {"devices": [{"tcp": {"port": 1}, "bogus": 1}]},
    {"devices": [{"tcp": {"port": 1}}], "record": True},
    {"devices": [{"gpib": {"primary": 5, "secondary": 95}}]}, {"failures": [{"call": "ibwait"}]}, {"record": None}, [],
)


class SchemaTest(unittest.TestCase):
    program = None

    def setUp(self):
        self.schema = jsonschema.Draft202012Validator(json.loads((HERE / "description.schema.json").read_text()))

    def check(self, path):
        return subprocess.run([self.program, "check", path], capture_output=True, text=True, check=False)

    def test_schema_is_one(self):
        self.schema.check_schema(self.schema.schema)

    def test_every_shipped_description_passes_both(self):
        self.assertGreater(len(SHIPPED), 25)
        for path in SHIPPED:
            with self.subTest(path=str(path)):
                blank = COMMENT_OR_TEXT.sub(lambda m: m.group() if m.group()[0] == '"' else " ", path.read_text())
                self.assertEqual([error.message for error in self.schema.iter_errors(json.loads(blank))], [])
                said = self.check(path)
                self.assertEqual((said.returncode, said.stderr), (0, ""))

    def test_what_is_unusual_passes_both(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "unusual.json"
            (pathlib.Path(folder) / "\u03a9.json").write_text("{}")
            for unusual in ({"device": "radio_modem", "behind": {"1": "\u03a9.json"}, "nonvolatile": "\u03a8",
                             "registers": {"description": "a text", "DL": "1"}},
                            {"device": "port_switch", "model": 4, "ports": {"A": "\u03a9.json"}}):
                with self.subTest(unusual=unusual):
                    self.assertEqual([error.message for error in self.schema.iter_errors(unusual)], [])
                    path.write_text(json.dumps(unusual))
                    said = self.check(path)
                    self.assertEqual((said.returncode, said.stderr), (0, ""))

    def test_mistakes_pass_neither(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "mistake.json"
            for mistake in MISTAKES:
                with self.subTest(mistake=mistake):
                    self.assertFalse(self.schema.is_valid(mistake))
                    path.write_text(json.dumps(mistake))
                    self.assertEqual(self.check(path).returncode, 2)


if __name__ == "__main__":
    SchemaTest.program = sys.argv.pop()
    unittest.main()
