#!/usr/bin/python3
"""What scripts/trust.sh builds, runs and tells."""

import re
import unittest

from script_run import ROOT, Run

ROW = re.compile(r"^(T\d+) +(P\d+(?:,P\d+)*) +([a-z,-]+) +([a-z_,]+) +(\S+?)'?$", re.MULTILINE)
TEST = re.compile(r"^(TYPED_TEST|TEST|TEST_F|TEST_P)\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
TOLD = "7: seed 3\n7: [ FIGURE ] T6a: 50 rounds\n8: [ FIGURE ] T6a: 20 rounds\n8: [ FIGURE ] T7: 1,000 reads, 0 torn"


def rows():
    return ROW.findall((ROOT / "scripts/trust.sh").read_text(encoding="utf-8"))


class Trust(unittest.TestCase):
    def test_NamedItemsAreBuiltAndRunAtFullFiguresFromTheSeed(self):
        run = Run("scripts/trust.sh", "--seed", "3", "T6", "T7", STDOUT_ctest=TOLD)

        self.assertEqual((run.status, run.err), (0, ""))
        self.assertEqual(run.calls[:2], ["cmake --preset release", "cmake --build --preset release --target "
                                         "tavlo_real_cache_tests tavlo_kill_tests tavlo_real_cache_tests"])
        self.assertEqual([call.split(" --tests-regex ")[0] for call in run.calls[2:]],
                         ["ctest --preset release --verbose"] * 2)
        self.assertRegex(run.out, r"""
item promises result    time  once more
T6   P3 P4    held       \d s  scripts/trust.sh --seed 3 T6
     T6a: 70 rounds \(release\)
T7   P3       held       \d s  scripts/trust.sh --seed 3 T7
     T7: 1,000 reads, 0 torn \(release\)
$""")

    def test_TestsGetTheSeedAndAreToldToReachTheFullFigures(self):
        run = Run("scripts/trust.sh", "--seed", "3", "T7", PRINT_ctest="TAVLO_TEST_FULL TAVLO_TEST_SEED",
                  STDOUT_ctest=TOLD)

        self.assertEqual(run.calls[-2:], ["TAVLO_TEST_FULL=1", "TAVLO_TEST_SEED=3"])

    def test_WithoutItemsAllRunAndWithoutASeedOneIsTold(self):
        run = Run("scripts/trust.sh", STDOUT_ctest=TOLD)

        self.assertEqual(len([call for call in run.calls if call.startswith("ctest ")]), len(rows()) + 1)
        self.assertRegex(run.out, r"scripts/trust.sh --seed \d+ T6\n")

    def test_RacesAreSoughtWithBothCompilers(self):
        run = Run("scripts/trust.sh", "T10", STDOUT_ctest="7: [ FIGURE ] T10: 500000 calls")

        self.assertEqual(run.calls[0], "cmake --preset tsan")
        self.assertEqual(run.calls[2], "cmake --preset tsan-clang")
        self.assertIn("     T10: 500000 calls (tsan)\n     T10: 500000 calls (tsan-clang)\n", run.out)

    def test_FailedTestsFailTheItemAndTheOthersStillRun(self):
        run = Run("scripts/trust.sh", "--seed", "3", "T6", "T7", STDOUT_ctest=TOLD, STATUS_ctest="8")

        self.assertEqual(run.status, 1)
        self.assertRegex(run.out, r"T6   P3 P4    FAILED +\d s  scripts/trust.sh --seed 3 T6\n")
        self.assertRegex(run.out, r"T7   P3       FAILED +\d s  scripts/trust.sh --seed 3 T7\n")

    def test_AnItemWithoutAFigureFails(self):
        run = Run("scripts/trust.sh", "T6", STDOUT_ctest="7: [ FIGURE ] T60: 1 round")

        self.assertEqual(run.status, 1)
        self.assertIn("     no figure reached; build/trust/T6-release.log says why (release)\n", run.out)

    def test_FailedBuildRunsNoTest(self):
        run = Run("scripts/trust.sh", "T6", STATUS_cmake="1")

        self.assertEqual((run.status, run.calls), (1, ["cmake --preset release"]))

    def test_WrongArgumentsAreToldBeforeAnythingRuns(self):
        cases = {
            ("--seed",): "give N, the seed, after --seed",
            ("--seed", "T6"): 'the seed is "T6"; give a whole number below 2^63',
            ("--seed", "-1"): 'the seed is "-1"; give a whole number below 2^63',
            ("--seed", "9" * 19): f'the seed is "{"9" * 19}"; give a whole number below 2^63',
            ("--full",): 'no option "--full"',
            ("T6", "T99"): f'no item "T99"; there are: {" ".join(row[0] for row in rows())}',
            ("T6", ""): f'no item ""; there are: {" ".join(row[0] for row in rows())}',
        }
        for arguments, message in cases.items():
            with self.subTest(arguments):
                run = Run("scripts/trust.sh", *arguments)

                self.assertEqual((run.status, run.out, run.calls), (2, "", []))
                self.assertEqual(run.err.splitlines()[0], "trust: " + message)

    def test_HelpNamesTheItems(self):
        run = Run("scripts/trust.sh", "--help")

        self.assertEqual((run.status, run.err, run.calls), (0, "", []))
        self.assertEqual(run.out.splitlines()[-1], f'Items: {" ".join(row[0] for row in rows())}')


class Table(unittest.TestCase):
    def test_EachTargetExists(self):
        lists = "".join(path.read_text(encoding="utf-8") for path in (ROOT / "tests").rglob("CMakeLists.txt"))
        targets = {target for row in rows() for target in row[3].split(",")}

        self.assertGreater(len(targets), 5)
        self.assertEqual([target for target in targets
                          if not re.search(rf"tavlo_(test|program)\({target}\s", lists)], [])

    def test_EachRowFindsATestThatReachesAFigureOfItsItem(self):
        for item, _, _, _, pattern in rows():
            with self.subTest(item):
                self.assertTrue(any(self.reaches(path.read_text(encoding="utf-8"), item, pattern)
                                    for path in (ROOT / "tests").rglob("*.cpp")))

    @staticmethod
    def reaches(text, item, pattern):
        names = [("x/" if kind == "TEST_P" else "") + f"{suite}.{name}" for kind, suite, name in TEST.findall(text)]
        return re.search(rf'reached\("{item}[^0-9]', text) and any(re.search(pattern, name) for name in names)


if __name__ == "__main__":
    unittest.main()
