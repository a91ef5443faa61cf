// How requests for addresses wait for each other: one a second, the oldest first, at most eight waiting.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/integration/DesktopFixture.h"
#include "tests/integration/HandClock.h"
#include "tests/support/Nominatim.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::test {
namespace {

using platform::Location;
using std::chrono::milliseconds;
using testing::ElementsAre;

constexpr const char* kOvertaken = "the look-up was overtaken: too many newer ones wait";

class GeocoderQueueThread : public testing::Test {
 protected:
  GeocoderQueueThread() { clock_->restart(); }

  // Adds the road of the answer, which is the latitude, or the error to the record.
  void lookUp(Desktop& desktop, int latitude) {
    desktop.geocoder()->reverseGeocodeLocation(
        Location{.coordinate = {.latitude = static_cast<double>(latitude), .longitude = 0}},
        [this](const auto& placemarks, const Text& error) {
          answers_.add(placemarks ? placemarks->at(0).thoroughfare.value_or("(null)") : error.value_or("(null)"));
        });
  }
  [[nodiscard]] linux_platform::Options options() { return {.geocoding = {.url = service_.url("echo")}}; }

  // The process has one.
  static HandClock* clock() {
    auto clock = std::make_unique<HandClock>();
    HandClock* const raw = clock.get();
    linux_platform::setGeocodingClock(std::move(clock));
    return raw;
  }

  static inline HandClock* const clock_ = clock();
  Nominatim service_;
  Desktop desktop_{options()};
  AwaitedRecord answers_;
};

TEST_F(GeocoderQueueThread, TheSecondRequestBeginsASecondAfterTheFirst) {
  lookUp(desktop_, 1);
  lookUp(desktop_, 2);
  EXPECT_THAT(answers_.take(1), ElementsAre("1"));

  EXPECT_EQ(clock_->awaited(), milliseconds(1000));
  clock_->step(milliseconds(1000));
  EXPECT_THAT(answers_.take(1), ElementsAre("2"));
}

TEST_F(GeocoderQueueThread, ARequestAfterARestOfASecondBeginsAtOnce) {
  lookUp(desktop_, 1);
  EXPECT_THAT(answers_.take(1), ElementsAre("1"));
  clock_->step(milliseconds(1500));

  lookUp(desktop_, 2);
  EXPECT_THAT(answers_.take(1), ElementsAre("2"));
  lookUp(desktop_, 3);

  EXPECT_EQ(clock_->awaited(), milliseconds(2500));
  clock_->step(milliseconds(1000));
  EXPECT_THAT(answers_.take(1), ElementsAre("3"));
}

TEST_F(GeocoderQueueThread, AllPlatformsOfTheProcessShareThePace) {
  Desktop other(options());
  lookUp(desktop_, 1);
  lookUp(other, 2);
  EXPECT_THAT(answers_.take(1), ElementsAre("1"));

  EXPECT_EQ(clock_->awaited(), milliseconds(1000));
  clock_->step(milliseconds(1000));
  EXPECT_THAT(answers_.take(1), ElementsAre("2"));
}

TEST_F(GeocoderQueueThread, TheSamePlaceAgainIsAnsweredAtOnceAndAsksNobody) {
  lookUp(desktop_, 1);
  lookUp(desktop_, 1);

  EXPECT_THAT(answers_.take(2), ElementsAre("1", "1"));
}

TEST_F(GeocoderQueueThread, OfMoreThanEightThatWaitTheOldestAskNobody) {
  lookUp(desktop_, 1);
  EXPECT_THAT(answers_.take(1), ElementsAre("1"));
  lookUp(desktop_, 2);
  static_cast<void>(clock_->awaited());  // this one's turn is being waited for

  for (int latitude = 3; latitude <= 12; ++latitude) lookUp(desktop_, latitude);
  for (int second = 0; second < 9; ++second) {
    static_cast<void>(clock_->awaited());
    clock_->step(milliseconds(1000));
    static_cast<void>(service_.request());
  }

  EXPECT_THAT(answers_.take(11), ElementsAre("2", kOvertaken, kOvertaken, "5", "6", "7", "8", "9", "10", "11", "12"));
}

TEST_F(GeocoderQueueThread, AHandlerThatThrowsEndsItsOwnRunOnly) {
  desktop_.geocoder()->reverseGeocodeLocation(
      std::nullopt, [](const auto&, const auto&) { throw std::out_of_range("of the handler"); });
  desktop_.geocoder()->reverseGeocodeLocation(std::nullopt, nullptr);
  lookUp(desktop_, 1);

  EXPECT_THAT(answers_.take(1), ElementsAre("1"));
}

TEST_F(GeocoderQueueThread, AHandlerMayLookUpAndMayEndThePlatform) {
  auto own = linux_platform::make(options());
  platform::Platform& platform = *own;

  platform.makeGeocoder()->reverseGeocodeLocation(std::nullopt, [this, own = std::move(own)](auto&, auto&) mutable {
    own = nullptr;
    lookUp(desktop_, 1);
  });

  EXPECT_THAT(answers_.take(1), ElementsAre("1"));
}

TEST_F(GeocoderQueueThread, ARequestGoesOnWhenItsPlatformIsGone) {
  auto own = linux_platform::make(options());
  own->makeGeocoder()->reverseGeocodeLocation(
      Location{.coordinate = {.latitude = 7, .longitude = 0}},
      [this](const auto& placemarks, const auto&) { answers_.add(placemarks->at(0).thoroughfare.value()); });
  own = nullptr;

  EXPECT_THAT(answers_.take(1), ElementsAre("7"));
}

TEST_F(GeocoderQueueThread, HandlersOfEightThreadsRunOneAtATimeOnOneThreadAndAllRun) {
  constexpr int kThreads = 8;
  const int rounds = scaled(500);
  const int all = kThreads * rounds;
  int ran = 0;  // touched by handlers only
  std::thread::id thread;
  std::promise<void> done;

  onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < rounds; ++i) {
      desktop_.geocoder()->reverseGeocodeLocation(std::nullopt, [&](const auto&, const auto&) {
        if (ran == 0) thread = std::this_thread::get_id();
        EXPECT_EQ(thread, std::this_thread::get_id());
        if (++ran == all) done.set_value();
      });
    }
  });
  done.get_future().wait();

  EXPECT_EQ(ran, all);
}

}  // namespace
}  // namespace tavlo::test
