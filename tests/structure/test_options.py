#!/usr/bin/python3
"""The options of the test programs, and what a red run prints.

Usage: test_options.py PROGRAM    a test program of which some tests fail
"""

import os
import re
import subprocess
import sys
import unittest

PROGRAM = sys.argv.pop(1)
OPTIONS = """
Beside the options of the test framework there are:
  --seed=N  the seed of random tests, a whole number below 2^64
  --full    as many rounds, threads and bytes as the plan of tests asks for
"""


def run(*arguments, **environment):
    clean = {name: value for name, value in os.environ.items() if not name.startswith(("TAVLO_TEST", "GTEST"))}
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, env={**clean, **environment})


def lines(pattern, done):
    return re.findall(f"^{pattern}$", done.stdout, re.MULTILINE)


class Options(unittest.TestCase):
    def test_FailedRandomTestPrintsTheCommandThatRepeatsIt(self):
        command = f"Once more: {PROGRAM} --gtest_filter=Failing.WithASeed --seed=20010101"

        self.assertEqual(lines("Once more: .*", run()), [command])

    def test_ThatCommandRepeatsIt(self):
        self.assertEqual(lines("seed .*", run("--gtest_filter=Failing.WithASeed", "--seed=7")), ["seed 7"])
        self.assertEqual(lines("seed .*", run("--gtest_filter=Failing.WithASeed", "--seed", "0")), ["seed 0"])
        self.assertEqual(run("--gtest_filter=Failing.WithASeed", "--seed", "0").returncode, 0)

    def test_EnvironmentGivesASeedToo(self):
        done = run("--gtest_filter=Passing.*", TAVLO_TEST_SEED="18446744073709551615")

        self.assertEqual((done.returncode, lines("seed .*", done)), (0, ["seed 18446744073709551615"]))

    def test_FullFiguresComeByOptionOrEnvironmentWithAnotherSeedEachTime(self):
        by_option = run("--full", "--gtest_filter=Failing.WithASeed")
        by_environment = run("--gtest_filter=Failing.WithASeed", TAVLO_TEST_FULL="1")

        self.assertEqual(lines(r"\[ FIGURE \] .*", by_option), ["[ FIGURE ] T0: 1000 rounds"])
        self.assertEqual(lines(r"\[ FIGURE \] .*", by_environment), ["[ FIGURE ] T0: 1000 rounds"])
        self.assertNotEqual(lines("seed .*", by_option), lines("seed .*", by_environment))
        self.assertRegex(lines("Once more: .*", by_option)[0], r"--seed=\d+ --full$")

    def test_WrongOptionsAreTold(self):
        for arguments, complaint in [
            (["--sed=1"], 'no option "--sed=1"'),
            (["once"], 'no option "once"'),
            (["--seed=1x"], 'the seed is "1x"; give a whole number'),
            (["--seed="], 'the seed is ""; give a whole number'),
            (["--seed"], 'the seed is ""; give a whole number'),
            (["--seed=-1"], 'the seed is "-1"; give a whole number'),
            (["--seed=18446744073709551616"], 'the seed is "18446744073709551616"; give a whole number'),
        ]:
            with self.subTest(arguments=arguments):
                done = run(*arguments)

                self.assertEqual((done.returncode, done.stderr), (2, complaint + OPTIONS))


if __name__ == "__main__":
    unittest.main()
