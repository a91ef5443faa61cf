#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "TavloUtility.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

using test::Installed;
using test::RecordingUsers;
using testing::ElementsAre;
using testing::HasSubstr;

class UniqueUser : public testing::Test {
 protected:
  static std::string fragment() { return TavloUtility::getUserInfoRequestString(); }

  Installed<TavloUniqueUserHandler, RecordingUsers> users_;
};

TEST_F(UniqueUser, FragmentIsEightPairsEachLedByAnAmpersand) {
  users_->isNew = 1;
  users_->dayValue = 1;
  users_->day = "320";
  users_->weekValue = 0;
  users_->week = 46;
  users_->monthValue = 0;
  users_->month = 11;

  EXPECT_EQ(fragment(), "&ru=1&ru_n=&uud=1&uud_n=320&uuw=0&uuw_n=46&uum=0&uum_n=11");
}

TEST_F(UniqueUser, AbsentMarkerTravelsAsParenthesizedNull) {
  EXPECT_EQ(fragment(), "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
}

TEST_F(UniqueUser, NoHandlerReadsAsZeroAndAbsent) {
  TavloUniqueUserHandler::install(nullptr);

  EXPECT_EQ(fragment(), "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
}

TEST_F(UniqueUser, NegativeIntegersKeepTheirSign) {
  users_->weekValue = -1;
  users_->month = std::numeric_limits<std::int32_t>::min();

  EXPECT_EQ(fragment(), "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=-1&uuw_n=0&uum=0&uum_n=-2147483648");
}

TEST_F(UniqueUser, TheDayMarkerIsNotEncoded) {
  users_->day = "a&b=c d%";

  EXPECT_THAT(fragment(), HasSubstr("&uud_n=a&b=c d%&uuw="));
}

TEST_F(UniqueUser, AnEmptyDayMarkerLeavesNothing) {
  users_->day = "";

  EXPECT_THAT(fragment(), HasSubstr("&uud_n=&uuw="));
}

TEST_F(UniqueUser, EachCounterIsReadOnceInOrder) {
  static_cast<void>(fragment());

  EXPECT_THAT(users_->reads,
              ElementsAre("getIsUserNew", "getUniqueUserDayValue", "getUniqueUserDay", "getUniqueUserWeekValue",
                          "getNumberOfWeek", "getUniqueUserMonthValue", "getNumberOfMonth"));
}

TEST_F(UniqueUser, EachCounterIsAskedOfTheHandlerThatIsInstalledThen) {
  const auto later = std::make_shared<RecordingUsers>();
  later->day = "321";
  later->weekValue = 1;
  later->week = 46;
  users_->dayValue = 1;
  users_->onRead = [&] {
    if (users_->reads.back() == "getUniqueUserDayValue") TavloUniqueUserHandler::install(later);
  };
  later->onRead = [&] {
    if (later->reads.back() == "getUniqueUserWeekValue") TavloUniqueUserHandler::install(nullptr);
  };

  EXPECT_EQ(fragment(), "&ru=0&ru_n=&uud=1&uud_n=321&uuw=1&uuw_n=0&uum=0&uum_n=0");
  EXPECT_THAT(users_->reads, ElementsAre("getIsUserNew", "getUniqueUserDayValue"));
  EXPECT_THAT(later->reads, ElementsAre("getUniqueUserDay", "getUniqueUserWeekValue"));
}

// Replaces itself while it is asked.
class Replaced final : public TavloUniqueUserHandler {
 public:
  explicit Replaced(bool& destroyed) : destroyed_(destroyed) {}
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;
  ~Replaced() override { destroyed_ = true; }

  std::int32_t isUserNew() const override {
    install(nullptr);
    return destroyed_ ? 0 : 1;
  }
  std::int32_t uniqueUserDayValue() const override { return 1; }
  Text uniqueUserDay() const override { return "1"; }
  std::int32_t uniqueUserWeekValue() const override { return 1; }
  std::int32_t numberOfWeek() const override { return 1; }
  std::int32_t uniqueUserMonthValue() const override { return 1; }
  std::int32_t numberOfMonth() const override { return 1; }

 private:
  bool& destroyed_;
};

TEST_F(UniqueUser, AHandlerThatIsReplacedWhileItIsAskedLivesUntilItHasAnswered) {
  bool destroyed = false;
  TavloUniqueUserHandler::install(std::make_shared<Replaced>(destroyed));

  EXPECT_EQ(fragment(), "&ru=1&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
  EXPECT_TRUE(destroyed);
}

}  // namespace
}  // namespace tavlo
