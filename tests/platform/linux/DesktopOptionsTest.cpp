// Options of the position and of the geocoder that make() refuses, and how it says so.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>

#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/RequestPace.h"
#include "tests/support/CaseName.h"

namespace tavlo::test {
namespace {

using linux_platform::Options;
using linux_platform::RequestPace;
using std::chrono::milliseconds;

struct Refused {
  const char* name;
  Options options;
  const char* message;
};

class RefusedOption : public testing::TestWithParam<Refused> {};

TEST_P(RefusedOption, IsNamedWithWhatItMayBe) {
  try {
    static_cast<void>(linux_platform::make(GetParam().options));
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), GetParam().message);
  }
}

constexpr const char* kUrl =
    "the option \"geocoding.url\" must be an http or https URL with a host, without a query or a fragment";
constexpr const char* kTimeLimit = "the option \"geocoding.timeLimit\" must be from 1 to 86400000 ms";
constexpr const char* kAuthorization = "the option \"location.authorization\" must be from 1 to 86400000 ms";
constexpr const char* kDesktopId = "the option \"location.desktopId\" must be UTF-8 without a NUL";
constexpr const char* kMaintainer = "the option \"geocoding.maintainer\" must be UTF-8 without a NUL";

INSTANTIATE_TEST_SUITE_P(
    , RefusedOption,
    testing::Values(
        Refused{"UrlOfAFile", {.geocoding = {.url = "file:///etc/passwd"}}, kUrl},
        Refused{"UrlWithoutAScheme", {.geocoding = {.url = "nominatim.example"}}, kUrl},
        Refused{"UrlWithoutAHost", {.geocoding = {.url = "http:///x"}}, kUrl},
        Refused{"UrlWithAQuery", {.geocoding = {.url = "http://h/?a"}}, kUrl},
        Refused{"UrlWithAFragment", {.geocoding = {.url = "http://h/#a"}}, kUrl},
        Refused{"UrlWithABlank", {.geocoding = {.url = "http://h/ x"}}, kUrl},
        Refused{"NoTime", {.geocoding = {.timeLimit = milliseconds(0)}}, kTimeLimit},
        Refused{"MoreThanADay", {.geocoding = {.timeLimit = milliseconds(86'400'001)}}, kTimeLimit},
        Refused{"MaintainerWithANul", {.geocoding = {.maintainer = std::string("a\0b", 3)}}, kMaintainer},
        Refused{"MaintainerNotUtf8", {.geocoding = {.maintainer = "\xff"}}, kMaintainer},
        Refused{"DesktopIdWithANul", {.location = {.desktopId = std::string("a\0b", 3)}}, kDesktopId},
        Refused{"DesktopIdNotUtf8", {.location = {.desktopId = "\xff"}}, kDesktopId},
        Refused{"NegativeAuthorization", {.location = {.authorization = milliseconds(-1)}}, kAuthorization},
        Refused{"LongAuthorization", {.location = {.authorization = milliseconds(86'400'001)}}, kAuthorization}),
    kCaseName);

// Notes what is waited for, and is there at once.
class NotedClock final : public RequestPace::Clock {
 public:
  NotedClock(milliseconds& now, std::string& waits) : now_(now), waits_(waits) {}
  RequestPace::Time now() override { return RequestPace::Time(now_); }
  bool waitUntil(RequestPace::Time time) override {
    const auto until = std::chrono::duration_cast<milliseconds>(time.time_since_epoch());
    waits_ += std::to_string(until.count()) + " ";
    now_ = std::max(now_, until);
    return !cancelled_;
  }
  void cancel() override { cancelled_ = true; }

 private:
  milliseconds& now_;
  std::string& waits_;
  bool cancelled_ = false;
};

TEST(RequestPace, TurnsAreASecondApartFromBeginToBegin) {
  milliseconds now(5000);
  std::string waits;
  RequestPace pace(std::make_unique<NotedClock>(now, waits));

  EXPECT_TRUE(pace.next());
  EXPECT_TRUE(pace.next());
  now += milliseconds(300);
  EXPECT_TRUE(pace.next());
  now += milliseconds(4000);
  EXPECT_TRUE(pace.next());
  EXPECT_TRUE(pace.next());

  EXPECT_EQ(waits, "5000 6000 7000 8000 12000 ");
}

TEST(RequestPace, ACancelledPaceHasNoTurns) {
  milliseconds now(0);
  std::string waits;
  RequestPace pace(std::make_unique<NotedClock>(now, waits));

  pace.cancel();

  EXPECT_FALSE(pace.next());
  EXPECT_FALSE(pace.next());
}

TEST(RequestPace, TheSteadyClockWaitsNoLongerOnceCancelled) {
  const auto clock = linux_platform::makeSteadyClock();

  EXPECT_TRUE(clock->waitUntil(clock->now()));
  clock->cancel();

  EXPECT_FALSE(clock->waitUntil(clock->now() + std::chrono::hours(24)));
}

}  // namespace
}  // namespace tavlo::test
