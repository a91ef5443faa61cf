// Stand-ins for what the rest of the SDK brings, which record what they are asked. For one thread at a time.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Logger.h"
#include "common/TavloException.h"
#include "request/DataBaseHandler.h"
#include "request/PackageReads.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo::test {

// A stand-in that is installed in its slot for as long as this object lives.
template <class Role, class StandIn>
class Installed {
 public:
  template <class... Arguments>
  explicit Installed(Arguments&&... arguments)
      : standIn_(std::make_shared<StandIn>(std::forward<Arguments>(arguments)...)) {
    Role::install(standIn_);
  }
  Installed(const Installed&) = delete;
  Installed& operator=(const Installed&) = delete;
  ~Installed() { Role::install(nullptr); }

  StandIn* operator->() const { return standIn_.get(); }
  StandIn& operator*() const { return *standIn_; }

 private:
  std::shared_ptr<StandIn> standIn_;
};

class RecordingLogger final : public Logger {
 public:
  void writeLine(std::string_view message) override { lines.emplace_back(message); }

  std::vector<std::string> lines;
};

class RecordingReporter final : public TavloException {
 public:
  void report(std::string_view message) override { messages.emplace_back(message); }

  std::vector<std::string> messages;
};

// A session package with every text absent until it is given. Each read is recorded, and told to `onRead`
// before it is answered.
class RecordingPackage : public TavloPackage {
 public:
#define TAVLO_OVERRIDE(name) \
  Text name() const override { return read(PackageText::name); }
  TAVLO_PACKAGE_TEXT_READS(TAVLO_OVERRIDE)
#undef TAVLO_OVERRIDE

  bool limitAdTrackingEnabled() const override { return note("limitAdTrackingEnabled"), limitedTracking; }
  std::int32_t resolution() const override { return note("resolution"), resolutionValue; }
  std::int32_t preRoll() const override { return note("preRoll"), preRollValue; }

  void setLatitudeAndLogitude(const Text& latitude, const Text& longitude) override {
    texts[PackageText::getLatitude] = latitude;
    texts[PackageText::getLongitude] = longitude;
    onWrite("setLatitude:" + latitude.value_or("(null)") + " AndLogitude:" + longitude.value_or("(null)"));
  }
  void setUserAddress(const Text& address) override {
    texts[PackageText::getUserAddress] = address;
    onWrite("setUserAddress:" + address.value_or("(null)"));
  }

  // Every text the name of its read operation, with a blank in front.
  void fillWithNames() {
    for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) {
      texts[static_cast<PackageText>(i)] = " " + std::string(kPackageTextReads[i].name);
    }
  }

  std::map<PackageText, Text> texts;
  bool limitedTracking = false;
  std::int32_t resolutionValue = 0;
  std::int32_t preRollValue = 0;
  mutable std::vector<std::string> reads;
  std::function<void(std::string_view read)> onRead = [](std::string_view) {};
  std::function<void(const std::string& write)> onWrite = [](const std::string&) {};

 private:
  void note(std::string_view name) const {
    reads.emplace_back(name);
    onRead(name);
  }
  Text read(PackageText text) const {
    note(readOf(text).name);
    const auto entry = texts.find(text);
    return entry == texts.end() ? std::nullopt : entry->second;
  }
};

class RecordingUsers final : public TavloUniqueUserHandler {
 public:
  std::int32_t isUserNew() const override { return note("getIsUserNew"), isNew; }
  std::int32_t uniqueUserDayValue() const override { return note("getUniqueUserDayValue"), dayValue; }
  Text uniqueUserDay() const override { return note("getUniqueUserDay"), day; }
  std::int32_t uniqueUserWeekValue() const override { return note("getUniqueUserWeekValue"), weekValue; }
  std::int32_t numberOfWeek() const override { return note("getNumberOfWeek"), week; }
  std::int32_t uniqueUserMonthValue() const override { return note("getUniqueUserMonthValue"), monthValue; }
  std::int32_t numberOfMonth() const override { return note("getNumberOfMonth"), month; }

  std::int32_t isNew = 0;
  std::int32_t dayValue = 0;
  Text day;
  std::int32_t weekValue = 0;
  std::int32_t week = 0;
  std::int32_t monthValue = 0;
  std::int32_t month = 0;
  mutable std::vector<std::string> reads;
  std::function<void()> onRead = [] {};

 private:
  void note(std::string_view name) const {
    reads.emplace_back(name);
    onRead();
  }
};

class RecordingDetail final : public NetworkTrackerDetail {
 public:
  RecordingDetail(std::optional<Value> networkID, std::optional<Value> event, std::optional<Value> count)
      : networkID_(std::move(networkID)), event_(std::move(event)), count_(std::move(count)) {}

  std::optional<Value> networkID() const override { return reads.emplace_back("networkID"), networkID_; }
  std::optional<Value> event() const override { return reads.emplace_back("event"), event_; }
  std::optional<Value> count() const override { return reads.emplace_back("count"), count_; }

  mutable std::vector<std::string> reads;

 private:
  std::optional<Value> networkID_;
  std::optional<Value> event_;
  std::optional<Value> count_;
};

class FixedDataBase final : public DataBaseHandler {
 public:
  std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override { return ++asked, onAsked(), records; }

  std::shared_ptr<RecordingDetail> add(std::optional<Value> networkID, std::optional<Value> event,
                                       std::optional<Value> count) {
    auto record = std::make_shared<RecordingDetail>(std::move(networkID), std::move(event), std::move(count));
    if (!records) records.emplace();
    records->push_back(record);
    return record;
  }

  std::optional<NetworkTrackerDetails> records;
  int asked = 0;
  std::function<void()> onAsked = [] {};
};

}  // namespace tavlo::test
