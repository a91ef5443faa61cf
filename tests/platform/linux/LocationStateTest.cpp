#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <future>
#include <limits>
#include <optional>

#include "platform/linux/LocationState.h"
#include "tests/support/CaseName.h"

namespace tavlo::test {
namespace {

using linux_platform::LocationState;
using platform::Location;

constexpr Location kDelhi{.coordinate = {.latitude = 28.6139, .longitude = 77.209}};
constexpr Location kSydney{.coordinate = {.latitude = -33.8688, .longitude = 151.2093}};

// A handler, and what it is answered.
template <class Answer>
class Asked {
 public:
  auto handler() {
    return [this](const Answer& answer) { answer_.set_value(answer); };
  }
  Answer answer() { return answer_.get_future().get(); }

 private:
  std::promise<Answer> answer_;
};

class LocationStateThread : public testing::Test {
 protected:
  LocationState state_;
  Asked<std::int32_t> status_;
  Asked<std::optional<Location>> fix_;
};

TEST_F(LocationStateThread, BeginsNotDeterminedWithoutAFix) {
  state_.requestLocation(fix_.handler());

  EXPECT_EQ(state_.authorizationStatus(), 0);
  EXPECT_EQ(state_.location(), std::nullopt);
  EXPECT_FALSE(state_.isAllowed());
  EXPECT_EQ(fix_.answer(), std::nullopt);
}

TEST_F(LocationStateThread, OnlyTheFirstRequestBeginsAClient) {
  EXPECT_TRUE(state_.requestAuthorization(nullptr));
  EXPECT_FALSE(state_.requestAuthorization(status_.handler()));
  EXPECT_EQ(state_.authorizationStatus(), 0);

  state_.allowed(true);

  EXPECT_EQ(status_.answer(), 3);
  EXPECT_FALSE(state_.requestAuthorization(nullptr));
  EXPECT_TRUE(state_.isAllowed());
}

TEST_F(LocationStateThread, WithoutAccuracyTheAppIsRestrictedUntilThereIsSome) {
  static_cast<void>(state_.requestAuthorization(status_.handler()));

  state_.allowed(false);

  EXPECT_EQ(status_.answer(), 1);
  EXPECT_EQ(state_.authorizationStatus(), 1);
  state_.hasAccuracy(true);
  EXPECT_EQ(state_.authorizationStatus(), 3);
  state_.hasAccuracy(false);
  EXPECT_EQ(state_.authorizationStatus(), 1);
}

TEST_F(LocationStateThread, AccuracyBeforeThePermissionGivesNone) {
  static_cast<void>(state_.requestAuthorization(nullptr));

  state_.hasAccuracy(true);

  EXPECT_EQ(state_.authorizationStatus(), 0);
}

TEST_F(LocationStateThread, ARefusalLastsWhileTheNextClientBegins) {
  static_cast<void>(state_.requestAuthorization(status_.handler()));
  state_.requestLocation(fix_.handler());

  state_.ended(2);

  EXPECT_EQ(status_.answer(), 2);
  EXPECT_EQ(fix_.answer(), std::nullopt);
  EXPECT_TRUE(state_.requestAuthorization(nullptr));
  EXPECT_EQ(state_.authorizationStatus(), 2);
}

TEST_F(LocationStateThread, AFixIsWaitedForAndTheNewestIsKeptAfterTheEnd) {
  static_cast<void>(state_.requestAuthorization(nullptr));
  state_.allowed(true);
  state_.requestLocation(fix_.handler());

  state_.moved(kDelhi);
  state_.moved(kSydney);
  state_.ended(0);

  EXPECT_EQ(fix_.answer(), kDelhi);
  EXPECT_EQ(state_.location(), kSydney);
  EXPECT_EQ(state_.authorizationStatus(), 0);
}

TEST_F(LocationStateThread, TheFixOfAnEarlierClientAnswersNoRequestToALaterOne) {
  static_cast<void>(state_.requestAuthorization(nullptr));
  state_.allowed(true);
  state_.moved(kDelhi);
  state_.ended(0);

  static_cast<void>(state_.requestAuthorization(nullptr));
  state_.allowed(true);
  state_.requestLocation(fix_.handler());
  EXPECT_EQ(state_.location(), kDelhi);
  state_.moved(kSydney);

  EXPECT_EQ(fix_.answer(), kSydney);
}

TEST_F(LocationStateThread, NewsOfAClientThatHasEndedChangesNothing) {
  state_.moved(kDelhi);
  state_.hasAccuracy(true);

  EXPECT_EQ(state_.location(), std::nullopt);
  EXPECT_EQ(state_.authorizationStatus(), 0);
}

TEST_F(LocationStateThread, AFixThatIsNoPlaceOnEarthIsNone) {
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  static_cast<void>(state_.requestAuthorization(nullptr));
  state_.allowed(true);

  for (const platform::Coordinate& place : {platform::Coordinate{90.001, 0},
                                            {0, -180.001},
                                            {kNoNumber, 0},
                                            {0, kNoNumber},
                                            {std::numeric_limits<double>::infinity(), 0}}) {
    state_.moved({place});
  }

  EXPECT_EQ(state_.location(), std::nullopt);
}

}  // namespace
}  // namespace tavlo::test
