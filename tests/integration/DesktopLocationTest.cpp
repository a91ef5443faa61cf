// The position of the desktop's own daemon, on a private bus and fed by a stand-in of a receiver.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "TavloUtility.h"
#include "tests/integration/DesktopFixture.h"
#include "tests/support/GeoClueWorld.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::test {
namespace {

using platform::Location;
using testing::ElementsAre;
using testing::Optional;

constexpr const char* kDelhi = "at 2836.8340,N,07712.5400,E";

MATCHER_P2(IsAt, latitude, longitude, "") {
  return testing::ExplainMatchResult(testing::DoubleNear(latitude, 1e-9), arg.coordinate.latitude, result_listener) &&
         testing::ExplainMatchResult(testing::DoubleNear(longitude, 1e-9), arg.coordinate.longitude, result_listener);
}

std::optional<Location> newest(Desktop& desktop) { return desktop.services().makeLocationManager()->location(); }

linux_platform::Options soonTired() { return {.location = {.authorization = std::chrono::milliseconds(300)}}; }

TEST(DesktopLocationThread, TheReceiversPositionBecomesTheSixDecimalStringsOfThePackage) {
  GeoClueWorld world;
  world.run("daemon");
  world.run("agent");
  world.run(kDelhi);
  Desktop desktop;

  EXPECT_EQ(desktop.authorize(), 3);
  EXPECT_THAT(desktop.fix(), Optional(IsAt(28.6139, 77.209)));
  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(
      desktop.record().take(5),
      ElementsAre("console:location authorization: 3", "setLatitude:28.613900 AndLogitude:77.209000",
                  "setUserAddress:", "console:reverseGeocodeLocation:completionHandler: Completion Handler called!",
                  testing::StartsWith("console:Geocode failed with error: ")));
}

TEST(DesktopLocationThread, SouthAndWestAreNegative) {
  GeoClueWorld world;
  world.run("daemon");
  world.run("agent");
  world.run("at 3352.1280,S,00007.2000,W");
  Desktop desktop;

  EXPECT_EQ(desktop.authorize(), 3);

  EXPECT_THAT(desktop.fix(), Optional(IsAt(-33.8688, -0.12)));
}

TEST(DesktopLocationThread, NothingIsAskedOfTheDesktopByAFetch) {
  GeoClueWorld world;
  world.run("daemon");
  world.run("agent");
  world.run(kDelhi);
  Desktop desktop;

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(desktop.record().take(1), ElementsAre("console:location authorization: 0"));
  EXPECT_EQ(newest(desktop), std::nullopt);
}

TEST(DesktopLocationThread, AllowedWithoutAFixIsZeroDegreesUntilTheFirstFixComes) {
  GeoClueWorld world;
  world.run("daemon");
  world.run("agent 8");
  Desktop desktop;
  std::promise<std::optional<Location>> first;

  EXPECT_EQ(desktop.authorize(), 3);
  desktop.services().requestLocation([&](const auto& fix) { first.set_value(fix); });
  TavloUtility::fetchCurrentLocation();
  const auto lines = desktop.record().take(5);
  world.run(kDelhi);

  EXPECT_EQ(lines[1], "setLatitude:0.000000 AndLogitude:0.000000");
  EXPECT_THAT(first.get_future().get(), Optional(IsAt(28.6139, 77.209)));
}

TEST(DesktopLocationThread, AUserWhoHasSwitchedThePositionOffRefuses) {
  GeoClueWorld world;
  world.run("daemon");
  world.run("agent 0");
  world.run(kDelhi);
  Desktop desktop;

  EXPECT_EQ(desktop.authorize(), 2);
  EXPECT_EQ(desktop.fix(), std::nullopt);
  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(desktop.record().take(1), ElementsAre("console:location authorization: 2"));
}

TEST(DesktopLocationThread, AnAppThatTheDesktopRefusesIsToldSoAndAnotherIsNot) {
  GeoClueWorld world;
  if (world.ask("daemon without org.example.refused") == "cannot") GTEST_SKIP() << "needs the rights of root";
  world.run("agent 8");
  world.run(kDelhi);

  Desktop refused({.domain = "org.example.refused"});
  EXPECT_EQ(refused.authorize(), 2);
  Desktop other({.domain = "org.example.refused", .location = {.desktopId = "org.example.other"}});
  EXPECT_EQ(other.authorize(), 3);
}

TEST(DesktopLocationThread, WithoutASourceOfPositionsTheAppIsRestricted) {
  GeoClueWorld world;
  if (world.ask("daemon blind") == "cannot") GTEST_SKIP() << "needs the rights of root";
  world.run("agent 8");
  Desktop desktop;

  EXPECT_EQ(desktop.authorize(), 1);
}

TEST(DesktopLocationThread, WithoutAnAgentTheAnswerIsNotDetermined) {
  GeoClueWorld world;
  world.run("daemon");
  world.run(kDelhi);
  Desktop desktop(soonTired());

  EXPECT_TRUE(desktop.services().locationServicesEnabled());
  EXPECT_EQ(desktop.authorize(), 0);
  EXPECT_EQ(desktop.fix(), std::nullopt);
}

TEST(DesktopLocationThread, ADaemonThatHangsIsGivenUpAndServesLater) {
  GeoClueWorld world;
  world.run("daemon");
  world.run("stop daemon");
  Desktop desktop(soonTired());

  EXPECT_TRUE(desktop.services().locationServicesEnabled());
  EXPECT_EQ(desktop.authorize(), 0);

  world.run("kill daemon");
  world.run("daemon");
  world.run("agent 8");
  Desktop patient;
  EXPECT_EQ(patient.authorize(), 3);
}

TEST(DesktopLocationThread, WithoutADaemonServicesAreOff) {
  GeoClueWorld world;
  Desktop desktop;

  EXPECT_FALSE(desktop.services().locationServicesEnabled());
  EXPECT_EQ(desktop.authorize(), 0);
  EXPECT_EQ(desktop.fix(), std::nullopt);
}

TEST(DesktopLocationThread, WithoutABusServicesAreOffAndAFetchSaysNothing) {
  for (const char* const address : {"unix:path=/nowhere", "nonsense"}) {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
    Desktop desktop;

    EXPECT_FALSE(desktop.services().locationServicesEnabled()) << address;
    EXPECT_EQ(desktop.authorize(), 0) << address;
    TavloUtility::fetchCurrentLocation();
    EXPECT_THAT(desktop.record().take(0), ElementsAre()) << address;
  }
  ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

std::ptrdiff_t openDescriptors() {
  const std::filesystem::directory_iterator open("/proc/self/fd");
  return std::distance(begin(open), end(open));
}

TEST(DesktopLocationThread, ABusThatHangsKeepsNoConnectionOfWhoAskedIt) {
  GeoClueWorld world;
  Desktop desktop;
  EXPECT_FALSE(desktop.services().locationServicesEnabled());
  world.run("stop bus");
  const std::ptrdiff_t before = openDescriptors();

  for (int i = 0; i < 3; ++i) EXPECT_FALSE(desktop.services().locationServicesEnabled());

  while (openDescriptors() > before) std::this_thread::yield();
}

TEST(DesktopLocationThread, ABusThatHangsCountsAsOff) {
  GeoClueWorld world;
  world.run("stop bus");
  Desktop desktop(soonTired());

  EXPECT_FALSE(desktop.services().locationServicesEnabled());
  EXPECT_EQ(desktop.authorize(), 0);
}

}  // namespace
}  // namespace tavlo::test
