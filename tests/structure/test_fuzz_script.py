#!/usr/bin/python3
"""What scripts/fuzz.sh builds, runs and tells."""

import unittest

from script_run import ROOT, Run


class Fuzz(unittest.TestCase):
    BUILD = ["cmake --preset fuzz", "cmake --build --preset fuzz --target "]
    OPTIONS = ("-max_len=4096 -timeout=10 -rss_limit_mb=512 -print_final_stats=1 "
               "-artifact_prefix=build/fuzz/found/{0}/ -dict=fuzz/{0}.dict build/fuzz/new/{0} fuzz/corpus/{0}")

    def call(self, target, seconds, seed=0):
        return f"tavlo_fuzz_{target} -max_total_time={seconds} -seed={seed} " + self.OPTIONS.format(target)

    def test_AllTargetsRunOneAfterAnotherForTheMinutesEach(self):
        run = Run("scripts/fuzz.sh", "3")

        self.assertEqual((run.status, run.err), (0, ""))
        self.assertEqual(run.calls, [self.BUILD[0], self.BUILD[1] + "tavlo_fuzz_png tavlo_fuzz_session",
                                     self.call("png", 180), self.call("session", 180)])
        self.assertEqual(run.out.splitlines()[1:3],
                         ["fuzz: png for 180 s",
                          "fuzz: png held: 1234 inputs, 12 kept, 70 edges, 80 features"])

    def test_NamedTargetsRunAloneForTheSecondsFromOneSeed(self):
        run = Run("scripts/fuzz.sh", "--seconds", "20", "session")

        self.assertEqual((run.status, run.err), (0, ""))
        self.assertEqual(run.calls, [self.BUILD[0], self.BUILD[1] + "tavlo_fuzz_session",
                                     self.call("session", 20, 20010101)])

    def test_WhatBreaksOneIsToldWithItsCommandAndTheOthersStillRun(self):
        run = Run("scripts/fuzz.sh", "--seconds", "1", BREAKS="tavlo_fuzz_png")

        self.assertEqual(run.status, 1)
        self.assertEqual(run.err, (
            "fuzz: png broke on build/fuzz/found/png/crash-1 (build/fuzz/png.log says how). Once more:\n"
            "  build/fuzz/fuzz/tavlo_fuzz_png build/fuzz/found/png/crash-1\n"
            "  Mend it, and keep the input in tests/fixtures/found/png.\n"))
        self.assertEqual(run.calls[2:], [self.call("png", 1, 20010101), self.call("session", 1, 20010101)])

    def test_TargetThatDoesNotStartIsAFailureToo(self):
        run = Run("scripts/fuzz.sh", "1", "png", DIES="tavlo_fuzz_png")

        self.assertEqual((run.status, run.err),
                         (1, "fuzz: png ended before it had an input; build/fuzz/png.log says why\n"))

    def test_WrongArgumentsAreToldBeforeAnythingRuns(self):
        cases = {
            (): "give MINUTES, the time for each target",
            ("--seconds",): "give SECONDS, the time for each target",
            ("0",): 'MINUTES is "0"; give a whole number from 1 to 999999',
            ("1.5",): 'MINUTES is "1.5"; give a whole number from 1 to 999999',
            ("--seconds", "png"): 'SECONDS is "png"; give a whole number from 1 to 999999',
            ("--jobs", "0", "1"): '--jobs is "0"; give a whole number from 1 to 99',
            ("1", "png", "bogus"): 'no target "bogus"; there are: png session',
        }
        for arguments, message in cases.items():
            with self.subTest(arguments):
                run = Run("scripts/fuzz.sh", *arguments)

                self.assertEqual((run.status, run.out, run.calls), (2, "", []))
                self.assertEqual(run.err.splitlines()[0], "fuzz: " + message)

    def test_FailedBuildRunsNoTarget(self):
        run = Run("scripts/fuzz.sh", "1", STATUS_cmake="1")

        self.assertEqual((run.status, run.calls), (1, self.BUILD[:1]))

    def test_LegOfCiIsAShortRunOfAllTargets(self):
        run = Run(".ci/run", "fuzz")

        self.assertEqual((run.status, run.err), (0, ""))
        self.assertEqual(sorted(call.split()[:2] for call in run.calls[2:]),
                         [["tavlo_fuzz_png", "-max_total_time=30"], ["tavlo_fuzz_session", "-max_total_time=30"]])

    def test_SeveralAtATimeAllRunAndOneThatBreaksIsTold(self):
        for jobs in ["1", "2", "3"]:
            for broken in ["png", "session"]:
                with self.subTest(jobs=jobs, broken=broken):
                    run = Run("scripts/fuzz.sh", "--jobs", jobs, "--seconds", "1", BREAKS="tavlo_fuzz_" + broken)

                    self.assertEqual((run.status, len(run.calls)), (1, 4))
                    self.assertIn(f"fuzz: {broken} broke on ", run.err)

    def test_EachTargetHasADictionarySeedsAProgramAndAReplay(self):
        names = sorted(path.stem for path in (ROOT / "fuzz").glob("*.dict"))
        programs = (ROOT / "fuzz/CMakeLists.txt").read_text(encoding="utf-8")
        replays = (ROOT / "tests/fuzz/CMakeLists.txt").read_text(encoding="utf-8")

        self.assertEqual(len(names), len(list((ROOT / "fuzz").glob("*Fuzz.cpp"))))
        self.assertEqual(names, sorted(path.name for path in (ROOT / "fuzz/corpus").iterdir()))
        self.assertEqual([name for name in names if f"tavlo_fuzz({name} " not in programs], [])
        self.assertEqual([name for name in names if f"tavlo_replay({name} " not in replays], [])


if __name__ == "__main__":
    unittest.main()
