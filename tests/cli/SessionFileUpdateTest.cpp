#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "cli/Errors.h"
#include "cli/SessionFileUpdate.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::writeFile;

constexpr const char* kAnew =
    "{\n  \"package\": {\n    \"getLatitude\": \"1.000000\",\n    \"getLongitude\": \"2.000000\",\n"
    "    \"getUserAddress\": \"\"\n  }\n}\n";

class SessionFileUpdate : public testing::Test {
 protected:
  void keep(const Text& address = "") const {
    keepInSessionFile(file(), {.latitude = "1.000000", .longitude = "2.000000", .address = address});
  }
  [[nodiscard]] std::string file() const { return (folder_ / "s.json").string(); }

  // The message of what is thrown, after the file's name and its colon.
  [[nodiscard]] std::string refusal() const {
    try {
      keep();
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "it was taken";
  }

  const test::TemporaryFolder folder_;
};

TEST_F(SessionFileUpdate, MissingFileIsMadeForItsOwnerAlone) {
  keep();

  EXPECT_EQ(readFile(file()), kAnew);
  EXPECT_EQ(fs::status(file()).permissions(), fs::perms(0600));
}

TEST_F(SessionFileUpdate, AllElseStaysInItsOrder) {
  writeFile(file(), R"({"about": [1, -2.5, true, null, {}, []], "trackerRecords": [{"networkID": 12, "count": "2"}],
    "package": {"page": "a\u0001\"\\/é", "getLatitude": "0", "preRoll": -3}, "uniqueUser": null})");

  keep("{}");

  EXPECT_EQ(readFile(file()),
            "{\n"
            "  \"about\": [\n    1,\n    -2.5,\n    true,\n    null,\n    {},\n    []\n  ],\n"
            "  \"trackerRecords\": [\n    {\n      \"networkID\": 12,\n      \"count\": \"2\"\n    }\n  ],\n"
            "  \"package\": {\n"
            "    \"page\": \"a\\u0001\\\"\\\\/é\",\n"
            "    \"getLatitude\": \"1.000000\",\n"
            "    \"preRoll\": -3,\n"
            "    \"getLongitude\": \"2.000000\",\n"
            "    \"getUserAddress\": \"{}\"\n"
            "  },\n"
            "  \"uniqueUser\": null\n"
            "}\n");
}

TEST_F(SessionFileUpdate, PackageThatIsNullBecomesOne) {
  writeFile(file(), R"({"package": null})");

  keep();

  EXPECT_EQ(readFile(file()), kAnew);
}

TEST_F(SessionFileUpdate, UpdatedAgainItIsTheSame) {
  keep();

  keep();

  EXPECT_EQ(readFile(file()), kAnew);
}

TEST_F(SessionFileUpdate, FileBehindALinkIsUpdatedAndTheLinkStays) {
  writeFile(folder_ / "real.json", "{}");
  fs::create_symlink("real.json", file());

  keep();

  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(readFile(folder_ / "real.json"), kAnew);
}

TEST_F(SessionFileUpdate, WhatIsNoSessionFileStaysAsItWas) {
  writeFile(file(), R"({"packages": {}})");

  EXPECT_EQ(refusal(),
            file() + ":1: packages: unknown key, expected package, uniqueUser, trackerRecords, identifiers or about");
  EXPECT_EQ(readFile(file()), R"({"packages": {}})");
}

TEST_F(SessionFileUpdate, WhatIsNoFileIsRefusedAndBlocksNobody) {
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);

  EXPECT_EQ(refusal(), file() + " is no regular file; give another one");
}

TEST_F(SessionFileUpdate, FolderThatIsMissingIsTold) {
  const std::string path = (folder_ / "none/s.json").string();

  try {
    keepInSessionFile(path, {});
    FAIL() << "it was written";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.what(), "cannot write " + path +
                                  ": No such file or directory; give a file in a folder that is there and can be "
                                  "written");
  }
}

}  // namespace
}  // namespace tavlo::cli
