// A program that links the platform library and names nothing of it.
#include <gtest/gtest.h>

#include <cstdlib>

#include "TavloUtility.h"
#include "common/PropertyList.h"
#include "platform/Platform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

TEST(DefaultPlatform, KeepsIdentifiersUnderTheNameOfTheExecutable) {
  const TemporaryFolder folder;
  ASSERT_EQ(::setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);

  TavloUtility::setAppIdToUserDefault("id-1");

  const auto decoded = property_list::decode(
      readFile(folder / "tavlo_default_platform_tests/Library/Preferences/tavlo_default_platform_tests.plist"));
  EXPECT_EQ(decoded.value, Value::map({{"ApplicationId", "id-1"}}));
  EXPECT_EQ(TavloUtility::getAppIdFromUserDefault(), "id-1");
  platform::install(nullptr);
}

TEST(DefaultPlatform, IsMadeOnceAndStaysInPlace) {
  const TemporaryFolder folder;
  ASSERT_EQ(::setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);

  EXPECT_EQ(platform::current(), platform::current());
  platform::install(nullptr);
}

}  // namespace
}  // namespace tavlo::test
