#!/usr/bin/python3
"""The libraries amid others' names: nothing of ours is in the way, and nothing of theirs gets into ours.

Usage: test_hygiene.py BUILD
"""

import re
import sys
import unittest
from pathlib import Path

from installed import Installed, output_of

HERE = Path(__file__).resolve().parent
here = Installed(sys.argv.pop(1))

# What is global in a static library and in no namespace of ours: the C interface, which exports.map names, and what
# keeps the default platform in a static link.
OUTSIDE = re.compile(r"tavlo_\w+|tavloLinuxPlatformIsDefault")
OURS = re.compile(r"_Z(T[VIS]|GV|Z)*(N[KVRO]*)?(5tavlo|27tavloLinuxPlatformIsDefault)|_ZT[IS]P?Fv.*5tavlo")
# Instances of the language's own templates, which are the same wherever they come from.
LANGUAGE = re.compile(r"_Z(T[VIS]|GV|Z)*(N[KVRO]*)?(S[tabsoi]|9__gnu_cxx)|_ZnwmPv$|_ZdlPvS_$|DW\.ref\._")
ANSWERS = """\
900150983cd24fb0d6963f7d28e17f72
abc
a%20b
id
&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0
log: getCacheBannerImagePath() - ERROR: Passed file url parameter is nil
absent
900150983cd24fb0d6963f7d28e17f72
tavlo_md5: the result must not be a null pointer
"""
TWO_COPIES = """\
own: one
own: two
shared: three
shared: four
own answers mine
shared answers absent
own answers mine
shared answers theirs
"""


def setUpModule():
    here.install()


def tearDownModule():
    here.remove()


class StaticLibraries(unittest.TestCase):
    def symbols(self):
        for library in sorted(here.lib.glob("libtavlo_*.a")):
            for line in output_of("nm", "--extern-only", "--defined-only", library).splitlines():
                if len(line.split()) == 3:
                    yield library.name, *line.split()[1:]

    def test_DefineNothingOutsideOfOurNamespace(self):
        strangers = [(library, kind, name) for library, kind, name in self.symbols()
                     if not OURS.match(name) and not OUTSIDE.fullmatch(name)
                     and not (kind in "WVu" and LANGUAGE.match(name))]

        self.assertEqual(strangers, [])

    def test_AreAllLookedAt(self):
        libraries = {library for library, _, _ in self.symbols()}

        self.assertEqual(libraries, {f"libtavlo_{part}.a" for part in ("c", "host", "linux", "utility")})

    def test_StrangersWouldBeNoticed(self):
        for name in ("md5", "_Z3md5v", "_ZN6Logger9writeLineEv", "_ZTV5Value", "tavlo", "_ZN6tavlo26Logger4loadEv"):
            with self.subTest(name=name):
                self.assertFalse(OURS.match(name) or OUTSIDE.fullmatch(name) or LANGUAGE.match(name))


class Programs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.build = here.built(HERE / "hygiene")

    def test_HostileNamesDoNoHarmWhicheverWayWeAreLinked(self):
        for program in "hostile_static", "hostile_shared", "whole_archives":
            with self.subTest(program=program):
                self.assertEqual(output_of(self.build / program, here.folder()), ANSWERS)

    def test_TwoCopiesInOneProcessShareNothing(self):
        folder = here.folder()

        said = output_of(self.build / "two_copies", folder)

        self.assertEqual(said, TWO_COPIES)
        kept = sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*.plist"))
        self.assertEqual(kept, [f"{copy}/Library/Preferences/two.plist" for copy in ("own", "shared")])


if __name__ == "__main__":
    unittest.main()
