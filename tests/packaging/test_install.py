#!/usr/bin/python3
"""Others' projects, built from what is installed and nothing else, and run.

Usage: test_install.py ROOT BUILD COMPILER static|shared    static: what BUILD has; shared: made there
"""

import re
import sys
import tempfile
import unittest
from pathlib import Path

from installed import output_of, run

ROOT, BUILD, COMPILER, KIND = Path(sys.argv.pop(1)), Path(sys.argv.pop(1)), sys.argv.pop(1), sys.argv.pop(1)
CONSUMERS = Path(__file__).resolve().parent
VERSION = re.search(r"^project\(Tavlo VERSION (\S+) ", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
C_HEADERS = {f"tavlo{part}.h" for part in ("", "_host", "_platform", "_types", "_value")}
MD5_OF_ABC = "900150983cd24fb0d6963f7d28e17f72"
NO_USERS = "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0"

folder = tempfile.TemporaryDirectory()
PREFIX = Path(folder.name, "moved here")


def setUpModule():
    """Installs, and moves what is installed to where nothing was told of."""
    if KIND == "shared":
        output_of("cmake", "-S", ROOT, "-B", BUILD, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                  "-DCMAKE_BUILD_TYPE=Debug", "-DBUILD_SHARED_LIBS=ON",
                  *(f"-DTAVLO_BUILD_{part}=OFF" for part in ("CLI", "TESTS", "BENCH")))
        output_of("cmake", "--build", BUILD, "--parallel", "2")
    installed = Path(folder.name, "installed")
    output_of("cmake", "--install", BUILD, "--prefix", installed)
    installed.rename(PREFIX)


def tearDownModule():
    folder.cleanup()


def configured(project, *options, prefix=PREFIX):
    build = Path(tempfile.mkdtemp(dir=folder.name))
    done = run("cmake", "-S", project, "-B", build, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
               f"-DCMAKE_PREFIX_PATH={prefix}", *options)
    return build, done


def project(name, text):
    """A project of the one line that matters."""
    source = Path(tempfile.mkdtemp(dir=folder.name))
    (source / "CMakeLists.txt").write_text(f"cmake_minimum_required(VERSION 3.25)\nproject({name} CXX)\n{text}\n")
    return source


def error_of(text):
    """What configuring such a project complains of, on one line."""
    done = configured(project("Wrong", text))[1]
    assert done.returncode != 0, done.stdout
    return " ".join(done.stdout.split())


class Rooms(unittest.TestCase):
    def test_AreFoundAloneAndKeepTheirHeadersApart(self):
        version = VERSION.rpartition(".")[0]
        build, done = configured(CONSUMERS / "rooms", f"-DWANTED={version}")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("-- imported: Threads::Threads;Tavlo::utility\n", done.stdout)
        self.assertIn(f"-- found: {VERSION}, utility TRUE\n", done.stdout)

        output_of("cmake", "--build", build)

        self.assertEqual(output_of(build / "rooms").splitlines(), [MD5_OF_ABC, NO_USERS, *["not available"] * 3])
        self.assertNotIn("-Werror", (build / "build.ninja").read_text())


class OwnPlatform(unittest.TestCase):
    VIDEO = "/Documents/TavloCache/dd33e7afee05eeb1e2eb0d0ac38a5b90.mp4"

    def test_OfTheExampleServesTheRoomsAlone(self):
        build, done = configured(ROOT / "examples/custom-platform")
        self.assertEqual(done.returncode, 0, done.stdout)

        output_of("cmake", "--build", build)

        self.assertEqual(output_of(build / "custom_platform").splitlines(), [
            "log: TavloCache directory created!", *[f"log: Cached directory path : {self.VIDEO}"] * 2,
            f"video: {self.VIDEO}", f"log: Cached directory path : {self.VIDEO}",
            "log: getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist", "video: (null)"])


class Everything(unittest.TestCase):
    def served(self, program, **environment):
        container = tempfile.mkdtemp(dir=folder.name)
        ad, in_app, users = output_of(program, container, **environment).splitlines()
        self.assertIn("&device_model=Phone%203&", ad)
        self.assertIn("app_id=app%20%26%20co&", in_app)
        self.assertTrue(users.startswith("&ru=1&"), users)

    def test_IsFoundByCMake(self):
        build, done = configured(CONSUMERS / "host", f"-DEXAMPLE={ROOT}/examples/minimal-host/Main.cpp")
        self.assertEqual(done.returncode, 0, done.stdout)

        output_of("cmake", "--build", build)

        self.served(build / "host")

    def test_IsFoundByPkgConfig(self):
        places = {"PKG_CONFIG_PATH": str(next(PREFIX.glob("lib*/**/pkgconfig")))}
        flags = output_of("pkg-config", "--cflags", "--libs", "tavlo-host", "tavlo-linux", **places)
        program = Path(folder.name, "by-pkg-config")

        output_of("sh", "-c", f"{COMPILER} -std=c++20 -o '{program}' '{ROOT}/examples/minimal-host/Main.cpp' {flags}")

        self.served(program, LD_LIBRARY_PATH=str(next(PREFIX.glob("lib*/**/pkgconfig")).parent))

    def test_HasTheHeadersThatOthersNeedAndNoneOfTheTestsOrBenches(self):
        top = {path.name for path in (PREFIX / "include/tavlo").iterdir()}

        self.assertEqual(top, {"TavloUtility.h", "TavloVersion.h", "common", "host", "platform", "request", *C_HEADERS})

    def test_SaysItsVersionToPkgConfigAndToThePreprocessorOfC(self):
        places = {"PKG_CONFIG_PATH": str(next(PREFIX.glob("lib*/**/pkgconfig")))}
        program = Path(folder.name, "version.c")
        program.write_text("#include <TavloVersion.h>\n#include <stdio.h>\nint main(void) { return puts(TAVLO_VERSION) < 0; }\n")

        output_of("cc", "-Wall", "-Wextra", "-Wpedantic", "-Werror", f"-I{PREFIX}/include/tavlo", "-o",
                  program.with_suffix(""), program)

        self.assertEqual(output_of(program.with_suffix("")), VERSION + "\n")
        for part in ("utility", "linux", "host"):
            self.assertEqual(output_of("pkg-config", "--modversion", f"tavlo-{part}", **places), VERSION + "\n")

    @unittest.skipIf(KIND == "shared", "they are the same as with static libraries")
    def test_HeadersStandOnTheirOwn(self):
        flags = ["-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror"]
        for header in sorted((PREFIX / "include/tavlo").rglob("*.h")):
            with self.subTest(header=header.name):
                output_of(COMPILER, *flags, "-x", "c++", "-include", header, "/dev/null")


class Program(unittest.TestCase):
    def test_RunsAndFindsItsImages(self):
        program = PREFIX / "bin/tavlo"
        if not program.exists():
            self.skipTest("the program is not built here")
        container = tempfile.mkdtemp(dir=folder.name)

        self.assertEqual(output_of(program, "--version"), f"tavlo {VERSION}\n")
        image = output_of(program, "--container", container, "image", "mute")

        self.assertIn(str(PREFIX / "share/tavlo/Resources/TavloSDKResource.bundle/mute.png"), image)


class Kind(unittest.TestCase):
    def test_IsTheOneAskedFor(self):
        names = sorted(re.sub(r"\d+\.\d+\.\d+$", "V", path.name) for path in PREFIX.glob("lib*/**/libtavlo*")
                       if not path.is_symlink())

        expected = {"static": "libtavlo_{}.a", "shared": "libtavlo_{}.so.V"}[KIND]
        self.assertEqual(names, ["libtavlo.so.V", "libtavlo_c.a",
                                 *(expected.format(part) for part in ("host", "linux", "utility"))])


class WrongUse(unittest.TestCase):
    def test_UnknownComponentIsNamedAndSoAreTheOthers(self):
        error = error_of("find_package(Tavlo CONFIG REQUIRED COMPONENTS utility windows)")

        self.assertIn('it has no component "windows". Installed are utility, linux, host, c, c_static', error)

    def test_OptionalComponentThatIsNotThereIsNotFoundAndTheOthersAre(self):
        source = project("Optional", "find_package(Tavlo CONFIG REQUIRED COMPONENTS utility OPTIONAL_COMPONENTS windows)\n"
                         'message(STATUS "<${Tavlo_FOUND} ${Tavlo_utility_FOUND} ${Tavlo_windows_FOUND}>")')

        done = configured(source)[1]

        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("-- <1 TRUE FALSE>\n", done.stdout)

    def test_LibraryThatWasNotAskedForIsNamedWhenItIsLinked(self):
        error = error_of("find_package(Tavlo CONFIG REQUIRED COMPONENTS utility)\n"
                         f"add_executable(player {CONSUMERS}/rooms/Main.cpp)\n"
                         "target_link_libraries(player PRIVATE Tavlo::linux)")

        self.assertRegex(error, 'links to:? "?Tavlo::linux"? but the target was not found')

    def test_OtherVersionsAreNotFound(self):
        for version in ("0.0", "0.99", "1.0", "9"):
            with self.subTest(version=version):
                error = error_of(f"find_package(Tavlo {version} CONFIG REQUIRED)")

                self.assertIn(f'compatible with requested version "{version}"', error)
                self.assertIn(f"TavloConfig.cmake, version: {VERSION}", error)

    def test_OptionalPackageWithUnknownComponentIsNotFoundWithoutAnError(self):
        source = project("Optional", "find_package(Tavlo CONFIG COMPONENTS windows)\nmessage(STATUS \"<${Tavlo_FOUND}>\")")

        done = configured(source)[1]

        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("-- <0>\n", done.stdout)

    def test_MissingLibraryOfAStaticPlatformIsNamed(self):
        if KIND == "shared":
            self.skipTest("a shared library brings its own")
        source = project("Poor", "find_package(Tavlo CONFIG REQUIRED COMPONENTS linux)")

        done = run("cmake", "-S", source, "-B", Path(folder.name, "poor"), "-G", "Ninja",
                   f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DCMAKE_PREFIX_PATH={PREFIX}", PKG_CONFIG_LIBDIR="/nowhere")

        self.assertNotEqual(done.returncode, 0)
        self.assertIn("there is no GLib and GIO 2.74 or later, which it was built with. Install it (on Debian "
                      "libglib2.0-dev)", " ".join(done.stdout.split()))


if __name__ == "__main__":
    unittest.main()
