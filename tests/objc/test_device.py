#!/usr/bin/python3
"""What is for devices and not built here: the lists of files, and the code as the device's compiler sees it.

Usage: test_device.py ROOT    exit status 77 for no clang
"""

import json
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(sys.argv.pop(1)).resolve()
SOURCES = {".m", ".mm", ".cpp"}
FOLDERS = ("common", "platform", "platform/apple", "request", "cache", "identity", "location", "resources", "objc")


def runtime_headers():
    """Where GCC has the headers of its Objective-C runtime, whatever its version and processor are."""
    run = subprocess.run(["gcc", "-print-file-name=include"], capture_output=True, text=True, check=True)
    return Path(run.stdout.strip(), "objc")


def needed():
    """Every source file that the device builds."""
    return {path.relative_to(ROOT).as_posix() for folder in FOLDERS for path in Path(ROOT, folder).iterdir()
            if path.suffix in SOURCES}


def braces(pattern):
    found = re.fullmatch(r"(.*)\{(.*)\}", pattern)
    return [found[1] + each for each in found[2].split(",")] if found else [pattern]


class Lists(unittest.TestCase):
    def test_ThePodNamesEverySourceFile(self):
        pod = json.loads(Path(ROOT, "objc/TavloUtility.podspec.json").read_text(encoding="utf-8"))
        named = {path.relative_to(ROOT).as_posix() for pattern in pod["source_files"] for each in braces(pattern)
                 for path in ROOT.glob(each)}

        self.assertEqual(needed() - named, set())
        self.assertEqual({each for each in named if each.startswith("platform/linux")}, set())
        for path in (pod["public_header_files"], pod["module_map"], *pod["resources"],
                     *pod["resource_bundles"]["TavloUtilityPrivacy"]):
            self.assertTrue(Path(ROOT, path).exists(), path)

    def test_ThePackageNamesWhatIsThere(self):
        package = Path(ROOT, "Package.swift").read_text(encoding="utf-8")
        sources = re.search(r"sources: \[(.*?)\]", package, re.DOTALL)[1]
        folders = re.findall(r'"([^"]+)"', sources)
        excluded = re.findall(r'"([^"]+)"', re.search(r"exclude: \[(.*?)\]", package, re.DOTALL)[1])

        self.assertEqual({each for each in needed() if not each.startswith(tuple(f + "/" for f in folders))}, set())
        for path in folders + excluded + re.findall(r'\.copy\("([^"]+)"\)', package):
            self.assertTrue(Path(ROOT, path).exists(), path)

    def test_TheModuleIsTheHeader(self):
        self.assertIn('header "TavloUtility.h"', Path(ROOT, "objc/module.modulemap").read_text(encoding="utf-8"))

    def test_EachSaysThatItIsNotBuiltHere(self):
        for path in ("Package.swift", "objc/TavloUtility.podspec.json", "objc/module.modulemap"):
            self.assertRegex(Path(ROOT, path).read_text(encoding="utf-8").lower(), "not built")


class Compiler(unittest.TestCase):
    """With blocks, libdispatch, nullability and generics, as the device's compiler has them, over these headers."""

    @staticmethod
    def headers(folder):
        """GCC's runtime has no header for blocks, and one line that automatic reference counting cannot read."""
        shutil.copytree(runtime_headers(), Path(folder, "objc"))
        Path(folder, "objc/blocks_runtime.h").write_text("", encoding="utf-8")
        runtime = Path(folder, "objc/runtime.h")
        runtime.write_text(runtime.read_text(encoding="utf-8").replace("object->class_pointer", "0"), encoding="utf-8")
        Path(folder, "dispatch").mkdir()
        Path(folder, "dispatch/dispatch.h").write_text(
            "#define DISPATCH_QUEUE_PRIORITY_BACKGROUND (-32768)\n"
            "typedef struct dispatch_queue_s *dispatch_queue_t;\n"
            "#ifdef __cplusplus\nextern \"C\" {\n#endif\n"
            "dispatch_queue_t dispatch_get_global_queue(long, unsigned long);\n"
            "void dispatch_async_f(dispatch_queue_t, void *, void (*)(void *));\n"
            "#ifdef __cplusplus\n}\n#endif\n", encoding="utf-8")

    def test_BothKindsOfReferenceCountingAreAccepted(self):
        files = sorted(each for each in needed() if each.endswith((".m", ".mm")))
        self.assertGreater(len(files), 10)
        with tempfile.TemporaryDirectory() as folder:
            self.headers(folder)
            for counting in ("-fobjc-arc", "-fno-objc-arc"):
                for name in files:
                    language = ("objective-c++", "c++20") if name.endswith(".mm") else ("objective-c", "c11")
                    run = subprocess.run(
                        ["clang", "-fsyntax-only", "-x", language[0], f"-std={language[1]}", counting, "-fblocks",
                         "-fobjc-runtime=gnustep-2.0", "-fobjc-exceptions", "-DGNUSTEP", "-DGNUSTEP_BASE_LIBRARY=1",
                         "-Wall", "-Wextra", "-Werror", "-I.", "-isystem", folder, "-isystem", "/usr/include/GNUstep",
                         name], cwd=ROOT, capture_output=True, text=True, check=False)
                    with self.subTest(f"{counting} {name}"):
                        self.assertEqual((run.returncode, run.stderr), (0, ""))


if __name__ == "__main__":
    if not shutil.which("clang"):
        sys.exit(77)
    unittest.main()
