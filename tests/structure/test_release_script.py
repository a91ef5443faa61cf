#!/usr/bin/python3
"""What scripts/release.sh asks of a tree, and the archive that it makes.

Usage: test_release_script.py ROOT COMPILER
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

ROOT, COMPILER = Path(sys.argv.pop(1)), sys.argv.pop(1)
TABLE = "| a | b |\n|---|---|\n| 1 | 2 |\n"
PAGES = ("performance", "reliability", "security", "wire-contract")
SMALL = {
    "CMakeLists.txt": 'project(Tavlo VERSION 1.2.10 DESCRIPTION "text" LANGUAGES CXX)\n',
    "CHANGELOG.md": "# Changelog\n\n## [1.2.10] - 2024-02-29\n\n- A thing.\n\n## [1.2.9] - 2024-01-01\n\n- First.\n",
    **{f"docs/{page}.md": TABLE for page in PAGES},
    "scripts/test.sh": "#!/bin/sh\nexit ${SUITE:-0}\n",
}
CLEAN = {**os.environ, "GIT_CONFIG_GLOBAL": "/dev/null", "GIT_CONFIG_NOSYSTEM": "1", "GIT_AUTHOR_NAME": "A",
         "GIT_AUTHOR_EMAIL": "a@example.invalid", "GIT_COMMITTER_NAME": "A", "GIT_COMMITTER_EMAIL": "a@example.invalid"}


def call(*command, cwd, **environment):
    return subprocess.run([str(word) for word in command], cwd=cwd, capture_output=True, text=True,
                          env={**CLEAN, **environment})


def checked(*command, cwd, **environment):
    done = call(*command, cwd=cwd, **environment)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def commit(tree, *tags):
    checked("git", "init", "--quiet", cwd=tree)
    checked("git", "add", "--all", cwd=tree)
    checked("git", "commit", "--quiet", "--message", "All", cwd=tree)
    for tag in tags:
        checked("git", "tag", tag, cwd=tree)


@unittest.skipUnless(shutil.which("git"), "there is no git")
class Release(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name).resolve()

    def small(self, *tags, name="small", **changes):
        """A tree of a few files, of which `changes` says others."""
        tree = self.folder / name
        for file, text in {**SMALL, **changes}.items():
            (tree / file).parent.mkdir(parents=True, exist_ok=True)
            (tree / file).write_text(text, encoding="utf-8")
        (tree / "scripts/test.sh").chmod(0o755)
        shutil.copy(ROOT / "scripts/release.sh", tree / "scripts")
        commit(tree, *tags)
        return tree

    def complaints(self, tree, *arguments, **environment):
        done = call(tree / "scripts/release.sh", "--check", *arguments, cwd="/", **environment)
        self.assertEqual(done.returncode, 1, done.stdout)
        return done.stderr.splitlines()

    def test_SoundTreeIsReadyAndCheckingMakesNothing(self):
        tree = self.small("v1.2.9", "v0.9")

        done = call(tree / "scripts/release.sh", "--check", "--suite", cwd="/")

        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout.splitlines(), [
            "release: the version is 1.2.10", "release: the tree is clean", "release: the release before it is v1.2.9",
            "release: the changelog has it, of 2024-02-29", "release: the pages have their tables",
            "release: the suite is green"])
        self.assertEqual(checked("git", "status", "--porcelain", "--ignored", cwd=tree), "")

    def test_EachFaultIsToldWithItsPlaceAndWhatToDo(self):
        heading = 'CHANGELOG.md: the newest heading is "{}"; make it "## [1.2.10] - YEAR-MONTH-DAY"'
        for name, changes, complaint in (
            ("version", {"CMakeLists.txt": SMALL["CMakeLists.txt"].replace("1.2.10", "1.02.1")},
             'CMakeLists.txt: the version is "1.02.1"; give project() three numbers, MAJOR.MINOR.PATCH'),
            ("unreleased", {"CHANGELOG.md": "## [Unreleased]\n\n- A thing.\n"}, heading.format("## [Unreleased]")),
            ("undated", {"CHANGELOG.md": "## [1.2.10]\n\n- A thing.\n"}, heading.format("## [1.2.10]")),
            ("none", {"CHANGELOG.md": "# Changelog\n"}, heading.format("")),
            ("day", {"CHANGELOG.md": "## [1.2.10] - 2023-02-29\n\n- A thing.\n"},
             "CHANGELOG.md: 2023-02-29 is no date; give the day of the release"),
            ("empty", {"CHANGELOG.md": "## [1.2.10] - 2024-02-29\n\n## [1.2.9] - 2024-01-01\n\n- First.\n"},
             "CHANGELOG.md: 1.2.10 has no entry; say what changed"),
            ("page", {"docs/performance.md": "None.\n"},
             "docs/performance.md: there is no table; make it anew (CONTRIBUTING.md says how)"),
        ):
            with self.subTest(name):
                self.assertIn("release: " + complaint, self.complaints(self.small(name=name, **changes)))

    def test_VersionThatIsNotAfterTheLastTagIsTold(self):
        for tag in ("v1.2.10", "v1.3.0", "v2.0.0"):
            with self.subTest(tag):
                self.assertEqual(self.complaints(self.small("v1.2.9", tag, name=tag)), [
                    f"release: CMakeLists.txt: the version 1.2.10 is not after that of the last tag, {tag}; raise it",
                    "release: not ready, 1 to mend"])

    def test_ChangedFilesAndTreesThatAreNoCloneAreTold(self):
        tree, unpacked = self.small(), self.folder / "small/unpacked"
        (tree / "new file").touch()

        self.assertEqual(self.complaints(tree)[0],
                         'release: the tree is not clean; commit or remove: "new file"')

        shutil.copytree(tree, unpacked, ignore=shutil.ignore_patterns(".git", "unpacked"))
        self.assertEqual(self.complaints(unpacked)[0],
                         f"release: {unpacked} is no clone of the repository; release from one")

    def test_RedSuiteIsNotReleased(self):
        self.assertEqual(self.complaints(self.small(), "--suite", SUITE="8")[0],
                         "release: the suite is red; mend what failed above")

    def test_WrongArgumentsAreUsageErrors(self):
        tree = self.small()
        folder = "give DIR, where the archive goes, after --output"
        for arguments, error in ((["--bogus"], 'no option "--bogus"'), (["--output"], folder), (["--output", ""], folder),
                                 (["--output", "--check"], folder), (["--check", ""], 'unexpected ""; the version is '
                                                                     "that of CMakeLists.txt"),
                                 (["1.2.10"], 'unexpected "1.2.10"; the version is that of CMakeLists.txt')):
            with self.subTest(arguments=arguments):
                done = call(tree / "scripts/release.sh", *arguments, cwd="/")

                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertTrue(done.stderr.startswith(f"release: {error}\nUsage: scripts/release.sh "), done.stderr)

    def test_LongListsOfTagsAndEntriesAreReadToTheirEnds(self):
        entries = "- A thing.\n" * 10_000
        tree = self.small("v1.2.9", **{"CHANGELOG.md": f"## [1.2.10] - 2024-02-29\n\n{entries}"})
        head = checked("git", "rev-parse", "HEAD", cwd=tree).strip()
        packed = "".join(f"{head} refs/tags/v0.{number}.0\n" for number in range(1000, 3000))
        (tree / ".git/packed-refs").write_text(packed, encoding="utf-8")

        done = call(tree / "scripts/release.sh", "--check", cwd="/")

        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("release: the release before it is v1.2.9\n", done.stdout)

    def test_SameCommitGivesTheSameBytesWhereverAndWheneverItIsPacked(self):
        first = self.small("v1.2.9")
        second = self.folder / "elsewhere/another name"
        checked("git", "clone", "--quiet", first, second, cwd="/")
        os.utime(second / "CHANGELOG.md", (1, 1))

        one = checked(first / "scripts/release.sh", "--output", self.folder / "one", cwd="/", TZ="UTC")
        two = checked("sh", "-c", f"umask 077; '{second}/scripts/release.sh' --output ../two", cwd=first, TZ="Asia/Tokyo")

        archives = [self.folder / name / "tavlo-1.2.10.tar.gz" for name in ("one", "two")]
        contents = archives[0].read_bytes()
        digest = f"{hashlib.sha256(contents).hexdigest()}  tavlo-1.2.10.tar.gz\n"
        self.assertEqual(contents, archives[1].read_bytes())
        self.assertEqual((digest in one, digest in two), (True, True))
        self.assertEqual(archives[0].with_name("tavlo-1.2.10.tar.gz.sha256").read_text(encoding="utf-8"), digest)
        with tarfile.open(archives[0]) as archive:
            self.assertEqual({member.uid for member in archive} | {member.gid for member in archive}, {0})

    def test_ArchiveOfThisTreeIsConfiguredAndBuildsWithoutGit(self):
        tree = self.folder / "tree"
        shutil.copytree(ROOT, tree, ignore=shutil.ignore_patterns(".git", "build", ".cache", "__pycache__"), symlinks=True)
        changelog = tree / "CHANGELOG.md"
        version = re.search(r"Tavlo VERSION (\S+)", (tree / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
        changelog.write_text(re.sub(r"^## \[Unreleased\]$", f"## [{version}] - 2024-02-29", changelog.read_text(encoding="utf-8"),
                                    count=1, flags=re.MULTILINE), encoding="utf-8")
        commit(tree)
        checked(tree / "scripts/release.sh", "--output", self.folder, cwd="/")
        with tarfile.open(self.folder / f"tavlo-{version}.tar.gz") as archive:
            archive.extractall(self.folder / "bare")
        tools = self.folder / "tools"
        tools.mkdir()
        (tools / "git").write_text("#!/bin/sh\necho there is no git >&2\nexit 127\n", encoding="utf-8")
        (tools / "git").chmod(0o755)
        path = {"PATH": f"{tools}:{os.environ['PATH']}"}

        checked("cmake", "-S", f"tavlo-{version}", "-B", "build", "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                "-DTAVLO_BUILD_TESTS=OFF", "-DTAVLO_BUILD_BENCH=OFF", cwd=self.folder / "bare", **path)
        checked("ninja", "-C", "build", "CMakeFiles/tavlo_utility.dir/common/Md5.cpp.o", cwd=self.folder / "bare", **path)


if __name__ == "__main__":
    unittest.main()
