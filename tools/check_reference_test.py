#!/usr/bin/env python3
"""Shows that check_reference.py sees every fault: each member and value left out in turn, and what is written wrong."""

import pathlib
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
import check_reference  # noqa: E402

TREE = pathlib.Path(__file__).resolve().parent.parent


class CheckReferenceTest(unittest.TestCase):
    def setUp(self):
        self.interface, self.pages = check_reference.read(TREE)

    def faults(self, page, text):
        return list(check_reference.complaints(self.interface, {**self.pages, page: text}))

    def test_the_pages_as_they_are_have_no_fault(self):
        self.assertEqual(list(check_reference.complaints(self.interface, self.pages)), [])

    def test_each_member_left_out_is_a_fault(self):
        for listed, places in ((self.interface.classes, check_reference.CLASS_PAGES),
                               (self.interface.events, check_reference.EVENT_PAGES)):
            for each in listed:
                page = places[each.name]
                for member in each.members:
                    text = self.pages[page].replace(f"\n### {member.name}\n", "\n", 1)
                    with self.subTest(page=page, member=member.name):
                        self.assertIn(f"{page}: 0 headings for {member.name}", self.faults(page, text))

    def test_each_value_left_out_is_a_fault(self):
        for enumeration in self.interface.enumerations:
            for name, number in enumeration.values:
                page = next(page for page in check_reference.ENUMERATION_PAGES
                            if f"# {enumeration.name}\n" in self.pages[page])
                before, after = self.pages[page].split(f"# {enumeration.name}\n")
                text = before + f"# {enumeration.name}\n" + after.replace(f"| `{name}` | {number} |", "", 1)
                with self.subTest(enumeration=enumeration.name, name=name):
                    self.assertIn(f"{enumeration.name}: no row for {name} = {number}", self.faults(page, text))

    def test_what_is_written_wrong_is_a_fault(self):
        for page, written, wrong in (
                ("comm-obj.md", "cmd As String, [OmegaAddress", "cmd As String, [Address"),
                ("tcp.md", "[lTimeoutms As Long = 100]", "[lTimeoutms As Long = 200]"),
                ("tcp.md", "Property State As EKespTCPState ' read-only", "Property State As EKespTCPState"),
                ("com-port.md", "Sub ClosePort()", "Function ClosePort() As Boolean"),
                ("ieee.md", "Example: `device.Initialize`", ""),
                ("ieee.md", "### GetKey\n", "### GetKey\n\n```vb\nSub Explode()\n```\n"),
                ("enumerations.md", "| `csTCPIP` | 1 |", "| `csTCPIP` | 1 | TCP |\n| `csUSB` | 3 |"),
                ("errors.md", "| -2147221257 | 0x800400F7 |", "| -2147221257 | 0x800400F8 |"),
                ("README.md", "(threads.md)", "(elsewhere.md)")):
            with self.subTest(page=page, wrong=wrong):
                self.assertIn(written, self.pages[page])
                self.assertTrue(self.faults(page, self.pages[page].replace(written, wrong, 1)))

    def test_a_class_without_a_page_is_a_fault(self):
        new = check_reference.public_interface.Interface("CKespUSB", [])
        self.interface.classes.append(new)
        self.assertEqual(list(check_reference.complaints(self.interface, self.pages)), ["CKespUSB: no page is known for it"])


if __name__ == "__main__":
    unittest.main()
