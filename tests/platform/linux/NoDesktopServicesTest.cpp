// A platform that is built without the libraries of the position and of the geocoder.
#include <gtest/gtest.h>

#include <future>
#include <optional>

#include "platform/linux/LinuxPlatform.h"

namespace tavlo::test {
namespace {

TEST(WithoutDesktopServices, ThePositionIsOff) {
  const auto platform = linux_platform::make({.domain = "app"});
  platform::LocationServices& services = platform->locationServices();

  EXPECT_FALSE(services.locationServicesEnabled());
  EXPECT_EQ(services.authorizationStatus(), 0);
  EXPECT_EQ(services.makeLocationManager()->location(), std::nullopt);
}

TEST(WithoutDesktopServices, EveryAddressIsAnError) {
  const auto platform = linux_platform::make({.domain = "app", .geocoding = {.url = "http://127.0.0.1:1"}});
  std::promise<Text> answer;

  platform->makeGeocoder()->reverseGeocodeLocation(platform::Location{},
                                                   [&](const auto& placemarks, const Text& error) {
                                                     EXPECT_FALSE(placemarks);
                                                     answer.set_value(error);
                                                   });

  EXPECT_EQ(answer.get_future().get(), "this build of the component looks up no addresses: geocode-glib was missing");
}

}  // namespace
}  // namespace tavlo::test
