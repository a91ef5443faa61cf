#!/usr/bin/python3
"""The example of a host app, built as a project of its own and run.

Usage: test_minimal_host.py EXAMPLE COMPILER
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

EXAMPLE, COMPILER = Path(sys.argv.pop(1)), sys.argv.pop(1)


def output_of(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class MinimalHost(unittest.TestCase):
    def test_BuildsAndKeepsItsIdentifierAndCounters(self):
        with tempfile.TemporaryDirectory() as folder:
            output_of("cmake", "-S", EXAMPLE, "-B", f"{folder}/build", "-G", "Ninja",
                      f"-DCMAKE_CXX_COMPILER={COMPILER}")
            output_of("cmake", "--build", f"{folder}/build", "--target", "minimal_host", "--parallel", "2")
            program = f"{folder}/build/minimal_host"
            self.assertNotIn("-z,now", Path(folder, "build/build.ninja").read_text(encoding="utf-8"),
                             "how a host's program is linked is the host's to say")

            ad, in_app, users = output_of(program, f"{folder}/container").splitlines()
            _, _, users_again = output_of(program, f"{folder}/container").splitlines()

            self.assertIn("&device_model=Phone%203&", ad)
            self.assertIn("app_id=app%20%26%20co&", in_app)
            self.assertTrue(users.startswith("&ru=1&ru_n=&uud=1&uud_n="), users)
            self.assertTrue(users_again.startswith("&ru=0&ru_n=&uud="), users_again)
            settings = Path(folder, "container/Library/Preferences/org.example.player.plist")
            self.assertEqual(settings.read_bytes()[:8], b"bplist00")

    def test_WholeExampleIsUnderSixtyLines(self):
        lines = sum(len(path.read_text(encoding="utf-8").splitlines()) for path in EXAMPLE.iterdir())

        self.assertLess(lines, 60)


if __name__ == "__main__":
    unittest.main()
