#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "cli/LocationWatch.h"
#include "host/SessionRecord.h"
#include "request/TavloPackage.h"

namespace tavlo::cli {
namespace {

using platform::Location;
using platform::Placemark;
using platform::Placemarks;
using std::chrono::steady_clock;

constexpr Location kSomewhere{{.latitude = 1.5, .longitude = -2}};

// Keeps what is asked, or answers it at once.
class HandPlatform final : public platform::Platform, private platform::LocationServices {
 public:
  platform::LocationServices& locationServices() override { return *this; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return std::make_shared<HandGeocoder>(*this); }

  bool enabled = true;
  std::int32_t status = 3;
  std::function<void(StatusHandler)> onAuthorization = [](const StatusHandler&) {};
  std::function<void(LocationHandler)> onLocation = [](const LocationHandler&) {};
  std::function<void(platform::GeocodeCompletionHandler)> onLookUp = [](const auto&) {};

 private:
  class HandGeocoder final : public platform::Geocoder {
   public:
    explicit HandGeocoder(HandPlatform& platform) : platform_(platform) {}
    void reverseGeocodeLocation(const std::optional<Location>&, platform::GeocodeCompletionHandler handler) override {
      platform_.onLookUp(std::move(handler));
    }

   private:
    HandPlatform& platform_;
  };
  class Manager final : public platform::LocationManager {
   public:
    void setDistanceFilter(double) override {}
    void setDesiredAccuracy(double) override {}
    void startUpdatingLocation() override {}
    std::optional<Location> location() override { return kSomewhere; }
  };

  bool locationServicesEnabled() override { return enabled; }
  std::int32_t authorizationStatus() override { return status; }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override { return std::make_shared<Manager>(); }
  void requestAuthorization(StatusHandler answered) override { onAuthorization(std::move(answered)); }
  void requestLocation(LocationHandler answered) override { onLocation(std::move(answered)); }
};

class LocationWatchTest : public testing::Test {
 protected:
  LocationWatchTest() {
    if (::pipe(ends_.data()) != 0) throw std::runtime_error("no pipe");
    TavloPackage::install(session_);
  }
  ~LocationWatchTest() override {
    for (const int end : ends_) ::close(end);
    TavloPackage::install(nullptr);
    platform::install(nullptr);
  }

  [[nodiscard]] Patience forEver() const { return {.until = steady_clock::time_point::max(), .wakeUp = ends_[0]}; }
  [[nodiscard]] Patience noTime() const { return {.until = steady_clock::now(), .wakeUp = ends_[0]}; }
  void interrupt() const { ASSERT_EQ(::write(ends_[1], "!", 1), 1); }

  std::array<int, 2> ends_{};
  const std::shared_ptr<host::SessionRecord> session_ = std::make_shared<host::SessionRecord>();
  const std::shared_ptr<HandPlatform> platform_ = std::make_shared<HandPlatform>();
  LocationWatch watch_{platform_};
};

TEST_F(LocationWatchTest, AnswerIsWaitedForAndTheAddressIsThere) {
  platform_->onLookUp = [](const auto& handler) { handler(Placemarks{Placemark{.locality = "c"}}, std::nullopt); };

  EXPECT_EQ(watch_.fetch(forEver()), WaitEnd::done);

  const LocationReport report = watch_.report();
  EXPECT_TRUE(report.enabled);
  EXPECT_EQ(report.status, 3);
  EXPECT_THAT(report.positions, testing::ElementsAre(kSomewhere, kSomewhere));
  EXPECT_TRUE(report.isLookedUp && report.isOver && report.isAnswered);
  EXPECT_EQ(report.placemarks, Placemarks{Placemark{.locality = "c"}});
  EXPECT_EQ(session_->getUserAddress(), R"({"city":"c"})");
}

TEST_F(LocationWatchTest, NothingIsWaitedForWhereNothingWasLookedUp) {
  platform_->enabled = false;

  EXPECT_EQ(watch_.fetch(forEver()), WaitEnd::done);

  EXPECT_FALSE(watch_.report().enabled);
  EXPECT_EQ(watch_.report().status, std::nullopt);
}

TEST_F(LocationWatchTest, HandlerThatIsDroppedIsNotWaitedFor) {
  EXPECT_EQ(watch_.fetch(forEver()), WaitEnd::done);

  EXPECT_TRUE(watch_.report().isOver);
  EXPECT_FALSE(watch_.report().isAnswered);
}

TEST_F(LocationWatchTest, HandlerThatThrowsIsNotWaitedFor) {
  bool threw = false;
  platform_->onLookUp = [&](const auto& handler) {
    try {
      handler(Placemarks{}, std::nullopt);
    } catch (const std::out_of_range&) {
      threw = true;
    }
  };

  EXPECT_EQ(watch_.fetch(forEver()), WaitEnd::done);

  EXPECT_TRUE(threw);
  EXPECT_TRUE(watch_.report().isAnswered);
}

TEST_F(LocationWatchTest, TimeRunsOutAndALateAnswerDoesNoHarm) {
  platform::GeocodeCompletionHandler kept;
  platform_->onLookUp = [&](auto handler) { kept = std::move(handler); };

  EXPECT_EQ(watch_.fetch(noTime()), WaitEnd::timedOut);
  EXPECT_FALSE(watch_.report().isOver);

  kept(std::nullopt, "late");
  EXPECT_EQ(watch_.report().error, "late");
}

TEST_F(LocationWatchTest, InterruptionEndsTheWait) {
  platform::GeocodeCompletionHandler kept;
  platform_->onLookUp = [&](auto handler) { kept = std::move(handler); };
  interrupt();

  EXPECT_EQ(watch_.fetch(forEver()), WaitEnd::interrupted);
}

TEST_F(LocationWatchTest, PermissionIsAskedAndReported) {
  platform_->onAuthorization = [](const auto& answered) { answered(2); };

  EXPECT_EQ(watch_.askPermission(forEver()), WaitEnd::done);

  EXPECT_EQ(watch_.report().status, 2);
}

TEST_F(LocationWatchTest, PermissionThatIsNotAnsweredIsWaitedForInVain) {
  EXPECT_EQ(watch_.askPermission(noTime()), WaitEnd::timedOut);
}

TEST_F(LocationWatchTest, PositionThatComesAndOneThatDoesNotAreToldApart) {
  platform_->onLocation = [](const auto& answered) { answered(std::nullopt); };
  EXPECT_EQ(watch_.askPosition(forEver()), WaitEnd::done);
  EXPECT_FALSE(watch_.hasPosition());

  platform_->onLocation = [](const auto& answered) { answered(kSomewhere); };
  EXPECT_EQ(watch_.askPosition(forEver()), WaitEnd::done);
  EXPECT_TRUE(watch_.hasPosition());
}

}  // namespace
}  // namespace tavlo::cli
