#!/usr/bin/python3
"""The changes that are found in a small source."""

import pathlib
import tempfile
import unittest

import changes
import mutate

SOURCE = """
#include "other.h"
#define LIMIT 7
enum class Fruit { apple, pear, plum };
int first(int number);
void second(const char *text, const char *other);
bool decide(int count, Fruit fruit) {
  if (count < 3) {
    first(0x10);
    second("%d apples", "no");
  }
  return fruit == Fruit::pear;
}
struct Basket {
  bool is_full() { return !is_empty; }
  bool is_empty = true;
};
constexpr bool deepest = false;
int measure(double share) {
  while (share > 0.5) {
    first(0777);
    return first(LIMIT);
  }
  return share == 0.0 && true ? 'a' : '\\0';
}
"""


class Changes(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory(prefix="changes.") as folder:
            path = pathlib.Path(folder) / "source.cpp"
            path.write_text(SOURCE)
            (pathlib.Path(folder) / "other.h").write_text(
                "inline bool other(int a) { return a < 1; }"
            )
            cls.places = changes.changes_in(path, "area/source.cpp", ["-std=c++20"])

    def found(self, kind):
        return [
            (change.removed, change.added)
            for place in self.places
            for change in place
            if change.kind == kind
        ]

    def expect(self, kind, *lines):
        self.assertEqual(self.found(kind), [((removed,), (added,)) for removed, added in lines])

    def test_a_comparison_is_replaced_by_its_neighbours(self):
        self.expect(
            "comparison",
            ("if (count < 3) {", "if (count <= 3) {"),
            ("if (count < 3) {", "if (count >= 3) {"),
            ("return fruit == Fruit::pear;", "return fruit != Fruit::pear;"),
            ("while (share > 0.5) {", "while (share >= 0.5) {"),
            ("while (share > 0.5) {", "while (share <= 0.5) {"),
            (
                "return share == 0.0 && true ? 'a' : '\\0';",
                "return share != 0.0 && true ? 'a' : '\\0';",
            ),
        )

    def test_a_condition_is_negated_and_connected_otherwise(self):
        line = "return share == 0.0 && true ? 'a' : '\\0';"
        self.expect(
            "condition",
            ("if (count < 3) {", "if (!(count < 3)) {"),
            ("while (share > 0.5) {", "while (!(share > 0.5)) {"),
            (line, "return !(share == 0.0 && true) ? 'a' : '\\0';"),
            (line, "return share == 0.0 || true ? 'a' : '\\0';"),
        )

    def test_a_constant_becomes_the_next_one(self):
        line = "return share == 0.0 && true ? 'a' : '\\0';"
        self.expect(
            "constant",
            ("if (count < 3) {", "if (count < 4) {"),
            ("if (count < 3) {", "if (count < 2) {"),
            ("first(0x10);", "first(0x11);"),
            ("first(0x10);", "first(0xf);"),
            ("bool is_empty = true;", "bool is_empty = false;"),
            ("constexpr bool deepest = false;", "constexpr bool deepest = true;"),
            ("while (share > 0.5) {", "while (share > 0.0f) {"),
            ("first(0777);", "first(01000);"),
            ("first(0777);", "first(0776);"),
            (line, "return share == 1.0f && true ? 'a' : '\\0';"),
            (line, "return share == 0.0 && false ? 'a' : '\\0';"),
            (line, "return share == 0.0 && true ? 'b' : '\\0';"),
            (line, "return share == 0.0 && true ? 'a' : '\\1';"),
        )

    def test_a_letter_of_a_text_is_replaced_but_no_conversion(self):
        line = 'second("%d apples", "no");'
        self.expect(
            "text", (line, 'second("%d xpples", "no");'), (line, 'second("%d apples", "xo");')
        )

    def test_an_enumerator_becomes_the_one_before_or_after_it(self):
        line = "return fruit == Fruit::pear;"
        self.expect(
            "enum", (line, "return fruit == Fruit::apple;"), (line, "return fruit == Fruit::plum;")
        )

    def test_a_result_is_another(self):
        self.expect(
            "result",
            ("return fruit == Fruit::pear;", "return !(fruit == Fruit::pear);"),
            ("bool is_full() { return !is_empty; }", "bool is_full() { return !(!is_empty); }"),
            ("return first(LIMIT);", "return (first(LIMIT)) + 1;"),
            (
                "return share == 0.0 && true ? 'a' : '\\0';",
                "return (share == 0.0 && true ? 'a' : '\\0') + 1;",
            ),
        )

    def test_a_call_is_left_out_or_made_later(self):
        calls = ("first(0x10);", 'second("%d apples", "no");')
        self.expect("call", (calls[0], ";"), (calls[1], ";"), ("first(0777);", ";"))
        self.assertEqual(self.found("order"), [(calls, calls[::-1])])

    def test_arguments_of_one_type_are_swapped(self):
        self.expect("argument", ('second("%d apples", "no");', 'second("no", "%d apples");'))

    def test_a_change_names_its_file_and_what_it_is_in(self):
        self.assertEqual(
            {change.file for place in self.places for change in place}, {"area/source.cpp"}
        )
        names = {change.declaration for place in self.places for change in place}
        self.assertEqual(names, {"decide", "measure", "Basket", "is_full", "deepest"})

    def test_a_change_applies_to_its_bytes_alone(self):
        change = self.places[0][0]
        changed = change.applied_to(SOURCE.encode()).decode()
        self.assertEqual(changed, SOURCE.replace("count < 3", "!(count < 3)"))


TWICE = """
bool decide(int count) {
  if (count < 3) {
    return false;
  }
  if (count > 5) {
    return false;
  }
  return true;
}
bool other() { return false; }
"""


def changes_of(source, name="source.cpp"):
    with tempfile.TemporaryDirectory(prefix="changes.") as folder:
        path = pathlib.Path(folder) / name
        path.write_text(source)
        places = changes.changes_in(path, f"area/{name}", ["-std=c++20"])
        return [change for place in places for change in place]


HEADER = """
#pragma once
enum class Fruit { apple = 1, pear };
const char *translated(const char *text, int count = 3) __attribute__((format_arg(1)));
#define DECLARE(type) inline bool is_##type(int thing) { return thing; }
DECLARE(basket)
struct Basket {
  virtual bool is_ripe() const = 0;
  bool is_full = false;
};
template <typename T>
class Store {
public:
  bool has(T thing) const { return thing != first; }

private:
  T first;
  int size = 0;
};
"""


class Headers(unittest.TestCase):
    def test_what_a_header_defines_is_changed(self):
        self.assertEqual(
            [
                (change.kind, change.declaration, change.text)
                for change in changes_of(HEADER, "header.h")
            ],
            [
                ("constant", "Fruit", "2"),
                ("constant", "Fruit", "0"),
                ("constant", "-", "4"),
                ("constant", "-", "2"),
                ("constant", "Basket", "true"),
                ("result", "has", "!(thing != first)"),
                ("comparison", "has", "=="),
                ("constant", "Store", "1"),
            ],
        )

    def test_those_that_sources_of_their_folder_include_are_compiled_like_them(self):
        texts = {
            "area/a.cpp": '#include "area/a.h"\n',
            "area/b.cpp": '#include "area/b.h"\n#include "other/far.h"\n#include <vector>\n',
            "area/a.h": '#include "area/shared.h"\n',
            "area/b.h": '#include "area/shared.h"\n#include "area/b.h"\n',
            "area/shared.h": "",
            "area/unused.h": "",
            "other/far.h": '#include "area/far.h"\n',
            "area/far.h": "",
        }
        with tempfile.TemporaryDirectory(prefix="changes.") as name:
            folder = pathlib.Path(name)
            for file, text in texts.items():
                (folder / file).parent.mkdir(exist_ok=True)
                (folder / file).write_text(text)
            sources = {folder / "area/b.cpp": "build b", folder / "area/a.cpp": "build a"}
            commands = {
                str(path.relative_to(folder)): command
                for path, command in mutate.with_headers(folder, sources).items()
            }
        self.assertEqual(
            commands,
            {
                "area/a.cpp": "build a",
                "area/b.cpp": "build b",
                "area/a.h": "build a",
                "area/b.h": "build b",
                "area/shared.h": "build a",
                "area/far.h": "build b",
            },
        )


class EqualChanges(unittest.TestCase):
    def test_those_of_one_function_are_numbered_from_the_top(self):
        diffs = [change.diff() for change in changes_of(TWICE) if "return false;" in change.removed]
        self.assertEqual(
            diffs,
            [
                "area/source.cpp decide #1\n-return false;\n+return true;",
                "area/source.cpp decide #2\n-return false;\n+return true;",
            ],
        )

    def test_one_that_is_alone_in_its_function_has_no_number(self):
        [diff] = [change.diff() for change in changes_of(TWICE) if change.declaration == "other"]
        self.assertTrue(diff.startswith("area/source.cpp other\n"), diff)

    def test_each_can_be_listed(self):
        for change in changes_of(TWICE):
            listed = mutate.read_equivalents(f"{change.diff()}\n Why.\n")
            self.assertEqual(listed, {change.identity(): "Why."})


class Equivalents(unittest.TestCase):
    def faults(self, heading, diff):
        listed = mutate.read_equivalents(f"area/source.cpp {heading}\n{diff}\n Why.\n")
        return mutate.faulty_entries(listed, {change.identity() for change in changes_of(TWICE)})

    def test_one_that_matches_a_single_place_is_right(self):
        self.assertEqual(self.faults("decide #2", "-return false;\n+return true;"), [])
        self.assertEqual(self.faults("decide", "-return true;\n+return false;"), [])

    def test_one_that_matches_several_places_is_named(self):
        diff = "-return false;\n+return true;"
        self.assertEqual(
            self.faults("decide", diff),
            [f"Matches several places:\narea/source.cpp decide\n{diff}"],
        )

    def test_one_that_matches_no_place_is_named(self):
        for heading in ("decide #3", "elsewhere"):
            diff = "-return false;\n+return true;"
            self.assertEqual(
                self.faults(heading, diff),
                [f"Matches no place:\narea/source.cpp {heading}\n{diff}"],
            )

    def test_one_that_is_listed_twice_is_refused(self):
        with self.assertRaisesRegex(ValueError, "listed twice:\narea/source.cpp decide"):
            mutate.read_equivalents("area/source.cpp decide\n-a\n+b\n Why.\n\n" * 2)

    def test_a_name_with_blanks_is_read(self):
        text = "area/source.h operator bool #2\n-a\n+b\n Why.\n"
        identity = ("area/source.h", "operator bool", 2, ("a",), ("b",))
        self.assertEqual(mutate.read_equivalents(text), {identity: "Why."})

    def test_a_change_is_found_again_by_what_is_printed_of_it(self):
        change = changes.Change(
            file="area/source.cpp",
            declaration="decide",
            kind="order",
            start=0,
            end=0,
            text="",
            line=9,
            removed=("first();", "second();"),
            added=("second();", "first();"),
            ordinal=2,
        )
        listed = mutate.read_equivalents(
            f"# Rules\n\n{change.diff()}\n Neither sees\n the other.\n"
        )
        self.assertEqual(listed, {change.identity(): "Neither sees the other."})

    def test_without_a_reason_it_is_refused(self):
        with self.assertRaisesRegex(ValueError, "no reason"):
            mutate.read_equivalents("area/source.cpp decide\n-first();\n+;\n")


if __name__ == "__main__":
    unittest.main(verbosity=2)
