#include "bench/BenchHost.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "TavloUtility.h"
#include "bench/TemporaryFolder.h"
#include "host/SessionRecord.h"
#include "platform/linux/LinuxPlatform.h"
#include "request/DataBaseHandler.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo::bench {
namespace {

class FixedCounters final : public TavloUniqueUserHandler {
 public:
  [[nodiscard]] std::int32_t isUserNew() const override { return 1; }
  [[nodiscard]] std::int32_t uniqueUserDayValue() const override { return 1; }
  [[nodiscard]] Text uniqueUserDay() const override { return "320"; }
  [[nodiscard]] std::int32_t uniqueUserWeekValue() const override { return 0; }
  [[nodiscard]] std::int32_t numberOfWeek() const override { return 46; }
  [[nodiscard]] std::int32_t uniqueUserMonthValue() const override { return 0; }
  [[nodiscard]] std::int32_t numberOfMonth() const override { return 11; }
};

class Record final : public NetworkTrackerDetail {
 public:
  explicit Record(std::size_t number) : networkID_("network-" + std::to_string(number)) {}
  [[nodiscard]] std::optional<Value> networkID() const override { return networkID_; }
  [[nodiscard]] std::optional<Value> event() const override { return event_; }
  [[nodiscard]] std::optional<Value> count() const override { return count_; }

 private:
  Value networkID_;
  Value event_ = "impression";
  Value count_ = 3;
};

class Records final : public DataBaseHandler {
 public:
  explicit Records(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) records_.push_back(std::make_shared<Record>(i));
  }
  [[nodiscard]] std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override { return records_; }

 private:
  NetworkTrackerDetails records_;
};

std::shared_ptr<TavloPackage> filledSession() {
  auto session = std::make_shared<host::SessionRecord>();
  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) {
    session->set(static_cast<PackageText>(i), std::string(kPackageTextReads[i].name) + " of M\xC3\xBCller & co");
  }
  session->setLimitAdTrackingEnabled(true);
  session->setResolution(1080);
  session->setPreRoll(1);
  return session;
}

}  // namespace

void installHost(std::size_t trackerRecords) {
  static const TemporaryFolder container;
  platform::install(
      linux_platform::make({.container = container.path(), .domain = "tavlo-bench", .quietConsole = true}));
  TavloUtility::setAppIdToUserDefault("app id of M\xC3\xBCller & co");
  TavloUtility::setOptionalIdToUserDefault("optional id");
  TavloPackage::install(filledSession());
  TavloUniqueUserHandler::install(std::make_shared<FixedCounters>());
  DataBaseHandler::install(std::make_shared<Records>(trackerRecords));
}

void removeHost() {
  TavloPackage::install(nullptr);
  TavloUniqueUserHandler::install(nullptr);
  DataBaseHandler::install(nullptr);
}

}  // namespace tavlo::bench
