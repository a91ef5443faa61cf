#!/usr/bin/python3
"""The rooms, compiled for size and without what no operation needs, grow no more.

That of the code is the one of bench/footprint.py; that of all that is read-only is a stop against growth.

Usage: test_size.py PROGRAM    a program that refers to all operations
"""

import re
import subprocess
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "bench"))
import footprint  # noqa: E402

PROGRAM = sys.argv.pop(1)


def complaint(part, bytes_, most):
    """None when it is small enough."""
    if bytes_ <= most:
        return None
    return f"{part}: {bytes_:,} bytes, at most {most:,}. The biggest:\n" + "\n".join(footprint.biggest(PROGRAM))


class Size(unittest.TestCase):
    maxDiff = None

    def test_ProgramHoldsEveryOperation(self):
        self.assertEqual(len(footprint.operations_of(PROGRAM)), 27)

    def test_CodeAndAllThatIsReadOnlyStayBelowTheirBars(self):
        size = footprint.size_of(PROGRAM)

        self.assertGreater(size["code"], 0)
        self.assertIsNone(complaint("code", size["code"], 98_304))
        self.assertIsNone(complaint("text", size["text"], 158_000))

    def test_ComplaintNamesTheTenBiggestSymbols(self):
        lines = complaint("code", 98_305, 98_304).splitlines()

        self.assertEqual(lines[0], "code: 98,305 bytes, at most 98,304. The biggest:")
        self.assertEqual(len(lines), 11)
        self.assertTrue(any("tavlo::keyed_archive::decode(" in line for line in lines), lines)

    def test_NothingOfStreamsLocalesOrRegularExpressionsIsInIt(self):
        names = subprocess.run(["nm", "--demangle", PROGRAM], check=True, capture_output=True, text=True).stdout

        self.assertIn("tavlo::TavloUtility::clearCache()", names)
        heavy = re.findall(r".*std::(?:ios_base|basic_ostream|locale|basic_regex).*", names)
        self.assertEqual(heavy, [])


if __name__ == "__main__":
    unittest.main()
