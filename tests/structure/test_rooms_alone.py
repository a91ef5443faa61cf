#!/usr/bin/python3
"""The rooms need the C++ standard library and nothing else.

Usage: test_rooms_alone.py LIBRARY PROGRAM NM
"""

import re
import subprocess
import sys
import unittest

LIBRARY, PROGRAM, NM = sys.argv.pop(1), sys.argv.pop(1), sys.argv.pop(1)

ANSWERS = """\
app id absent
optional id absent
security key absent
synchronize 0
ad 737
in-app 443
user &ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0
tracker 35
md5 "900150983cd24fb0d6963f7d28e17f72"
extension "mp4"
"""

# Names that a compiler or the C++ standard library's own headers bring into a program; whatever else a room
# needs of the outside shows up here by its name.
RUNTIME = re.compile(r"""
    _Z(T[VIST])?N?K?S[tabsiod]\w* | _Zn[wa]\w+ | _Zd[la]\w+ | _ZTVN10__cxxabiv1\w+ | _ZTI\w
    | __cxa_\w+ | __gxx_personality_v0 | _Unwind_\w+ | __dso_handle | _GLOBAL_OFFSET_TABLE_ | __tls_get_addr
    | __stack_chk_fail | __(mem|str)\w+_chk | __gthrw_\w+ | __pthread_key_create | pthread_mutex_(un)?lock
    | __popcountdi2 | __libc_single_threaded
    | mem(cpy|move|set|cmp|chr) | bcmp | str(len|cmp) | abort | floor | trunc | fmod
    """, re.VERBOSE)


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def foreign_symbols(library):
    """What the library's object files need and none of them defines."""
    defined, needed = set(), set()
    for line in output_of(NM, "--format=posix", library).splitlines():
        name, _, kind = line.partition(" ")
        if kind[:1] in ("U", "w", "v"):
            needed.add(name)
        elif kind:
            defined.add(name)
    return needed - defined


class RoomsAlone(unittest.TestCase):
    def test_EveryOperationAnswersWithNoPlatformLinked(self):
        self.assertEqual(output_of(PROGRAM), ANSWERS)

    def test_ProgramLoadsOnlyTheStandardLibrary(self):
        loaded = {line.split()[0].rsplit("/", 1)[-1].split(".so")[0] for line in output_of("ldd", PROGRAM).splitlines()}

        self.assertLessEqual(loaded, {"linux-vdso", "libstdc++", "libm", "libgcc_s", "libc", "ld-linux-x86-64",
                                      "ld-linux-aarch64"})

    def test_LibraryNeedsOnlyTheRuntime(self):
        foreign = foreign_symbols(LIBRARY)

        self.assertIn("__gxx_personality_v0", foreign)
        self.assertEqual(sorted(name for name in foreign if not RUNTIME.fullmatch(name)), [])


if __name__ == "__main__":
    unittest.main()
