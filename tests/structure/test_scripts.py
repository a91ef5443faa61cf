#!/usr/bin/python3
"""What the shell scripts call and tell."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from script_run import ROOT, Run

SCRIPTS = ["scripts/abi.sh", "scripts/bench.sh", "scripts/coverage.sh", "scripts/docs.sh", "scripts/fuzz.sh",
           "scripts/release.sh", "scripts/setup.sh", "scripts/test.sh", "scripts/trust.sh", "scripts/demo.sh", ".ci/run"]

UPDATE = "apt-get update --quiet --quiet"
INSTALL = "apt-get install --yes --no-install-recommends "
AS_ROOT = "sudo env DEBIAN_FRONTEND=noninteractive "


class Setup(unittest.TestCase):
    def test_WithEverythingThereItPrintsOneLineAndAsksNobody(self):
        run = Run("scripts/setup.sh", FAKE_UID="1000")

        self.assertEqual((run.status, run.out, run.err), (0, "setup: all 26 packages are there\n", ""))
        self.assertEqual(run.calls, [])

    def test_RootInstallsWhatIsMissingWithoutSudo(self):
        run = Run("scripts/setup.sh", without=["sudo"], REMOVED="strace", UNKNOWN="cmake")

        self.assertEqual((run.status, run.out, run.err), (0, "setup: installing cmake strace\n", ""))
        self.assertEqual(run.calls, [UPDATE, INSTALL + "cmake strace"])

    def test_OthersInstallWithSudo(self):
        run = Run("scripts/setup.sh", FAKE_UID="1000", UNKNOWN="g++")

        self.assertEqual(run.status, 0)
        self.assertEqual(run.calls, [AS_ROOT + UPDATE, UPDATE, AS_ROOT + INSTALL + "g++", INSTALL + "g++"])

    def test_WithNeitherItSaysWhatIsMissing(self):
        run = Run("scripts/setup.sh", without=["sudo"], FAKE_UID="1000", UNKNOWN="g++ strace")

        self.assertEqual((run.status, run.err), (1, "setup: needs root or sudo to install: g++ strace\n"))
        self.assertEqual(run.calls, [])

    def test_FailedUpdateEndsIt(self):
        run = Run("scripts/setup.sh", UNKNOWN="g++", STATUS_apt_get="100")

        self.assertEqual((run.status, run.err), (1, "setup: apt-get update failed; is there a network?\n"))
        self.assertEqual(run.calls, [UPDATE])

    def test_OtherSystemsAreToldThePackages(self):
        for tool in ("dpkg-query", "apt-get"):
            with self.subTest(tool):
                run = Run("scripts/setup.sh", without=[tool])

                self.assertEqual((run.status, run.calls), (1, []))
                self.assertTrue(run.err.startswith("setup: this is no Debian system; install by hand: g++ "), run.err)

    def test_CiBringsTheSecondCompilerItsToolsAndThoseForOtherProcessors(self):
        missing = "clang libclang-rt-14-dev clang-format-14 clang-tidy-14 gcovr g++-aarch64-linux-gnu qemu-user"

        run = Run("scripts/setup.sh", "--ci", UNKNOWN=missing)

        self.assertEqual(run.calls, [UPDATE, INSTALL + missing])

    def test_TheServerOfTheBenchmarksIsNotStartedByItsInstallation(self):
        with tempfile.TemporaryDirectory() as folder:
            policy = Path(folder, "policy")
            run = Run("scripts/setup.sh", "--bench", UNKNOWN="nginx-light", POLICY_FILE=str(policy),
                      DURING_apt_get='echo "policy $(stat -c %a $POLICY_FILE) $(sh $POLICY_FILE; echo $?)" >> "$CALLS"')
            left = policy.exists()

        self.assertEqual(run.status, 0)
        self.assertEqual(run.calls, [UPDATE, INSTALL + "nginx-light", "policy 755 101", "update-rc.d nginx disable"])
        self.assertFalse(left)

    def test_APolicyForServicesThatIsThereStays(self):
        with tempfile.TemporaryDirectory() as folder:
            policy = Path(folder, "policy")
            policy.write_text("mine", encoding="utf-8")
            Run("scripts/setup.sh", "--bench", UNKNOWN="nginx-light", POLICY_FILE=str(policy))

            self.assertEqual(policy.read_text(encoding="utf-8"), "mine")


class Test(unittest.TestCase):
    def test_BuildsAndTestsAndPassesArgumentsOn(self):
        run = Run("scripts/test.sh", "-R", "a b", STDOUT_ctest="Total Test time (real) = 1 sec")

        self.assertEqual(run.status, 0)
        self.assertEqual(run.calls, ["cmake --preset debug", "cmake --build --preset debug",
                                     "ctest --preset debug --parallel 3 -R a b"])
        self.assertEqual(run.out.splitlines()[-1], "Total Test time (real) = 1 sec")

    def test_StatusIsThatOfTheTests(self):
        self.assertEqual(Run("scripts/test.sh", STATUS_ctest="8").status, 8)

    def test_FailedBuildRunsNoTest(self):
        run = Run("scripts/test.sh", STATUS_cmake="1")

        self.assertEqual((run.status, run.calls), (1, ["cmake --preset debug"]))


class Demo(unittest.TestCase):
    def test_ShowsTheProgramInAContainerThatIsGoneAfterwards(self):
        run = Run("scripts/demo.sh")

        self.assertEqual((run.status, run.out), (0, "setup: all 26 packages are there\ncontainer is there\n"))
        self.assertEqual(run.calls, ["cmake --preset release", "cmake --build --preset release --target tavlo",
                                     "tavlo demo --container DIR"])
        self.assertFalse(run.container_left)

    def test_FailureOfTheProgramIsItsOwn(self):
        run = Run("scripts/demo.sh", STATUS_tavlo="1")

        self.assertEqual((run.status, run.container_left), (1, False))


class Bench(unittest.TestCase):
    BUILD = ["cmake --preset release", "cmake --build --preset release --target tavlo_bench tavlo_footprint"]
    TABLE = ("table.py build/release/bench/tavlo_bench --results build/bench --footprint build/release/bench/footprint")

    def test_BuildsAndMakesTheTable(self):
        run = Run("scripts/bench.sh")

        self.assertEqual((run.status, run.out), (0, "setup: all 34 packages are there\n"))
        self.assertEqual(run.calls, [*self.BUILD, self.TABLE])

    def test_PassesArgumentsOnAndStatusBack(self):
        run = Run("scripts/bench.sh", "--only", "urlEncode", "--repetitions", "2", STATUS_table="1")

        self.assertEqual((run.status, run.calls[-1]), (1, self.TABLE + " --only urlEncode --repetitions 2"))

    def test_UnusableArgumentIsAUsageErrorBeforeAnythingRuns(self):
        for arguments in (["--only"], ["--only", "a", "--document"], ["--repetitions", "0"], ["--repetitions", "some"]):
            with self.subTest(arguments):
                run = Run("scripts/bench.sh", *arguments)

                self.assertEqual((run.status, run.out, run.calls), (2, "", []))
                self.assertTrue(run.err.startswith("Usage: scripts/bench.sh "), run.err)


class Ci(unittest.TestCase):
    def test_FirstLegIsTheSuiteAndItsFailureEndsTheRun(self):
        run = Run(".ci/run", STATUS_ctest="8")

        self.assertEqual(run.status, 1)
        self.assertEqual(run.calls[-1], "ctest --preset debug --parallel 3")
        self.assertIn("==> suite failed after", run.err)

    def test_FailureInTheMiddleOfALegEndsIt(self):
        run = Run(".ci/run", "asan", "tsan", STATUS_cmake="1")

        self.assertEqual((run.status, run.calls), (1, ["cmake --preset asan"]))

    def test_FailureAnywhereInAPipeEndsTheLeg(self):
        for failing in ("STATUS_git", "STATUS_clang_format_14"):
            with self.subTest(failing):
                run = Run(".ci/run", "format", STDOUT_git="common/Text.h", **{failing: "1"})

                self.assertEqual(run.status, 1)
                self.assertIn("==> format failed after", run.err)

    def test_NamedLegsRunInTheirOrder(self):
        run = Run(".ci/run", "tsan_clang", "shell")

        self.assertEqual(run.status, 0)
        self.assertEqual(run.calls, ["cmake --preset tsan-clang",
                                     "cmake --build --preset tsan-clang --target tavlo_thread_tests",
                                     "ctest --preset tsan-clang --parallel 3 -R Thread",
                                     "shellcheck scripts/abi.sh scripts/bench.sh scripts/coverage.sh scripts/demo.sh "
                                     "scripts/docs.sh scripts/fuzz.sh scripts/release.sh scripts/setup.sh "
                                     "scripts/test.sh scripts/trust.sh .ci/run"])
        self.assertIn("==> shell passed in", run.out)
        self.assertIn("==> all passed in", run.out)

    def test_ToolsBringTheSecondCompilerAndThePeers(self):
        run = Run(".ci/run", "tools")

        self.assertEqual((run.status, run.calls), (0, []))
        self.assertRegex(run.out, r"setup: all \d+ packages are there\n")

    def test_ReleaseRunsAllRacesBriefly(self):
        run = Run(".ci/run", "release")

        self.assertEqual(run.calls[:3], [
            "cmake --preset release", "cmake --build --preset release --target tavlo tavlo_bench tavlo_footprint",
            "ctest --preset release -R ^Bench|Hardened$"])

    def test_PackagesAreMadeAnew(self):
        run = Run(".ci/run", "packages")

        self.assertEqual(run.calls, ["cmake --preset packages", "cmake --build --preset packages", "cpack --preset packages"])

    def test_OtherProcessorsRunAllTestsOfTheirOwn(self):
        for leg in ("m32", "arm64", "s390x"):
            with self.subTest(leg):
                run = Run(".ci/run", leg)

                self.assertEqual(run.calls, [f"cmake --preset {leg}", f"cmake --build --preset {leg}",
                                             f"ctest --preset {leg} --parallel 3"])

    def test_UnknownLegIsAUsageErrorBeforeAnythingRuns(self):
        run = Run(".ci/run", "shell", "bogus")

        self.assertEqual((run.status, run.calls), (2, []))


class AllScripts(unittest.TestCase):
    def test_HelpIsPrintedAndNothingIsDone(self):
        for script in ("scripts/bench.sh", "scripts/coverage.sh", "scripts/setup.sh", "scripts/test.sh",
                       "scripts/trust.sh", "scripts/demo.sh"):
            with self.subTest(script):
                run = Run(script, "-h")

                self.assertEqual((run.status, run.err, run.calls), (0, "", []))
                self.assertTrue(run.out.startswith(f"Usage: {script} "), run.out)

    def test_UnknownArgumentIsAUsageError(self):
        for script in ("scripts/bench.sh", "scripts/coverage.sh", "scripts/setup.sh", "scripts/trust.sh",
                       "scripts/demo.sh"):
            with self.subTest(script):
                run = Run(script, "--bogus")

                self.assertEqual((run.status, run.out, run.calls), (2, "", []))

    def test_ShellFindsNothingWrong(self):
        subprocess.run(["bash", "-n", *SCRIPTS], cwd=ROOT, check=True)
        if not shutil.which("shellcheck"):
            self.skipTest("shellcheck is missing")
        subprocess.run(["shellcheck", *SCRIPTS], cwd=ROOT, check=True)

    def test_EachIsExecutable(self):
        self.assertEqual([script for script in SCRIPTS if not os.access(ROOT / script, os.X_OK)], [])


if __name__ == "__main__":
    unittest.main()
