// What stands where a platform has no service of its own.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace tavlo::platform {
namespace {

TEST(Platform, WithoutSettingsHoldsNothingAndFailsToSynchronize) {
  Platform platform;
  UserDefaults& settings = platform.standardUserDefaults();

  settings.setObjectForKey("id-1", "ApplicationId");

  EXPECT_EQ(settings.objectForKey("ApplicationId"), std::nullopt);
  EXPECT_FALSE(settings.synchronize());
}

TEST(Platform, WithoutFilesFindsNoneAndMakesNone) {
  Platform platform;
  FileManager& files = platform.fileManager();

  EXPECT_EQ(files.documentDirectory(), std::nullopt);
  EXPECT_EQ(files.documentDirectoryUrl(), std::nullopt);
  EXPECT_FALSE(files.fileExistsAtPath("/"));
  EXPECT_EQ(files.contentsOfDirectoryAtPath("/"), std::nullopt);
  EXPECT_EQ(files.dataWithContentsOfFile("/etc/passwd"), std::nullopt);
  EXPECT_EQ(files.removeItemAtPath("/a", Removal::anything).description(), "no file service is available");
  EXPECT_EQ(files.createDirectoryAtPath("/a").description(), "no file service is available");
  EXPECT_EQ(files.writeToFileAtomically("", "/a", Durable::name).description(), "no file service is available");
}

TEST(Platform, WithoutQueueAndNetworkDropsTasksAndHasNoData) {
  Platform platform;
  bool ran = false;

  platform.console().log("line");
  platform.backgroundQueue().dispatchAsync([&] { ran = true; });

  EXPECT_FALSE(ran);
  EXPECT_EQ(platform.urlData().dataWithContentsOfUrl("file:///etc/passwd"), std::nullopt);
}

TEST(Platform, WithoutPositionHasLocationServicesThatAreOff) {
  Platform platform;
  LocationServices& services = platform.locationServices();
  std::optional<std::int32_t> status;
  std::optional<std::optional<Location>> position;

  const auto manager = services.makeLocationManager();
  manager->setDistanceFilter(1);
  manager->setDesiredAccuracy(1);
  manager->startUpdatingLocation();
  services.requestAuthorization([&](std::int32_t answer) { status = answer; });
  services.requestLocation([&](const std::optional<Location>& answer) { position = answer; });

  EXPECT_FALSE(services.locationServicesEnabled());
  EXPECT_EQ(services.authorizationStatus(), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager->location(), std::nullopt);
  ASSERT_TRUE(position.has_value());
  EXPECT_EQ(*position, std::nullopt);
}

TEST(Platform, WithoutGeocoderAnswersWithAnError) {
  Platform platform;
  bool hadPlacemarks = true;
  Text error;

  platform.makeGeocoder()->reverseGeocodeLocation(Location{},
                                                  [&](const std::optional<Placemarks>& placemarks, const Text& what) {
                                                    hadPlacemarks = placemarks.has_value();
                                                    error = what;
                                                  });

  EXPECT_FALSE(hadPlacemarks);
  EXPECT_EQ(error, "no geocoder is available");
}

TEST(Platform, WithoutResourcesAndOtherAppsHasNone) {
  Platform platform;

  EXPECT_EQ(platform.bundles().mainBundleResourcePath(), std::nullopt);
  EXPECT_EQ(platform.bundles().bundleWithPath("/"), nullptr);
  EXPECT_EQ(platform.images().imageWithContentsOfFile("/a.png"), nullptr);
  EXPECT_FALSE(platform.sharedApplication().canOpenURL("file:///a"));
  EXPECT_FALSE(
      platform.sharedApplication().interactionControllerWithURL("file:///a")->presentOpenInMenuFromRect({}, {}, true));
}

// The least that an implementation brings.
class RemovedPaths final : public FileManager {
 public:
  Text documentDirectory() override { return std::nullopt; }
  Existence fileExistsAtPathIsDirectory(const Text&) override { return Existence::missing; }
  FileResult removeItemAtPath(const Text& path, Removal removal) override {
    removed.push_back(path.value_or("absent") + (removal == Removal::anything ? " anything" : " file only"));
    return FileResult::failure("busy");
  }
  FileResult createDirectoryAtPath(const Text&) override { return FileResult::success(); }
  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text&) override { return std::nullopt; }
  std::optional<std::string> dataWithContentsOfFile(const Text&) override { return std::nullopt; }
  FileResult writeToFileAtomically(std::string_view, const Text&, Durable) override { return FileResult::success(); }

  std::vector<std::string> removed;
};

TEST(FileManagerAlone, RemovesItemByItemGoesOnAfterAFailureAndSkipsWhatNamesNone) {
  RemovedPaths files;

  files.removeItemsOfDirectoryAtPath("/folder", {"b", "", "a", "../up", "..."});

  EXPECT_EQ(files.removed,
            (std::vector<std::string>{"/folder/b anything", "/folder/a anything", "/folder/... anything"}));
}

}  // namespace
}  // namespace tavlo::platform
