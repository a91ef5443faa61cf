#include "cli/Session.h"

#include <mutex>
#include <string_view>
#include <utility>

namespace tavlo::cli {
namespace {

class FixedCounters final : public TavloUniqueUserHandler {
 public:
  explicit FixedCounters(UserCounters counters) : counters_(std::move(counters)) {}

  std::int32_t isUserNew() const override { return counters_.isUserNew; }
  std::int32_t uniqueUserDayValue() const override { return counters_.dayValue; }
  Text uniqueUserDay() const override { return counters_.day; }
  std::int32_t uniqueUserWeekValue() const override { return counters_.weekValue; }
  std::int32_t numberOfWeek() const override { return counters_.week; }
  std::int32_t uniqueUserMonthValue() const override { return counters_.monthValue; }
  std::int32_t numberOfMonth() const override { return counters_.month; }

 private:
  const UserCounters counters_;
};

class FixedRecords final : public DataBaseHandler {
 public:
  explicit FixedRecords(std::optional<std::vector<host::TrackerEvent>> records) {
    if (!records) return;
    details_.emplace();
    for (auto& record : *records) details_->push_back(host::detailOf(std::move(record)));
  }

  std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override { return details_; }

 private:
  std::optional<NetworkTrackerDetails> details_;
};

class MemorySettings final : public platform::UserDefaults {
 public:
  explicit MemorySettings(const std::map<std::string, std::string, std::less<>>& texts)
      : values_(texts.begin(), texts.end()) {}

  std::optional<Value> objectForKey(std::string_view key) override {
    const std::lock_guard lock(mutex_);
    const auto entry = values_.find(key);
    return entry == values_.end() ? std::nullopt : std::optional(entry->second);
  }
  void setObjectForKey(const Value& value, std::string_view key) override {
    const std::lock_guard lock(mutex_);
    values_.insert_or_assign(std::string(key), value);
  }
  bool synchronize() override { return false; }  // nothing here outlives the process

 private:
  std::mutex mutex_;
  std::map<std::string, Value, std::less<>> values_;
};

class SessionPlatform final : public platform::Platform {
 public:
  SessionPlatform(const Session& session, std::shared_ptr<platform::Platform> outside)
      : settings_(session.identifiers), outside_(std::move(outside)) {}

  platform::UserDefaults& standardUserDefaults() override { return settings_; }
  platform::Console& console() override { return outside_->console(); }

 private:
  MemorySettings settings_;
  const std::shared_ptr<platform::Platform> outside_;
};

}  // namespace

std::shared_ptr<DataBaseHandler> fixedRecords(std::optional<std::vector<host::TrackerEvent>> records) {
  return std::make_shared<FixedRecords>(std::move(records));
}

void install(const Session& session, std::shared_ptr<platform::Platform> outside) {
  platform::install(std::make_shared<SessionPlatform>(session, std::move(outside)));
  TavloPackage::install(session.package);
  TavloUniqueUserHandler::install(std::make_shared<FixedCounters>(session.counters));
  DataBaseHandler::install(fixedRecords(session.trackerRecords));
}

}  // namespace tavlo::cli
