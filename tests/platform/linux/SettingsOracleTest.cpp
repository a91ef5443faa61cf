// The settings file and an independent reader and writer of property lists.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/linux/SettingsFixture.h"
#include "tests/support/Python.h"

namespace tavlo::test {
namespace {

using testing::ElementsAre;

TEST(SettingsOracle, AnotherReaderOpensTheFile) {
  SettingsFixture box;
  auto defaults = box.store();
  defaults.setObjectForKey("grün & <blau> 😀", "ApplicationId");
  defaults.setObjectForKey(" ", "OptionalId");
  defaults.setObjectForKey("", "empty");
  ASSERT_TRUE(store(defaults, "count", -7));

  const auto lines = splitLines(runOracle("settings.py", {"show", box.file().string()}));

  EXPECT_THAT(lines,
              ElementsAre("ApplicationId str 'grün & <blau> 😀'", "OptionalId str ' '", "count int -7", "empty str ''"));
}

TEST(SettingsOracle, WhatAnotherWriterPutThereStaysAsThatWriterReadsIt) {
  SettingsFixture box;
  std::filesystem::create_directories(box.container.preferences());
  static_cast<void>(runOracle("settings.py", {"make", box.file().string()}));
  const auto before = splitLines(runOracle("settings.py", {"show", box.file().string()}));
  auto defaults = box.store();

  ASSERT_TRUE(store(defaults, "~ApplicationId", "id-1"));

  auto expected = before;
  expected.emplace_back("~ApplicationId str 'id-1'");
  ASSERT_EQ(before.size(), 15U);
  EXPECT_EQ(splitLines(runOracle("settings.py", {"show", box.file().string()})), expected);
}

}  // namespace
}  // namespace tavlo::test
