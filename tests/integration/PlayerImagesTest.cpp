// The player's images out of the bundle that comes with the SDK, on the real platform.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "common/Slot.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/AwaitedLogger.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using testing::ElementsAre;

const std::string kSource = TAVLO_SOURCE_DIR;
const std::string kShipped = kSource + "/resources";

class PlayerImages : public testing::Test {
 protected:
  PlayerImages() {
    install({.container = folder_.path(), .domain = "player", .quietConsole = true});
    Logger::install(logger_);
  }
  ~PlayerImages() override {
    processSlot<platform::Bundle>().store(nullptr);
    processSlot<const platform::Image>().store(nullptr);
    platform::install(nullptr);
    Logger::install(nullptr);
  }

  static void install(const linux_platform::Options& options) { platform::install(linux_platform::make(options)); }
  void installShipped() { install({.container = folder_.path(), .domain = "player", .resources = kShipped}); }
  [[nodiscard]] std::vector<std::string> takeLines() { return logger_->take(); }
  [[nodiscard]] std::string bundle() const { return (folder_ / "Resources/TavloSDKResource.bundle").string(); }

  TemporaryFolder folder_;

 private:
  std::shared_ptr<AwaitedLogger> logger_ = std::make_shared<AwaitedLogger>();
};

// Red, green, blue and alpha.
std::vector<int> pixelOf(const platform::Image& image, std::size_t x, std::size_t y) {
  const auto pixel = image.pixels().subspan((y * image.width() + x) * 4, 4);
  return {pixel.begin(), pixel.end()};
}

TEST_F(PlayerImages, BundleIsOpenedOnceAndThenTheSame) {
  installShipped();

  const auto first = TavloUtility::frameworkBundle();
  const auto second = TavloUtility::frameworkBundle();

  EXPECT_NE(first, nullptr);
  EXPECT_EQ(second, first);
  EXPECT_THAT(takeLines(), ElementsAre("Loading framework budle once ...",
                                       "Loaded framework bundle .. with path " + kShipped + "/TavloSDKResource.bundle",
                                       "Already Loaded framework bundle"));
}

TEST_F(PlayerImages, FirstImageLogsThreeLinesAndLaterOnesTwo) {
  installShipped();

  const auto volume = TavloUtility::getVolumeImage();
  const auto mute = TavloUtility::getMuteImage();
  const auto volumeAgain = TavloUtility::getVolumeImage();

  ASSERT_TRUE(volume && mute && volumeAgain);
  EXPECT_THAT(takeLines(), ElementsAre("Calling Get volume Image first time", "Loading framework budle once ...",
                                       "Loaded framework bundle .. with path " + kShipped + "/TavloSDKResource.bundle",
                                       "Calling Get volume Image first time", "Already Loaded framework bundle",
                                       "Calling Get volume Image first time", "Already Loaded framework bundle"));
}

TEST_F(PlayerImages, EachIsItsOwnAndFreshlyLoaded) {
  installShipped();

  const auto volume = TavloUtility::getVolumeImage();
  const auto mute = TavloUtility::getMuteImage();
  const auto volumeAgain = TavloUtility::getVolumeImage();

  ASSERT_TRUE(volume && mute && volumeAgain);
  EXPECT_EQ(volume->width(), 64U);
  EXPECT_EQ(volume->height(), 64U);
  EXPECT_EQ(mute->width(), 64U);
  EXPECT_EQ(mute->height(), 64U);
  EXPECT_NE(volumeAgain, volume);
  EXPECT_THAT(volumeAgain->pixels(), testing::ElementsAreArray(volume->pixels()));
  // A corner is clear, the loudspeaker white in both; the cross passes where the volume's disc is dark.
  for (const auto& image : {volume, mute}) EXPECT_THAT(pixelOf(*image, 0, 0), ElementsAre(0, 0, 0, 0));
  for (const auto& image : {volume, mute}) EXPECT_THAT(pixelOf(*image, 18, 32), ElementsAre(255, 255, 255, 255));
  EXPECT_THAT(pixelOf(*volume, 47, 47), ElementsAre(0, 0, 0, 158));
  EXPECT_THAT(pixelOf(*mute, 47, 47), ElementsAre(255, 255, 255, 255));
}

TEST_F(PlayerImages, MissingBundleIsLookedForAtEachCallUntilItIsThere) {
  EXPECT_EQ(TavloUtility::frameworkBundle(), nullptr);
  EXPECT_EQ(TavloUtility::getMuteImage(), nullptr);
  std::filesystem::create_directories(bundle());
  EXPECT_NE(TavloUtility::frameworkBundle(), nullptr);

  const std::string loaded = "Loaded framework bundle .. with path " + bundle();
  EXPECT_THAT(takeLines(), ElementsAre("Loading framework budle once ...", loaded,  //
                                       "Calling Get volume Image first time", "Loading framework budle once ...",
                                       loaded, "Loading framework budle once ...", loaded));
}

TEST_F(PlayerImages, FileThatIsNoImageOrMissingIsAbsentAndItsBundleIsNot) {
  std::filesystem::create_directories(bundle());
  writeFile(bundle() + "/volume.png", readFile(kShipped + "/TavloSDKResource.bundle/volume.png").substr(0, 300));

  EXPECT_EQ(TavloUtility::getVolumeImage(), nullptr);
  EXPECT_EQ(TavloUtility::getMuteImage(), nullptr);

  EXPECT_THAT(takeLines(), ElementsAre("Calling Get volume Image first time", "Loading framework budle once ...",
                                       "Loaded framework bundle .. with path " + bundle(),
                                       "Calling Get volume Image first time", "Already Loaded framework bundle"));
}

TEST_F(PlayerImages, AreWhatTheScriptDraws) {
  const std::string draw = "/usr/bin/python3 -B '" + kSource + "/scripts/draw_images.py' '";
  ASSERT_EQ(std::system((draw + folder_.path().string() + "'").c_str()), 0);

  for (const std::string name : {"volume.png", "mute.png"}) {
    EXPECT_NE(readFile(folder_ / name), "");
    EXPECT_EQ(readFile(folder_ / name), readFile(kShipped + "/TavloSDKResource.bundle/" + name)) << name;
  }
}

}  // namespace
}  // namespace tavlo::test
