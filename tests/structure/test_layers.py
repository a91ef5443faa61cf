#!/usr/bin/python3
"""The layer check must reject each bad sample, with the words that tell what is wrong, and accept the good one."""

import contextlib
import graphlib
import io
import tempfile
import unittest
from pathlib import Path

import layers

GOOD = {
    "TavloUtility.h": '#include <string>\n#include "common/Text.h"\n',
    "common/Text.h": "#include <optional>\n",
    "common/Utilities.cpp": '#include "TavloUtility.h"\n',
    "platform/Platform.h": '#include "common/Text.h"\n',
    "platform/linux/Files.cpp": '#include <fcntl.h>\n#include <iostream>\n#include <sys/stat.h>\n#include "platform/Platform.h"\n',
    "platform/apple/Files.mm": '#import <Foundation/Foundation.h>\n#include <sys/stat.h>\n#import "platform/apple/A.h"\n',
    "objc/TavloUtility.mm": '#import <Foundation/Foundation.h>\n#include "../TavloUtility.h"\n#import "platform/apple/A.h"\n',
    "objc/TavloUtility.h": "#import <Foundation/Foundation.h>\n",
    "request/Requests.cpp": '#include "TavloUtility.h"\n#include "platform/Platform.h"\n',
    "host/Database.cpp": '#include <sqlite3.h>\n#include "request/TavloPackage.h"\n',
    "cli/Version.cpp": '#include "TavloVersion.h"\n',
    "c/tavlo.h": '#include <stdint.h>\n#include "TavloVersion.h"\n#include "tavlo_types.h"\n',
    "c/Host.cpp": '#include <memory>\n#include "c/tavlo.h"\n#include "host/SessionRecord.h"\n',
    "cli/Main.cpp": '#include <unistd.h>\n#include <CLI/CLI.hpp>\n#include "platform/linux/LinuxPlatform.h"\n',
    "cli/Json.cpp": "#include <nlohmann/json.hpp>\n#include <string>\n",
    "tests/cli/ProgramTest.cpp": '#include <gtest/gtest.h>\n#include "platform/linux/LinuxPlatform.h"\n',
    "build/release/Long.cpp": "\n" * 1000,
}

# Name of the sample, the file that spoils the good tree, its text, what the check says.
BAD = [
    ("RoomUsesSystemHeader", "request/A.cpp", "#include <unistd.h>\n",
     "request/A.cpp: <unistd.h> is neither of the C++ standard library nor allowed in request"),
    ("RoomUsesOldNameOfStandardHeader", "cache/A.h", "  #  include <string.h>\n",
     "cache/A.h: <string.h> is neither of the C++ standard library nor allowed in cache"),
    ("RoomUsesLibrary", "identity/A.cpp", "#include <sqlite3.h>\n",
     "identity/A.cpp: <sqlite3.h> is neither of the C++ standard library nor allowed in identity"),
    ("RoomUsesFoundation", "cache/A.h", "#import <Foundation/Foundation.h>\n",
     "cache/A.h: <Foundation/Foundation.h> is neither of the C++ standard library nor allowed in cache"),
    ("LinuxUsesFoundation", "platform/linux/A.mm", "#include <Foundation/Foundation.h>\n",
     "platform/linux/A.mm: <Foundation/Foundation.h> is neither of the C++ standard library nor allowed in platform/linux"),
    ("FoundationPlatformIncludesRoom", "platform/apple/A.mm", '#import "request/TavloPackage.h"\n',
     "platform/apple/A.mm: platform/apple may not include request/TavloPackage.h"),
    ("FoundationPlatformIncludesItsFace", "platform/apple/A.mm", '#import "objc/TavloUtility.h"\n',
     "platform/apple/A.mm: platform/apple may not include objc/TavloUtility.h"),
    ("RoomUsesStreams", "request/A.cpp", "#include <iostream>\n",
     "request/A.cpp: <iostream> is too heavy for request"),
    ("CommonUsesRegularExpressions", "common/A.cpp", "#include <regex>\n",
     "common/A.cpp: <regex> is too heavy for common"),
    ("PlatformInterfaceUsesLocales", "platform/A.h", "#include <locale>\n",
     "platform/A.h: <locale> is too heavy for platform"),
    ("FaceUsesStreams", "TavloUtility.h", "#include <iostream>\n",
     "TavloUtility.h: <iostream> is too heavy for TavloUtility.h"),
    ("CommonUsesSystemHeader", "common/A.cpp", "#include <sys/stat.h>\n",
     "common/A.cpp: <sys/stat.h> is neither of the C++ standard library nor allowed in common"),
    ("PlatformInterfaceUsesSystemHeader", "platform/A.h", "#include <fcntl.h>\n",
     "platform/A.h: <fcntl.h> is neither of the C++ standard library nor allowed in platform"),
    ("HeaderForCIncludesOneForCpp", "c/tavlo_a.h", '#include "common/Text.h"\n',
     "c/tavlo_a.h: includes common/Text.h; a header for C has the four of C and those beside it"),
    ("HeaderForCUsesStandardLibraryOfCpp", "c/tavlo_a.h", "#include <string>\n",
     "c/tavlo_a.h: includes string; a header for C has the four of C and those beside it"),
    ("HostSeesTheInterfaceForC", "host/A.cpp", '#include "c/tavlo.h"\n', "host/A.cpp: host may not include c/tavlo.h"),
    ("HostAssumesSystem", "host/A.cpp", "#include <unistd.h>\n",
     "host/A.cpp: <unistd.h> is neither of the C++ standard library nor allowed in host"),
    ("LinuxUsesLibraryOfTheProgram", "platform/linux/A.cpp", "#include <nlohmann/json.hpp>\n",
     "platform/linux/A.cpp: <nlohmann/json.hpp> is neither of the C++ standard library nor allowed in platform/linux"),
    ("RoomSeesLinuxPlatform", "location/A.cpp", '#include "platform/linux/Files.h"\n',
     "location/A.cpp: location may not include platform/linux/Files.h"),
    ("RoomSeesOtherRoom", "request/A.cpp", '#include "identity/Identifiers.h"\n',
     "request/A.cpp: request may not include identity/Identifiers.h"),
    ("RoomSeesHost", "resources/A.cpp", '#include "host/SessionRecord.h"\n',
     "resources/A.cpp: resources may not include host/SessionRecord.h"),
    ("CommonSeesPlatform", "common/A.cpp", '#include "platform/Platform.h"\n',
     "common/A.cpp: common may not include platform/Platform.h"),
    ("CommonHeaderSeesFace", "common/A.h", '#include "TavloUtility.h"\n',
     "common/A.h: common may not include TavloUtility.h"),
    ("FaceSeesRoom", "TavloUtility.h", '#include "request/TavloPackage.h"\n',
     "TavloUtility.h: TavloUtility.h may not include request/TavloPackage.h"),
    ("PlatformSeesRoom", "platform/A.h", '#include "request/TavloPackage.h"\n',
     "platform/A.h: platform may not include request/TavloPackage.h"),
    ("PlatformSeesItsImplementation", "platform/A.cpp", '#include "platform/linux/Files.h"\n',
     "platform/A.cpp: platform may not include platform/linux/Files.h"),
    ("LinuxSeesFace", "platform/linux/A.cpp", '#include "TavloUtility.h"\n',
     "platform/linux/A.cpp: platform/linux may not include TavloUtility.h"),
    ("HostSeesLinuxPlatform", "host/A.cpp", '#include "platform/linux/Files.h"\n',
     "host/A.cpp: host may not include platform/linux/Files.h"),
    ("HostSeesPrivateHeaderOfRoom", "host/A.cpp", '#include "request/Renderer.h"\n',
     "host/A.cpp: host may not include request/Renderer.h"),
    ("HostSeesProgram", "host/A.cpp", '#include "cli/Json.h"\n',
     "host/A.cpp: host may not include cli/Json.h"),
    ("IncludeIsRelative", "request/A.cpp", '#include "Renderer.h"\n',
     'request/A.cpp: "Renderer.h" is no path from the root to a file of a layer'),
    ("ProductSeesTests", "host/A.cpp", '#include "tests/support/TemporaryFolder.h"\n',
     'host/A.cpp: "tests/support/TemporaryFolder.h" is no path from the root to a file of a layer'),
    ("SecondFileUsesSqlite", "host/A.cpp", "#include <sqlite3.h>\n",
     "host/A.cpp, host/Database.cpp: SQLite is for one file only"),
    ("SecondFileUsesCli11", "cli/A.cpp", "#include <CLI/App.hpp>\n",
     "cli/A.cpp, cli/Main.cpp: CLI11 is for one file only"),
    ("SecondFileUsesJson", "cli/A.cpp", "#include <nlohmann/json_fwd.hpp>\n",
     "cli/A.cpp, cli/Json.cpp: nlohmann-json is for one file only"),
    ("TestOfRoomSeesLinuxPlatform", "tests/request/ATest.cpp", '#include "platform/linux/Files.h"\n',
     "tests/request/ATest.cpp: includes platform/linux/Files.h; this test may not assume a platform"),
    ("FileIsTooLong", "tests/structure/a.py", "pass\n" * 301,
     "tests/structure/a.py: 301 lines, at most 300"),
]


def violations_of(files):
    with tempfile.TemporaryDirectory() as folder:
        for name, text in files.items():
            path = Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = layers.main([folder])
        return status, output.getvalue().splitlines()


class LayerCheck(unittest.TestCase):
    def test_GoodTreePasses(self):
        self.assertEqual(violations_of(GOOD), (0, []))

    def test_LongestAllowedFilePasses(self):
        self.assertEqual(violations_of({"common/A.cpp": "\n" * 300}), (0, []))

    def test_EachBadSampleIsRejectedForItsOwnReason(self):
        for sample, name, text, message in BAD:
            with self.subTest(sample):
                self.assertEqual(violations_of({**GOOD, name: text}), (1, [message]))

    def test_AllowedArrowsFormNoCircle(self):
        folders = {folder: {layers.folder_of(target) or target for target in targets}
                   for folder, targets in layers.ARROWS.items()}

        order = list(graphlib.TopologicalSorter(folders).static_order())

        self.assertLess(order.index("common"), order.index("platform"))
        self.assertEqual(order[-1], "cli")

    def test_FolderThatIsNotThereIsAUsageError(self):
        with contextlib.redirect_stderr(io.StringIO()):
            self.assertEqual(layers.main(["/nowhere"]), 2)


if __name__ == "__main__":
    unittest.main()
