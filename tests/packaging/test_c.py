#!/usr/bin/python3
"""The C interface as others use it: from what is installed alone, in C, in C++ and in Python.

Usage: test_c.py ROOT BUILD
"""

import re
import sys
import unittest
from pathlib import Path

from installed import Installed, output_of, run

ROOT, BUILD = Path(sys.argv.pop(1)), Path(sys.argv.pop(1))
HERE = Path(__file__).resolve().parent
EXAMPLE, PYTHON = ROOT / "examples/c/main.c", ROOT / "examples/python"
HEADERS = ("tavlo.h", "tavlo_host.h", "tavlo_platform.h", "tavlo_types.h", "tavlo_value.h")
C99 = ("gcc", "-std=c99", "-Wall", "-Wextra", "-pedantic", "-Wconversion", "-Werror")
ALL_WELL = "27 operations answer as they should\n"

here = Installed(BUILD)


def setUpModule():
    here.install()


def tearDownModule():
    here.remove()


def library():
    return next(path for path in here.lib.glob("libtavlo.so.*") if not path.is_symlink())


def operations():
    """Their names, from the class that has nothing but them."""
    face = (here.include / "TavloUtility.h").read_text(encoding="utf-8")
    return sorted(re.findall(r"^  (?:\[\[nodiscard\]\] )?static [^(\n]+ (\w+)\(", face, re.MULTILINE))


class InC(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.build = here.built(HERE / "c", f"-DEXAMPLE={EXAMPLE}")
        cls.sources = sorted((HERE / "c").glob("*.c"))

    def arguments(self):
        return here.folder() / "container", ROOT / "resources"

    def test_EveryOperationAnswersAndCMakeFindsTheLibrary(self):
        self.assertEqual(output_of(self.build / "c", *self.arguments()), ALL_WELL)

    def test_PkgConfigFindsTheSharedLibrary(self):
        program, flags = here.folder() / "c", here.flags("tavlo-c")

        output_of("sh", "-c", f"{' '.join(C99)} -o '{program}' {' '.join(map(str, self.sources))} {flags}")

        self.assertEqual(output_of(program, *self.arguments(), LD_LIBRARY_PATH=str(here.lib)), ALL_WELL)

    def test_PkgConfigFindsTheStaticLibraries(self):
        program, flags = here.folder() / "c", here.flags("tavlo-c-static")

        output_of("sh", "-c", f"{' '.join(C99)} -o '{program}' {' '.join(map(str, self.sources))} {flags}")

        self.assertEqual(output_of(program, *self.arguments()), ALL_WELL)
        self.assertNotIn("libtavlo", output_of("ldd", program))

    def test_ProjectInCAloneLinksTheStaticLibrariesByCMake(self):
        source = here.folder()
        (source / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(Player LANGUAGES C)\n"
            "find_package(Tavlo CONFIG REQUIRED COMPONENTS c_static)\n"
            f"add_executable(player {EXAMPLE})\ntarget_link_libraries(player PRIVATE Tavlo::c_static)\n")

        said = output_of(here.built(source) / "player", here.folder())

        self.assertTrue(said.endswith("\nnot cached\n"), said)

    def test_ExampleSaysWhatIsNotCached(self):
        said = output_of(self.build / "example", here.folder())

        self.assertIn("app_id=app%20%26%20co&", said)
        self.assertTrue(said.endswith("\nnot cached\n"), said)

    def test_EveryOperationIsCalled(self):
        text = "".join(source.read_text(encoding="utf-8") for source in self.sources)

        self.assertEqual(len(operations()), 27)
        self.assertEqual([name for name in operations() if f"tavlo_{name}(" not in text], [])

    def test_EachHeaderStandsOnItsOwnInCAndInCpp(self):
        cpp = ("g++", "-std=c++11", "-Wall", "-Wextra", "-Wpedantic", "-Werror")
        for header in HEADERS:
            for command, language in ((C99, "c"), (cpp, "c++")):
                with self.subTest(header=header, language=language):
                    output_of(*command, "-fsyntax-only", "-x", language, "-include", here.include / header, "/dev/null")


class InPython(unittest.TestCase):
    def test_EveryOperationAnswers(self):
        said = output_of("/usr/bin/python3", "-B", HERE / "python/consumer.py", PYTHON, library(), ROOT / "resources")

        self.assertRegex(said, r"Ran 18 tests in .*\n\nOK\n$")

    def test_EveryOperationIsCalled(self):
        text = (HERE / "python/consumer.py").read_text(encoding="utf-8")

        self.assertEqual([name for name in operations() if f"SDK.{name}(" not in text], [])

    def test_ACallbackThatRunsWhenPythonEndsIsWaitedFor(self):
        said = output_of("/usr/bin/python3", "-B", HERE / "python/leaving.py", PYTHON, library())

        self.assertEqual(said, "leaving\nfetched\n")

    def test_ExampleSaysWhatIsNotCached(self):
        said = output_of("/usr/bin/python3", "-B", PYTHON / "player.py", here.folder(), TAVLO_LIBRARY=str(library()))

        self.assertIn("app_id=app%20%26%20co&", said)
        self.assertTrue(said.endswith("\nnot cached\n"), said)


class SharedLibrary(unittest.TestCase):
    def exported(self, path):
        rows = [line.split() for line in output_of("nm", "--dynamic", "--defined-only", path).splitlines()]
        return sorted(row[-1] for row in rows)

    def test_ExportsWhatTheHeadersDeclareAndNothingElse(self):
        text = "".join((here.include / header).read_text(encoding="utf-8") for header in HEADERS)
        declared = set(re.findall(r"^TAVLO_API [^(]*?(tavlo_\w+)\(", text, re.MULTILINE))
        release = re.search(r"\nSONAME +libtavlo\.so\.(\S+)\n", "\n".join(
            " ".join(line.split()) for line in output_of("objdump", "-p", library()).splitlines()))[1]

        self.assertEqual(self.exported(library()), [f"TAVLO_{release}", *sorted(f"{name}@@TAVLO_{release}"
                                                                               for name in declared)])
        self.assertEqual([name for name in operations() if f"tavlo_{name}" not in declared], [])


    def test_CallsItsOwnFunctionsThoughAProgramHasOthersOfTheirNames(self):
        moved = [line for line in output_of("readelf", "--relocs", "--wide", library()).splitlines() if " tavlo_" in line]

        self.assertEqual(moved, [])


class Abi(unittest.TestCase):
    """Against the kept one; and that the comparison notices what it is for."""

    def setUp(self):
        if "No such" in run("sh", "-c", "command -v abidw || echo No such").stdout:
            self.skipTest("there is no abidw")
        if " .debug_info " not in output_of("readelf", "--sections", "--wide", library()):
            self.skipTest("the library has no debug information")

    def compared(self, path):
        return run(ROOT / "scripts/abi.sh", path)

    def changed(self, exports, *objects):
        """The library's own part, linked anew."""
        folder = here.folder()
        output_of("ar", "x", here.lib / "libtavlo_c.a", "--output", folder)
        for each in objects:
            each.rename(folder / each.name)
        (folder / "map").write_text(exports)
        output_of("g++", "-shared", "-o", folder / "changed.so", *sorted(folder.glob("*.o")),
                  f"-Wl,--version-script={folder}/map", f"-Wl,-soname,{re.sub(r'[.][0-9]+$', '', library().name)}")
        return folder / "changed.so"

    def test_WrongUseOfTheScriptIsTold(self):
        for arguments, error in ((["--bogus"], 'no option "--bogus"'), (["a", "b"], 'one LIBRARY only, not "b" as well'),
                                 ([""], "the name of LIBRARY is empty")):
            with self.subTest(arguments=arguments):
                done = run(ROOT / "scripts/abi.sh", *arguments)

                self.assertEqual(done.returncode, 2)
                self.assertTrue(done.stdout.startswith(f"abi: {error}\nUsage: scripts/abi.sh "), done.stdout)
        for path, error in (("/nowhere/libtavlo.so", "there is no /nowhere/libtavlo.so; build it "),
                            (ROOT / "README.md", f"{ROOT}/README.md is no library"),
                            ("/bin/true", "/bin/true has no debug information; build it with -g ")):
            with self.subTest(path=path):
                done = self.compared(path)

                self.assertEqual((done.returncode, error in done.stdout), (2, True), done.stdout)

    def test_IsTheKeptOne(self):
        done = self.compared(library())

        self.assertEqual(done.returncode, 0, done.stdout)

    def test_RelinkedAloneItIsTheSame(self):
        done = self.compared(self.changed((ROOT / "c/exports.map").read_text()))

        self.assertEqual(done.returncode, 0, done.stdout)

    def test_RemovedFunctionIsNoticed(self):
        exports = (ROOT / "c/exports.map").read_text().replace("local:", "local:\n    tavlo_md5;")

        done = self.compared(self.changed(exports))

        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("'function tavlo_status tavlo_md5(const tavlo_value*, tavlo_string*)'", done.stdout)

    def test_ChangedStructIsNoticed(self):
        tree = here.folder()
        (tree / "c").mkdir()
        for header in (ROOT / "c").glob("*.h"):
            (tree / "c" / header.name).write_text(header.read_text(encoding="utf-8"))
        changed = tree / "c/tavlo_host.h"
        changed.write_text(changed.read_text().replace("  bool (*limitAdTrackingEnabled)", "  int32_t first;\n"
                                                       "  bool (*limitAdTrackingEnabled)"))
        output_of("g++", "-std=c++20", "-g", "-fPIC", "-fvisibility=hidden", "-c", f"-I{tree}", f"-I{ROOT}",
                  f"-I{here.include}", "-o", tree / "Host.cpp.o", ROOT / "c/Host.cpp")

        done = self.compared(self.changed((ROOT / "c/exports.map").read_text(), tree / "Host.cpp.o"))

        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("'int32_t first', at offset 256", done.stdout)


if __name__ == "__main__":
    unittest.main()
