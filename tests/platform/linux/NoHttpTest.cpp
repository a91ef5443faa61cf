// A platform that is built without HTTP.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/LinuxPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

TEST(WithoutHttp, EveryHttpUrlIsAbsentAndAFileIsNot) {
  const TemporaryFolder folder;
  writeFile(folder / "image", "bytes");
  const auto platform = linux_platform::make({.container = folder.path(), .domain = "app"});

  EXPECT_EQ(platform->urlData().dataWithContentsOfUrl("http://127.0.0.1/"), std::nullopt);
  EXPECT_EQ(platform->urlData().dataWithContentsOfUrl("https://127.0.0.1/"), std::nullopt);
  EXPECT_EQ(platform->urlData().dataWithContentsOfUrl("file://" + (folder / "image").string()), "bytes");
}

}  // namespace
}  // namespace tavlo::test
