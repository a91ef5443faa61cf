// What the rest of the SDK brings, as a case gives it: the session package, the counters, the tracker records, the
// log and the exception reporter. What they are asked is seen in order.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/conformance/Events.h"
#include "tests/conformance/Given.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo::conformance {

inline void setPackage(test::RecordingPackage& package, const Value* given) {
  for (const auto& [key, value] : entriesOf(given)) {
    const std::string name(*key.ifText());
    if (name == "limitAdTrackingEnabled") {
      package.limitedTracking = truthOf(&value, false);
    } else if (name == "resolution") {
      package.resolutionValue = static_cast<std::int32_t>(integerOf(&value));
    } else if (name == "preRoll") {
      package.preRollValue = static_cast<std::int32_t>(integerOf(&value));
    } else {
      const auto text = packageTextNamed(name);
      if (!text) throw std::runtime_error("the session package has no \"" + name + '"');
      package.texts[*text] = textOf(&value);
    }
  }
}

[[nodiscard]] inline std::shared_ptr<test::RecordingPackage> packageOf(const Value* given, const Seen& seen) {
  auto package = std::make_shared<test::RecordingPackage>();
  setPackage(*package, given);
  package->onRead = [seen](std::string_view read) { seen->asks.emplace_back(read); };
  package->onWrite = [seen](const std::string& write) {
    seen->asks.emplace_back(write.starts_with("setUserAddress:") ? "setUserAddress:" : "setLatitude:AndLogitude:");
  };
  return package;
}

[[nodiscard]] inline std::shared_ptr<TavloUniqueUserHandler> usersOf(const Value& given, const Seen& seen) {
  auto users = std::make_shared<test::RecordingUsers>();
  const auto integer = [&](std::string_view name) { return static_cast<std::int32_t>(integerOf(member(given, name))); };
  users->isNew = integer("getIsUserNew");
  users->dayValue = integer("getUniqueUserDayValue");
  users->day = textOf(member(given, "getUniqueUserDay"));
  users->weekValue = integer("getUniqueUserWeekValue");
  users->week = integer("getNumberOfWeek");
  users->monthValue = integer("getUniqueUserMonthValue");
  users->month = integer("getNumberOfMonth");
  users->onRead = [seen, &reads = users->reads] { seen->asks.push_back(reads.back()); };
  return users;
}

class GivenDetail final : public NetworkTrackerDetail {
 public:
  GivenDetail(Value given, Seen seen) : given_(std::move(given)), seen_(std::move(seen)) {}

  std::optional<Value> networkID() const override { return read("networkID"); }
  std::optional<Value> event() const override { return read("event"); }
  std::optional<Value> count() const override { return read("count"); }

 private:
  [[nodiscard]] std::optional<Value> read(const char* name) const {
    seen_->asks.emplace_back(name);
    const Value* const value = member(given_, name);
    return value ? std::optional(*value) : std::nullopt;
  }

  Value given_;
  Seen seen_;
};

[[nodiscard]] inline std::shared_ptr<DataBaseHandler> dataBaseOf(const Value* given, const Seen& seen) {
  auto dataBase = std::make_shared<test::FixedDataBase>();
  dataBase->onAsked = [seen] { seen->asks.emplace_back("getNetworkTrackerDetails"); };
  if (!given || given->isNull()) return dataBase;
  dataBase->records.emplace();
  for (const Value& record : itemsOf(given)) dataBase->records->push_back(std::make_shared<GivenDetail>(record, seen));
  return dataBase;
}

class SeenLines final : public Logger {
 public:
  explicit SeenLines(Seen seen) : seen_(std::move(seen)) {}
  void writeLine(std::string_view message) override { seen_->log.emplace_back(message); }

 private:
  Seen seen_;
};

class SeenReports final : public TavloException {
 public:
  explicit SeenReports(Seen seen) : seen_(std::move(seen)) {}
  void report(std::string_view message) override { seen_->reports.emplace_back(message); }

 private:
  Seen seen_;
};

}  // namespace tavlo::conformance
