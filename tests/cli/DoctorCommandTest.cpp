#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

namespace fs = std::filesystem;
using tavlo::test::readFile;
using tavlo::test::writeFile;
using testing::HasSubstr;

class DoctorTest : public testing::Test {
 protected:
  // Where there is no bus and no certificate is looked at.
  [[nodiscard]] Result doctor(std::vector<std::string> options = {}) const {
    options.insert(options.begin(), "doctor");
    return run(options, {.environment = {{"TAVLO_CONTAINER", container()},
                                         {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path("no-bus")},
                                         {"XDG_RUNTIME_DIR", path("no-runtime")}}});
  }
  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }
  [[nodiscard]] std::string container() const { return path("c"); }
  [[nodiscard]] std::string inContainer(const std::string& name) const { return container() + "/" + name; }
  void put(const std::string& name, const std::string& bytes) const {
    fs::create_directories(fs::path(inContainer(name)).parent_path());
    writeFile(inContainer(name), bytes);
  }
  [[nodiscard]] static std::string shipped(const std::string& name) {
    return (fs::canonical(std::getenv("TAVLO_PROGRAM")).parent_path() / "Resources/TavloSDKResource.bundle" / name)
        .string();
  }

  const tavlo::test::TemporaryFolder folder_;
};

TEST_F(DoctorTest, EmptyPlaceIsSoundAndNothingIsMade) {
  const Result examined = doctor();

  EXPECT_EQ(examined.exitCode, 0);
  EXPECT_EQ(examined.err, "");
  EXPECT_THAT(examined.out,
              testing::StartsWith("state  check         finding\n"
                                  "ok     container     " +
                                  container() +
                                  " is not there yet, and can be made\n"
                                  "ok     settings      " +
                                  inContainer("Library/Preferences/tavlo.plist") +
                                  " is not there yet: there are no identifiers\n"
                                  "ok     database      there is none yet: no tracker records, no counters\n"
                                  "ok     cache         " +
                                  inContainer("Documents/TavloCache") +
                                  " is not there yet\n"
                                  "ok     log           " +
                                  inContainer("Documents/TavloCache/TavloLogFile.txt") + " is not there yet\n"));
  EXPECT_THAT(examined.out, HasSubstr("\nnote   geocoder      none is named, so addresses stay empty; name one with "
                                      "--geocoder URL or table:FILE\n"));
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(DoctorTest, WhatLiesThereIsFound) {
  const Setting there{.environment = {{"TAVLO_CONTAINER", container()}}};
  ASSERT_EQ(run({"id", "set", "app", "a"}, there).exitCode, 0);
  ASSERT_EQ(run({"event", "add", "n", "e"}, there).exitCode, 0);
  put("Documents/TavloCache/TavloLogFile.txt", "a line\n");

  const Result examined = doctor();

  EXPECT_EQ(examined.exitCode, 0);
  EXPECT_THAT(examined.out,
              testing::StartsWith("state  check         finding\n"
                                  "ok     container     " +
                                  container() +
                                  " can be written\n"
                                  "ok     settings      " +
                                  inContainer("Library/Preferences/tavlo.plist") +
                                  " has 1 entry\n"
                                  "ok     database      the tracker records and counters are sound\n"
                                  "ok     cache         " +
                                  inContainer("Documents/TavloCache") +
                                  " has 1 entry\n"
                                  "ok     log           " +
                                  inContainer("Documents/TavloCache/TavloLogFile.txt") + " can be read\n"));
  EXPECT_FALSE(fs::exists(inContainer("tavlo-doctor-XXXXXX")));
  EXPECT_EQ(std::distance(fs::directory_iterator(container()), fs::directory_iterator()),
            3);  // Documents, Library, tmp
}

TEST_F(DoctorTest, ServicesThatAreMissingAreNotes) {
  const Result examined = doctor({"--json"});

  EXPECT_EQ(examined.exitCode, 0);
  EXPECT_THAT(examined.out, testing::StartsWith(R"([{"check":"container","state":"ok","finding":")" + container() +
                                                R"( is not there yet, and can be made","remedy":null},)"));
  EXPECT_THAT(examined.out, HasSubstr(R"({"check":"position","state":"note",)"));
  EXPECT_THAT(examined.out, HasSubstr(R"({"check":"geocoder","state":"note","finding":"none is named, so addresses )"
                                      R"(stay empty","remedy":"name one with --geocoder URL or table:FILE"})"));
  EXPECT_THAT(examined.out, HasSubstr(R"({"check":"portal","state":"note",)"));
}

TEST_F(DoctorTest, TableOfPlacesIsRead) {
  writeFile(path("t.json"), R"({"places": []})");

  EXPECT_THAT(doctor({"--geocoder", "table:" + path("t.json")}).out,
              HasSubstr("\nok     geocoder      " + path("t.json") + " is a table of places\n"));
}

TEST_F(DoctorTest, WhatIsBrokenIsToldTogether) {
  put("Library/Preferences/tavlo.plist", "no property list");
  put("Library/tracker.sqlite", "no database");
  put("Documents/TavloCache", "no folder");
  put("Resources/TavloSDKResource.bundle/mute.png", "no image");

  const Result examined = doctor();

  EXPECT_EQ(examined.exitCode, 1);
  EXPECT_EQ(examined.err.substr(0, 47), "tavlo: broken: settings, database, cache, mute ");
  EXPECT_THAT(examined.out, HasSubstr("\nok      container     " + container() + " can be written\n"));
  EXPECT_THAT(examined.out,
              HasSubstr("\nBROKEN  settings      " + inContainer("Library/Preferences/tavlo.plist") + " is damaged: "));
  EXPECT_THAT(
      examined.out,
      HasSubstr(
          "\nBROKEN  database      the database " + inContainer("Library/tracker.sqlite") +
          " is no database; give another path, or move it away, and a new one is made (file is not a database)\n"));
  EXPECT_THAT(examined.out, HasSubstr("\nBROKEN  cache         cannot read the cache directory " +
                                      inContainer("Documents/TavloCache") + ": Not a directory; "));
  EXPECT_THAT(examined.out, HasSubstr("\nnote    volume image  there is no volume.png in " +
                                      inContainer("Resources/TavloSDKResource.bundle") + "; put it there\n"));
  EXPECT_THAT(examined.out,
              HasSubstr("\nBROKEN  mute image    " + inContainer("Resources/TavloSDKResource.bundle/mute.png") +
                        " cannot be read as an image; put a PNG file there\n"));
  EXPECT_EQ(readFile(inContainer("Library/tracker.sqlite")), "no database");
}

TEST_F(DoctorTest, DatabaseOfDamagedPagesIsBroken) {
  const Setting there{.environment = {{"TAVLO_CONTAINER", container()}}};
  for (const char* const event : {"a", "b", "c"}) ASSERT_EQ(run({"event", "add", "n", event}, there).exitCode, 0);
  std::string bytes = readFile(inContainer("Library/tracker.sqlite"));
  ASSERT_GT(bytes.size(), 8192U);
  bytes.replace(4096, 64, std::string(64, '\x7f'));
  fs::remove(inContainer("Library/tracker.sqlite-wal"));
  writeFile(inContainer("Library/tracker.sqlite"), bytes);

  const Result examined = doctor();

  EXPECT_EQ(examined.exitCode, 1);
  EXPECT_THAT(examined.out, HasSubstr("\nBROKEN  database "));
}

TEST_F(DoctorTest, LogThatIsNoFileIsBrokenAndBlocksNobody) {
  fs::create_directories(inContainer("Documents/TavloCache"));
  ASSERT_EQ(::mkfifo(inContainer("Documents/TavloCache/TavloLogFile.txt").c_str(), 0600), 0);

  const Result examined = doctor();

  EXPECT_EQ(examined.exitCode, 1);
  EXPECT_THAT(examined.out,
              HasSubstr("\nBROKEN  log           cannot read " + inContainer("Documents/TavloCache/TavloLogFile.txt") +
                        ": it is no regular file; check what lies there, and the rights to it\n"));
}

TEST_F(DoctorTest, ContainerThatIsAFileIsBroken) {
  writeFile(container(), "");

  EXPECT_THAT(doctor().out, HasSubstr("\nBROKEN  container     " + container() +
                                      " is no folder; move it away, or give another one with --container\n"));
}

TEST_F(DoctorTest, ContainerBelowAFileCannotBeMade) {
  writeFile(path("file"), "");
  const Result examined = run({"doctor", "--container", path("file/c")});

  EXPECT_EQ(examined.exitCode, 1);
  EXPECT_THAT(examined.out, HasSubstr("\nBROKEN  container     " + path("file/c") + " cannot be made: " + path("file") +
                                      " is no folder that can be written; check the rights to it, or give another "
                                      "container with --container\n"));
}

#if TAVLO_LINUX_HTTP
TEST_F(DoctorTest, HttpIsTriedOnThisMachine) {
  EXPECT_THAT(doctor().out, HasSubstr("\nok     http          a page of this machine was fetched\n"));
}
#endif

#if TAVLO_LINUX_IMAGES
TEST_F(DoctorTest, ShippedImagesAreFound) {
  const Result examined = doctor();

  EXPECT_THAT(examined.out, testing::EndsWith("\nok     volume image  " + shipped("volume.png") +
                                              " has 64 x 64 pixels\n"
                                              "ok     mute image    " +
                                              shipped("mute.png") + " has 64 x 64 pixels\n"));
}
#endif

}  // namespace
}  // namespace tavlo::cli::test
