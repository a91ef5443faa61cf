// Archives that other programs wrote, as files.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "common/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::property_list {
namespace {

Value decoded(const std::string& bytes) {
  Decoded result = decode(bytes);
  EXPECT_EQ(result.error, "");
  return result.value.value_or(Value("no value"));
}

TEST(PropertyList, ForeignArchivesAreReadAndWrittenBackEqual) {
  std::size_t count = 0;

  for (const auto& entry : std::filesystem::directory_iterator(TAVLO_SOURCE_DIR "/tests/fixtures/archives")) {
    if (entry.path().extension() != ".bin") continue;
    const Value archive = decoded(test::readFile(entry.path()));
    ++count;

    ASSERT_NE(archive.ifMap(), nullptr) << entry.path();
    EXPECT_EQ(*archive.ifMap()->find("$version"), Value(100000)) << entry.path();
    EXPECT_EQ(decoded(encode(archive).value_or("no bytes")), archive) << entry.path();
  }

  EXPECT_EQ(count, 13U);
}

TEST(PropertyList, ForeignArchiveHoldsWhatItsWriterPutThere) {
  const Value archive = decoded(test::readFile(TAVLO_SOURCE_DIR "/tests/fixtures/archives/device_root_string.bin"));

  EXPECT_EQ(archive, Value::map({{"$version", 100000},
                                 {"$archiver", "NSKeyedArchiver"},
                                 {"$top", Value::map({{"root", Uid{.index = 1}}})},
                                 {"$objects", Value::list({"$null", "just a string"})}}));
}

}  // namespace
}  // namespace tavlo::property_list
