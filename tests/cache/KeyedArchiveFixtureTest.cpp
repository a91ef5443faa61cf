// Archives that other programs wrote, as files, with the value of each beside it.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "cache/KeyedArchive.h"
#include "tests/cache/ArchiveBytes.h"
#include "tests/cache/ArchiveContents.h"
#include "tests/support/Python.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveContents;
using test::archiveFile;

std::map<std::string, std::string> contentsBeside() {
  std::map<std::string, std::string> contents;
  for (const std::string& line : test::splitLines(test::runOracle("keyed_archive.py", {"fixtures"}))) {
    const std::size_t blank = line.find(' ');
    contents.emplace(line.substr(0, blank), line.substr(blank + 1));
  }
  return contents;
}

TEST(KeyedArchiveFixture, EveryFileHoldsTheValueBesideIt) {
  const auto contents = contentsBeside();

  ASSERT_EQ(contents.size(), 13U);
  for (const auto& [name, expected] : contents) {
    EXPECT_EQ(archiveContents(decode(archiveFile(name))), expected) << name;
  }
}

TEST(KeyedArchiveFixture, EveryFileComesBackWhenWrittenAgain) {
  for (const auto& [name, contents] : contentsBeside()) {
    const auto value = decode(archiveFile(name));

    EXPECT_EQ(decode(encode(value)), value) << name;
  }
}

// Where no mutable variant and no superclass is lost, which a Value does not tell.
TEST(KeyedArchiveFixture, DeviceArchivesAreWrittenAsTheDeviceDoes) {
  for (const char* name :
       {"device_empty_list", "device_nested", "device_one_record", "device_root_string", "device_shared"}) {
    const std::string file = archiveFile(name);

    const auto written = property_list::decode(encode(decode(file))).value;

    EXPECT_EQ(written, property_list::decode(file).value) << name;
  }
}

}  // namespace
}  // namespace tavlo::keyed_archive
