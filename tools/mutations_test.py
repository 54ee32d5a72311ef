#!/usr/bin/env python3
"""Shows on small sources where tools/mutations finds its places, and what it writes there."""

import pathlib
import sys
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "lib"))
from mutation import choice, definitions, places, report, tree, values  # noqa: E402


def found(body, names=(), enumerators=None):
    """Operator and change of each place in a function of that body."""
    return found_in("void F() {\n" + body + "\n}\n", names, enumerators)


def found_in(source, names=(), enumerators=None):
    return [(place.operator, place.change) for place in places.Finder(source, set(names), enumerators).find()]


def rewritten(source, operator):
    """The source with its first place of that operator mutated under the number 7."""
    place = next(place for place in places.Finder(source).find() if place.operator == operator)
    entry = dict(choice.entry_of("support/a.cpp", source, place), number=7)
    return tree.rewrite("support/a.cpp", source, [entry]).split("#line 1\n", 1)[1]


class FinderTest(unittest.TestCase):
    def test_condition_is_turned_forced_and_compared_otherwise(self):
        self.assertEqual(
            found("if (a < b) return;"),
            [
                ("comparison", "< became <= in: a < b"),
                ("condition", "if never, not (a < b)"),
                ("condition", "if not (a < b)"),
                ("condition", "if always, not (a < b)"),
            ],
        )

    def test_call_and_assignment_are_removed_and_declarations_stay(self):
        self.assertEqual(found("a.b()->c();"), [("call removed", "removed: a.b()->c();")])
        self.assertEqual(found("a[i].b = c;"), [("assignment removed", "removed: a[i].b = c;")])
        self.assertEqual(found("Type a(b); Type* c = d; std::vector<int> e;"), [])

    def test_labels_sizes_and_template_arguments_stay(self):
        self.assertEqual(found("switch (a) { case 1: default: ; } char b[40];"), [])
        self.assertEqual(found("Array<char, 50> a; static_assert(b == 1);"), [])

    def test_jump_behind_a_label_is_removed(self):
        self.assertEqual(found("switch (a) { case 1: break; }"), [("jump removed", "removed: break;")])

    def test_constant_expressions_and_tables_stay(self):
        self.assertEqual(found_in("constexpr int F() { return 1 + 2; }\nconstexpr int kTable[] = {1, 2};\n"), [])
        self.assertEqual(found("constexpr int kOne = 1;"), [])

    def test_initial_value_of_a_member_changes(self):
        self.assertEqual(
            found_in("class A {\n bool b_ = true;\n static constexpr int kC = 1;\n virtual void D() = 0;\n};\n"),
            [("truth value", "true became false")],
        )

    def test_named_constants_and_enumerators_change(self):
        names, enumerators = definitions.definitions(["constexpr int kLimit = 3;\nenum class Way { kIn, kOut };\n"])
        self.assertEqual(found("F(kLimit);", names)[-1], ("named constant", "kLimit became kLimit + 1"))
        self.assertEqual(found("F(Way::kOut);", (), enumerators)[-1], ("enumerator", "Way::kOut became kIn"))

    def test_text_changes_one_letter_and_keeps_escapes(self):
        self.assertEqual(values.changed_text(r'L"ab\r\n"'), r'L"aX\r\n"')
        self.assertEqual(values.changed_text('""'), '"X"')
        self.assertIsNone(values.changed_text(r'"\r\n"'))

    def test_texts_that_are_joined_stay(self):
        self.assertEqual([one for one in found('F("a" "b"); char c[] = "d";') if one[0] == "text"], [])

    def test_comments_and_texts_are_no_code(self):
        self.assertEqual(found("// if (a < b) return;\nType a{R\"(if (c == d) e();)\"};"), [])


class RewritingTest(unittest.TestCase):
    def test_statement_gets_its_switch(self):
        mutated = rewritten("void F() {\n  G(\n1);\n}\n", "call removed")
        self.assertEqual(mutated, "void F() {\n  { if (!kesp_mutant(7)) G( 1); }\n\n}\n")

    def test_text_gets_another_of_the_same_length(self):
        mutated = rewritten('auto F() {\n  G(L"{abc}");\n}\n', "text")
        self.assertEqual(mutated, 'auto F() {\n  G((kesp_mutant(7) ? L"{aXc}" : L"{abc}"));\n}\n')


class CompilerErrorsTest(unittest.TestCase):
    ENTRIES = [
        {"file": "gpib/a.cpp", "line": line, "start": line, "original": original}
        for line, original in ((3, "x"), (5, "y\nz"), (9, "w"))
    ]

    def guilty(self, *lines):
        output = "\n".join(["[1/2] Building", "FAILED: a.o", *lines])
        mutated = tree.Tree("/", "/t", 1)
        return [entry["line"] for entry in mutated.guilty(output, self.ENTRIES)]

    def test_error_on_a_line_of_the_mutation_drops_it(self):
        self.assertEqual(self.guilty("/t/gpib/a.cpp:6:1: error: no"), [5])

    def test_error_in_a_template_drops_what_requires_it(self):
        self.assertEqual(self.guilty("/t/gpib/a.cpp:3:1:   required from here", "/usr/b.h:5:1: error: no"), [3])

    def test_error_behind_the_mutation_drops_the_last_one_before(self):
        self.assertEqual(self.guilty("/t/gpib/a.cpp:8:1: error: no"), [5])


class ChoiceTest(unittest.TestCase):
    LINES = [f'  if (a{n} < {n} && G({n})) H{n}(L"text {n}");' for n in range(9)]
    SOURCES = dict.fromkeys((f"{room}/a.cpp" for room in choice.ROOMS), "\n".join(["void F() {", *LINES, "}", ""]))

    def chosen(self, dropped=()):
        return choice.Chooser(self.SOURCES, 1).choose(choice.shares(self.SOURCES, 70), dropped)

    def test_same_seed_chooses_the_same_from_every_room(self):
        chosen = self.chosen()
        self.assertEqual(chosen, self.chosen())
        self.assertEqual({entry["room"] for entry in chosen}, set(choice.ROOMS))

    def test_none_overlaps_another(self):
        spans = sorted((entry["file"], entry["start"], entry["end"]) for entry in self.chosen())
        for one, other in zip(spans, spans[1:]):
            self.assertTrue(one[0] != other[0] or one[2] <= other[1], (one, other))

    def test_dropped_one_is_replaced_and_the_others_keep_their_numbers(self):
        first = choice.number(self.chosen())
        dropped = choice.key_of(first[0])
        second = choice.number(self.chosen({dropped}), first)
        self.assertEqual(len(second), len(first))
        self.assertNotIn(dropped, map(choice.key_of, second))
        numbers = {choice.key_of(entry): entry["number"] for entry in first}
        self.assertTrue(all(numbers.get(choice.key_of(entry), entry["number"]) == entry["number"] for entry in second))


class ReportTest(unittest.TestCase):
    def test_share_is_doubted_when_more_than_a_few_were_left_out(self):
        def doubts(open_ones, failing, all_stages=True):
            stages = ["not judged"] * open_ones + ["Wine"] * (100 - open_ones)
            mutations = [{"caught_by": stage} for stage in stages]
            return list(report.doubts(mutations, {"failing": (failing, 50)}, all_stages))

        self.assertEqual(doubts(2, ["a"]), [])
        self.assertEqual(doubts(3, ["a"]), ["3 of 100 mutations were not judged"])
        self.assertEqual(doubts(3, ["a", "b"], all_stages=False), ["2 of 50 failing: a, b"])

    def test_comparison_names_what_is_not_caught_any_more(self):
        entry = {"number": 1, "room": "support", "file": "support/a.cpp", "line": 2, "operator": "text", "change": "c"}
        caught = {1: {"number": 1, "caught": True, "program": "unit.support_test", "case": "A.B"}}
        missed = {1: {"number": 1, "caught": False, "reached": True}}
        before, after = report.combine([entry], caught, {}), report.combine([entry], missed, missed)
        said = list(report.differences(before, after))
        self.assertEqual(said[0], "caught before, not now: 1")
        self.assertIn("support/a.cpp:2 [1, text] c; by unit.support_test A.B", said[1])


if __name__ == "__main__":
    unittest.main()
