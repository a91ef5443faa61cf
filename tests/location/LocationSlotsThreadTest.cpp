// The slot of location managers under many threads: each manager is destroyed exactly once, and whoever holds one
// keeps it alive.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "TavloUtility.h"
#include "location/LocationSlots.h"
#include "platform/Platform.h"
#include "tests/support/Counted.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo {
namespace {

using platform::Location;

constexpr int kThreads = 64;

class CountedManager final : public platform::LocationManager {
 public:
  CountedManager(test::Count& count, std::atomic<int>& readsAtTheEnd)
      : counted_(count), readsAtTheEnd_(readsAtTheEnd) {}
  ~CountedManager() override {
    if (locationManager().load()) ++readsAtTheEnd_;
  }

  void setDistanceFilter(double) override {}
  void setDesiredAccuracy(double) override {}
  void startUpdatingLocation() override {}
  std::optional<Location> location() override { return Location{.coordinate = {.latitude = 1, .longitude = 2}}; }

 private:
  test::Counted counted_;
  std::atomic<int>& readsAtTheEnd_;
};

class CountingPlatform final : public platform::Platform, private platform::LocationServices {
 public:
  platform::LocationServices& locationServices() override { return *this; }

  test::Count managers;
  std::atomic<int> readsAtTheEnd = 0;

 private:
  bool locationServicesEnabled() override { return true; }
  std::int32_t authorizationStatus() override { return 3; }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override {
    return std::make_shared<CountedManager>(managers, readsAtTheEnd);
  }
  void requestAuthorization(StatusHandler) override {}
  void requestLocation(LocationHandler) override {}
};

TEST(LocationSlotsThread, EveryManagerIsDestroyedOnceAndMayReadTheSlotMeanwhile) {
  const int fetches = test::figure(1'000, 10'000);
  const auto platform = std::make_shared<CountingPlatform>();
  platform::install(platform);

  test::onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < fetches; ++i) {
      TavloUtility::fetchCurrentLocation();
      const auto held = locationManager().load();
      ASSERT_EQ(held->location()->coordinate.longitude, 2);
    }
  });

  EXPECT_EQ(platform->managers.made(), kThreads * fetches);
  EXPECT_EQ(platform->managers.alive(), 1);
  EXPECT_EQ(platform->readsAtTheEnd, kThreads * fetches - 1);
  locationManager().store(nullptr);
  EXPECT_EQ(platform->managers.alive(), 0);
  platform::install(nullptr);
  test::reached("T11", std::to_string(kThreads) + " threads x " + std::to_string(fetches) +
                           " replacements of the location manager, one left");
}

}  // namespace
}  // namespace tavlo
