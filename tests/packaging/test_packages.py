#!/usr/bin/python3
"""The Debian packages: what they say, and that others can build and run with them, unpacked and installed.

Usage: test_packages.py ROOT PACKAGES COMPILER    to install and remove them again it takes root
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT, PACKAGES, COMPILER = Path(sys.argv.pop(1)), Path(sys.argv.pop(1)), sys.argv.pop(1)
VERSION = re.search(r"^project\(Tavlo VERSION (\S+) ", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
LIBRARY = "libtavlo" + VERSION.rpartition(".")[0]
NAMES = [LIBRARY, "libtavlo-dev", "tavlo"]
FILES = {name: next(PACKAGES.glob(f"{name}_{VERSION}_*.deb"), None) for name in NAMES}
HOST = ROOT / "examples/minimal-host/Main.cpp"
PLAIN_C = '#include <tavlo/tavlo.h>\n#include <stdio.h>\nint main(void) { return puts(tavlo_version()) < 0; }\n'

folder = tempfile.TemporaryDirectory()
USR = Path(folder.name, "unpacked/usr")


def output_of(*command, **environment):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          env={**os.environ, **environment}, cwd=folder.name)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


def setUpModule():
    for name, file in FILES.items():
        assert file, f"there is no package {name} {VERSION} in {PACKAGES}; run cpack --preset packages"
        output_of("dpkg-deb", "--extract", file, USR.parent)


def tearDownModule():
    folder.cleanup()


def field(package, name):
    return output_of("dpkg-deb", "--field", FILES[package], name).strip()


def needs(package):
    """The packages that it depends on, with the version if there is a condition on it."""
    return dict(re.fullmatch(r"(\S+)(?: \((.*)\))?", each).groups() for each in field(package, "Depends").split(", "))


def leaves_documents_out():
    """Whether this system is told to install no manual pages and the like, as small container images are."""
    return any("path-exclude" in path.read_text() for path in Path("/etc/dpkg/dpkg.cfg.d").glob("*") if path.is_file())


def configure(project, *options):
    build = tempfile.mkdtemp(dir=folder.name)
    output_of("cmake", "-S", project, "-B", build, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}", *options)
    output_of("cmake", "--build", build)
    return Path(build)


def served(test, program, **environment):
    ad, in_app, users = output_of(program, tempfile.mkdtemp(dir=folder.name), **environment).splitlines()
    test.assertIn("&device_model=Phone%203&", ad)
    test.assertIn("app_id=app%20%26%20co&", in_app)
    test.assertTrue(users.startswith("&ru=1&"), users)


class Fields(unittest.TestCase):
    def test_SayWhatEachIs(self):
        self.assertEqual({name: (field(name, "Package"), field(name, "Version"), field(name, "Section"),
                                 field(name, "Maintainer")) for name in NAMES},
                         {name: (name, VERSION, section, "Tavlo <tavlo@example.invalid>") for name, section in
                          zip(NAMES, ("libs", "libdevel", "utils"))})

    def test_NameWhatTheProgramsAndLibrariesWereLinkedWith(self):
        libraries = {name for name in needs(LIBRARY) if not name.startswith(("libc6", "libgcc", "libstdc++"))}

        self.assertEqual({re.sub(r"(-?\d+)+.*", "", name) for name in libraries},
                         {"libcurl", "libgeoclue", "libgeocode-glib", "libglib", "libpng", "libsqlite"})
        self.assertEqual(needs("libtavlo-dev"), {LIBRARY: f"= {VERSION}"})
        self.assertEqual(needs("tavlo")[LIBRARY], f"= {VERSION}")

    def test_LinesOfADescriptionFitATerminal(self):
        for name in NAMES:
            self.assertLessEqual(max(map(len, field(name, "Description").splitlines())), 80, name)


class Files(unittest.TestCase):
    def test_BelongToRootAreBelowUsrAndNobodyElseCanWriteThem(self):
        for name in NAMES:
            for line in output_of("dpkg-deb", "--contents", FILES[name]).splitlines():
                with self.subTest(package=name, line=line):
                    self.assertRegex(line, r"^(drwxr-xr-x|-rw-r--r--|-rwxr-xr-x|lrwxrwxrwx) root/root .* \./(usr/.*)?$")

    def test_OfThreePackagesNoneIsInTwo(self):
        listed = [re.sub(r" -> .*", "", line).split(" ./")[-1] for name in NAMES
                  for line in output_of("dpkg-deb", "--contents", FILES[name]).splitlines() if line[0] != "d"]

        self.assertEqual(len(listed), len(set(listed)))

    def test_LibraryPackageHasTheLibrariesAndNothingElse(self):
        listed = [line.split("/")[-1] for line in output_of("dpkg-deb", "--contents", FILES[LIBRARY]).splitlines()
                  if line[0] == "-"]

        self.assertEqual(sorted(listed), [f"libtavlo{part}.so.{VERSION}" for part in ("", "_host", "_linux", "_utility")])

    def test_ManualIsFormattedWithoutAWarning(self):
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", USR / "share/man/man1/tavlo.1.gz"],
                              capture_output=True, text=True, env={**os.environ, "LC_ALL": "C.UTF-8"})

        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn(f"tavlo {VERSION}", done.stdout)

    def test_CompletionsAndExamplesAreWhereTheyAreLookedFor(self):
        for file in ("bash-completion/completions/tavlo", "zsh/vendor-completions/_tavlo",
                     "fish/vendor_completions.d/tavlo.fish", "doc/tavlo/changelog.gz", "doc/tavlo/README.md",
                     "doc/tavlo/docs/embedding.md", "doc/tavlo/examples/session.json"):
            self.assertTrue((USR / "share" / file).is_file(), file)


class Unpacked(unittest.TestCase):
    def setUp(self):
        self.lib = next(USR.glob("lib/*/libtavlo_utility.so")).parent
        self.places = {"LD_LIBRARY_PATH": str(self.lib)}

    def test_ProgramRunsAndFindsItsImages(self):
        container = tempfile.mkdtemp(dir=folder.name)

        self.assertEqual(output_of(USR / "bin/tavlo", "--version", **self.places), f"tavlo {VERSION}\n")
        self.assertIn(f"{USR}/share/tavlo/Resources/TavloSDKResource.bundle/mute.png",
                      output_of(USR / "bin/tavlo", "--container", container, "image", "mute", **self.places))

    def test_LibrariesAreFoundByCMake(self):
        build = configure(ROOT / "tests/packaging/host", f"-DEXAMPLE={HOST}", f"-DCMAKE_PREFIX_PATH={USR}")

        served(self, build / "host", **self.places)

    def test_LibrariesAreFoundByPkgConfig(self):
        flags = output_of("pkg-config", "--cflags", "--libs", "tavlo-host", "tavlo-linux",
                          PKG_CONFIG_PATH=str(self.lib / "pkgconfig"))
        program = Path(folder.name, "by-pkg-config")

        output_of("sh", "-c", f"{COMPILER} -std=c++20 -o '{program}' '{HOST}' {flags}")

        served(self, program, **self.places)


@unittest.skipUnless(os.geteuid() == 0, "it takes root to install")
class Installed(unittest.TestCase):
    def setUp(self):
        there = subprocess.run(["dpkg-query", "--show", *NAMES], capture_output=True, text=True).stdout
        self.assertEqual(there, "", "packages of these names are installed; remove them first")

    def test_ServesProgramsWithoutAnyFlagAndLeavesNothingWhenItIsRemoved(self):
        try:
            output_of("dpkg", "--install", *FILES.values())
            files = output_of("dpkg-query", "--listfiles", *NAMES).splitlines()
            own = [file for file in files if "tavlo" in file.lower()]
            self.use()
        finally:
            output_of("dpkg", "--purge", *reversed(NAMES))

        self.assertGreater(len(own), 50)
        self.assertEqual([file for file in own if os.path.lexists(file)], [])

    def use(self):
        source, program = Path(folder.name, "plain.c"), Path(folder.name, "plain")
        source.write_text(PLAIN_C, encoding="utf-8")

        self.assertEqual(output_of("tavlo", "--version"), f"tavlo {VERSION}\n")
        if not leaves_documents_out():
            self.assertEqual(output_of("man", "--where", "tavlo"), "/usr/share/man/man1/tavlo.1.gz\n")
            self.assertTrue(Path("/usr/share/bash-completion/completions/tavlo").is_file())
        output_of("cc", source, "-ltavlo", "-o", program)
        self.assertEqual(output_of(program), VERSION + "\n")
        served(self, configure(ROOT / "tests/packaging/host", f"-DEXAMPLE={HOST}") / "host")
        flags = output_of("pkg-config", "--cflags", "--libs", "tavlo-host", "tavlo-linux")
        output_of("sh", "-c", f"{COMPILER} -std=c++20 -o '{program}' '{HOST}' {flags}")
        served(self, program)


if __name__ == "__main__":
    unittest.main()
