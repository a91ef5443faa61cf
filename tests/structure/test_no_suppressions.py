#!/usr/bin/python3
"""Nothing in the tree keeps a sanitizer from telling what it found."""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# As in options, in the functions that a sanitizer asks, and in attributes.
SUPPRESSION = re.compile(r"suppressions\s*=|_default_suppressions|no_sanitize|no_thread_safety|DISABLE_SANITIZER"
                         r"|fsanitize-(?:ignorelist|blacklist)|fno-sanitize=|exitcode\s*=|report_bugs\s*=")


def files():
    """Those of the tree itself, without what is built or belongs to git."""
    for path in ROOT.rglob("*"):
        if path.is_file() and path.relative_to(ROOT).parts[0] not in ("build", ".git"):
            yield path


class NoSuppressions(unittest.TestCase):
    def test_NoFileIsAListOfSuppressions(self):
        named = [path for path in files() if re.search(r"supp(ressions?)?$|ignorelist|blacklist", path.stem)]

        self.assertEqual([path for path in named if path != Path(__file__).resolve()], [])

    def test_NoFileSuppresses(self):
        found = [path for path in files() if path != Path(__file__).resolve()
                 and SUPPRESSION.search(path.read_text(encoding="utf-8", errors="replace"))]

        self.assertEqual(found, [])

    def test_ASuppressionIsSeen(self):
        for text in ("TSAN_OPTIONS=suppressions=a.txt", "const char* __tsan_default_suppressions();",
                     '__attribute__((no_sanitize("thread")))', "-fsanitize-ignorelist=a", "exitcode=0"):
            with self.subTest(text):
                self.assertTrue(SUPPRESSION.search(text))


if __name__ == "__main__":
    unittest.main()
