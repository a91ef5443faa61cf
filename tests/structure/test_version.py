#!/usr/bin/python3
"""The version is said in one place, project() in CMakeLists.txt, and its copies are the same; the changelog's newest
heading goes with it.

Usage: test_version.py ROOT
"""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(sys.argv.pop(1))
COPIES = {"objc/TavloUtility.podspec.json"}  # it is read as it stands; raise the version there, too
SKIPPED = {".git", "build", ".cache", "__pycache__"}
PLACE, CHANGELOG = ROOT / "CMakeLists.txt", ROOT / "CHANGELOG.md"


def version():
    return re.search(r"^project\(Tavlo VERSION (\S+) ", PLACE.read_text(encoding="utf-8"), re.MULTILINE)[1]


def texts():
    """All files of the tree that are text."""
    for path in sorted(ROOT.rglob("*")):
        if path.is_file() and not SKIPPED & set(path.relative_to(ROOT).parts):
            try:
                yield path.relative_to(ROOT).as_posix(), path.read_text(encoding="utf-8")
            except UnicodeDecodeError:
                pass


class Version(unittest.TestCase):
    def test_IsThreeNumbers(self):
        self.assertRegex(version(), r"^(0|[1-9]\d*)\.(0|[1-9]\d*)\.(0|[1-9]\d*)$")

    def test_StandsInNoSecondPlaceButWhereItCannotBeReadFromTheFirst(self):
        spelt = re.compile(rf"(?<![\d.]){re.escape(version())}(?![\d.])")

        places = {name for name, text in texts() if name != "CHANGELOG.md" and spelt.search(text)}

        self.assertEqual(places, {"CMakeLists.txt", *COPIES})

    def test_ExamplesAskForAVersionThatIsCompatible(self):
        asked = {(name, match) for name, text in texts() if name.endswith(".md")
                 for match in re.findall(r"find_package\(Tavlo ([0-9.]+)", text)}

        self.assertEqual(asked, {("docs/embedding.md", version().rpartition(".")[0])})
        page = (ROOT / "docs/embedding.md").read_text(encoding="utf-8")
        self.assertIn(f"`libtavlo{version().rpartition('.')[0]}` has", page)

    def test_HasTheNewestHeadingOfTheChangelogUnlessThatIsUnreleased(self):
        headings = re.findall(r"^## (.*)$", CHANGELOG.read_text(encoding="utf-8"), re.MULTILINE)

        if headings[0] != "[Unreleased]":
            self.assertTrue(headings[0].startswith(f"[{version()}] - "), headings[0])
        for heading in headings[headings[0] == "[Unreleased]":]:
            self.assertRegex(heading, r"^\[\d+\.\d+\.\d+\] - \d{4}-\d\d-\d\d$")


if __name__ == "__main__":
    unittest.main()
