#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

#include "TavloUtility.h"
#include "platform/Platform.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

using test::Installed;
using test::RecordingPackage;

TEST(CollaboratorsTest, TwoCallsOfSharedInstanceReachTheSameRecord) {
  const Installed<TavloPackage, RecordingPackage> package;

  TavloPackage::sharedInstance()->setUserAddress("");
  TavloPackage::sharedInstance()->setLatitudeAndLogitude(" 1.5 ", "-2");

  EXPECT_EQ(TavloPackage::sharedInstance(), TavloPackage::sharedInstance());
  EXPECT_EQ(TavloPackage::sharedInstance()->getUserAddress(), "");
  EXPECT_EQ(TavloPackage::sharedInstance()->getLatitude(), " 1.5 ");
  EXPECT_EQ(TavloPackage::sharedInstance()->getLongitude(), "-2");
}

TEST(CollaboratorsTest, EmptySlotsAnswerNothing) {
  EXPECT_EQ(TavloPackage::sharedInstance(), nullptr);
  EXPECT_EQ(DataBaseHandler::sharedInastance(), nullptr);
  EXPECT_EQ(TavloUniqueUserHandler::installed(), nullptr);
  EXPECT_EQ(TavloException::installed(), nullptr);
}

// Stand-ins that any number of threads may ask.
class FixedUsers final : public TavloUniqueUserHandler {
  std::int32_t isUserNew() const override { return 7; }
  std::int32_t uniqueUserDayValue() const override { return 7; }
  Text uniqueUserDay() const override { return "7"; }
  std::int32_t uniqueUserWeekValue() const override { return 7; }
  std::int32_t numberOfWeek() const override { return 7; }
  std::int32_t uniqueUserMonthValue() const override { return 7; }
  std::int32_t numberOfMonth() const override { return 7; }
};

class AbsentPackage final : public TavloPackage {
#define TAVLO_OVERRIDE(name) \
  Text name() const override { return std::nullopt; }
  TAVLO_PACKAGE_TEXT_READS(TAVLO_OVERRIDE)
#undef TAVLO_OVERRIDE
  bool limitAdTrackingEnabled() const override { return false; }
  std::int32_t resolution() const override { return 0; }
  std::int32_t preRoll() const override { return 0; }
  void setLatitudeAndLogitude(const Text&, const Text&) override {}
  void setUserAddress(const Text&) override {}
};

class NoRecords final : public DataBaseHandler {
  std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override { return NetworkTrackerDetails(); }
};

class SilentLogger final : public Logger {
  void writeLine(std::string_view) override {}
};

class SilentReporter final : public TavloException {
  void report(std::string_view) override {}
};

TEST(CollaboratorsTest, ThreadsUseEverySlotWhileOthersReplaceIt) {
  constexpr int kThreads = 8;
  std::barrier start(kThreads);
  std::vector<std::jthread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &start] {
      start.arrive_and_wait();
      for (int i = 0; i < 200; ++i) {
        if (t % 2 == 0) {
          const bool empty = i % 3 == 0;
          TavloPackage::install(empty ? nullptr : std::make_shared<AbsentPackage>());
          TavloUniqueUserHandler::install(empty ? nullptr : std::make_shared<FixedUsers>());
          DataBaseHandler::install(empty ? nullptr : std::make_shared<NoRecords>());
          Logger::install(empty ? nullptr : std::make_shared<SilentLogger>());
          TavloException::install(empty ? nullptr : std::make_shared<SilentReporter>());
          platform::install(empty ? nullptr : std::make_shared<platform::Platform>());
        } else {
          EXPECT_EQ(TavloUtility::getAdditionalRequestingString().size(), 737U);
          EXPECT_EQ(TavloUtility::getInAppNotificationAdditionalRequest().size(), 443U);
          EXPECT_EQ(TavloUtility::trackerNetworkSessionData().ifMap()->size(), 35U);
          EXPECT_EQ(TavloUtility::md5(7), std::nullopt);
          Logger::printLog("line");
        }
      }
    });
  }
}

}  // namespace
}  // namespace tavlo
