#!/usr/bin/python3
"""What scripts/coverage.sh runs and tells, and the bars that it holds reports against."""

import json
import unittest

from script_run import Run


def file(name, lines, branches=()):
    """Each line is a count; `branches` are those of the first."""
    reported = [{"line_number": number, "count": count, "branches": []} for number, count in enumerate(lines, start=1)]
    if lines:
        reported[0]["branches"] = [{"count": count} for count in branches]
    return {"file": name, "lines": reported}


SOUND = [file("TavloUtility.h", [1]), file("common/PropertyListReader.cpp", [3, 1], [1, 2]),
         file("platform/linux/FileOps.cpp", [1]), file("host/Host.cpp", [1]), file("c/Operations.cpp", [1]),
         file("cli/Main.cpp", [1] * 9 + [0])]


def run(files, *arguments, **environment):
    return Run("scripts/coverage.sh", *arguments, STDOUT_gcovr=json.dumps({"files": files}), **environment)


class Coverage(unittest.TestCase):
    CALLS = ["cmake --preset coverage", "cmake --build --preset coverage",
             "ctest --preset coverage --parallel 3 -E ^(Structure|Packaging)"]

    def test_BuildsRunsAndPrintsTheFiguresOfEachPart(self):
        done = run(SOUND)

        self.assertEqual((done.status, done.err), (0, ""))
        self.assertEqual(done.calls[:3], self.CALLS)
        self.assertTrue(done.calls[3].startswith("gcovr --root . --object-directory build/coverage -j 3 "
                                                 "--exclude-throw-branches --exclude-unreachable-branches "))
        self.assertEqual(done.out.splitlines()[1:], [
            "rooms                      lines 100.00 % (0 of 3 left), bar 98 %",
            "                           branches 100.00 % (0 of 2 left), bar 92 %",
            "property list and archive  lines 100.00 % (0 of 2 left), bar 98 %",
            "                           branches 100.00 % (0 of 2 left), bar 92 %",
            "platform                   lines 100.00 % (0 of 1 left), bar 90 %",
            "                           branches 100.00 % (0 of 0 left)",
            "host                       lines 100.00 % (0 of 1 left), bar 90 %",
            "                           branches 100.00 % (0 of 0 left)",
            "c                          lines 100.00 % (0 of 1 left), bar 90 %",
            "                           branches 100.00 % (0 of 0 left)",
            "cli                        lines  90.00 % (1 of 10 left), bar 90 %",
            "                           branches 100.00 % (0 of 0 left)",
            "coverage: every bar is met"])

    def test_LinesBelowTheBarAreNamedTheWorstFileFirst(self):
        done = run([*SOUND, file("host/A.cpp", [0, 1]), file("host/B.cpp", [0, 0, 1, 0])])

        self.assertEqual(done.status, 1)
        self.assertIn("host                       lines  42.86 % (4 of 7 left), bar 90 %\n"
                      "  below the bar; lines that never ran:\n"
                      "    host/B.cpp: 1-2 4\n"
                      "    host/A.cpp: 1\n", done.out)
        self.assertEqual(done.out.splitlines()[-1], "coverage: below the bar: host")

    def test_BranchesBelowTheBarAreNamedToo(self):
        done = run([*SOUND, file("cache/KeyedArchiveReader.cpp", [1], [1, 0])])

        self.assertEqual(done.status, 1)
        self.assertIn("property list and archive  lines 100.00 % (0 of 3 left), bar 98 %\n"
                      "                           branches  75.00 % (1 of 4 left), bar 92 %\n"
                      "  below the bar; lines with branches that were never taken:\n"
                      "    cache/KeyedArchiveReader.cpp: 1\n", done.out)
        self.assertEqual(done.out.splitlines()[-1], "coverage: below the bar: rooms, property list and archive")

    def test_PartWithoutAFileIsBelowItsBar(self):
        done = run(SOUND[:-1])

        self.assertEqual((done.status, done.out.splitlines()[-2:]),
                         (1, ["cli: no file in the report", "coverage: below the bar: cli"]))

    def test_RedSuiteGivesNoFigures(self):
        done = run(SOUND, STATUS_ctest="8")

        self.assertEqual((done.status, done.calls), (8, self.CALLS))

    def test_FailedReportGivesNoFigures(self):
        done = run(SOUND, STATUS_gcovr="64")

        self.assertEqual(done.status, 64)
        self.assertNotIn("coverage: every", done.out)


if __name__ == "__main__":
    unittest.main()
