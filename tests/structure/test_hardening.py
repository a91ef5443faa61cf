#!/usr/bin/python3
"""What the built program has against attacks, read from its file.

Usage: test_hardening.py PROGRAM CONFIGURATION READELF OBJDUMP
"""

import re
import subprocess
import sys
import unittest

PROGRAM, CONFIGURATION, READELF, OBJDUMP = (sys.argv.pop(1) for _ in range(4))

# A function whose frame has room for a block of 16 KiB, more than the guard page behind a stack.
LARGE_FRAME = "_ZN5tavlo14linux_platform9readWholeB5cxx11ERNS0_8SyscallsEim"


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def instructions_of(symbol):
    text = output_of(OBJDUMP, "--disassemble=" + symbol, "--no-show-raw-insn", PROGRAM)
    return [line.split("\t", 1)[1] for line in text.splitlines() if "\t" in line]


class Hardening(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        header = output_of(READELF, "--wide", "--file-header", PROGRAM)
        cls.type = re.search(r"Type:\s+(\w+)", header)[1]
        cls.machine = re.search(r"Machine:\s+(.+)", header)[1]
        cls.segments = re.findall(r"^  (\w+) .* ([R ][W ][E ]) 0x\w+$",
                                  output_of(READELF, "--wide", "--program-headers", PROGRAM), re.MULTILINE)
        cls.flags = re.findall(r"\((?:FLAGS|FLAGS_1)\)\s+(?:Flags: )?(.*)",
                               output_of(READELF, "--wide", "--dynamic", PROGRAM))
        cls.symbols = set(re.findall(r"UND (\w+)", output_of(READELF, "--wide", "--dyn-syms", PROGRAM)))

    def test_ProgramIsLoadedAtAnAddressThatNobodyKnows(self):
        self.assertEqual(self.type, "DYN", "no position-independent program: -pie or -fPIE is missing")
        self.assertIn("PIE", " ".join(self.flags).split(), "no position-independent program: -pie is missing")

    def test_TableOfForeignFunctionsIsReadOnly(self):
        self.assertIn(("GNU_RELRO", "R  "), self.segments, "writable after relocation: -z relro is missing")
        self.assertIn("NOW", " ".join(self.flags).split(),
                      "functions are bound when they are first called, so their table stays writable: "
                      "-z now is missing")

    def test_StackHoldsNoCode(self):
        self.assertIn(("GNU_STACK", "RW "), self.segments, "the stack can be executed: -z noexecstack is missing")

    def test_NoSegmentIsWrittenAndExecuted(self):
        self.assertIn(("LOAD", "R E"), self.segments)
        self.assertEqual([segment for segment in self.segments if segment[1].endswith("WE")], [])

    def test_OverwrittenReturnAddressIsNoticed(self):
        self.assertIn("__stack_chk_fail", self.symbols, "no check of the stack: -fstack-protector-strong is missing")

    def test_LargeFrameTouchesEachOfItsPages(self):
        if "X86-64" not in self.machine:
            self.skipTest("its instructions are known for x86-64 only")

        code = instructions_of(LARGE_FRAME)

        self.assertTrue(code, f"{LARGE_FRAME} is gone: name another function with a frame above 4 KiB")
        self.assertTrue([line for line in code if re.match(r"sub +\$0x1000,%rsp", line)],
                        "a frame can reach behind the stack's guard page: -fstack-clash-protection is missing")

    def test_IndirectCallsLandAtMarkedPlaces(self):
        if "X86-64" not in self.machine:
            self.skipTest("its instructions are known for x86-64 only")

        for symbol in ("main", LARGE_FRAME):
            self.assertRegex(instructions_of(symbol)[0], r"^endbr64", f"{symbol}: -fcf-protection is missing")

    def test_OptimisedBuildChecksBufferSizesOfTheCLibrary(self):
        checked = sorted(name for name in self.symbols if re.fullmatch(r"__\w+_chk", name))

        if CONFIGURATION in ("Release", "RelWithDebInfo", "MinSizeRel"):
            self.assertIn("__snprintf_chk", checked, "-D_FORTIFY_SOURCE=2 is missing")
        else:
            self.assertEqual(checked, [], "-D_FORTIFY_SOURCE only works, and does not warn, in an optimised build")


if __name__ == "__main__":
    unittest.main()
