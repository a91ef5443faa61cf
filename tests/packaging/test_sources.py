#!/usr/bin/python3
"""A project that takes the sources in, by FetchContent from a local path.

Usage: test_sources.py ROOT COMPILER
"""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from installed import output_of

ROOT, COMPILER = sys.argv.pop(1), sys.argv.pop(1)
PROJECT = Path(__file__).resolve().parent / "fetched"


class Fetched(unittest.TestCase):
    def test_BringsTheLibrariesAndNothingElse(self):
        with tempfile.TemporaryDirectory() as build:
            said = output_of("cmake", "-S", PROJECT, "-B", build, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                             f"-DTAVLO_ROOT={ROOT}")

            self.assertEqual(re.findall("^-- target: (.*)$", said, re.MULTILINE),
                             ["tavlo_options", "tavlo_utility", "tavlo_linux"])
            self.assertIn("-- tests: \n", said)
            own = subprocess.run(["ninja", "-C", build, "-t", "commands", "fetched"], capture_output=True, text=True)
            compile_own = [line for line in own.stdout.splitlines() if "-c " in line and "rooms/Main.cpp" in line]
            self.assertEqual(len(compile_own), 1)
            self.assertNotRegex(compile_own[0], r"-W|-f(?!diagnostics)")
            output_of("cmake", "--build", build, "--target", "fetched", "--parallel", "2")
            self.assertEqual(output_of(f"{build}/fetched").splitlines()[0], "900150983cd24fb0d6963f7d28e17f72")


if __name__ == "__main__":
    unittest.main()
