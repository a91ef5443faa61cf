#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

#include "cli/CacheNames.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli {
namespace {

std::string vectorsText() { return tavlo::test::readFile(std::string(TAVLO_SOURCE_DIR) + "/docs/cache-vectors.json"); }

Text textOf(const nlohmann::json& value) { return value.is_null() ? Text() : Text(value.get<std::string>()); }

TEST(CacheVectorsTest, OperationsMakeTheNamesOfTheVectors) {
  const auto vectors = nlohmann::json::parse(vectorsText());
  ASSERT_EQ(vectors.size(), 45U);

  for (const auto& vector : vectors) {
    const std::string about = vector.at("about");
    const CacheNames names = cacheNamesOf(vector.at("url"));

    EXPECT_EQ(names.video, textOf(vector.at("video"))) << about;
    EXPECT_EQ(names.bannerWritten, textOf(vector.at("bannerWritten"))) << about;
    EXPECT_EQ(names.bannerLookedUp, textOf(vector.at("bannerLookedUp"))) << about;
  }
}

TEST(CacheVectorsTest, FileIsWhatTheScriptMakes) {
  EXPECT_EQ(tavlo::test::runOracle("cache_vectors.py"), vectorsText());
}

TEST(CacheVectorsTest, UrlOfANewlineHasTwoNames) {
  const CacheNames names = cacheNamesOf("http://h/\na.mp4");

  EXPECT_EQ(names.video, "46a031da1eba2acf8ec285d177c677da.(null)");
  EXPECT_EQ(names.bannerWritten, "3d1fce77ea51e92beff9e69913394376");
  EXPECT_EQ(names.bannerLookedUp, "46a031da1eba2acf8ec285d177c677da");
}

}  // namespace
}  // namespace tavlo::cli
