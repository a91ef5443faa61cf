#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/LinuxBundles.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::LinuxBundles;
using linux_platform::make;
using namespace std::string_literals;

class LinuxBundlesTest : public testing::Test {
 protected:
  LinuxBundlesTest() {
    std::filesystem::create_directories(folder_ / "box.bundle/folder.png");
    writeFile(folder_ / "box.bundle/volume.png", "bytes");
    writeFile(folder_ / "outside.png", "bytes");
  }

  [[nodiscard]] std::string at(const std::string& name) const { return (folder_ / name).string(); }

  TemporaryFolder folder_;
  LinuxBundles bundles_{at("resources")};
};

TEST_F(LinuxBundlesTest, TheMainBundleNeedNotBeThere) { EXPECT_EQ(bundles_.mainBundleResourcePath(), at("resources")); }

TEST_F(LinuxBundlesTest, OnlyADirectoryIsABundle) {
  ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
  std::filesystem::create_symlink("box.bundle", at("link"));
  std::filesystem::create_symlink("gone", at("dangling"));

  EXPECT_NE(bundles_.bundleWithPath(at("box.bundle")), nullptr);
  EXPECT_NE(bundles_.bundleWithPath(at("box.bundle/")), nullptr);
  EXPECT_NE(bundles_.bundleWithPath(at("link")), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(at("dangling")), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(at("gone")), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(at("outside.png")), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(at("fifo")), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(at("box.bundle") + "\0more"s), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(""), nullptr);
  EXPECT_EQ(bundles_.bundleWithPath(std::nullopt), nullptr);
}

TEST_F(LinuxBundlesTest, AResourceIsAFileOfItsNameAndType) {
  const auto bundle = bundles_.bundleWithPath(at("box.bundle"));
  ASSERT_TRUE(bundle);

  EXPECT_EQ(bundle->pathForResourceOfType("volume", "png"), at("box.bundle/volume.png"));
  EXPECT_EQ(bundle->pathForResourceOfType("mute", "png"), std::nullopt);

  writeFile(at("box.bundle/mute.png"), "bytes");
  EXPECT_EQ(bundle->pathForResourceOfType("mute", "png"), at("box.bundle/mute.png"));
}

TEST_F(LinuxBundlesTest, ASlashAtTheEndOfItsPathIsNotDoubled) {
  const auto bundle = bundles_.bundleWithPath(at("box.bundle/"));
  ASSERT_TRUE(bundle);

  EXPECT_EQ(bundle->pathForResourceOfType("volume", "png"), at("box.bundle/volume.png"));
}

TEST_F(LinuxBundlesTest, ABundleOutlivesWhatOpenedItAndNoticesThatItsDirectoryIsGone) {
  auto bundles = std::make_unique<LinuxBundles>(std::nullopt);
  const auto bundle = bundles->bundleWithPath(at("box.bundle"));
  bundles.reset();

  EXPECT_EQ(bundle->pathForResourceOfType("volume", "png"), at("box.bundle/volume.png"));

  std::filesystem::remove_all(at("box.bundle"));
  EXPECT_EQ(bundle->pathForResourceOfType("volume", "png"), std::nullopt);
}

TEST_F(LinuxBundlesTest, AnInterruptedLookIsTakenAgainAndAFailedOneFindsNothing) {
  int interruptions = 2;
  FaultySyscalls syscalls(folder_.path(), [&](const std::string&) { return interruptions-- > 0 ? EINTR : 0; });
  LinuxBundles bundles(std::nullopt, syscalls);

  const auto bundle = bundles.bundleWithPath(at("box.bundle"));
  ASSERT_TRUE(bundle);
  syscalls.setHook([](const std::string&) { return EACCES; });

  EXPECT_EQ(bundle->pathForResourceOfType("volume", "png"), std::nullopt);
  EXPECT_EQ(bundles.bundleWithPath(at("box.bundle")), nullptr);
}

struct NoResource {
  const char* name;
  std::string resource;
  std::string type;
};

class NoResourceTest : public LinuxBundlesTest, public testing::WithParamInterface<NoResource> {};

TEST_P(NoResourceTest, IsAbsent) {
  std::filesystem::create_directories(folder_ / "box.bundle/..png");
  const auto bundle = bundles_.bundleWithPath(at("box.bundle"));
  ASSERT_TRUE(bundle);

  EXPECT_EQ(bundle->pathForResourceOfType(GetParam().resource, GetParam().type), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, NoResourceTest,
                         testing::Values(NoResource{"Directory", "folder", "png"}, NoResource{"EmptyName", "", "png"},
                                         NoResource{"EmptyType", "volume.png", ""}, NoResource{"NoNameAtAll", "", ""},
                                         NoResource{"AboveIt", "../outside", "png"},
                                         NoResource{"TypeAboveIt", "x", "/../../outside.png"},
                                         NoResource{"BelowAFolder", "../box.bundle/volume", "png"},
                                         NoResource{"DotsAreAName", ".", "png"},
                                         NoResource{"NulInTheName", "volume.png\0x"s, "png"},
                                         NoResource{"NulInTheType", "volume", "png\0x"s}),
                         kCaseName);

TEST(LinuxPlatformResources, LieInTheContainerUnlessAFolderIsGiven) {
  const TemporaryFolder folder;
  const auto mainPath = [](const linux_platform::Options& options) {
    return make(options)->bundles().mainBundleResourcePath();
  };

  EXPECT_EQ(mainPath({.container = folder.path(), .domain = "app"}), (folder / "Resources").string());
  EXPECT_EQ(mainPath({.container = folder.path(), .domain = "app", .resources = "/usr/share/app"}), "/usr/share/app");
  EXPECT_EQ(mainPath({.container = folder.path(), .domain = "app", .resources = "app"}),
            (std::filesystem::current_path() / "app").string());
  EXPECT_FALSE(std::filesystem::exists(folder / "Resources"));
}

TEST(LinuxPlatformResources, AFolderThatIsNoPathIsAnErrorThatNamesTheOption) {
  const auto error = testing::ThrowsMessage<std::invalid_argument>(
      testing::StrEq("the option \"resources\" must be a path, not empty and without a NUL"));

  EXPECT_THAT([] { static_cast<void>(make({.domain = "app", .resources = ""})); }, error);
  EXPECT_THAT([] { static_cast<void>(make({.domain = "app", .resources = "a\0b"s})); }, error);
}

}  // namespace
}  // namespace tavlo::test
