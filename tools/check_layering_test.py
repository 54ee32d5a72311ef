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

    def test_room_including_from_outside_the_library_is_reported(self):
        for folder in ("tests", "bench", "samples", "tools"):
            with self.subTest(folder=folder):
                files = {"server/a.cpp": f'#include "{folder}/b.h"\n', f"{folder}/b.h": ""}
                self.assertIn(f"server/ may not include from {folder}/", self.check(files)[0])

    def test_unit_test_is_held_to_its_room(self):
        files = {"serial/a_test.cpp": '#include "gpib/b.h"\n', "gpib/b.h": ""}
        self.assert_violates(files, "serial/a_test.cpp:2: serial/ may not include from gpib/: gpib/b.h")

    def test_clients_may_include_every_room(self):
        for client in ("tests", "bench", "samples"):
            for room in ARROWS:
                with self.subTest(client=client, room=room):
                    self.assert_passes({f"{client}/a.cpp": f'#include "{room}/b.h"\n', f"{room}/b.h": ""})

    def test_include_by_relative_path_or_angle_brackets_is_seen(self):
        for include in ('"../gpib/b.h"', "<gpib/b.h>", '"../serial/../gpib/b.h"'):
            with self.subTest(include=include):
                files = {"serial/a.cpp": f"#include {include}\n", "gpib/b.h": ""}
                self.assert_violates(files, "serial/a.cpp:2: serial/ may not include from gpib/: gpib/b.h")

    def test_include_of_a_file_yet_to_be_generated_is_seen(self):
        files = {"serial/a.cpp": '#include "gpib/generated.h"\n'}
        self.assert_violates(files, "serial/a.cpp:2: serial/ may not include from gpib/: gpib/generated.h")

    def test_include_spaced_out_is_seen(self):
        files = {"serial/a.cpp": '\n  #  include  "gpib/b.h"\n', "gpib/b.h": ""}
        self.assert_violates(files, "serial/a.cpp:3: serial/ may not include from gpib/: gpib/b.h")

    def test_include_in_a_comment_is_passed_over(self):
        text = '// #include "gpib/b.h"\n/* kept out:\n#include "gpib/b.h"\n*/\n'
        self.assert_passes({"serial/a.cpp": text, "gpib/b.h": ""})

    def test_include_after_comments_is_reported_with_its_line(self):
        text = '/* one\n   two */\n// see serial/*_win.*\nauto t = "/*";\n#include "gpib/b.h"\n/* three */\n'
        files = {"serial/a.cpp": text, "gpib/b.h": ""}
        self.assert_violates(files, "serial/a.cpp:6: serial/ may not include from gpib/: gpib/b.h")

    def test_com_header_passes_in_the_server_the_window_half_of_dialogs_and_clients(self):
        paths = ("server/a.cpp", "server/a.h", "dialogs/a_win.cpp", "dialogs/a_win.h", "tests/win/a.cpp")
        for path in paths + ("bench/a.cpp", "samples/cpp/a.cpp"):
            for header in ("<objbase.h>", "<wrl/client.h>", '"KespCommObj.h"'):
                with self.subTest(path=path, header=header):
                    self.assert_passes({path: f"#include {header}\n"})

    def test_com_header_elsewhere_is_reported(self):
        headers = ("objbase.h", "oleauto.h", "ocidl.h", "olectl.h", "unknwn.h", "comdef.h", "wrl/client.h")
        for path in ("support/a_win.cpp", "network/a_win.cpp", "commobj/a_win.h", "dialogs/form.cpp"):
            for header in headers + ("KespCommObj.h", "OleAuto.h"):
                with self.subTest(path=path, header=header):
                    message = f"{path}:2: COM header {header} outside server/ and dialogs/*_win.*"
                    self.assert_violates({path: f"#include <{header}>\n"}, message)

    def test_com_header_exception_holds_for_one_file_and_one_header(self):
        path = "support/guid_source_win.cpp"
        self.assert_passes({path: "#include <objbase.h>\n"})
        self.assertEqual(len(self.check({path: "#include <oleauto.h>\n"})), 1)

    def test_windows_header_passes_where_it_belongs(self):
        rooms = ("support/a_win.cpp", "network/a_win.h", "dialogs/a_win.cpp", "server/a.cpp")
        for path in rooms + ("tests/a.cpp", "bench/a.cpp", "samples/cpp/a.cpp"):
            for header in ("windows.h", "winsock2.h", "commctrl.h"):
                with self.subTest(path=path, header=header):
                    self.assert_passes({path: f"#include <{header}>\n"})

    def test_windows_header_elsewhere_is_reported(self):
        paths = ("support/a.cpp", "network/a.h", "dialogs/a.cpp", "serial/win.cpp", "serial/a_win_test.cpp")
        for path in paths:
            for header in ("windows.h", "winsock2.h", "ws2tcpip.h", "Windows.h", "commctrl.h"):
                with self.subTest(path=path, header=header):
                    message = f"{path}:2: Windows header {header} in a file whose name does not end in _win"
                    self.assert_violates({path: f"#include <{header}>\n"}, message)

    def test_standard_header_passes(self):
        self.assert_passes({"support/a.h": "#include <string>\n#include <sys/types.h>\n"})

    def test_fakes_and_tests_pass_in_tests(self):
        headers = ("support/b_fixture.h", "support/b_fake.h")
        beside = ("support/b_test.cpp", "support/b_fixture.cpp", "support/b_fake.cpp", "support/b_fuzz.cpp")
        for path in headers + beside + ("tests/b.cpp",):
            for header in ("support/a_fake.h", "support/a_fixture.h", "support/a_test.cpp"):
                with self.subTest(path=path, header=header):
                    self.assert_passes({path: f'#include "{header}"\n', header: ""})

    def test_fakes_and_tests_elsewhere_are_reported(self):
        for path in ("support/b.cpp", "server/b.cpp", "bench/b.cpp"):
            for header in ("support/a_fake.h", "support/a_fixture.h", "support/a_test.cpp"):
                with self.subTest(path=path, header=header):
                    files = {path: f'#include "{header}"\n', header: ""}
                    self.assert_violates(files, f"{path}:2: {header} is for tests only")

    def test_opening_comment_of_one_or_more_lines_passes(self):
        over_two = "// One sentence over\n// two lines.\n#pragma once\n"
        for text in ("// One sentence.\n", over_two, "// A title. And more:\n//\n//   a list\n"):
            with self.subTest(text=text):
                self.assertEqual(self.check_as_is({"support/a.h": text}), [])

    def test_missing_opening_comment_is_reported(self):
        late = ("#pragma once\n// Late.\n", "\n// Late.\n")
        for text in ("", *late, "/* Another kind. */\n", "//Tight.\n", "//\n"):
            with self.subTest(text=text):
                message = "support/a.h:1: does not open with a // comment that says what is in it"
                self.assertEqual(self.check_as_is({"support/a.h": text}), [message])

    def test_opening_comment_without_sentence_is_reported(self):
        for text in ("// a.h\n#pragma once\n", "// TODO\n\n// A sentence, too late.\n"):
            with self.subTest(text=text):
                message = "support/a.h:1: the opening comment is no whole sentence"
                self.assertEqual(self.check_as_is({"support/a.h": text}), [message])

    def test_unknown_folder_is_reported(self):
        self.assert_violates({"extra/a.cpp": ""}, "extra/a.cpp:1: folder extra is not known to this check")
        self.assert_violates({"a.cpp": ""}, "a.cpp:1: folder of the top is not known to this check")

    def test_builds_and_hidden_folders_are_left_out(self):
        kept = {"support/a.h": OPENING}
        for path in ("build/native/a.cpp", "dist/a.h", ".cache/a.cpp"):
            self.assertEqual(self.check_as_is(kept | {path: "#include <windows.h>\n"}), [])

    def test_folder_named_build_inside_a_room_is_checked(self):
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
