#!/usr/bin/python3
"""The shell scripts, run in a copy of their folders with every tool they call replaced by one that writes down
how it was called."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SCRIPTS = ["scripts/bench.sh", "scripts/setup.sh", "scripts/test.sh", "scripts/demo.sh", ".ci/run"]
REAL_TOOLS = ["bash", "dirname", "env", "grep", "mktemp", "rm", "xargs", "cat"]

# A stand-in logs its name and arguments, prints what STDOUT_<name> says and ends with STATUS_<name>.
STAND_IN = """
name=$(basename "$0" | tr -c 'a-z0-9\\n' _)
echo "$(basename "$0") $*" >> "$CALLS"
out=STDOUT_$name status=STATUS_$name
[ -z "${!out:-}" ] || echo "${!out}"
exit "${!status:-0}"
"""
SPECIAL = {
    "dpkg-query": """
[[ " ${UNKNOWN:-} " == *" ${@: -1} "* ]] && exit 1
[[ " ${REMOVED:-} " == *" ${@: -1} "* ]] && echo config-files || echo installed
""",
    "sudo": 'echo "sudo $*" >> "$CALLS"; exec "$@"',
    "id": 'echo "${FAKE_UID:-0}"',
    "nproc": "echo 3",
}
STAND_INS = ["apt-get", "cmake", "ctest", "git", "clang-format-14", "clang-tidy-14", "shellcheck"]
DEMO = """
echo "tavlo $*" | sed "s|${@: -1}|DIR|" >> "$CALLS"
[ -d "${@: -1}" ] && echo "container is there" && echo "${@: -1}" > container
exit "${STATUS_tavlo:-0}"
"""

TABLE = """
import os, sys
with open(os.environ["CALLS"], "a") as calls: print("table.py", *sys.argv[1:], file=calls)
sys.exit(int(os.environ.get("STATUS_table", "0")))
"""

UPDATE = "apt-get update --quiet --quiet"
INSTALL = "apt-get install --yes --no-install-recommends "
AS_ROOT = "sudo env DEBIAN_FRONTEND=noninteractive "


class Run:
    """One run of a script, from another folder than the tree's."""

    def __init__(self, script, *arguments, without=(), **environment):
        with tempfile.TemporaryDirectory() as folder:
            tree, tools = Path(folder, "tree"), Path(folder, "tools")
            shutil.copytree(ROOT / "scripts", tree / "scripts")
            shutil.copytree(ROOT / ".ci", tree / ".ci")
            for name in {*STAND_INS, *SPECIAL}.difference(without):
                self.write(tools / name, SPECIAL.get(name, STAND_IN))
            for name in REAL_TOOLS:
                (tools / name).symlink_to(shutil.which(name, path="/usr/bin:/bin"))
            self.write(tree / "build/release/cli/tavlo", DEMO)
            (tree / "bench").mkdir()
            (tree / "bench/table.py").write_text(TABLE, encoding="utf-8")
            calls = Path(folder, "calls")
            calls.touch()
            done = subprocess.run(
                ["/bin/bash", tree / script, *arguments], cwd="/", stdin=subprocess.DEVNULL, capture_output=True,
                text=True, env={"PATH": str(tools), "CALLS": str(calls), "TMPDIR": folder, **environment})
            self.status, self.out, self.err = done.returncode, done.stdout, done.stderr
            self.calls = calls.read_text(encoding="utf-8").splitlines()
            container = tree / "container"
            self.container_left = container.exists() and Path(container.read_text(encoding="utf-8").strip()).exists()

    @staticmethod
    def write(path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f"#!/bin/bash\nPATH=$PATH:/usr/bin:/bin\n{text}", encoding="utf-8")
        path.chmod(0o755)


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

    def test_CiBringsTheSecondCompilerAndItsTools(self):
        run = Run("scripts/setup.sh", "--ci", UNKNOWN="clang libclang-rt-14-dev clang-format-14 clang-tidy-14")

        self.assertEqual(run.calls, [UPDATE, INSTALL + "clang libclang-rt-14-dev clang-format-14 clang-tidy-14"])


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

        self.assertEqual((run.status, run.out), (0, "setup: all 33 packages are there\n"))
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
        self.assertEqual(run.calls, ["cmake --preset tsan-clang", "cmake --build --preset tsan-clang",
                                     "ctest --preset tsan-clang --parallel 3 -R Thread",
                                     "shellcheck scripts/bench.sh scripts/demo.sh scripts/setup.sh scripts/test.sh .ci/run"])
        self.assertIn("==> shell passed in", run.out)
        self.assertIn("==> all passed in", run.out)

    def test_ToolsBringTheSecondCompilerAndThePeers(self):
        run = Run(".ci/run", "tools")

        self.assertEqual((run.status, run.calls), (0, []))
        self.assertIn("setup: all 37 packages are there\n", run.out)

    def test_ReleaseRunsAllRacesBriefly(self):
        run = Run(".ci/run", "release")

        self.assertEqual(run.calls[:3], [
            "cmake --preset release", "cmake --build --preset release --target tavlo tavlo_bench tavlo_footprint",
            "ctest --preset release -R ^Bench"])

    def test_UnknownLegIsAUsageErrorBeforeAnythingRuns(self):
        run = Run(".ci/run", "shell", "bogus")

        self.assertEqual((run.status, run.calls), (2, []))


class AllScripts(unittest.TestCase):
    def test_HelpIsPrintedAndNothingIsDone(self):
        for script in ("scripts/bench.sh", "scripts/setup.sh", "scripts/test.sh", "scripts/demo.sh"):
            with self.subTest(script):
                run = Run(script, "-h")

                self.assertEqual((run.status, run.err, run.calls), (0, "", []))
                self.assertTrue(run.out.startswith(f"Usage: {script} "), run.out)

    def test_UnknownArgumentIsAUsageError(self):
        for script in ("scripts/bench.sh", "scripts/setup.sh", "scripts/demo.sh"):
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
