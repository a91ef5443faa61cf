// The resource bundle and the player's sound images: what is asked, logged and kept, in order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "tests/support/ResourcesPlatform.h"

namespace tavlo {
namespace {

using platform::Image;
using testing::ElementsAre;

// Which of the fake's images it is, by the first letter of the file's name.
char letter(const std::shared_ptr<const Image>& image) { return image ? static_cast<char>(image->pixels()[0]) : '-'; }

class ResourceBundle : public testing::Test {
 protected:
  test::ResourcesWorld world_;
};

TEST_F(ResourceBundle, IsLoadedOnce) {
  const auto first = TavloUtility::frameworkBundle();

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("log:Loading framework budle once ...", "mainBundleResourcePath",
                          "bundleWithPath:/app/TavloSDKResource.bundle",
                          "log:Loaded framework bundle .. with path /app/TavloSDKResource.bundle"));
  EXPECT_NE(first, nullptr);

  const auto second = TavloUtility::frameworkBundle();

  EXPECT_THAT(world_->takeCalls(), ElementsAre("log:Already Loaded framework bundle"));
  EXPECT_EQ(second, first);
}

TEST_F(ResourceBundle, ThatIsMissingIsLookedForEachTime) {
  world_->directories.clear();

  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(TavloUtility::frameworkBundle(), nullptr);
    EXPECT_THAT(world_->takeCalls(),
                ElementsAre("log:Loading framework budle once ...", "mainBundleResourcePath",
                            "bundleWithPath:/app/TavloSDKResource.bundle",
                            "log:Loaded framework bundle .. with path /app/TavloSDKResource.bundle"));
  }
}

TEST_F(ResourceBundle, ThatComesLaterIsLoadedThenAndStaysWhenItGoes) {
  world_->directories.clear();
  EXPECT_EQ(TavloUtility::frameworkBundle(), nullptr);

  world_->directories = {test::ResourcesPlatform::kBundlePath};
  const auto loaded = TavloUtility::frameworkBundle();
  world_->directories.clear();

  EXPECT_NE(loaded, nullptr);
  EXPECT_EQ(TavloUtility::frameworkBundle(), loaded);
  EXPECT_EQ(world_->takeCalls().back(), "log:Already Loaded framework bundle");
}

TEST_F(ResourceBundle, ThatAnotherCallLoadedMeanwhileStaysWhenThisOneFails) {
  std::shared_ptr<platform::Bundle> ofTheOther;
  bool came = false;
  world_->onBundleSought = [&] {
    if (std::exchange(came, true)) return;
    ofTheOther = TavloUtility::frameworkBundle();
    world_->directories.clear();
  };

  const auto found = TavloUtility::frameworkBundle();

  EXPECT_NE(ofTheOther, nullptr);
  EXPECT_EQ(found, ofTheOther);
}

TEST_F(ResourceBundle, PathHasOneSlashBetweenItsParts) {
  world_->resourcePath = "/app//";

  EXPECT_NE(TavloUtility::frameworkBundle(), nullptr);

  EXPECT_EQ(world_->takeCalls().back(), "log:Loaded framework bundle .. with path /app/TavloSDKResource.bundle");
}

TEST_F(ResourceBundle, WithoutAResourcePathIsAbsent) {
  world_->resourcePath = std::nullopt;

  EXPECT_EQ(TavloUtility::frameworkBundle(), nullptr);

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("log:Loading framework budle once ...", "mainBundleResourcePath", "bundleWithPath:(null)",
                          "log:Loaded framework bundle .. with path (null)"));
}

TEST(ResourceBundleWithoutAPlatform, IsAbsent) {
  EXPECT_EQ(TavloUtility::frameworkBundle(), nullptr);
  EXPECT_EQ(TavloUtility::getVolumeImage(), nullptr);
  EXPECT_EQ(TavloUtility::getMuteImage(), nullptr);
}

class SoundImage : public ResourceBundle {};

TEST_F(SoundImage, OfTheFirstCallLoadsTheBundleToo) {
  const auto image = TavloUtility::getVolumeImage();

  EXPECT_EQ(letter(image), 'v');
  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("log:Calling Get volume Image first time", "log:Loading framework budle once ...",
                          "mainBundleResourcePath", "bundleWithPath:/app/TavloSDKResource.bundle",
                          "log:Loaded framework bundle .. with path /app/TavloSDKResource.bundle",
                          "pathForResource:volume ofType:png",
                          "imageWithContentsOfFile:/app/TavloSDKResource.bundle/volume.png"));
}

TEST_F(SoundImage, OfMuteRightAfterVolumeIsMute) {
  const auto volume = TavloUtility::getVolumeImage();
  static_cast<void>(world_->takeCalls());

  const auto mute = TavloUtility::getMuteImage();

  EXPECT_EQ(letter(volume), 'v');
  EXPECT_EQ(letter(mute), 'm');
  EXPECT_THAT(world_->takeCalls(), ElementsAre("log:Calling Get volume Image first time",
                                               "log:Already Loaded framework bundle", "pathForResource:mute ofType:png",
                                               "imageWithContentsOfFile:/app/TavloSDKResource.bundle/mute.png"));
}

TEST_F(SoundImage, IsLoadedAnewEachTime) {
  const auto first = TavloUtility::getMuteImage();
  const auto second = TavloUtility::getMuteImage();

  EXPECT_NE(first, second);
  EXPECT_EQ(world_->imagesMade.made(), 2);
}

TEST_F(SoundImage, OfTheLastCallIsTheOnlyOneThatIsKept) {
  static_cast<void>(TavloUtility::getVolumeImage());
  static_cast<void>(TavloUtility::getMuteImage());

  EXPECT_EQ(world_->imagesMade.alive(), 1);
  EXPECT_EQ(letter(processSlot<const Image>().load()), 'm');
}

TEST_F(SoundImage, WithoutABundleIsAbsentAndEmptiesTheSlot) {
  world_->directories.clear();
  processSlot<const Image>().store(world_->images().imageWithContentsOfFile("/app/TavloSDKResource.bundle/mute.png"));
  static_cast<void>(world_->takeCalls());

  EXPECT_EQ(TavloUtility::getVolumeImage(), nullptr);

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("log:Calling Get volume Image first time", "log:Loading framework budle once ...",
                          "mainBundleResourcePath", "bundleWithPath:/app/TavloSDKResource.bundle",
                          "log:Loaded framework bundle .. with path /app/TavloSDKResource.bundle",
                          "imageWithContentsOfFile:(null)"));
  EXPECT_EQ(processSlot<const Image>().load(), nullptr);
}

TEST_F(SoundImage, WithoutAFileIsAbsentAndEmptiesTheSlot) {
  static_cast<void>(TavloUtility::getVolumeImage());
  world_->files.clear();
  static_cast<void>(world_->takeCalls());

  EXPECT_EQ(TavloUtility::getMuteImage(), nullptr);

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("log:Calling Get volume Image first time", "log:Already Loaded framework bundle",
                          "pathForResource:mute ofType:png", "imageWithContentsOfFile:(null)"));
  EXPECT_EQ(world_->imagesMade.alive(), 0);
}

}  // namespace
}  // namespace tavlo
