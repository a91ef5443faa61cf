#!/usr/bin/python3
"""Runs a runner of the conformance cases: all of them hold, and a changed expectation is told.

Usage: test_runner.py COMMAND...    a folder of cases is added to it
"""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CASES = Path(__file__).resolve().parents[2] / "conformance"
EXPECTATIONS = ("gives", "raises", "log", "console", "reports", "menus", "files", "settings", "package")


def run(folder):
    done = subprocess.run([*COMMAND, str(folder)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=250)
    return done.returncode, done.stdout


def changed(name, expected):
    if name == "raises":
        return not expected
    if isinstance(expected, list):
        return [*expected, "one more"]
    if isinstance(expected, dict) and name in ("files", "settings", "package"):
        return {**expected, "one more": "more"}
    return "something else"


def with_changes(cases):
    """Each expectation of these cases changed, one in a case, and the places where that is."""
    found, places = [], []
    for case in cases:
        for number, step in enumerate(case["steps"]):
            for name in EXPECTATIONS:
                if name not in step or step.get("do") == "set":
                    continue
                steps = [*case["steps"][:number], {**step, name: changed(name, step[name])}]
                found.append({**case, "name": f"{case['name']}{len(found)}", "steps": steps})
                told = "one more" if name == "package" else name
                places.append(f": {found[-1]['name']}, step {number + 1}: {told}\n")
    return found, places


class Runner(unittest.TestCase):
    maxDiff = None

    def test_FindsNoDifference(self):
        count = sum(len(json.loads(path.read_text(encoding="utf-8"))) for path in CASES.glob("*.json"))

        status, out = run(CASES)

        self.assertEqual((status, out), (0, f"{count} of {count} cases hold\n"))

    def test_TellsEachChangedExpectationWithWhatWasExpectedAndGot(self):
        with tempfile.TemporaryDirectory() as folder:
            expected = []
            for name in ("banner-images", "cache-lists", "identifiers", "location", "log-export", "md5", "tracker"):
                cases, places = with_changes(json.loads((CASES / f"{name}.json").read_text(encoding="utf-8")))
                Path(folder, f"{name}.json").write_text(json.dumps(cases), encoding="utf-8")
                expected += [name + place for place in places]

            status, out = run(folder)

            self.assertEqual(status, 1)
            self.assertEqual([place for place in expected if place + "  expected: " not in out], [])
            self.assertIn(f"\n0 of {len(expected)} cases hold\n", out)

    def test_UnknownOperationIsTold(self):
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "a.json").write_text('[{"name": "Case", "steps": [{"call": "md4"}]}]')

            status, out = run(folder)

            self.assertEqual(status, 1)
            self.assertIn("a: Case, step 1: ", out)
            self.assertIn("md4", out)

    def test_FileThatIsNoListOfCasesEndsTheRun(self):
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "a.json").write_text("{")

            status, out = run(folder)

            self.assertNotIn(status, (0, 1))
            self.assertIn("a.json", out)


if __name__ == "__main__":
    COMMAND = sys.argv[1:]
    del sys.argv[1:]
    unittest.main()
