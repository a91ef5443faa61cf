#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "common/PropertyList.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::make;

TEST(LinuxPlatform, KeepsSettingsInItsContainerUnderItsDomain) {
  const TemporaryFolder folder;
  const auto platform = make({.container = folder.path(), .domain = "app"});

  platform->standardUserDefaults().setObjectForKey("v", "k");
  EXPECT_TRUE(platform->standardUserDefaults().synchronize());

  const auto decoded = property_list::decode(readFile(folder / "Library/Preferences/app.plist"));
  EXPECT_EQ(decoded.value, Value::map({{"k", "v"}}));
  EXPECT_EQ(make({.container = folder.path(), .domain = "app"})->standardUserDefaults().objectForKey("k"), Value("v"));
  EXPECT_EQ(make({.container = folder.path(), .domain = "b"})->standardUserDefaults().objectForKey("k"), std::nullopt);
}

TEST(LinuxPlatform, WithoutAContainerLiesUnderTheDataHome) {
  const TemporaryFolder folder;
  ASSERT_EQ(::setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);
  const auto platform = make({.domain = "app"});

  platform->standardUserDefaults().setObjectForKey("v", "k");
  EXPECT_TRUE(platform->standardUserDefaults().synchronize());

  EXPECT_TRUE(std::filesystem::exists(folder / "app/Library/Preferences/app.plist"));
}

TEST(LinuxPlatform, MakingOneTouchesNothing) {
  const TemporaryFolder folder;

  const auto platform = make({.container = folder / "box", .domain = "app"});
  static_cast<void>(platform->standardUserDefaults());

  EXPECT_FALSE(std::filesystem::exists(folder / "box"));
}

TEST(LinuxPlatform, AnImpossibleDomainOrContainerIsAnError) {
  EXPECT_THROW(static_cast<void>(make({.domain = "a/b"})), std::invalid_argument);
  EXPECT_THROW(static_cast<void>(make({.container = "", .domain = "a"})), std::invalid_argument);
}

TEST(LinuxPlatform, HasOneSettingsStoreForAllThreads) {
  const TemporaryFolder folder;
  const auto platform = make({.container = folder.path(), .domain = "app"});
  std::vector<platform::UserDefaults*> stores(16);
  std::vector<std::thread> threads;

  for (auto& store : stores) threads.emplace_back([&] { store = &platform->standardUserDefaults(); });
  for (std::thread& thread : threads) thread.join();

  EXPECT_THAT(stores, testing::Each(stores.front()));
}

TEST(LinuxPlatform, WritesConsoleLinesToStandardErrorUnlessItIsQuiet) {
  const TemporaryFolder folder;
  const auto loud = make({.container = folder.path(), .domain = "app"});
  const auto quiet = make({.container = folder.path(), .domain = "app", .quietConsole = true});

  testing::internal::CaptureStderr();
  loud->console().log("heard");
  quiet->console().log("dropped");

  EXPECT_EQ(testing::internal::GetCapturedStderr(), "heard\n");
}

TEST(LinuxPlatform, TellsOfADamagedSettingsFileOnTheConsoleUnlessItIsQuiet) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "Library/Preferences");
  writeFile(folder / "Library/Preferences/app.plist", "damaged");

  testing::internal::CaptureStderr();
  for (const bool quiet : {false, true}) {
    const auto platform = make({.container = folder.path(), .domain = "app", .quietConsole = quiet});
    EXPECT_EQ(platform->standardUserDefaults().objectForKey("k"), std::nullopt);
  }

  const std::string lines = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(lines.starts_with("TavloUtility: the settings file ")) << lines;
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1);
}

}  // namespace
}  // namespace tavlo::test
