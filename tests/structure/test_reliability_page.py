#!/usr/bin/python3
"""docs/reliability.md names tests that exist, and commands that scripts/trust.sh knows."""

import re
import unittest

from script_run import ROOT
from test_security_page import NAME, tests_that_exist
from test_trust_script import rows

PROMISE = re.compile(r"^\| (P\d+) \| [^|]+ \| (?P<tests>[^|]+) \| (?P<reached>[^|]+) \| (?P<command>[^|]+) \|$",
                     re.MULTILINE)


class ReliabilityPage(unittest.TestCase):
    def setUp(self):
        self.page = (ROOT / "docs/reliability.md").read_text(encoding="utf-8")
        self.promises = list(PROMISE.finditer(self.page))

    def test_EveryPromiseHasARow(self):
        held = {promise for row in rows() for promise in row[1].split(",")}

        self.assertEqual({row[1] for row in self.promises}, held)

    def test_EveryTestThatItNamesExists(self):
        self.assertEqual(sorted(set(NAME.findall(self.page)) - tests_that_exist()), [])
        self.assertEqual([row[1] for row in self.promises if not NAME.search(row["tests"])], [])

    def test_EveryCommandIsOneThatTheScriptKnows(self):
        items = {row[0]: row[1].split(",") for row in rows()}
        for row in self.promises:
            with self.subTest(row[1]):
                self.assertRegex(row["command"], r"^`scripts/trust\.sh( T\d+)+`$")
                for item in re.findall(r"T\d+", row["command"]):
                    self.assertIn(row[1], items[item])

    def test_EveryPromiseTellsAFigure(self):
        self.assertEqual([row[1] for row in self.promises if not re.search(r"\d", row["reached"])], [])


if __name__ == "__main__":
    unittest.main()
