#!/usr/bin/python3
"""Does what docs/getting-started.md says, in an empty folder, from what is installed.

Usage: test_pages.py ROOT BUILD COMPILER [PAGE]    BUILD holds the libraries that the page would build

A block's first line says what it is: ```LANGUAGE file=PATH is written there, ```sh is run, and ```text is all that the
block before it must have printed. A page's commands that build the libraries themselves are not run; their options are
looked up instead.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

BLOCK = re.compile(r"^```(\S*)[ ]?([^\n]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
CONFIGURE, BUILD_LINE = "cmake -S tavlo ", "cmake --build tavlo-build"


class PageError(Exception):
    pass


class Page:
    def __init__(self, text, root, build, folder, compiler):
        self.text, self.root, self.folder, self.compiler = text, Path(root), Path(folder), compiler
        (self.folder / "tavlo").symlink_to(root)
        (self.folder / "tavlo-build").symlink_to(build)
        self.printed = None

    def follow(self):
        """Raises PageError, which tells the line of the page. Answers how many blocks were written, run, compared."""
        done = {"file": 0, "sh": 0, "text": 0}
        for block in BLOCK.finditer(self.text):
            language, words, body = block.groups()
            line = self.text.count("\n", 0, block.start()) + 1
            try:
                done[self.take(language, words, body)] += 1
            except PageError as error:
                raise PageError(f"line {line}: {error}") from None
        return done

    def take(self, language, words, body):
        if words.startswith("file="):
            path = self.folder / words.removeprefix("file=")
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(body, encoding="utf-8")
            return "file"
        if language == "sh" and not words:
            self.run(body)
            return "sh"
        if language == "text" and not words:
            if body != self.printed:
                raise PageError(f"the page says\n{body}but this was printed:\n{self.printed}")
            return "text"
        raise PageError(f"a block \"{language} {words}\" is neither a file nor run nor compared")

    def run(self, body):
        lines = []
        for line in body.splitlines():
            if line.startswith(CONFIGURE):
                self.look_up_options(line)
            elif line != BUILD_LINE:
                lines.append(line)
        environment = {"PATH": os.environ["PATH"], "HOME": str(self.folder), "LC_ALL": "C", "CXX": self.compiler}
        for name in ("CMAKE_CXX_COMPILER_LAUNCHER", "CCACHE_DIR"):
            if name in os.environ:
                environment[name] = os.environ[name]
        done = subprocess.run(["bash", "-euo", "pipefail", "-c", "\n".join(lines)], cwd=self.folder, env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            raise PageError(f"status {done.returncode} of\n{body}{done.stdout}{done.stderr}")
        # What a build tells of its progress is not what a page is about.
        self.printed = "".join(line + "\n" for line in done.stdout.splitlines()
                               if not re.match(r"-- |\[\d+/\d+\]|ninja: ", line))

    def look_up_options(self, line):
        known = (self.root / "CMakeLists.txt").read_text(encoding="utf-8")
        for option in re.findall(r"-D(TAVLO_\w+)=", line):
            if f"option({option} " not in known:
                raise PageError(f"there is no option {option}")


def follow(text, root="/nowhere", build="/nowhere", compiler="c++"):
    with tempfile.TemporaryDirectory() as folder:
        return Page(text, root, build, folder, compiler).follow()


class Runner(unittest.TestCase):
    def test_ComparesWhatWasPrinted(self):
        with self.assertRaisesRegex(PageError, "line 4: the page says\nb\nbut this was printed:\na\n"):
            follow("```sh\necho a\n```\n```text\nb\n```\n")

    def test_FailedCommandIsTold(self):
        with self.assertRaisesRegex(PageError, "line 1: status 3 of\n"):
            follow("```sh\nexit 3\n```\n")

    def test_BlockThatNothingTriesIsAMistake(self):
        with self.assertRaisesRegex(PageError, 'line 1: a block "cpp " is neither'):
            follow("```cpp\nint x;\n```\n")

    def test_UnknownOptionIsAMistake(self):
        with tempfile.TemporaryDirectory() as root:
            Path(root, "CMakeLists.txt").write_text('option(TAVLO_A "a" ON)\n')
            self.assertEqual(follow("```sh\ncmake -S tavlo -DTAVLO_A=OFF\n```\n", root)["sh"], 1)
            with self.assertRaisesRegex(PageError, "there is no option TAVLO_B"):
                follow("```sh\ncmake -S tavlo -DTAVLO_B=OFF\n```\n", root)


class GettingStarted(unittest.TestCase):
    def test_DoesWhatThePageSays(self):
        done = follow((ROOT / "docs/getting-started.md").read_text(encoding="utf-8"), ROOT, BUILD, COMPILER)

        self.assertGreaterEqual(done["file"], 5)
        self.assertGreaterEqual(done["text"], 4)


class Readme(unittest.TestCase):
    def test_TenLinesOfUseCompile(self):
        text = (ROOT / "README.md").read_text(encoding="utf-8")
        blocks = [body for language, _, body in BLOCK.findall(text) if language == "cpp"]

        self.assertEqual(len(blocks), 1)
        self.assertLessEqual(blocks[0].count("\n"), 10)
        done = subprocess.run([COMPILER, "-std=c++20", "-fsyntax-only", f"-I{BUILD}/include/tavlo", "-x", "c++", "-"],
                              input=blocks[0], stderr=subprocess.PIPE, text=True, cwd="/")
        self.assertEqual(done.returncode, 0, done.stderr)


if __name__ == "__main__":
    ROOT, BUILD, COMPILER = Path(sys.argv.pop(1)), Path(sys.argv.pop(1)), sys.argv.pop(1)
    unittest.main()
