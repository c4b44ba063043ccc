#!/usr/bin/python3
"""vantorelle-codeset diff."""

import resource

from command import DELIVERED, FAILED, GOOD, NOTICED, CommandTest, codeset_xml, main

OLD = [
    ("9", {"en-uk": "Crack", "sv": "Spricka"}),
    ("10", {"en-uk": "Loss", "sv": "Bortfall"}),
    ("A1", {"en-uk": "Stain", "": "Fläck"}),
]
NEW = [
    ("2", {"en-uk": "Dent", "sv": "Buckla"}),
    ("10", {"en-uk": "Loss of paint", "de": "Verlust"}),
    ("A1", {"en-uk": "Stain", "": "Fläck"}),
    ("A2", {"fr": "Tache"}),
]


class Diff(CommandTest):
    def diff(self, old, new, **options):
        self.write("old", codeset_xml(old))
        self.write("new", codeset_xml(new, **options))
        return self.run_program("diff", "old", "new")

    def test_prints_added_removed_and_changed_codes_by_language(self):
        self.expect(
            self.diff(OLD, NEW),
            NOTICED,
            "+\t2\ten-uk\tDent\n"
            "+\t2\tsv\tBuckla\n"
            "-\t9\ten-uk\tCrack\n"
            "-\t9\tsv\tSpricka\n"
            "~\t10\ten-uk\tLoss\tLoss of paint\n"
            "~\t10\tsv\tBortfall\t\n"
            "~\t10\tde\t\tVerlust\n"
            "+\tA2\tfr\tTache\n",
        )

    def test_prints_nothing_for_the_same_codes_in_another_order(self):
        self.expect(self.diff(OLD, OLD[::-1]), GOOD)

    def test_ignores_the_order_of_translations(self):
        self.expect(
            self.diff([("1", {"sv": "a", "de": "b"})], [("1", {"de": "b", "sv": "a"})]), GOOD
        )

    def test_compares_name_author_and_version(self):
        result = self.diff(
            OLD,
            OLD,
            name="<name lang='sv'>Ett namn</name><author lang=''>Någon</author>"
            "<version>2</version>",
        )
        self.expect(
            result,
            NOTICED,
            "*\tname\ten-uk\tA name\t\n"
            "*\tname\tsv\t\tEtt namn\n"
            "*\tauthor\tundefined\t\tNågon\n"
            "*\tversion\t\t\t2\n",
        )

    def test_compares_the_last_codes_of_either_file(self):
        self.expect(
            self.diff(OLD[:1], OLD[:2]), NOTICED, "+\t10\ten-uk\tLoss\n+\t10\tsv\tBortfall\n"
        )
        self.expect(
            self.diff(OLD[:2], OLD[:1]), NOTICED, "-\t10\ten-uk\tLoss\n-\t10\tsv\tBortfall\n"
        )

    def test_finds_no_difference_between_a_delivered_codeset_and_itself(self):
        for path in DELIVERED:
            self.expect(self.run_program("diff", path, "-", stdin=path.read_bytes()), GOOD)

    def test_prints_all_differences_of_two_delivered_codesets(self):
        metals, paper = (
            next(path for path in DELIVERED if path.name.startswith(name))
            for name in ("metals", "works_on_paper")
        )
        result = self.run_program("diff", metals, paper)
        self.assertEqual(result.status, NOTICED)
        self.expect_golden("diff/metals-and-works-on-paper.txt", result.output_bytes)

    def test_takes_time_in_proportion_to_the_languages_of_a_text(self):
        def codes(text):
            return [("1", {f"x{i}": text for i in range(60_000)})]

        reading = self.measure(lambda: self.diff(codes("a"), codes("a")))
        comparing = self.measure(lambda: self.diff(codes("a"), codes("b")))
        self.assertLess(
            comparing, 10 * reading, "seconds of the processor, and ten times those of equal files"
        )

    @staticmethod
    def measure(action):
        """The seconds for which the program had the processor."""

        def used():
            usage = resource.getrusage(resource.RUSAGE_CHILDREN)
            return usage.ru_utime + usage.ru_stime

        start = used()
        action()
        return used() - start

    def test_reports_each_file_that_is_refused(self):
        reason = "Error loading codeset file. Cannot open file. Error 2: No such file or directory"
        self.expect(
            self.run_program("diff", "none", "neither"),
            FAILED,
            errors=f"vantorelle-codeset: none: {reason}\nvantorelle-codeset: neither: {reason}\n",
        )


if __name__ == "__main__":
    main()
