// Every operation on a Linux platform that is built without any of the libraries that can be missing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/AwaitedLogger.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::make;
using linux_platform::MenuOutcome;
using testing::ElementsAre;

class WithoutLibraries : public testing::Test {
 protected:
  WithoutLibraries() {
    platform::install(make({.container = folder_.path(),
                            .domain = "player",
                            .resources = std::string(TAVLO_SOURCE_DIR) + "/resources",
                            .geocoding = {.url = "http://127.0.0.1:1", .maintainer = "maps@example.org"},
                            .onOpenInMenu = [this](MenuOutcome outcome, std::string_view explanation) {
                              EXPECT_EQ(outcome, MenuOutcome::failed);
                              menus_.emplace_back(explanation);
                            }}));
    Logger::install(logger_);
  }
  ~WithoutLibraries() override {
    platform::install(nullptr);
    Logger::install(nullptr);
  }

  [[nodiscard]] std::string cache() const { return (folder_ / "Documents/TavloCache").string(); }

  TemporaryFolder folder_;
  std::vector<std::string> menus_;
  std::shared_ptr<AwaitedLogger> logger_ = std::make_shared<AwaitedLogger>();
};

TEST_F(WithoutLibraries, RequestsAreWhole) {
  EXPECT_EQ(TavloUtility::getAdditionalRequestingString().size(), 737U);
  EXPECT_EQ(TavloUtility::trackerNetworkSessionData().ifMap()->size(), 35U);
  EXPECT_EQ(TavloUtility::getInAppNotificationAdditionalRequest().size(), 443U);
  EXPECT_EQ(TavloUtility::getUserInfoRequestString(), "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
}

TEST_F(WithoutLibraries, IdentifiersAreKept) {
  TavloUtility::setAppIdToUserDefault("app-1");
  TavloUtility::setOptionalIdToUserDefault("optional-1");
  TavloUtility::setSecurityKeyToUserDefault("key-1");
  platform::install(make({.container = folder_.path(), .domain = "player"}));

  EXPECT_EQ(TavloUtility::getAppIdFromUserDefault(), "app-1");
  EXPECT_EQ(TavloUtility::getOptionalIdFromUserDefault(), "optional-1");
  EXPECT_EQ(TavloUtility::getSecurityKeyTFromUserDefault(), "key-1");
}

TEST_F(WithoutLibraries, TheCacheWorks) {
  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), cache() + "/a");
  writeFile(cache() + "/900150983cd24fb0d6963f7d28e17f72.", "a video");
  writeFile(cache() + "/900150983cd24fb0d6963f7d28e17f72", "a banner");

  EXPECT_EQ(TavloUtility::getCacheVideoDataPath("abc"), cache() + "/900150983cd24fb0d6963f7d28e17f72.");
  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("900150983cd24fb0d6963f7d28e17f72."),
            cache() + "/900150983cd24fb0d6963f7d28e17f72.");
  EXPECT_EQ(TavloUtility::getCacheBannerImagePath("abc"), cache() + "/900150983cd24fb0d6963f7d28e17f72");
  EXPECT_TRUE(TavloUtility::deleteCachedVideo(cache() + "/900150983cd24fb0d6963f7d28e17f72."));
  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);
  EXPECT_TRUE(std::filesystem::is_empty(cache()));
  TavloUtility::clearCache();
  EXPECT_EQ(TavloUtility::sortCacahedVideoDates(std::nullopt), std::nullopt);
}

TEST_F(WithoutLibraries, ABannerOfAServerIsAbsentAndOneOfAFileIsNot) {
  writeFile(folder_ / "banner", "bytes");

  TavloUtility::cachedBannerImage("http://127.0.0.1/banner");
  EXPECT_THAT(logger_->takeAfter(1), ElementsAre("getAndSaveBannerImage(): Passed data is empty"));

  TavloUtility::cachedBannerImage("file://" + (folder_ / "banner").string());
  EXPECT_THAT(logger_->takeAfter(1), testing::Contains("getAndSaveBannerImage() - write successfully"));
}

TEST_F(WithoutLibraries, LocationServicesAreOffAndThereIsNoAddress) {
  const auto platform = platform::current();
  std::promise<std::int32_t> status;
  std::promise<bool> hasFix;
  std::promise<std::string> error;

  TavloUtility::fetchCurrentLocation();
  platform->locationServices().requestAuthorization([&](std::int32_t answer) { status.set_value(answer); });
  platform->locationServices().requestLocation([&](const auto& fix) { hasFix.set_value(fix.has_value()); });
  platform->makeGeocoder()->reverseGeocodeLocation(
      platform::Location{{1, 2}}, [&](const auto&, const Text& text) { error.set_value(text.value_or("(none)")); });

  EXPECT_FALSE(platform->locationServices().locationServicesEnabled());
  EXPECT_EQ(platform->locationServices().makeLocationManager()->location(), std::nullopt);
  EXPECT_EQ(status.get_future().get(), platform::kCLAuthorizationStatusNotDetermined);
  EXPECT_FALSE(hasFix.get_future().get());
  EXPECT_EQ(error.get_future().get(), "this build of the component looks up no addresses: geocode-glib was missing");
}

TEST_F(WithoutLibraries, TheBundleIsThereAndItsImagesAreNot) {
  EXPECT_NE(TavloUtility::frameworkBundle(), nullptr);
  EXPECT_EQ(TavloUtility::getVolumeImage(), nullptr);
  EXPECT_EQ(TavloUtility::getMuteImage(), nullptr);
}

TEST_F(WithoutLibraries, TheExportShowsNoMenuAndLogsTheSame) {
  TavloUtility::getExportTavloSDKLog(nullptr);
  std::filesystem::create_directory(cache());
  writeFile(cache() + "/TavloLogFile.txt", "a line\n");
  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_THAT(logger_->take(), ElementsAre("Log file is created", "Log file is created"));
  EXPECT_THAT(menus_, ElementsAre("No such file or directory: " + cache() + "/TavloLogFile.txt",
                                  "the library is built without the desktop portal"));
  EXPECT_FALSE(TavloUtility::quillmixInstalledOnThisDevice());
  EXPECT_FALSE(platform::current()->sharedApplication().canOpenURL("http://127.0.0.1/"));
}

TEST_F(WithoutLibraries, TextsAreDigestedAndParsed) {
  EXPECT_EQ(TavloUtility::md5(Value("abc")), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(TavloUtility::getFileExtensionFromUrl("https://host/clip.mp4?x=1"), "mp4");
}

}  // namespace
}  // namespace tavlo::test
