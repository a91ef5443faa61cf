#!/usr/bin/python3
"""How the headers' comments become the API reference, and that all of it is there. Usage: test_reference.py BUILD

Ends with 77 where there is no doxygen.
"""

import html
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))

from doxygen_filter import filtered  # noqa: E402


def text_of(page):
    """What a reader sees, with single blanks."""
    content = html.unescape(re.sub(r"<[^>]*>", "", Path(ROOT, "build/docs/html", page).read_text(encoding="utf-8")))
    return " ".join(content.split())


class Filter(unittest.TestCase):
    def test_BannerDocumentsTheFileAsItStands(self):
        self.assertEqual(filtered("// A: b.\n//\n// Values   <c> @d\nint x;\n", "A.h"),
                         "/**\n@file A.h\n@brief A: b.\n\n@verbatim\n\nValues   <c> @d\n@endverbatim\n*/\nint x;\n")

    def test_CommentIsProseInWhichNothingIsSpecial(self):
        self.assertEqual(filtered("// A.\n\n  // Of `a<b>`, <c> and %@.\n  int x;\n", "A.h").splitlines()[6:],
                         ["  /// Of <tt>a\\<b\\></tt>, \\<c\\> and \\%\\@.", "  int x;"])

    def test_GroupsAndDirectionsForToolsAreLeftOut(self):
        self.assertEqual(filtered("// A.\n\n// ---- B ----\n\n// clang-format off\nint x;\n", "A.h").splitlines()[6:],
                         ["", "int x;"])

    def test_CommentBehindCodeStays(self):
        self.assertEqual(filtered("// A.\nint x;  // b\n", "A.h").splitlines()[-1], "int x;  // b")


class Reference(unittest.TestCase):
    def test_IsMadeWithoutAWarningAndHasEveryOperation(self):
        done = subprocess.run([ROOT / "scripts/docs.sh", BUILD], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True)

        self.assertEqual(done.returncode, 0, done.stdout)
        face = text_of("classtavlo_1_1TavloUtility.html")
        operations = re.findall(r"static [^;(]*?(\w+)\(", (ROOT / "TavloUtility.h").read_text(encoding="utf-8"))
        self.assertEqual(len(operations), 27)
        for operation in operations:
            self.assertIn(f" {operation}()", face)
        self.assertIn("Removes everything in the cache directory but \"TavloLogFile.txt\", as far as", face)
        self.assertIn("Values the slot and every reader share ownership: a reader keeps", text_of("Slot_8h.html"))


if __name__ == "__main__":
    BUILD = sys.argv.pop(1)
    if not shutil.which("doxygen"):
        print("there is no doxygen")
        sys.exit(77)
    unittest.main()
