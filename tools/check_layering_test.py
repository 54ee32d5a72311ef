#!/usr/bin/env python3
"""Shows on made-up trees that check_layering.py reports each breach and lets the allowed pass."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
import check_layering  # noqa: E402

OPENING = "// What is in this file.\n"
ARROWS = {
    "support": (),
    "serial": ("support",),
    "network": ("support",),
    "gpib": ("support",),
    "commobj": ("support", "serial", "network", "gpib"),
    "dialogs": ("support", "serial", "network", "gpib"),
    "server": ("support", "serial", "network", "gpib", "commobj", "dialogs"),
    "simulator": (),
}


class CheckLayeringTest(unittest.TestCase):
    def check(self, files):
        """The violations of a tree of these files: path to text, to which an opening comment is added."""
        return self.check_as_is({path: OPENING + text for path, text in files.items()})

    def check_as_is(self, files):
        with tempfile.TemporaryDirectory() as folder:
            tree = pathlib.Path(folder)
            for path, text in files.items():
                (tree / path).parent.mkdir(parents=True, exist_ok=True)
                (tree / path).write_text(text, encoding="utf-8")
            return check_layering.check_tree(tree)

    def assert_passes(self, files):
        self.assertEqual(self.check(files), [])

    def assert_violates(self, files, expected):
        self.assertEqual(self.check(files), [expected])

    def test_rooms_every_pair_passes_exactly_along_the_arrows(self):
        for room in ARROWS:
            for other in ARROWS:
                with self.subTest(room=room, other=other):
                    files = {f"{room}/a.cpp": f'#include "{other}/b.h"\n', f"{other}/b.h": ""}
                    if room == other or other in ARROWS[room]:
                        self.assert_passes(files)
                    else:
                        message = f"{room}/a.cpp:2: {room}/ may not include from {other}/: {other}/b.h"
                        self.assert_violates(files, message)

    def test_rooms_include_nothing_from_outside_the_library_and_clients_every_room(self):
        for outside in ("tests", "bench", "samples", "tools"):
            for room in ARROWS:
                with self.subTest(outside=outside, room=room):
                    if outside != "tools":
                        self.assert_passes({f"{outside}/a.cpp": f'#include "{room}/b.h"\n', f"{room}/b.h": ""})
                    files = {f"{room}/a.cpp": f'#include "{outside}/b.h"\n', f"{outside}/b.h": ""}
                    self.assertIn(f"{room}/ may not include from {outside}/", self.check(files)[0])

    def test_include_is_seen_however_it_is_written(self):
        in_room = "serial/ may not include from gpib/: gpib/b.h"
        rows = (
            ("a.cpp", '#include "../gpib/b.h"\n', 2),
            ("a.cpp", "#include <gpib/b.h>\n", 2),
            ("a.cpp", '#include "../serial/../gpib/b.h"\n', 2),
            ("a.cpp", '\n  #  include  "gpib/b.h"\n', 3),
            ("a_test.cpp", '#include "gpib/b.h"\n', 2),
            ("a.cpp", '/* one\n   two */\n// see serial/*_win.*\nauto t = "/*";\n#include "gpib/b.h"\n/* 3 */\n', 6),
        )
        for name, text, line in rows:
            with self.subTest(text=text):
                self.assert_violates({f"serial/{name}": text, "gpib/b.h": ""}, f"serial/{name}:{line}: {in_room}")
        # A file that is yet to be generated.
        self.assert_violates({"serial/a.cpp": '#include "gpib/b.h"\n'}, f"serial/a.cpp:2: {in_room}")

    def test_include_in_a_comment_is_passed_over(self):
        text = '// #include "gpib/b.h"\n/* kept out:\n#include "gpib/b.h"\n*/\n'
        self.assert_passes({"serial/a.cpp": text, "gpib/b.h": ""})

    def assert_headers(self, headers, allowed, refused, message):
        """These system headers pass in the allowed files; in the refused ones the message names them."""
        for header in headers:
            for path in allowed:
                with self.subTest(path=path, header=header):
                    self.assert_passes({path: f"#include <{header}>\n"})
            for path in refused:
                with self.subTest(path=path, header=header):
                    self.assert_violates({path: f"#include <{header}>\n"}, f"{path}:2: " + message.format(header))

    def test_com_headers_belong_to_the_server_the_window_half_of_dialogs_and_clients(self):
        headers = ("objbase.h", "oleauto.h", "ocidl.h", "olectl.h", "unknwn.h", "comdef.h", "wrl/client.h")
        self.assert_headers(
            (*headers, "KespCommObj.h", "OleAuto.h"),
            ("server/a.cpp", "server/a.h", "dialogs/a_win.cpp", "dialogs/a_win.h", "tests/win/a.cpp", "bench/a.cpp",
             "samples/cpp/a.cpp"),
            ("support/a_win.cpp", "network/a_win.cpp", "commobj/a_win.h", "dialogs/form.cpp"),
            "COM header {} outside server/ and dialogs/*_win.*")
        # One file may have one of them.
        self.assert_passes({"support/guid_source_win.cpp": "#include <objbase.h>\n"})
        self.assertEqual(len(self.check({"support/guid_source_win.cpp": "#include <oleauto.h>\n"})), 1)

    def test_windows_headers_belong_to_files_with_win_in_their_name_the_server_and_clients(self):
        self.assert_headers(
            ("windows.h", "winsock2.h", "ws2tcpip.h", "Windows.h", "commctrl.h"),
            ("support/a_win.cpp", "network/a_win.h", "dialogs/a_win.cpp", "server/a.cpp", "tests/a.cpp", "bench/a.cpp",
             "samples/cpp/a.cpp"),
            ("support/a.cpp", "network/a.h", "dialogs/a.cpp", "serial/win.cpp", "serial/a_win_test.cpp"),
            "Windows header {} in a file whose name does not end in _win")

    def test_standard_header_passes(self):
        self.assert_passes({"support/a.h": "#include <string>\n#include <sys/types.h>\n"})

    def test_fakes_and_tests_are_for_tests_only(self):
        allowed = ("support/b_fixture.h", "support/b_fake.h", "support/b_test.cpp", "support/b_fixture.cpp",
                   "support/b_fake.cpp", "support/b_fuzz.cpp", "tests/b.cpp")
        for header in ("support/a_fake.h", "support/a_fixture.h", "support/a_test.cpp"):
            for path in (*allowed, "support/b.cpp", "server/b.cpp", "bench/b.cpp"):
                with self.subTest(path=path, header=header):
                    expected = [] if path in allowed else [f"{path}:2: {header} is for tests only"]
                    self.assertEqual(self.check({path: f'#include "{header}"\n', header: ""}), expected)

    def test_opening_comment_is_a_sentence(self):
        passing = ("// One sentence.\n", "// One sentence over\n// two lines.\n#pragma once\n",
                   "// A title. And more:\n//\n//   a list\n")
        missing = ("", "#pragma once\n// Late.\n", "\n// Late.\n", "/* Another kind. */\n", "//Tight.\n", "//\n")
        no_sentence = ("// a.h\n#pragma once\n", "// TODO\n\n// A sentence, too late.\n")
        for texts, expected in (
                (passing, []),
                (missing, ["support/a.h:1: does not open with a // comment that says what is in it"]),
                (no_sentence, ["support/a.h:1: the opening comment is no whole sentence"])):
            for text in texts:
                with self.subTest(text=text):
                    self.assertEqual(self.check_as_is({"support/a.h": text}), expected)

    def test_unknown_folder_is_reported(self):
        self.assert_violates({"extra/a.cpp": ""}, "extra/a.cpp:1: folder extra is not known to this check")
        self.assert_violates({"a.cpp": ""}, "a.cpp:1: folder of the top is not known to this check")

    def test_builds_and_hidden_folders_are_left_out_but_not_within_a_room(self):
        for path in ("build/native/a.cpp", "dist/a.h", ".cache/a.cpp"):
            self.assertEqual(self.check_as_is({"support/a.h": OPENING, path: "#include <windows.h>\n"}), [])
        self.assertEqual(len(self.check({"support/build/a.cpp": "#include <windows.h>\n"})), 1)

    def test_tree_without_sources_is_reported(self):
        self.assertEqual(len(self.check({})), 1)

    def test_several_violations_are_all_reported(self):
        text = '#include <windows.h>\n#include "network/b.h"\n'
        files = {"serial/a.cpp": text, "network/b.h": "#include <ole2.h>\n"}
        self.assertEqual(len(self.check(files)), 3)


class MainTest(unittest.TestCase):
    def run_on(self, text):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "support").mkdir()
            (pathlib.Path(folder) / "support" / "a.h").write_text(text, encoding="utf-8")
            output = io.StringIO()
            with contextlib.redirect_stdout(output):
                status = check_layering.main([folder])
            return status, output.getvalue()

    def test_clean_tree_gives_0(self):
        self.assertEqual(self.run_on(OPENING), (0, "layering: no violation\n"))

    def test_violation_is_printed_and_gives_1(self):
        status, output = self.run_on(OPENING + "#include <windows.h>\n")
        self.assertEqual(status, 1)
        self.assertIn("support/a.h:2: Windows header windows.h", output)


if __name__ == "__main__":
    unittest.main()
