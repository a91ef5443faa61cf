#!/usr/bin/python3
"""Checks which folder includes which, who uses the system and the libraries, and how long files are.

Usage: layers.py ROOT    prints one line a violation; exit status 1 when there is any
"""

import re
import sys
from pathlib import Path

FACE = "TavloUtility.h"
VERSION = "TavloVersion.h"  # made from the version of the project
ROOMS = ("request", "cache", "identity", "location", "resources")
ROOM_ARROWS = {"common", "platform", FACE}
HOST_API = {"request/TavloPackage.h", "request/PackageReads.h", "request/TavloUniqueUserHandler.h",
            "request/DataBaseHandler.h", "cache/KeyedArchive.h"}

# What a folder may include besides its own files: folders and single headers.
ARROWS = {
    FACE: {"common"},
    VERSION: set(),
    "common": set(),
    "platform": {"common"},
    **{room: ROOM_ARROWS for room in ROOMS},
    "location": ROOM_ARROWS | {"request/TavloPackage.h"},
    "platform/linux": {"common", "platform"},
    "platform/apple": {"common", "platform"},
    "objc": {"common", "platform", "platform/apple", FACE, "request", "cache"},
    "host": {"common", "platform", FACE} | HOST_API,
    "c": {"common", "platform", "platform/linux", "host", FACE, VERSION, *ROOMS},
    "cli": {"common", "platform", "platform/linux", "host", FACE, VERSION, *ROOMS},
}
SYSTEM_USERS = {"platform/linux", "platform/apple", "cli"}

# The device's frameworks and its Objective-C, which nobody else knows.
FRAMEWORKS = re.compile(r"(Foundation/Foundation|UIKit/UIKit|CoreLocation/CoreLocation|dispatch/dispatch|objc/runtime)\.h")
FRAMEWORK_USERS = {"platform/apple", "objc"}

# What a phone carries: standard headers that would bring static objects and much code of their own stay out of it.
CARRIED = {FACE, "common", "platform", *ROOMS}
HEAVY_HEADERS = {"iostream", "regex", "locale"}

# The public headers of the C interface are C, and name each other relative to where they are installed: side by side.
C_HEADER = re.compile(r"c/tavlo\w*\.h")
C_STANDARD_HEADERS = {"stdbool.h", "stddef.h", "stdint.h", "string.h"}

# Each library's headers stand in one file only, of this folder.
LIBRARIES = {
    "libcurl": (r"curl/.+", "platform/linux"),
    "libpng": (r"png\.h", "platform/linux"),
    "GLib": (r"glib\.h", "platform/linux"),
    "GIO": (r"gio/gio\.h", "platform/linux"),
    "GIO for Unix": (r"gio/gunix.+", "platform/linux"),
    "libgeoclue": (r"geoclue\.h", "platform/linux"),
    "geocode-glib": (r"geocode-glib/.+", "platform/linux"),
    "SQLite": (r"sqlite3\.h", "host"),
    "CLI11": (r"CLI/.+", "cli"),
    "nlohmann-json": (r"nlohmann/.+", "cli"),
}

STANDARD_HEADERS = set("""
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg
    cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format
    forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits
    list locale map memory memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex
    scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf
    string string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map
    unordered_set utility valarray variant vector version""".split())
SYSTEM_HEADER = re.compile(r"(sys|linux|netinet|arpa)/\w+\.h|(unistd|fcntl|dirent|signal|poll|pthread|sched|pwd)\.h")

INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^>"]+)[>"]', re.MULTILINE)
LONGEST_FILE = 300
SOURCES = {".h", ".cpp", ".m", ".mm"}
MEASURED = {*SOURCES, ".py", ".sh", ".cmake"}
SKIPPED = {".git", "build"}


def folder_of(path):
    """The layer that a path of the tree belongs to, None for tests, benches and the like."""
    if path in (FACE, VERSION):
        return path
    matches = [folder for folder in ARROWS if path.startswith(folder + "/")]
    return max(matches, key=len, default=None)


def defines_face(name, included):
    """The utilities of common/ are operations of the face: a source file there sees it, a header never."""
    return included == FACE and name.startswith("common/") and name.endswith(".cpp")


class Check:
    def __init__(self, root):
        self.violations = []
        self.library_users = {name: [] for name in LIBRARIES}
        for path in sorted(root.rglob("*")):
            name = path.relative_to(root).as_posix()
            if path.suffix not in MEASURED or name.split("/")[0] in SKIPPED:
                continue
            text = path.read_text(encoding="utf-8")
            self.measure(name, text)
            for bracket, included in INCLUDE.findall(text) if path.suffix in SOURCES else ():
                self.include(name, bracket == "<", included)
        self.count_library_users()

    def report(self, name, message):
        self.violations.append(f"{name}: {message}")

    def measure(self, name, text):
        lines = text.count("\n")
        if lines > LONGEST_FILE:
            self.report(name, f"{lines} lines, at most {LONGEST_FILE}")

    def include(self, name, angled, included):
        folder = folder_of(name)
        if folder is None:
            self.include_in_test(name, included)
        elif C_HEADER.fullmatch(name):
            self.include_in_c_header(name, angled, included)
        elif angled:
            self.include_of_system(name, folder, included)
        else:
            self.include_of_project(name, folder, included)

    def include_in_test(self, name, included):
        portable = [f"tests/{folder}/" for folder in ("common", "host", "support", *ROOMS)]
        if name.startswith(tuple(portable)) and included.startswith("platform/linux/"):
            self.report(name, f"includes {included}; this test may not assume a platform")

    def include_in_c_header(self, name, angled, included):
        known = included in C_STANDARD_HEADERS if angled else included == VERSION or C_HEADER.fullmatch(f"c/{included}")
        if not known:
            self.report(name, f"includes {included}; a header for C has the four of C and those beside it")

    def include_of_system(self, name, folder, included):
        if included in HEAVY_HEADERS and folder in CARRIED:
            self.report(name, f"<{included}> is too heavy for {folder}")
            return
        if included in STANDARD_HEADERS or (folder in SYSTEM_USERS and SYSTEM_HEADER.fullmatch(included)):
            return
        if folder in FRAMEWORK_USERS and FRAMEWORKS.fullmatch(included):
            return
        for library, (headers, home) in LIBRARIES.items():
            if re.fullmatch(headers, included) and folder == home:
                self.library_users[library].append(name)
                return
        self.report(name, f"<{included}> is neither of the C++ standard library nor allowed in {folder}")

    def include_of_project(self, name, folder, included):
        if name.startswith("objc/") and included == "../" + FACE:
            included = FACE  # beside a header of the same name
        target = folder_of(included)
        if target is None:
            self.report(name, f'"{included}" is no path from the root to a file of a layer')
        elif target != folder and not ARROWS[folder] & {target, included} and not defines_face(name, included):
            self.report(name, f"{folder} may not include {included}")

    def count_library_users(self):
        for library, users in self.library_users.items():
            if len(set(users)) > 1:
                self.report(", ".join(sorted(set(users))), f"{library} is for one file only")


def main(arguments):
    if len(arguments) != 1 or not Path(arguments[0]).is_dir():
        print(__doc__, file=sys.stderr)
        return 2
    violations = Check(Path(arguments[0])).violations
    for violation in violations:
        print(violation)
    return 1 if violations else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
