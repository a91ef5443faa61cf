// The position fetch: what is asked, stored and logged, in order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "TavloUtility.h"
#include "tests/support/CaseName.h"
#include "tests/support/LocationPlatform.h"

namespace tavlo {
namespace {

using platform::Location;
using test::LocationPlatform;
using test::LocationWorld;
using testing::ElementsAre;

Location at(double latitude, double longitude) {
  return {.coordinate = {.latitude = latitude, .longitude = longitude}};
}

class LocationFetch : public testing::Test {
 protected:
  LocationWorld world_;
};

TEST_F(LocationFetch, AsksStoresAndLooksUpInThisOrder) {
  world_->fixes = {at(28.5, 77.25), at(28.75, 77.5)};

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("locationServicesEnabled", "authorizationStatus", "console:location authorization: 3",
                          "makeLocationManager", "setDistanceFilter:-1.000000", "setDesiredAccuracy:-1.000000",
                          "startUpdatingLocation", "location", "setLatitude:28.500000 AndLogitude:77.250000",
                          "setUserAddress:", "makeGeocoder", "location", "reverseGeocodeLocation:28.750000,77.500000"));
}

TEST_F(LocationFetch, WithServicesOffNothingIsLoggedOrChanged) {
  world_->enabled = false;
  world_.package().texts = {{PackageText::getLatitude, "1"}, {PackageText::getUserAddress, "{}"}};

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(world_->takeCalls(), ElementsAre("locationServicesEnabled"));
  EXPECT_EQ(world_.latitude(), "1");
  EXPECT_EQ(world_.address(), "{}");
  EXPECT_EQ(locationManager().load(), nullptr);
}

struct Refused {
  const char* name;
  std::int32_t status;
  std::string line;
};

class LocationFetchWithoutPermission : public testing::TestWithParam<Refused> {};

TEST_P(LocationFetchWithoutPermission, LogsTheStatusAndNothingElseHappens) {
  const LocationWorld world;
  world->status = GetParam().status;

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(world->takeCalls(),
              ElementsAre("locationServicesEnabled", "authorizationStatus", "console:" + GetParam().line));
  EXPECT_EQ(locationManager().load(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Statuses, LocationFetchWithoutPermission,
                         testing::Values(Refused{"NotDetermined", 0, "location authorization: 0"},
                                         Refused{"Restricted", 1, "location authorization: 1"},
                                         Refused{"Denied", 2, "location authorization: 2"},
                                         Refused{"NextAfterTheLast", 5, "location authorization: 5"},
                                         Refused{"Negative", -3, "location authorization: -3"},
                                         Refused{"Largest", 2147483647, "location authorization: 2147483647"},
                                         Refused{"Smallest", std::numeric_limits<std::int32_t>::min(),
                                                 "location authorization: -2147483648"}),
                         test::kCaseName);

TEST_F(LocationFetch, PermissionWhenInUseIsAsGood) {
  world_->status = 4;
  world_->fixes = {at(1, 2), at(1, 2)};

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("locationServicesEnabled", "authorizationStatus", "console:location authorization: 4",
                          "makeLocationManager", "setDistanceFilter:-1.000000", "setDesiredAccuracy:-1.000000",
                          "startUpdatingLocation", "location", "setLatitude:1.000000 AndLogitude:2.000000",
                          "setUserAddress:", "makeGeocoder", "location", "reverseGeocodeLocation:1.000000,2.000000"));
}

TEST_F(LocationFetch, WithoutAFixBothCoordinatesAreZeroAndTheAbsentLocationIsLookedUp) {
  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(world_.latitude(), "0.000000");
  EXPECT_EQ(world_.longitude(), "0.000000");
  ASSERT_EQ(world_->lookUps(), 1U);
  EXPECT_EQ(world_->lookedUp(0), std::nullopt);
}

TEST_F(LocationFetch, AFixThatComesBetweenTheReadsIsLookedUpButNotStored) {
  world_->fixes = {std::nullopt, at(28.5, 77.25)};

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(world_.latitude(), "0.000000");
  EXPECT_EQ(world_.longitude(), "0.000000");
  EXPECT_EQ(world_->lookedUp(0), at(28.5, 77.25));
}

struct Degrees {
  const char* name;
  double degrees;
  std::string text;
};

class LocationFetchStores : public testing::TestWithParam<Degrees> {};

TEST_P(LocationFetchStores, DegreesWithSixDecimals) {
  const LocationWorld world;
  world->fixes = {at(GetParam().degrees, -GetParam().degrees)};

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(world.latitude(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Degrees, LocationFetchStores,
                         testing::Values(Degrees{"South", -33.8688, "-33.868800"}, Degrees{"Half", 28.5, "28.500000"},
                                         Degrees{"JustBelowZero", -0.12, "-0.120000"}, Degrees{"Zero", 0, "0.000000"},
                                         Degrees{"NegativeZero", -0.0, "-0.000000"},
                                         Degrees{"RoundedToNothing", -0.0000001, "-0.000000"},
                                         Degrees{"TieGoesToEven", 0.0000005, "0.000000"},
                                         Degrees{"RoundedUp", 59.9999996, "60.000000"},
                                         Degrees{"Huge", 1e22, "10000000000000000000000.000000"},
                                         Degrees{"Infinite", std::numeric_limits<double>::infinity(), "inf"},
                                         Degrees{"NoNumber", std::numeric_limits<double>::quiet_NaN(), "nan"}),
                         test::kCaseName);

TEST_F(LocationFetch, EachOneMakesAManagerThatReplacesTheLast) {
  TavloUtility::fetchCurrentLocation();
  const auto first = locationManager().load();
  TavloUtility::fetchCurrentLocation();
  const auto second = locationManager().load();

  EXPECT_NE(first, nullptr);
  EXPECT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(LocationPlatform::managersAlive, 2);
}

TEST_F(LocationFetch, ReleasesTheManagerBefore) {
  TavloUtility::fetchCurrentLocation();
  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(LocationPlatform::managersAlive, 1);
}

TEST_F(LocationFetch, ARefusedOneLeavesTheManagerBefore) {
  TavloUtility::fetchCurrentLocation();
  const auto before = locationManager().load();
  world_->status = 2;

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(locationManager().load(), before);
}

TEST_F(LocationFetch, NeverTouchesTheCurrentLocation) {
  const auto kept = std::make_shared<const Location>(at(1, 2));
  currentLocation().store(kept);
  world_->fixes = {at(3, 4), at(3, 4)};

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(currentLocation().load(), kept);
  EXPECT_EQ(*kept, at(1, 2));
  EXPECT_EQ(kept.use_count(), 2);
  currentLocation().store(nullptr);
}

TEST_F(LocationFetch, WithoutASessionPackageItStillAsksAndLooksUp) {
  TavloPackage::install(nullptr);

  TavloUtility::fetchCurrentLocation();
  world_->answer(0, platform::Placemarks{{.country = "India"}});

  EXPECT_EQ(world_->takeCalls().back(), "console:placemark.subThoroughfare =(null)");
}

TEST(LocationFetchWithoutAPlatform, DoesNothing) {
  const test::Installed<TavloPackage, test::RecordingPackage> package;

  TavloUtility::fetchCurrentLocation();

  EXPECT_TRUE(package->texts.empty());
  EXPECT_EQ(locationManager().load(), nullptr);
}

// Each of the two writes asks for the package of that moment.
TEST_F(LocationFetch, APackageInstalledBetweenTheWritesGetsTheSecond) {
  const auto second = std::make_shared<test::RecordingPackage>();
  world_.package().onWrite = [&](const std::string&) { TavloPackage::install(second); };

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(world_.latitude(), "0.000000");
  EXPECT_EQ(world_.address(), std::nullopt);
  EXPECT_EQ(second->texts, (std::map<PackageText, Text>{{PackageText::getUserAddress, ""}}));
}

}  // namespace
}  // namespace tavlo
