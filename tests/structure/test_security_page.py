#!/usr/bin/python3
"""docs/security.md names the test that holds each of its claims."""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
NAME = re.compile(r"`([A-Z]\w+\.[A-Z]\w+)`")
TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
STRUCTURE_TEST = re.compile(r"tavlo_structure_test\((\w+) ")
OTHER_TEST = re.compile(r"add_test\(NAME (\w+\.\w+)")
CLAIM = re.compile(r"^\| (?P<claim>[^|]+) \| (?P<tests>[^|]+) \|$", re.MULTILINE)


def tests_that_exist():
    sources = [*ROOT.glob("tests/**/*.cpp"), *ROOT.glob("tests/support/*.h")]
    names = {".".join(name) for path in sources for name in TEST.findall(path.read_text(encoding="utf-8"))}
    structure = (ROOT / "tests/structure/CMakeLists.txt").read_text(encoding="utf-8")
    names.update(OTHER_TEST.findall(structure))
    return names | {f"Structure.{name}" for name in STRUCTURE_TEST.findall(structure)}


class SecurityPage(unittest.TestCase):
    def setUp(self):
        self.page = (ROOT / "docs/security.md").read_text(encoding="utf-8")

    def test_EveryTestThatItNamesExists(self):
        named = set(NAME.findall(self.page))

        self.assertGreater(len(named), 50)
        self.assertEqual(sorted(named - tests_that_exist()), [])

    def test_EveryClaimNamesATest(self):
        claims = [match for match in CLAIM.finditer(self.page) if match["claim"] != "What holds"]

        self.assertGreater(len(claims), 40)
        self.assertEqual([match["claim"] for match in claims if not NAME.search(match["tests"])], [])


if __name__ == "__main__":
    unittest.main()
