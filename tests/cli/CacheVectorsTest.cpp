#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

#include "cli/CacheNames.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli {
namespace {

using nlohmann::json;

std::string casesText() {
  return tavlo::test::readFile(std::string(TAVLO_SOURCE_DIR) + "/conformance/cache-names.json");
}

// The name in the path that a step logs first; absent when it is an error that is logged.
Text nameIn(const json& step) {
  constexpr std::string_view kPath = "Cached directory path : ${documents}/TavloCache/";
  const std::string line = step.at("log").at(0);
  return line.starts_with(kPath) ? Text(line.substr(kPath.size())) : std::nullopt;
}

TEST(CacheVectorsTest, ProgramExplainsTheNamesOfTheConformanceCases) {
  const auto cases = json::parse(casesText());
  ASSERT_EQ(cases.size(), 45U);

  for (const json& one : cases) {
    const json& steps = one.at("steps");
    const CacheNames names = cacheNamesOf(steps.front().at("with"));

    EXPECT_EQ(names.video, nameIn(steps.front())) << one.at("name");
    EXPECT_EQ(names.bannerLookedUp, nameIn(steps.back())) << one.at("name");
    if (steps.size() == 4) {
      EXPECT_EQ(names.bannerWritten, nameIn(steps.at(2))) << one.at("name");
    }
  }
}

TEST(CacheVectorsTest, FileIsWhatTheScriptMakes) { EXPECT_EQ(tavlo::test::runOracle("cache_vectors.py"), casesText()); }

TEST(CacheVectorsTest, UrlOfANewlineHasTwoNames) {
  const CacheNames names = cacheNamesOf("http://h/\na.mp4");

  EXPECT_EQ(names.video, "46a031da1eba2acf8ec285d177c677da.(null)");
  EXPECT_EQ(names.bannerWritten, "3d1fce77ea51e92beff9e69913394376");
  EXPECT_EQ(names.bannerLookedUp, "46a031da1eba2acf8ec285d177c677da");
}

}  // namespace
}  // namespace tavlo::cli
